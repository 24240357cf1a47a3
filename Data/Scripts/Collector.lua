-- Looks around with a fan of rays for the nearest comet in sight, flies to it, and catches every comet it
-- touches, with a chime for each. The score is a variable that the score board reads.
local transform = GameObject.Transform
local audio = GameObject.Audio
local body = GameObject.RigidBody
local rays = 32

-- A ray reports every collider along it, nearest first: only a comet in front of everything else is seen,
-- so the sun and the planet hide what lies behind them. `group` leaves the collector's own collider out.
local function look()
    local x, y = transform:GetPosition()
    local seen
    for i = 1, rays do
        local angle = i * 2 * math.pi / rays
        local hit = Physics:Raycast(x, y, sight * math.cos(angle), sight * math.sin(angle), group)
        if hit and hit.Object.Name == "Comet" and (not seen or hit.Distance < seen.Distance) then
            seen = hit
        end
    end
    return seen
end

GameObject.Collider:ConnectCollision(function(own, other)
    -- `Script` is named first so that the handler's first upvalue is its environment, as connecting needs.
    local variables = Script:GetVariables()
    if other.Name == "Comet" then
        -- A glowing puff and a ring of sparks where the comet was, read before the comet goes. Bursts take
        -- their colours from the engine, red turning to orange and gold as they fade; only alpha is ours.
        local x, y = other.Transform:GetPosition()
        Graphics:SpawnParticles(x, y, 0.2, 60, 0, 0.4, 0.4, 1, 1, 0.5, 0.2, 0.45)
        Graphics:SpawnParticles(x, y, 0.18, 28, 0.55, 0.65, 0.4, 1, 1, 0.5, 0.2, 1)
        other:Destroy()
        variables.score = variables.score + 1
        audio:Play()
        print(string.format("Collector caught a comet: score %d", variables.score))
    end
end)

local spotted = false
while true do
    local dt = wait()
    local comet = look()
    if comet then
        if not spotted then
            spotted = true
            print(string.format("Collector spots a comet %.1f away", comet.Distance))
        end
        local x, y = transform:GetPosition()
        local cx, cy = comet.Object.Transform:GetPosition()
        local distance = math.max(math.sqrt((cx - x) ^ 2 + (cy - y) ^ 2), 1e-6)
        body:SetVelocity((cx - x) / distance * speed, (cy - y) / distance * speed)
    else
        -- Nothing in sight: coast to a halt and keep looking.
        local vx, vy = body:GetVelocity()
        body:SetVelocity(vx * math.max(0, 1 - 2 * dt), vy * math.max(0, 1 - 2 * dt))
    end
end
