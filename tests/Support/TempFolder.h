#pragma once

// A fresh temporary folder for one test, removed with everything in it at the end of the scope. It can be
// made the working directory for the scope, and it can stand in for the user's HOME.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path; }
    // Makes an empty file, with its folders.
    void Touch(const std::filesystem::path& relative) const;
    void MakeFolder(const std::filesystem::path& relative) const;
    // Writes the file, with its folders, and returns its full path as a string.
    std::string Write(const std::string& name, const std::vector<uint8_t>& bytes) const;
    std::string PathOf(const std::string& name) const { return (path / name).string(); }

private:
    std::filesystem::path path;
};

// The whole content of a file, as bytes; empty if it can't be read.
std::string ReadFile(const std::filesystem::path& path);

// Changes the working directory for the scope and changes back at its end.
class ScopedWorkingDirectory
{
public:
    explicit ScopedWorkingDirectory(const std::filesystem::path& directory);
    ~ScopedWorkingDirectory();
    ScopedWorkingDirectory(const ScopedWorkingDirectory&) = delete;
    ScopedWorkingDirectory& operator=(const ScopedWorkingDirectory&) = delete;

private:
    std::filesystem::path previous;
};

// Sets or unsets an environment variable for the scope and restores it at its end.
class ScopedEnvironment
{
public:
    ScopedEnvironment(const char* variableName, const std::optional<std::string>& value);
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::string name;
    std::optional<std::string> previous;
};
