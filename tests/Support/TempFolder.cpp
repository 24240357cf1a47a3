#include "Support/TempFolder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

TempFolder::TempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "quellmar-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::runtime_error("mkdtemp failed");
    }
    path = pattern;
}

TempFolder::~TempFolder()
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
}

void TempFolder::Touch(const std::filesystem::path& relative) const
{
    std::filesystem::create_directories((path / relative).parent_path());
    std::ofstream(path / relative).put('x');
}

void TempFolder::MakeFolder(const std::filesystem::path& relative) const
{
    std::filesystem::create_directories(path / relative);
}

std::string TempFolder::Write(const std::string& name, const std::vector<uint8_t>& bytes) const
{
    const std::filesystem::path file = path / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.string();
}

ScopedWorkingDirectory::ScopedWorkingDirectory(const std::filesystem::path& directory)
    : previous(std::filesystem::current_path())
{
    std::filesystem::current_path(directory);
}

ScopedWorkingDirectory::~ScopedWorkingDirectory()
{
    std::error_code error;
    std::filesystem::current_path(previous, error);
}

ScopedEnvironment::ScopedEnvironment(const char* variableName, const std::optional<std::string>& value)
    : name(variableName)
{
    if (const char* old = std::getenv(variableName))
    {
        previous = old;
    }
    if (value)
    {
        setenv(variableName, value->c_str(), 1);
    }
    else
    {
        unsetenv(variableName);
    }
}

ScopedEnvironment::~ScopedEnvironment()
{
    if (previous)
    {
        setenv(name.c_str(), previous->c_str(), 1);
    }
    else
    {
        unsetenv(name.c_str());
    }
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}
