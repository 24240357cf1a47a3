Graphics:SetClearColour(0.5, 0.5, 0.5)
-- One still particle two units wide, made by script calls as the order of initializers matters.
local function effect(x, mode, frames, r, g, b, a)
    local object = Space:CreateObject({ Name = mode, Transform = { Position = { x, 5 } } })
    local particle = object:AddComponent("Particle")
    particle:SetEmitter("Once", 1)
    particle:SetInitializer("Basic", 0, 0, r, g, b, a, 10, 0, 2)
    particle:SetBlendMode(mode)
    particle:SetFrames(frames)
    return particle
end
effect(-9, "Normal", "Bitmaps/white.png", 0.25, 0.5, 1, 0.5)
effect(-5, "Additive", "Bitmaps/white.png", 0.25, 0.5, 1, 0.5)
effect(-2, "Subtractive", "Bitmaps/white.png", 0.25, 0.5, 1, 0.5)
-- Faces its flight to the right; with no position updater it stays where it was born.
effect(4, "Normal", "Bitmaps/redgreen.png", 1, 1, 1, 1):SetInitializer("RandomVelocity", math.pi / 2,
                                                                          math.pi / 2, 1, 1)
wait()
wait()
Graphics:SpawnParticles(-12, -8.5, 2, 8, 0, 0, 30, 1)
Graphics:Screenshot("first.png")
-- One frame long enough for the burst's life and fade to run out; it is gone in the next.
Space:SetTimescale(1e9)
wait()
Space:SetTimescale(1)
wait()
Graphics:Screenshot("second.png")
wait()
Game.Quit()
