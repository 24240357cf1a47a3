#include "FileSystem/Paths.h"
#include "Support/LogCapture.h"
#include "Support/RaiseCheck.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;

// The exact texts of the two start failures are checked end to end, where the process ends on them.
TEST(Paths, TheDataFolderBecomesTheWorkingDirectory)
{
    TempFolder folder;
    ScopedWorkingDirectory start(folder.Path());
    ExpectRaise([] { FileSystem::ChangeToDataFolder(); }, "AssetManager",
                "Failed to change working directory: (2)");
    folder.MakeFolder("Data");
    FileSystem::ChangeToDataFolder();
    EXPECT_TRUE(fs::equivalent(FileSystem::GetWorkingDirectory(), folder.Path() / "Data"));
    EXPECT_TRUE(fs::path(FileSystem::GetWorkingDirectory()).is_absolute());
}

class SavePath : public testing::Test
{
protected:
    TempFolder home;
    ScopedEnvironment homeVariable{"HOME", home.Path().string()};
    ScopedEnvironment dataHome{"XDG_DATA_HOME", std::nullopt};
};

TEST_F(SavePath, FoldersAreMadeUnderTheUsersDataFolderOnceAndSilentlyAndThePathIsKept)
{
    LogCapture capture;
    const fs::path base = home.Path() / ".local/share";
    EXPECT_EQ(FileSystem::BuildSavePath(), (base / "Velmora/Quellmar/Save.lua").string());
    EXPECT_TRUE(fs::is_directory(base / "Velmora/Quellmar"));
    struct stat info = {};
    ASSERT_EQ(stat((home.Path() / ".local").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u) << "missing parents are made private";

    EXPECT_EQ(FileSystem::BuildSavePath(), (base / "Velmora/Quellmar/Save.lua").string());
    EXPECT_TRUE(capture.Entries().empty());

    const ScopedEnvironment absolute("XDG_DATA_HOME", (home.Path() / "xdg").string());
    EXPECT_EQ(FileSystem::BuildSavePath(), (home.Path() / "xdg/Velmora/Quellmar/Save.lua").string());
    const ScopedEnvironment relative("XDG_DATA_HOME", "relative/xdg");
    EXPECT_EQ(FileSystem::BuildSavePath(), (base / "Velmora/Quellmar/Save.lua").string());

    const std::string* kept = FileSystem::GetSavePath();
    ASSERT_NE(kept, nullptr);
    const std::string keptPath = *kept;
    const ScopedEnvironment moved("HOME", (home.Path() / "elsewhere").string());
    EXPECT_EQ(FileSystem::GetSavePath(), kept);
    EXPECT_EQ(*kept, keptPath);
}

TEST_F(SavePath, FailuresWarnReturnNothingAndTheNextCallTriesAgain)
{
    home.Touch(".local/share/Velmora");
    LogCapture capture;
    EXPECT_EQ(FileSystem::BuildSavePath(), std::nullopt);
    EXPECT_EQ(capture.Messages("FileSystem", LogLevel::Warning),
              std::vector<std::string>{"Failed to create save file directory"});
    fs::remove(home.Path() / ".local/share/Velmora");
    EXPECT_NE(FileSystem::BuildSavePath(), std::nullopt);

    capture.Clear();
    home.Touch("file");
    const ScopedEnvironment blocked("XDG_DATA_HOME", (home.Path() / "file/below").string());
    EXPECT_EQ(FileSystem::BuildSavePath(), std::nullopt);
    const ScopedEnvironment noHome("HOME", std::nullopt);
    const ScopedEnvironment noData("XDG_DATA_HOME", std::nullopt);
    EXPECT_EQ(FileSystem::BuildSavePath(), std::nullopt);
    EXPECT_EQ(
        capture.Messages("FileSystem", LogLevel::Warning),
        (std::vector<std::string>{"Failed to get AppData save path", "Failed to get AppData save path"}));
}

} // namespace
