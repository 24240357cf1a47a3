-- Writes its own sound files, plays them through components and the Audio table, and prints what it reads
-- back; the test compares the printed lines and the Audio errors across sound outputs.

-- A 16-bit PCM WAV of a square wave: frames per channel at 8 kHz.
local function wav(channels, frames)
    local data = string.rep(string.pack("<i2<i2", 6000, -6000), frames * channels // 2)
    return string.pack("<c4I4c4c4I4I2I2I4I4I2I2c4I4", "RIFF", 36 + #data, "WAVE", "fmt ", 16, 1, channels,
                       8000, 16000 * channels, 2 * channels, 16, "data", #data) .. data
end
local function write(name, bytes)
    local file = assert(io.open(name, "wb"))
    file:write(bytes)
    file:close()
end
write("Short.wav", wav(1, 800))
write("Loop.wav", wav(1, 4000))
write("Empty.wav", "")
write("Text.wav", "not a sound at all\n")
write("Cut.wav", wav(1, 800):sub(1, 30))
write("Six.wav", wav(6, 800))

local function component(name, audio)
    return MainSpace:CreateObject({ Name = name, Audio = audio }).Audio
end
local short = component("Short", { Source = "Short.wav" })
local loop = component("Loop", { Source = { "Loop.wav", true }, Volume = 0.5 })
print("members", table.concat(short:GetAllMembers(), ","), Game.Audio == Audio)
print("never played", short:GetPitch(), pcall(short.Stop, short), pcall(short.Pause, short))

-- Each logs its error, keeps its name, and then plays nothing.
for _, name in ipairs({ "Missing.wav", "Scripts", "Empty.wav", "Text.wav", "Cut.wav", "Six.wav" }) do
    local bad = component("Bad", { Source = name })
    bad:Play()
    print("bad", bad:GetSource(), bad:GetPitch())
end
-- Pitch from a level comes before any play: there is no channel to set yet.
local levelled = component("Levelled", { Source = "Loop.wav", Volume = 0.25, Pitch = 2 })
print("level", levelled:GetSource(), levelled:GetVolume(), levelled:GetPitch())

short:Play()
loop:Play(true, false, true)
loop:SetVolume(0.1)
print("volume", loop:GetVolume(), short:GetPitch(), loop:GetPitch())
loop:SetVolume(2)
loop:SetPitch(0.5)
print("out of range", loop:GetVolume(), loop:GetPitch())
loop:SetPitch(1e30)
print("huge pitch", loop:GetPitch())
loop:SetPitch(0 / 0)
loop:SetPitch(1e40)
loop:SetPitch(-1)
loop:SetPitch(1)
Audio:SetMusicVolume(1.5)
Audio:SetMusicVolume(0 / 0)
Audio:SetSFXVolume(0)
Audio:SetPause(true)
Audio:SetPitch(0 / 0)
for _, call in ipairs({
    function() Audio.SetMusicVolume(0.5) end,
    function() Audio:SetPause(1) end,
    function() short:Play(nil) end,
    function() short:Play(false, false, true, 1.5) end,
    function() short:SetSource() end,
    function() short:SetSource("Short.wav", nil) end,
    function() short:SetPitch("high") end,
}) do
    local _, message = pcall(call)
    print("refused", (message:gsub("^[^:]+:%d+: ", "")))
end

-- The script's pause lasts to this frame's audio update only: the one-shot ends, the loop never does.
local frames = 0
while short:GetPitch() ~= 0 do
    wait()
    frames = frames + 1
end
print("ended", frames > 0, loop:GetPitch())
loop:Stop()
print("stopped", loop:GetPitch())
Game.Quit()
