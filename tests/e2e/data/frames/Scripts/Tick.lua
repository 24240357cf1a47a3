local priority = Space:GetPriority()
while true do
    -- Only whether the Space's clock moved: frame times differ from run to run.
    local slept = wait()
    print("tick", priority, slept > 0)
end
