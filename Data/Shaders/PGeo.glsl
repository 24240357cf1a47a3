#version 330 compatibility
// Turns a particle's point into a quad `scale` world units square about it. Its up axis is (sin r, cos r),
// so a rotation of 0 stands upright and a particle turned to its flight faces it; the bitmap's first row is
// at the top.
layout(points) in;
layout(triangle_strip, max_vertices = 4) out;
in vec4 vertexColour[];
in float vertexRotation[];
in float vertexScale[];
out vec4 colour;
out vec2 uv;

void Corner(vec2 corner, vec2 cornerUV)
{
    gl_Position = gl_ModelViewProjectionMatrix * vec4(corner, 0.0, 1.0);
    colour = vertexColour[0];
    uv = cornerUV;
    EmitVertex();
}

void main()
{
    vec2 centre = gl_in[0].gl_Position.xy;
    vec2 up = vec2(sin(vertexRotation[0]), cos(vertexRotation[0])) * (vertexScale[0] * 0.5);
    vec2 right = vec2(up.y, -up.x);
    Corner(centre - right - up, vec2(0.0, 1.0));
    Corner(centre + right - up, vec2(1.0, 1.0));
    Corner(centre - right + up, vec2(0.0, 0.0));
    Corner(centre + right + up, vec2(1.0, 0.0));
    EndPrimitive();
}
