local count = tonumber(os.getenv("QUELLMAR_SPRITES")) or 1000
local warmUp, measured = 60, 600
local wheel = GameObject.Transform
local frames = { "Sprites/Sun.png", "Sprites/Planet.png", "Sprites/Moon.png", "Sprites/Comet.png" }
math.randomseed(1)
for index = 1, count do
    local child = Space:CreateObject({ Name = "Sprite", Sprite = frames[index % #frames + 1],
        Transform = { Position = { math.random() * 26 - 13, math.random() * 20 - 10 }, Scale = { 0.5, 0.5 },
                      Z = math.random(-100, 100) } })
    child.Transform:SetParent(wheel, true)
end
local started
for frame = 1, warmUp + measured do
    local _, _, clock = wait()
    wheel:SetRotation(wheel:GetRotation() + 0.01)
    if frame == warmUp then
        started = clock
    elseif frame == warmUp + measured then
        print(string.format("%d sprites: %.1f frames per second", count, measured / (clock - started)))
    end
end
Game.Quit()
