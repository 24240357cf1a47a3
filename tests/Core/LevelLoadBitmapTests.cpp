#include "Core/Game.h"
#include "FileSystem/AssetManager.h"
#include "Graphics/Bitmap.h"
#include "Support/ImageWriters.h"
#include "Support/LogCapture.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

namespace
{

// Ends the game after its first frame.
class OneFrame final : public Core::System
{
public:
    const char* Name() const override { return "OneFrame"; }
    bool Initialise(Core::Window*) override { return true; }
    void Update(Core::Game& game, Space&, double, double, double) override { game.running = false; }
    void RegisterScriptTypes(Lua::LuaSystem&) override {}
    void ObjectsDestroyed(Core::Game&, Space&) override {}
    void Shutdown() override {}
};

TEST(LevelLoadBitmaps, ALevelLoadSweepsExpiredEntriesAndKeepsLiveOnes)
{
    const TempFolder directory;
    const std::string expired = directory.Write("expired.bmp", MakeBmp(1, 1, {1, 2, 3}));
    const std::string live = directory.Write("live.bmp", MakeBmp(1, 1, {1, 2, 3}));
    FileSystem::LoadBitmap(expired);
    const std::shared_ptr<Graphics::Bitmap> kept = FileSystem::LoadBitmap(live);

    Core::Game game(nullptr, Core::GameSettings{});
    OneFrame system;
    game.AddSystem(system, nullptr);
    game.running = true;
    game.GameLoop();

    const LogCapture log;
    EXPECT_EQ(FileSystem::LoadBitmap(live), kept);
    FileSystem::LoadBitmap(expired);
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Info),
              std::vector<std::string>{"Loading bitmap \"" + expired + "\""});
}

} // namespace
