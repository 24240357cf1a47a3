#include "Support/TempDirectory.h"

#include <fstream>
#include <stdexcept>
#include <stdlib.h>

TempDirectory::TempDirectory()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "quellmar-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::runtime_error("mkdtemp failed");
    }
    path = pattern;
}

TempDirectory::~TempDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string TempDirectory::Write(const std::string& name, const std::vector<uint8_t>& bytes) const
{
    const std::filesystem::path file = path / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.string();
}
