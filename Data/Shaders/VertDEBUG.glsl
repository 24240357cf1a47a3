#version 330 compatibility
// Debug shapes: the unit quad and immediate-mode vertices alike, as glVertex feeds location 0.
layout(location = 0) in vec2 position;

void main()
{
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 0.0, 1.0);
}
