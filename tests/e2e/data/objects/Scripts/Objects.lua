local function try(f, ...)
    local ok, message = pcall(f, ...)
    print(ok, message)
end

-- Space indexing: functions first, then objects by name, else an error.
print(type(Space.FindFirstObject), Space.__name, Space.Box.Name, Space:FindFirstObject("Nothing"))
print(select("#", Space:FindFirstObject("Nothing")), #Space:AllObjectsWithName("Box"), #Space:GetAllObjects())
try(function() return Space.Nothing end)
try(function() return Space[{}] end)
try(function() Space.Box = 1 end)
try(MainSpace.Destroy, MainSpace)
try(Space.Pause, Space, nil)
try(Space.SetPriority, Space, "high")
print(Space:GetParentSpace(), #Space:GetChildSpaces(), Game.MainSpace == MainSpace, Game.GetFullscreen())

-- GameObject indexing and assignment.
local box = Space.Box
print(tostring(box), box.Transform ~= nil, box.Parent, Space.Runner.Transform, box.Destroy ~= nil)
try(function() return box.Foo end)
try(function() box.Foo = 1 end)
try(function() box.Name = {} end)
box.Name = 5
print(box.Name, Space:FindFirstObject("5") == box)
box.Name = "Box"

-- Components by name.
local runner = Space.Runner
print(runner:HasComponent("Script"), runner:HasComponent("Sprite"), runner:GetComponent("Square"))
try(runner.HasComponent, runner, "Spirte")
try(runner.GetComponent, runner, 7)
try(runner.AddComponent, runner, "Script")
try(runner.RemoveComponent, runner, "Sprite")
try(runner.AddComponent, runner, "Nothing")
local sprite = runner:AddComponent("Sprite")
print(runner:HasComponent("Sprite"), runner.Sprite ~= nil)
runner:RemoveComponent("Sprite")
print(runner:HasComponent("Sprite"), runner.Sprite)
local names = {}
for name in pairs(runner:GetAllComponents()) do names[#names + 1] = name end
table.sort(names)
print(table.concat(names, ","), next(Space:CreateObject({ Name = "Bare" }):GetAllComponents()))

-- Handle equality: one userdata per object, a new one per component push that still compares equal.
print(box == Space:FindFirstObject("Box"), box.Transform == box.Transform, rawequal(box.Transform, box.Transform))
try(function() return box.Transform == box end)

-- Marked objects vanish from queries, their handles still work until the frame ends.
local doomed = Space:CreateObject({ Name = "Doomed" })
doomed:Destroy()
print(Space:FindFirstObject("Doomed"), #Space:AllObjectsWithName("Doomed"), doomed.Name)
try(function() return Space.Doomed end)
wait()
try(function() return doomed.Name end)
print(type(doomed.GetChildren))
try(doomed.GetChildren, doomed)

-- Deleting an object moves the last one into its place.
local space = Space:CreateChildSpace()
for _, name in ipairs({ "A", "B", "C", "D" }) do space:CreateObject({ Name = name }) end
space.B:Destroy()
wait()
local order = {}
for _, object in ipairs(space:AllObjects()) do order[#order + 1] = object.Name end
print(table.concat(order, ","), #Space:GetChildSpaces(), Space:GetChildSpaces()[1] == space)

-- Listing files, sorted byte-wise.
print(table.concat(GetFilesInDirectory("Listing/*"), ","))
print(table.concat(GetFilesInDirectory("Listing/*", false), ","))
Game.Quit()
