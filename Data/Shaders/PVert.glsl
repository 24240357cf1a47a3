#version 330 compatibility
// One particle per point: its world position in x and y, its rotation in z and its scale in w, its colour
// as the built-in colour. The point is passed on in world units; the geometry stage builds the quad.
out vec4 vertexColour;
out float vertexRotation;
out float vertexScale;

void main()
{
    gl_Position = vec4(gl_Vertex.xy, 0.0, 1.0);
    vertexColour = gl_Color;
    vertexRotation = gl_Vertex.z;
    vertexScale = gl_Vertex.w;
}
