-- Runs the game: opens the score board, spawns comets on a ring, and ends after `length` seconds of game
-- time. The score board's Space takes this Space's timescale, so scaling this Space scales all of it.
local hud = Space:CreateChildSpace("Levels/Hud.lvl")
hud:SetTimescale(Space:GetTimescale())
hud:SetPriority(Space:GetPriority() + 1)
print("Comet Collector: catch the comets before the time runs out")

local spawned, elapsed, sinceSpawn = 0, 0, spawnEvery
while elapsed < length do
    local dt = wait()
    elapsed = elapsed + dt
    sinceSpawn = sinceSpawn + dt
    if sinceSpawn >= spawnEvery then
        sinceSpawn = 0
        spawned = spawned + 1
        local angle = spawned * 2.4
        Space:CreateObject({ "Archetypes/Comet.arch",
            Override = { Transform = { Position = { 7 * math.cos(angle), 7 * math.sin(angle) } } } })
        print(string.format("Comet %d appears", spawned))
    end
end

local score = Space.Collector.Script:GetVariables().score
local moonX, moonY = Space.Sun.Planet.Moon.Transform:GetWorldPosition()
print(string.format("Game over: %d of %d comets caught, the moon ended at (%.1f, %.1f)", score, spawned, moonX, moonY))
Game.Quit()
