local frame = 0
while true do
    frame = frame + 1
    print("late space updates in frame " .. frame)
    wait()
end
