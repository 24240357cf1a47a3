print("worker starts", Space:GetPriority())
while true do
    print("worker", Space:GetPriority())
    wait()
end
