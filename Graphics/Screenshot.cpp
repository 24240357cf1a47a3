// Screenshots: every name asked for in a frame gets a PNG of that frame's back buffer, read once after the
// last drawing and before the swap, top row first and fully opaque.

#include "Debug/Logger.h"
#include "FileSystem/PngWriter.h"
#include "Graphics/GLContext.h"
#include "Graphics/GraphicsSystem.h"

#include <SDL.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <epoxy/gl.h>

namespace Graphics
{
namespace
{

// GL reads rows bottom first; a PNG stores them top first.
void FlipRowsAndMakeOpaque(std::vector<uint8_t>& pixels, size_t width, size_t height)
{
    const size_t rowBytes = width * 4;
    for (size_t row = 0; row < height / 2; ++row)
    {
        std::swap_ranges(pixels.begin() + static_cast<ptrdiff_t>(row * rowBytes),
                         pixels.begin() + static_cast<ptrdiff_t>((row + 1) * rowBytes),
                         pixels.begin() + static_cast<ptrdiff_t>((height - 1 - row) * rowBytes));
    }
    for (size_t alpha = 3; alpha < pixels.size(); alpha += 4)
    {
        pixels[alpha] = 255;
    }
}

// A name with a NUL fails; its message shows the name up to the NUL.
void LogFailure(const std::string& fileName, int error)
{
    Logger::Log("Graphics", LogLevel::Error,
                "Failed to save screenshot \"" + std::string(fileName.c_str()) +
                    "\": " + std::strerror(error));
}

} // namespace

void GraphicsSystem::RequestScreenshot(std::string fileName)
{
    pendingScreenshots.push_back(std::move(fileName));
}

void GraphicsSystem::WriteScreenshots()
{
    if (pendingScreenshots.empty())
    {
        return;
    }
    int width = 0;
    int height = 0;
    SDL_GL_GetDrawableSize(deviceContext, &width, &height);
    if (width <= 0 || height <= 0)
    {
        // A window without pixels, as a minimised one may be, has no picture to save.
        for (const std::string& fileName : pendingScreenshots)
        {
            LogFailure(fileName, EINVAL);
        }
        pendingScreenshots.clear();
        return;
    }
    screenshotPixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, screenshotPixels.data());
    CheckGLError(__FILE__, __LINE__);
    FlipRowsAndMakeOpaque(screenshotPixels, static_cast<size_t>(width), static_cast<size_t>(height));
    for (const std::string& fileName : pendingScreenshots)
    {
        if (FileSystem::WritePngFile(fileName, static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                                     screenshotPixels.data()))
        {
            Logger::Log("Graphics", LogLevel::Info, "Saved screenshot \"" + fileName + "\"");
        }
        else
        {
            LogFailure(fileName, errno);
        }
    }
    pendingScreenshots.clear();
}

} // namespace Graphics
