-- Counts the runs in the save file and keeps the best of a made-up score; the Watch script quits.
local runs = (os.SaveFile.runs or 0) + 1
print("runs before", os.SaveFile.runs, "best", os.SaveFile.best)
os.SaveFile.runs = runs
os.SaveFile.best = math.max(os.SaveFile.best or 0, runs * 10)
os.SaveFile.names = { "first", "second \"quoted\"\n" }
local ok, message = pcall(function() local t = {} t.t = t os.SaveFile.loop = t end)
print("cycle refused", not ok, os.SaveFile.loop)
