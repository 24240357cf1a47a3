#version 330 compatibility
// Debug shapes in one flat colour.
uniform vec4 triangleColor;
out vec4 outColor;

void main()
{
    outColor = triangleColor;
}
