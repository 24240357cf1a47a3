#version 330 compatibility
// Textured quads: the unit quad placed by the fixed-function matrices. UV_arr holds the bitmap rectangle
// as (top, right, bottom, left); the quad runs from (0, 0) at its top left to (1, -1).
layout(location = 0) in vec2 position;
uniform vec4 UV_arr;
out vec2 uv;

void main()
{
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 0.0, 1.0);
    uv = vec2(mix(UV_arr.w, UV_arr.y, position.x), mix(UV_arr.x, UV_arr.z, -position.y));
}
