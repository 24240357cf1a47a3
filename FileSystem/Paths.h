#pragma once

// What the engine knows of the file system's layout: the game's content lies in `Data` below the start
// directory, which becomes the working directory for the rest of the run; save data lies in the user's
// data folder. Names are narrow strings, passed to the system as bytes.

#include <optional>
#include <string>

namespace FileSystem
{

// Changes the working directory to "Data"; raises with the system's error number if that fails.
void ChangeToDataFolder();

// The absolute working directory, or empty if it can't be read.
std::string GetWorkingDirectory();

// "<base>/Velmora/Quellmar/Save.lua", where base is $XDG_DATA_HOME if it is absolute, else
// $HOME/.local/share, making the folders as needed. Built once and kept; null (with a Warning) while it
// can't be built, and the next call tries again.
const std::string* GetSavePath();

// GetSavePath's work without the keeping.
std::optional<std::string> BuildSavePath();

} // namespace FileSystem
