local function try(f, ...)
    local ok, message = pcall(f, ...)
    print(ok, message)
end
local function fmt(...)
    local parts = {}
    for i = 1, select("#", ...) do
        local value = select(i, ...)
        parts[i] = math.type(value) == "float" and string.format("%.4f", value) or tostring(value)
    end
    return table.concat(parts, " ")
end

local sun, planet, moon = Space.Sun, Space.Sun.Planet, Space.Sun.Planet.Moon
-- Children come newest first; a child's name reads as a member.
local names = {}
for _, child in ipairs(sun:GetChildren()) do names[#names + 1] = child.Name end
print(table.concat(names, ","), planet.Parent == sun, moon.Parent == planet, sun.Parent)

-- World placement turns by the parent's world rotation; world rotation adds one level of parent only.
print(fmt(planet.Transform:GetWorldPosition()))
print(fmt(moon.Transform:GetWorldPosition()))
print(fmt(planet.Transform:GetWorldRotation()), fmt(moon.Transform:GetWorldRotation()))
moon.Transform:SetWorldPosition(0, 0)
print(fmt(moon.Transform:GetPosition()))
print(fmt(sun.Transform:GetPosition()))

-- Rotation keeps its sign within one turn; z is an integer given as a fourth value.
local t = Space.Loose:AddComponent("Transform")
t:SetRotation(7) print(fmt(t:GetRotation()))
t:SetRotation(-7) print(fmt(t:GetRotation()))
t:SetPosition(1, 2, 5) print(fmt(t:GetPosition()))
t:SetPosition(3, 4) print(fmt(t:GetPosition()), fmt(t:GetZ()))
try(t.SetPosition, t, 1, 2, nil)
try(t.SetZ, t, 1.5)
t:SetScale(2, 3) print(fmt(t:GetScale()), table.concat(t:GetAllMembers(), ","), t:GetOwner() == Space.Loose)

-- Parent rules.
try(t.SetParent, t, t)
try(sun.SetParent, sun, moon)
try(t.SetParent, t, 5)
local other = Space:CreateChildSpace():CreateObject({ Name = "Far", Transform = {} })
try(t.SetParent, t, other.Transform)
try(t.SetParent, t, other)
try(t.SetParent, t, Space.Runner)
local bare = Space:CreateObject({ Name = "Bare" })
try(bare.SetParent, bare, Space.Runner)
print(bare.Transform ~= nil)
t:SetParent(sun, true)
print(#sun:GetChildren(), sun:GetChildren()[1] == Space.Loose, t:GetParent() == sun.Transform)
Space.Loose:ClearParent()
print(#sun:GetChildren(), t:GetParent(), Space.Loose.Parent)
planet:SetParent(nil)
print(#sun:GetChildren(), fmt(planet.Transform:GetPosition()))
local stale = Space:CreateObject({ Name = "Stale", Transform = {} })
local staleTransform = stale.Transform
stale:Destroy()
wait()
try(t.SetParent, t, staleTransform)
try(staleTransform.GetPosition, staleTransform)
Game.Quit()
