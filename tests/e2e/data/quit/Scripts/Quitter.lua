wait()
local doomed = Space.Doomed
doomed:Destroy()
print("quit asked", pcall(Game.Quit))
print("the caller goes on", doomed.Name)
