// A stand-in for the sprites that will ask for bitmaps: loads each argument through the asset cache, from
// the Data folder as the engine does, and prints what came back, one line per argument:
//   name: width x height "name the bitmap keeps"
// The bitmaps are held to the end, so a second spelling of a loaded name finds it alive.

#include "FileSystem/AssetManager.h"
#include "Graphics/Bitmap.h"

#include <cstdio>
#include <unistd.h>
#include <vector>

int main(int argc, char** argv)
{
    if (chdir("Data") != 0)
    {
        std::perror("Data");
        return 2;
    }
    std::vector<std::shared_ptr<Graphics::Bitmap>> held;
    for (int index = 1; index < argc; ++index)
    {
        held.push_back(FileSystem::LoadBitmap(argv[index]));
        std::printf("%s: %u x %u \"%s\"\n", argv[index], held.back()->width, held.back()->height,
                    held.back()->name.c_str());
        std::fflush(stdout);
    }
    return 0;
}
