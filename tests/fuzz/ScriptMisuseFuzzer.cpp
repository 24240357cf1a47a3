// libFuzzer target: the input's bytes make the choices of the script misuse generator, over a fresh game for
// each input. Each run starts without a save file, so an input always replays the same way.

#include "Core/Game.h"
#include "Debug/Logger.h"
#include "FileSystem/Paths.h"
#include "Support/ScriptMisuse.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace
{

void RemoveUserFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(std::getenv("HOME"), ignored);
}

// Reads the choices from the input: one byte for a choice among at most 256, else two; 0 once it ran out.
class InputChoices
{
public:
    InputChoices(const uint8_t* bytes, size_t size) : data(bytes), remaining(size) {}

    uint32_t Choose(uint32_t count)
    {
        uint32_t value = Next();
        if (count > 256)
        {
            value |= Next() << 8;
        }
        return value % count;
    }
    bool Exhausted() const { return remaining == 0; }

private:
    uint32_t Next()
    {
        if (remaining == 0)
        {
            return 0;
        }
        --remaining;
        return *data++;
    }

    const uint8_t* data;
    size_t remaining;
};

} // namespace

// The game runs in a temporary folder that is its Data folder and the user's HOME, so the save goes there.
// The target changes into it: give libFuzzer absolute paths for its corpus and artifacts.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "quellmar-misuse-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr || chdir(pattern.c_str()) != 0)
    {
        std::perror("script_misuse_fuzzer: temporary folder");
        std::abort();
    }
    setenv("HOME", pattern.c_str(), 1);
    setenv("XDG_DATA_HOME", (pattern + "/data").c_str(), 1);
    // Each input makes a game: with no sound backend at all, its silent output opens in a tenth of a
    // millisecond, where OpenAL's null device takes milliseconds to close.
    setenv("ALSOFT_DRIVERS", "none", 1);
    std::atexit(RemoveUserFolder);
    Logger::Detach(StandardOutputSink);
    Logger::Detach(StandardErrorSink);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (const std::string* save = FileSystem::GetSavePath())
    {
        std::error_code ignored;
        std::filesystem::remove(*save, ignored);
    }
    InputChoices choices(data, size);
    Core::Game game(nullptr, Core::GameSettings{});
    game.StartSystems();
    {
        ScriptMisuse misuse(game, [&choices](uint32_t count) { return choices.Choose(count); });
        while (!choices.Exhausted())
        {
            const std::string problem = misuse.Step();
            if (!problem.empty())
            {
                std::fprintf(stderr, "script_misuse_fuzzer: %s\n", problem.c_str());
                std::abort();
            }
        }
    }
    game.LeaveLoop();
    return 0;
}
