#version 330 compatibility
// The bitmap's texel tinted by the quad's colour.
in vec2 uv;
uniform sampler2D texture_color;
uniform vec4 triangleColor;
out vec4 outColor;

void main()
{
    outColor = texture(texture_color, uv) * triangleColor;
}
