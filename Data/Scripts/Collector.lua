-- Flies to the nearest comet and takes it; score is a variable that the score board reads.
local transform = GameObject.Transform
-- The score lives in the script's variables, where the score board can read it.
local variables = Script:GetVariables()
local function nearest()
    local x, y = transform:GetPosition()
    local best, bestDistance
    for _, object in ipairs(Space:AllObjectsWithName("Comet")) do
        local cx, cy = object.Transform:GetPosition()
        local distance = math.sqrt((cx - x) ^ 2 + (cy - y) ^ 2)
        if not bestDistance or distance < bestDistance then
            best, bestDistance = object, distance
        end
    end
    return best, bestDistance
end

while true do
    local dt = wait()
    local comet, distance = nearest()
    if comet and distance < 0.3 then
        comet:Destroy()
        variables.score = variables.score + 1
        print(string.format("Collector caught a comet: score %d", variables.score))
    elseif comet then
        local x, y = transform:GetPosition()
        local cx, cy = comet.Transform:GetPosition()
        local step = math.min(speed * dt, distance)
        transform:SetPosition(x + (cx - x) / distance * step, y + (cy - y) / distance * step)
    end
end
