-- Runs the game: opens the score board, throws comets in from a ring, and ends after `length` seconds of game
-- time, keeping the best score in the save file. The score board's Space takes this Space's timescale, so
-- scaling this Space scales all of it. Comets add their bounces to `bounces` in this script's variables.
Graphics:SetClearColour(0.02, 0.03, 0.12)
local hud = Space:CreateChildSpace("Levels/Hud.lvl")
hud:SetTimescale(Space:GetTimescale())
hud:SetPriority(Space:GetPriority() + 1)
-- As music, looping, from the start. Nothing stops it: it plays on while the score board pauses the game,
-- and until the game quits.
GameObject.Audio:Play(true, false, true)
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
        local x, y = math.cos(angle), math.sin(angle)
        -- Thrown in towards the sun and a little to the side, so that most comets meet it or each other.
        Space:CreateObject({ "Archetypes/Comet.arch",
            Override = { Transform = { Position = { 7 * x, 7 * y } },
                         RigidBody = { Velocity = { -1.5 * x - 0.5 * y, -1.5 * y + 0.5 * x } } } })
        print(string.format("Comet %d appears", spawned))
    end
end

local score = Space.Collector.Script:GetVariables().score
local bounces = Script:GetVariables().bounces
print(string.format("Comets bounced %d times", bounces))
-- The save file keeps the best score of all games; a tie is no new best. A save from elsewhere may hold
-- anything under the key, and only a number is a score to beat.
local best = os.SaveFile.best
if math.type(best) ~= "integer" then
    os.SaveFile.best = score
    print(string.format("First best score: %d", score))
elseif score > best then
    os.SaveFile.best = score
    print(string.format("New best score: %d, was %d", score, best))
else
    print(string.format("Best score stays %d", best))
end
local moonX, moonY = Space.Sun.Planet.Moon.Transform:GetWorldPosition()
print(string.format("Game over: %d of %d comets caught, the moon ended at (%.1f, %.1f)", score, spawned, moonX, moonY))
Game.Quit()
