-- Checks what the last run left, then saves a growing list every frame until the process is killed. The
-- items differ in length and content, so a save cut anywhere can't pass for a whole one.
local function Item(i)
    return string.rep(string.char(97 + i % 26), i % 200) .. "|" .. i
end

local data = os.SaveFile.data
local count = 0
local items = {}
if data == nil then
    print("loaded", "none")
else
    count = data.count
    items = data.items
    local intact = #items == count
    for i = 1, count do
        intact = intact and items[i] == Item(i)
    end
    print("loaded", count, intact)
end
print("saving")
while true do
    count = count + 1
    items[count] = Item(count)
    os.SaveFile.data = { count = count, items = items }
    wait()
end
