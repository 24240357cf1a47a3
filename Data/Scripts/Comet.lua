local transform = GameObject.Transform
while true do
    local dt = wait()
    local x, y = transform:GetPosition()
    transform:SetPosition(x * (1 - drift * dt), y * (1 - drift * dt))
end
