local function try(f, ...)
    local ok, message = pcall(f, ...)
    print(ok, (tostring(message):gsub("\n.*", "")))
end
local function names(...)
    local parts = {}
    for i = 1, select("#", ...) do parts[i] = select(i, ...).Name end
    return select("#", ...) .. ":" .. table.concat(parts, ",")
end

-- Forms.
print(names(Space:CreateObject("Archetypes/Rock.arch")), names(Space:CreateObject("Archetypes/Alias.arch")))
print(names(Space:CreateObject()), names(Space:CreateObject({})), names(Space:CreateObject("Archetypes/Nothing.arch")))
print(names(Space:CreateObject({ "Archetypes/Pair.arch", { "Archetypes/Rock.arch", { Name = "Deep" } } })))
local big = Space:CreateObject({ "Archetypes/Rock.arch", Override = { Name = "Boulder", Transform = { Position = { 9, 9 } } } })
print(big.Name, big.Transform:GetPosition())
print(names(Space:CreateObject({ "Archetypes/Pair.arch", Override = { Name = "Twin" } })))
print(names(Space:CreateObject({ "Archetypes/Rock.arch", Override = { Number = 5 } })))
print(select("#", Space:CreateObject({ {}, Override = {} })) )
print(names(Space:CreateObject({ "Archetypes/Rock.arch", "Archetypes/Rock.arch", Override = 5 })))
local scripted = Space:CreateObject({ Name = "Scripted", Script = { Variables = { speed = 3 }, Source = "Scripts/Reader.lua" } })
print(scripted.Script:GetVariables().speed, Space:CreateObject({ Sprite = "a.png", Unknown = "x" }):HasComponent("Sprite"))

-- Refusals.
try(Space.CreateObject, Space, { 5 })
try(Space.CreateObject, Space, { Name = "X", Number = 5 })
try(Space.CreateObject, Space, { { "Archetypes/Rock.arch" }, Override = 5 })
try(Space.CreateObject, Space, 5)
try(Space.CreateObject, Space, { Name = "Bad", Transform = { Position = "here" } })
try(Space.CreateObject, Space, { Name = "Bad", Script = 5 })
try(Space.CreateObject, Space, { Name = "Bad", Override = {} })
try(Space.CreateObject, Space, { Name = "Bad", Script = { Variables = { 1, 2 } } })
try(Space.CreateObject, Space, { [true] = "x" })
try(Space.CreateObject, Space, { Name = function() end })
try(Space.CreateObject, Space, "Archetypes/Missing.arch")
try(Space.CreateObject, Space, "Archetypes/Syntax.arch")
try(Space.CreateObject, Space, "Archetypes/Global.arch")
print(names(Space:CreateObject("Archetypes/Rawglobal.arch")), Allowed)
try(Space.CreateObject, Space, "Archetypes/Loop.arch")
try(Space.CreateObject, Space, "Archetypes/ListLoop.arch")
try(Space.CreateObject, Space, setmetatable({}, { __len = function() return 1.5 end }))
try(Space.CreateObject, Space, setmetatable({}, { __len = function() return 2 ^ 62 end, __index = function() return "Archetypes/Rock.arch" end }))
local deep = {}
for i = 1, 5000 do deep = { deep } end
try(Space.CreateObject, Space, deep)
local wide = {}
for i = 1, 1000000 do wide[i] = {} end
try(Space.CreateObject, Space, wide)
try(Space.CreateObject, Space, { Transform = { Position = wide } })
print(#Space:AllObjectsWithName("Bad"), #Space:AllObjectsWithName("X"))

-- Children: the last of the list comes first; a failing child leaves its parent.
local parent = Space:CreateObject({ Name = "Parent", Transform = { Position = { 1, 1 } },
    Children = { { Name = "First", Transform = { Position = { 1, 0 } } }, "Archetypes/Rock.arch" } })
local order = {}
for _, child in ipairs(parent:GetChildren()) do order[#order + 1] = child.Name end
print(table.concat(order, ","), parent.First.Transform:GetWorldPosition())
try(Space.CreateObject, Space, { Name = "Lone", Children = 5 })
local lone = Space:CreateObject({ Name = "Lone", Children = "Archetypes/Missing.arch" })
print(lone.Transform ~= nil, #lone:GetChildren())
try(Space.CreateObject, Space, "Archetypes/ChildLoop.arch")
Game.Quit()
