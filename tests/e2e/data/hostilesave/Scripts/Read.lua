-- Reports whether the save gave any data, then saves over it and quits.
print("empty", next(getmetatable(os.SaveFile).__index) == nil)
os.SaveFile.after = 1
Game.Quit()
