Graphics:SetClearColour(0, 0, 0.5)
local frame = 0
while true do
    frame = frame + 1
    Graphics:DebugDrawRect(8, -5, 4, 4, 1, 1, 0, 1, 0.7853982, true)
    if frame == 3 then
        Graphics:Screenshot("first.png")
    elseif frame == 4 then
        Space:LoadLevel("Levels/Second.lvl")
    end
    wait()
end
