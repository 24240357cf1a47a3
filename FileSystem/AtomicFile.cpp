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

// Writes, closes and renames the temporary file over the target. On failure errno is that of the call that
// failed: the close after a failed write must not replace it.
bool Commit(int descriptor, const std::string& temporary, const std::string& path, mode_t mode,
            std::initializer_list<std::string_view> pieces)
{
    if (!WriteTemporary(descriptor, mode, pieces))
    {
        const int failure = errno;
        close(descriptor);
        errno = failure;
        return false;
    }
    return close(descriptor) == 0 && rename(temporary.c_str(), path.c_str()) == 0;
}

} // namespace

bool ReplaceFileContent(const std::string& path, std::initializer_list<std::string_view> pieces)
{
    // The system would read the name only up to the NUL, and so write some other file.
    if (path.find('\0') != std::string::npos)
    {
        errno = EINVAL;
        return false;
    }
    // No file has an empty name; refused before a temporary file of the whole content is written for it.
    if (path.empty())
    {
        errno = ENOENT;
        return false;
    }
    struct stat existing = {};
    const bool exists = stat(path.c_str(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode))
    {
        // Renaming over a folder, a device or a pipe would replace the thing itself, not its content.
        errno = EISDIR;
        return false;
    }
    if (exists && access(path.c_str(), W_OK) != 0)
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
    if (!Commit(descriptor, temporary, path, mode, pieces))
    {
        const int failure = errno;
        unlink(temporary.c_str());
        errno = failure;
        return false;
    }
    SyncFolder(path);
    return true;
}

} // namespace FileSystem
