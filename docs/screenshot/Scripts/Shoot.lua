-- Waits until a few comets are in play, takes the picture and ends the game.
wait(7)
Graphics:Screenshot("screenshot.png")
wait()
Game.Quit()
