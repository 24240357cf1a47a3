-- Loads: nothing happens until the next frame; children load before parents; failures keep the name.
local child = Space:CreateChildSpace("Levels/Child.lvl")
print("child made", #child:AllObjects())
wait()
print("after one frame", #child:AllObjects(), child.Worker.Name)
child:LoadLevel("Levels/Syntax.lvl")
print("scheduled", #child:AllObjects())
wait()
print("syntax error keeps the old level", #child:AllObjects())
for _, level in ipairs({ "Levels/Raises.lvl", "Levels/String.lvl", "Levels/Waits.lvl" }) do
    child:LoadLevel("Levels/Good.lvl")
    wait()
    child:LoadLevel(level)
    wait()
    print(level, #child:AllObjects())
end
child:ReloadLevel()
wait()
print("reload tries the same file", #child:AllObjects())

-- Priority: a higher priority runs first, the change applies at the next frame.
child:LoadLevel("Levels/Good.lvl")
local other = Space:CreateChildSpace("Levels/Good.lvl")
other:SetPriority(2 ^ 32 + 5)
child:SetPriority(3)
print("priorities", other:GetPriority(), child:GetPriority())
wait()
print("director", Space:GetPriority())
wait()
other:Destroy()

-- Timescale and pause.
child:SetTimescale(0)
wait()
child:SetTimescale(1)
child:Pause()
print("paused", child:GetTimescale())
wait()
child:Unpause(false)
wait()
child:Pause(false)
wait()

-- Handles kept across the destruction of their Space.
local worker = child:CreateObject({ Name = "Kept", Transform = {} })
local transform = worker.Transform
child:Destroy()
print("destroy waits for the frame", child:GetPriority())
wait()
for _, use in ipairs({ function() return child:GetPriority() end, function() return child.Kept end,
                       function() return worker.Name end, function() return transform:GetPosition() end,
                       function() return worker:GetChildren() end }) do
    print(pcall(use))
end
print("children", #Space:GetChildSpaces())
Game.Quit()
print("quit lets the script go on")
