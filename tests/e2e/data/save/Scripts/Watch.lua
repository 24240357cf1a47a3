-- Casts rays, then reports the first contact as its handler sees it, a frame later, and quits.
local hits = { Physics:Raycast(-5, 0, 10, 0) }
print("ray", #hits, hits[1].Object.Name, hits[2].Object.Name, hits[1].Distance < hits[2].Distance)
print("group", select("#", Physics:Raycast(-5, 0, 10, 0, 0)), select("#", Physics:Raycast(-5, 0, 1, 0)))

GameObject.Collider:ConnectCollision(function(own, other, x, y)
    -- The handler runs after the frame's impulses: the bodies already move apart.
    local leftVelocity = own.RigidBody:GetVelocity()
    local rightVelocity = other.RigidBody:GetVelocity()
    print("hit", own.Name, other.Name, math.abs(x) < 0.1, y, leftVelocity < 0, rightVelocity > leftVelocity)
    Game.Quit()
end)
