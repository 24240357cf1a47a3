-- Each bad call runs unprotected in a coroutine of its own: its error is logged and ends that coroutine
-- only, running out of memory included. NaN and infinities go into the bodies, which the engine then steps. A frame later the script
-- reports what still works and quits.
local body, collider = GameObject.RigidBody, GameObject.Collider
local doomed = Space:CreateObject({ Name = "Doomed", Transform = {}, RigidBody = {}, Collider = {} })
local staleBody, staleCollider = doomed.RigidBody, doomed.Collider
doomed:Destroy()

local calls = {
    function() body:SetMass("heavy") end,
    function() body.SetVelocity(collider, 1, 2) end,
    function() body.GetMass() end,
    function() body:SetIgnoreDrag(1) end,
    function() collider:SetType("Box") end,
    function() collider:ConnectCollision(function() return body end) end,
    function() collider:SetCollisionGroup(1.5) end,
    function() collider:SetRestitution({}) end,
    function() Physics:SetGravity(0, "down") end,
    function() Physics:Raycast(0, 0, "far") end,
    function() Physics.Raycast(1, 2, 3, 4) end,
    function() local t = {} t.t = t os.SaveFile.loop = t end,
    function() local t = {} for _ = 1, 300 do t = { t } end os.SaveFile.deep = t end,
    function() local t, n = {}, 0 while true do n = n + 1 t[n] = n end end,
    function() wait() staleBody:GetMass() end,
    function() wait() staleCollider:SetRadius(1) end,
}
for _, call in ipairs(calls) do
    Spawn(call)
end

body:SetVelocity(0 / 0, math.huge)
GameObject.Transform:SetScale(-math.huge, 0 / 0)
Space:FindFirstObject("Other").RigidBody:SetMass(0 / 0)
collider:SetRadius(math.huge)
Physics:SetDrag(-math.huge)
wait()
wait()
print("went on", Physics:GetDrag() == -math.huge, os.SaveFile.loop, os.SaveFile.deep, select("#", Physics:Raycast(-5, 0, 10, 0)))
Game.Quit()
