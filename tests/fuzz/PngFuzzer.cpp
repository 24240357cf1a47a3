// libFuzzer target: any bytes through the PNG decoder. Seeds: the PNG suite.

#include "FileSystem/PngDecoder.h"
#include "Support/FuzzBitmap.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    SilenceStandardSinks();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    DecodeFuzzInput(data, size, FileSystem::DecodePng);
    return 0;
}
