#include "Debug/StackTrace.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <memory>
#include <new>

namespace Debug
{
namespace
{

constexpr int kMaxFrames = 100;
constexpr int kSkippedFrames = 1;
constexpr int kSpareFrames = 2;

struct FreeDeleter
{
    void operator()(char* text) const { std::free(text); }
};

// The demangled name of the function around the address, or where it lies when the symbol isn't exported.
std::string DescribeFrame(void* address)
{
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_sname == nullptr)
    {
        std::array<char, 64> raw{};
        std::snprintf(raw.data(), raw.size(), "%p", address);
        const char* module = info.dli_fname != nullptr ? info.dli_fname : "?";
        return std::string(module) + " (" + raw.data() + ")";
    }
    int status = 0;
    const std::unique_ptr<char, FreeDeleter> demangled(
        abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status));
    return status == 0 && demangled ? std::string(demangled.get()) : std::string(info.dli_sname);
}

// The frame after this function's own. A sanitizer's interceptor of backtrace can stand before it.
int FirstCallerFrame(const void* const* frames, int count)
{
    const void* self = reinterpret_cast<const void*>(&GetStackTrace);
    for (int index = 0; index < count; ++index)
    {
        Dl_info info{};
        if (dladdr(frames[index], &info) != 0 && info.dli_saddr == self)
        {
            return index + 1;
        }
    }
    return kSkippedFrames;
}

} // namespace

std::string GetStackTrace()
{
    try
    {
        std::array<void*, kMaxFrames + kSkippedFrames + kSpareFrames> frames{};
        const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
        std::string trace;
        const int first = FirstCallerFrame(frames.data(), count);
        for (int index = first; index < count && index < first + kMaxFrames; ++index)
        {
            trace.append("at: ").append(DescribeFrame(frames[static_cast<size_t>(index)])).append("\n");
        }
        return trace;
    }
    catch (const std::bad_alloc&)
    {
        return "<Failed to create stack trace: No memory>";
    }
}

} // namespace Debug
