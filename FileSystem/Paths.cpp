#include "FileSystem/Paths.h"

#include "Debug/Logger.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace FileSystem
{
namespace
{

constexpr const char* kCategory = "FileSystem";

std::optional<std::string> SaveBase()
{
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome != nullptr && dataHome[0] == '/')
    {
        return std::string(dataHome);
    }
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] != '\0')
    {
        return std::string(home) + "/.local/share";
    }
    return std::nullopt;
}

// mkdir that counts an existing entry as success, as the folder may be there from an earlier run.
bool MakeFolder(const std::string& path)
{
    return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST;
}

// Makes the folder with all its missing parents, private to the user.
bool MakeFolderWithParents(const std::string& path)
{
    for (size_t separator = path.find('/', 1); separator != std::string::npos;
         separator = path.find('/', separator + 1))
    {
        if (!MakeFolder(path.substr(0, separator)))
        {
            return false;
        }
    }
    std::error_code error;
    return MakeFolder(path) && std::filesystem::is_directory(path, error);
}

} // namespace

void ChangeToDataFolder()
{
    if (chdir("Data") != 0)
    {
        Logger::Raise("AssetManager", "Failed to change working directory: (" + std::to_string(errno) + ")");
    }
}

std::string GetWorkingDirectory()
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::current_path(error);
    return error ? std::string() : path.string();
}

std::optional<std::string> BuildSavePath()
{
    const std::optional<std::string> base = SaveBase();
    if (!base || !MakeFolderWithParents(*base))
    {
        Logger::Log(kCategory, LogLevel::Warning, "Failed to get AppData save path");
        return std::nullopt;
    }
    std::string path = *base;
    for (const char* folder : {"/Velmora", "/Quellmar"})
    {
        path += folder;
        if (!MakeFolder(path))
        {
            Logger::Log(kCategory, LogLevel::Warning, "Failed to create save file directory");
            return std::nullopt;
        }
    }
    return path + "/Save.lua";
}

const std::string* GetSavePath()
{
    // Only the game thread asks, so the first build needs no lock beyond the static's own.
    static std::string savePath;
    if (savePath.empty())
    {
        savePath = BuildSavePath().value_or(std::string());
    }
    return savePath.empty() ? nullptr : &savePath;
}

} // namespace FileSystem
