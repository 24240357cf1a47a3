-- Turns this object's transform; its children go round with it.
local transform = GameObject.Transform
while true do
    local dt = wait()
    transform:SetRotation(transform:GetRotation() + speed * dt)
end
