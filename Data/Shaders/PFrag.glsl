#version 330 compatibility
// The bitmap's texel tinted by the particle's colour.
in vec4 colour;
in vec2 uv;
uniform sampler2D texture_color;
out vec4 outColor;

void main()
{
    outColor = texture(texture_color, uv) * colour;
}
