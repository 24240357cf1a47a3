#include "Support/OffscreenWindow.h"

#include <cstdlib>

std::unique_ptr<Core::Window> OpenOffscreenWindow(int32_t width, int32_t height)
{
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    return std::make_unique<Core::Window>(width, height, false);
}

void CopyDrawingData(const std::filesystem::path& folder)
{
    for (const char* shipped : {"Shaders", "Fonts"})
    {
        std::filesystem::copy(std::filesystem::path(QUELLMAR_SHIPPED_DATA) / shipped, folder / shipped,
                              std::filesystem::copy_options::recursive);
    }
}
