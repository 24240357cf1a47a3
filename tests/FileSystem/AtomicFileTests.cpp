#include "FileSystem/AtomicFile.h"
#include "Support/TempFolder.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
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

TEST(AtomicFile, AFailureLeavesTheTargetAndNoTemporaryFileAndErrnoTellingWhy)
{
    TempFolder folder;
    folder.MakeFolder("Save.lua");
    // Cut at the NUL, the name would be a valid template for the temporary file and a new file of its own.
    const std::string withNul = folder.PathOf("Save.XXXXXX") + std::string(1, '\0') + ".lua";
    const std::pair<std::string, int> cases[] = {
        {folder.PathOf("missing/Save.lua"), ENOENT}, {folder.PathOf("Save.lua"), EISDIR}, {withNul, EINVAL}};
    for (const auto& [path, error] : cases)
    {
        errno = 0;
        EXPECT_FALSE(FileSystem::ReplaceFileContent(path, {"x"}));
        EXPECT_EQ(errno, error) << path;
    }
    EXPECT_TRUE(fs::is_directory(folder.Path() / "Save.lua"));
    EXPECT_EQ(EntriesIn(folder.Path()), 1u);
}

TEST(AtomicFile, AWriteCutShortByTheFileSizeLimitGivesEfbig)
{
    TempFolder folder;
    rlimit previous = {};
    getrlimit(RLIMIT_FSIZE, &previous);
    rlimit lowered = previous;
    lowered.rlim_cur = 1000;
    // Ignored, the signal leaves the write to fail with EFBIG rather than end the process.
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &lowered);
    const bool replaced = FileSystem::ReplaceFileContent(folder.PathOf("Save.lua"), {std::string(5000, 'x')});
    const int error = errno;
    setrlimit(RLIMIT_FSIZE, &previous);
    signal(SIGXFSZ, handler);
    EXPECT_FALSE(replaced);
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(EntriesIn(folder.Path()), 0u);
}

} // namespace
