-- Keeps the score in the window's top left corner, whatever the window's size.
local transform = GameObject.Transform
local text = GameObject.TextSprite
local game = Space:GetParentSpace()
while true do
    local x, y = Graphics:ScreenToWorld(16, 16)
    transform:SetPosition(x, y)
    text:SetText(string.format("Score: %d", game.Collector.Script:GetVariables().score))
    wait()
end
