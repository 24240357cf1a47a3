#pragma once

// A real window for tests: on the offscreen video driver unless the environment chose another, so no
// display is needed. Windowed, at the size given.

#include "Core/Window.h"

#include <filesystem>
#include <memory>

std::unique_ptr<Core::Window> OpenOffscreenWindow(int32_t width = 640, int32_t height = 480);

// Copies the repository's shaders and font into the folder, which a game then draws with.
void CopyDrawingData(const std::filesystem::path& folder);
