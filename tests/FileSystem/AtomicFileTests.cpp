#include "FileSystem/AtomicFile.h"
#include "Support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;

mode_t ModeOf(const fs::path& path)
{
    struct stat info = {};
    stat(path.c_str(), &info);
    return info.st_mode & 07777;
}

size_t EntriesIn(const fs::path& folder)
{
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(AtomicFile, NewFilesFollowTheUmaskAndReplacedFilesKeepTheirMode)
{
    TempFolder folder;
    const std::string path = (folder.Path() / "Save.lua").string();
    const mode_t previous = umask(027);
    EXPECT_TRUE(FileSystem::ReplaceFileContent(path, {"return ", "{}", "\n"}));
    umask(previous);
    EXPECT_EQ(ReadFile(path), "return {}\n");
    EXPECT_EQ(ModeOf(path), 0640u);

    chmod(path.c_str(), 0604);
    EXPECT_TRUE(FileSystem::ReplaceFileContent(path, {std::string(100000, 'x')}));
    EXPECT_EQ(ReadFile(path), std::string(100000, 'x'));
    EXPECT_EQ(ModeOf(path), 0604u);
    EXPECT_EQ(EntriesIn(folder.Path()), 1u);
}

TEST(AtomicFile, AFailureLeavesTheOldContentAndNoTemporaryFile)
{
    TempFolder folder;
    EXPECT_FALSE(FileSystem::ReplaceFileContent((folder.Path() / "missing/Save.lua").string(), {"x"}));
    folder.MakeFolder("Save.lua");
    EXPECT_FALSE(FileSystem::ReplaceFileContent((folder.Path() / "Save.lua").string(), {"x"}));
    EXPECT_TRUE(fs::is_directory(folder.Path() / "Save.lua"));
    EXPECT_EQ(EntriesIn(folder.Path()), 1u);
}

} // namespace
