-- Listens to keys only: the close box ends the game.
local frame = 0
Input.ConnectKeyDown(function(key) print(frame, "KeyDown", key:byte()) end)
print("start")
while true do
    frame = frame + 1
    wait()
end
