-- The first level's white bitmap left the card with it; a sprite that shows it again uploads it again.
wait()
Space:CreateObject({ Name = "White", Transform = { Scale = { 4, 4 } },
                     Sprite = { Frames = "Bitmaps/white.png", Colour = { 1, 0.5, 0 } } })
wait()
wait()
Graphics:Screenshot("second.png")
wait()
Game.Quit()
