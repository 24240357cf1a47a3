-- The sun pulls a comet towards itself, harder the farther it is, so that comets stay in play however they
-- bounce. Each new contact with anything but the collector counts as a bounce in the director's tally, and
-- sounds a soft thump.
local body = GameObject.RigidBody
local audio = GameObject.Audio
local transform = GameObject.Transform
-- A contact is reported in every frame the two overlap: only one that wasn't there a frame ago is a bounce.
local frame, lastContact = 0, {}

GameObject.Collider:ConnectCollision(function(own, other)
    -- `Space` comes first so that the handler's first upvalue is its environment, as handlers need.
    local tally = Space.Director.Script:GetVariables()
    if other.Name ~= "Collector" then
        if (lastContact[other] or -2) < frame - 1 then
            tally.bounces = tally.bounces + 1
            audio:Play()
        end
        lastContact[other] = frame
    end
end)

while true do
    local dt = wait()
    frame = frame + 1
    local x, y = transform:GetPosition()
    local vx, vy = body:GetVelocity()
    body:SetVelocity(vx - x * pull * dt, vy - y * pull * dt)
end
