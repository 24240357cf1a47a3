#include "FileSystem/AtomicFile.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace FileSystem
{
namespace
{

bool WriteAll(int descriptor, std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0)
        {
            if (errno == EINTR)
            {
                continue;
            }
            return false;
        }
        text.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

mode_t NewFileMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

std::string FolderOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
    {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Makes the rename itself durable.
void SyncFolder(const std::string& path)
{
    const int folder = open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0)
    {
        fsync(folder);
        close(folder);
    }
}

bool WriteTemporary(int descriptor, mode_t mode, std::initializer_list<std::string_view> pieces)
{
    if (fchmod(descriptor, mode) != 0)
    {
        return false;
    }
    for (const std::string_view piece : pieces)
    {
        if (!WriteAll(descriptor, piece))
        {
            return false;
        }
    }
    return fsync(descriptor) == 0;
}

} // namespace

bool ReplaceFileContent(const std::string& path, std::initializer_list<std::string_view> pieces)
{
    struct stat existing = {};
    const bool exists = stat(path.c_str(), &existing) == 0;
    if (exists && (!S_ISREG(existing.st_mode) || access(path.c_str(), W_OK) != 0))
    {
        return false;
    }
    std::string temporary = path + ".XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0)
    {
        return false;
    }
    const mode_t mode = exists ? (existing.st_mode & 07777) : NewFileMode();
    const bool written = WriteTemporary(descriptor, mode, pieces);
    const bool closed = close(descriptor) == 0;
    if (!written || !closed || rename(temporary.c_str(), path.c_str()) != 0)
    {
        unlink(temporary.c_str());
        return false;
    }
    SyncFolder(path);
    return true;
}

} // namespace FileSystem
