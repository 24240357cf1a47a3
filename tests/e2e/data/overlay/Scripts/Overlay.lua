Game:SetDebugDraw(true)
for _ = 1, 4 do
    wait()
end
Graphics:Screenshot("overlay.png")
wait()
Game.Quit()
