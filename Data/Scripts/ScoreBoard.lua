-- Shows the score every few seconds, and pauses the game for a moment halfway through. It lives in a Space
-- of its own, so it keeps running while the game's Space is paused.
local game = Space:GetParentSpace()
local clock, paused = 0, false
while true do
    clock = clock + wait(every)
    print(string.format("Score: %d", game.Collector.Script:GetVariables().score))
    if not paused and clock >= pauseAt then
        paused = true
        game:Pause()
        print("Game paused")
        wait(2)
        game:Unpause()
        print("Game resumed")
    end
end
