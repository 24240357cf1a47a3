#pragma once

// A fresh directory under the system's temporary folder, removed with everything in it at the end.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

class TempDirectory
{
public:
    TempDirectory();
    ~TempDirectory();
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    // Writes the file and returns its full path as a string.
    std::string Write(const std::string& name, const std::vector<uint8_t>& bytes) const;
    std::string PathOf(const std::string& name) const { return (path / name).string(); }

private:
    std::filesystem::path path;
};
