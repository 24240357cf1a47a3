-- Prints every input event with the frame it came in; answers the close box by quitting a frame later.
local frame = 0
local function show(name)
    return function(...)
        print(frame, name, ...)
    end
end
Input.ConnectActivate(show("Activate"))
Input.ConnectMinimize(show("Minimize"))
Input.ConnectSizeChanged(show("SizeChanged"))
Input.ConnectMouseWheel(show("MouseWheel"))
Input.ConnectKeyDown(function(key)
    -- T and S switch fullscreen from the script, as F11 does from the keyboard.
    if key == "T" then
        Game.ToggleFullscreen()
    elseif key == "S" then
        Game:SetFullscreen(false)
    end
    print(frame, "KeyDown", key:byte(), Game.GetFullscreen())
end)
Input.ConnectKeyUp(function(key) print(frame, "KeyUp", key:byte()) end)
Input.ConnectChar(function(character) print(frame, "Char", character:byte()) end)
Input.ConnectMouseMove(function(_, _, x, y) print(frame, "MouseMove", x, y) end)
Input.ConnectMouseDown(function(_, _, button, x, y) print(frame, "MouseDown", button, x, y) end)
Input.ConnectMouseUp(function(_, _, button, x, y) print(frame, "MouseUp", button, x, y) end)
Input.ConnectFileDropped(function(path) print(frame, "FileDropped", path) end)
Input.ConnectClose(function()
    print(frame, "Close")
    wait()
    Game.Quit()
end)
-- The sign that a driver typing at the window waits for before its first key.
io.open("listening", "w"):close()
print("start")
while true do
    frame = frame + 1
    wait()
end
