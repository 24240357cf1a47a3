// libFuzzer target: any bytes through the BMP decoder. Seeds: the small BMPs in seeds/bmp.

#include "FileSystem/BmpDecoder.h"
#include "Support/FuzzBitmap.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    SilenceStandardSinks();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    DecodeFuzzInput(data, size, FileSystem::DecodeBmp);
    return 0;
}
