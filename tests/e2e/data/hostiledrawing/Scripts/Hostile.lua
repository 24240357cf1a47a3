-- Everything a script can throw at the drawing: numbers that aren't, a text of a million glyphs, a bitmap
-- too wide for any card, twenty thousand sprites, screenshots nobody can write, and misuse of every kind.
-- Through all of it the good sprite keeps being drawn.
local nan, inf = 0 / 0, math.huge
local function bad(x, y, sx, sy, rotation, colour)
    local object = Space:CreateObject({ Name = "Bad", Sprite = "white.png", TextSprite = { Text = "A" } })
    object.Transform:SetPosition(x, y)
    object.Transform:SetScale(sx, sy)
    object.Transform:SetRotation(rotation)
    object.Sprite:SetColour(colour, colour, colour, colour)
    object.TextSprite:SetColour(colour, colour, colour, colour)
end
bad(nan, 0, 1, 1, 0, 1)
bad(0, inf, 1, 1, 0, 1)
bad(5, 5, nan, inf, 0, 1)
bad(-5, 5, 1, 1, nan, 1)
bad(5, -5, 1, 1, inf, nan)
bad(-inf, -inf, -inf, inf, -inf, -inf)
Graphics:DebugDrawRect(nan, inf, nan, 1, nan, 0, 0, nan, inf, true)
Graphics:DebugDrawText(nan, nan, "nan")
local long = Space:CreateObject({ Name = "Long", TextSprite = { Text = string.rep("W", 1e6) } })
Graphics:SetCamera(nan, inf, nan)
wait()
long.TextSprite:SetText("")
Graphics:SetCamera(0, 0, 20)
Space:CreateObject({ Name = "Wide", Transform = { Position = { 8, 8 } }, Sprite = "wide.png" })

print(pcall(Graphics.SetCamera, 1, 2))
print(pcall(Graphics.DebugDrawRect, Graphics, "x"))
print(pcall(Graphics.Screenshot, Graphics))
print(pcall(Space.Good.Sprite.SetFrame, Space.Good.Transform, 1))
print(pcall(Space.Good.Sprite.LoadFrame, Space.Good.Sprite, {}))

math.randomseed(7)
local many = {}
for i = 1, 20000 do
    local object = Space:CreateObject({ Name = "Many", Sprite = "white.png",
        Transform = { Position = { math.random() * 26 - 13, math.random() * 20 - 10 }, Scale = { 0.2, 0.2 } } })
    object.Sprite:SetColour(math.random(), math.random(), math.random())
    many[i] = object
end
wait()
-- Noise of twenty thousand colours is more than the run may write.
Graphics:Screenshot("big.png")
Graphics:Screenshot("missing/shot.png")
Graphics:Screenshot("Scripts")
Graphics:Screenshot("")
Graphics:Screenshot("a\0b")
wait()
for _, object in ipairs(many) do
    object:Destroy()
end
wait()
Graphics:Screenshot("good.png")
wait()
Game.Quit()
