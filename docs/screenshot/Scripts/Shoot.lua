-- Waits until a few comets are in play and the collector has left a trail, then takes the picture just
-- after its next catch, while the catch's burst is still spreading, and ends the game. A game without
-- another catch is photographed a few seconds on all the same, before it ends by itself.
local collector = Space.Collector.Script
wait(6)
local score, waited = collector:GetVariables().score, 0
while collector:GetVariables().score == score and waited < 8 do
    waited = waited + wait()
end
wait(0.45)
Graphics:Screenshot("screenshot.png")
wait()
Game.Quit()
