-- Puts the photographer into the game's own Space, once the game is loaded there, and goes with its Space.
-- A Space of its own would show the game as it never looks: every Space ages the particle bursts once
-- more each frame and draws them once more, with whatever bitmap it drew last.
local game = Space:GetParentSpace()
while not game.Collector do
    wait()
end
game:CreateObject({ Name = "Camera", Script = "Scripts/Shoot.lua" })
Space:Destroy()
