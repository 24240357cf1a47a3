#include "Core/Process.h"

#include "Debug/Exception.h"
#include "Debug/Logger.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace Core
{
namespace
{

std::atomic<bool> quitSignalled = false;
static_assert(std::atomic<bool>::is_always_lock_free, "the signal handler needs a lock-free flag");

void OnQuitSignal(int signalNumber)
{
    if (quitSignalled.exchange(true))
    {
        std::_Exit(128 + signalNumber);
    }
}

// A raise has already logged its Fatal line; anything else that escaped is named here before the end.
[[noreturn]] void OnTerminate()
{
    if (const std::exception_ptr escaped = std::current_exception())
    {
        try
        {
            std::rethrow_exception(escaped);
        }
        catch (const Debug::Exception&)
        {
        }
        catch (const std::exception& exception)
        {
            Logger::Log("Game", LogLevel::Fatal, std::string("Unhandled exception: ") + exception.what());
        }
        catch (...)
        {
            Logger::Log("Game", LogLevel::Fatal, "Unhandled exception of unknown type");
        }
    }
    std::fflush(stdout);
    std::fflush(stderr);
    std::_Exit(kRaiseExitCode);
}

} // namespace

void InstallProcessHandlers()
{
    struct sigaction quit = {};
    quit.sa_handler = OnQuitSignal;
    sigemptyset(&quit.sa_mask);
    sigaction(SIGINT, &quit, nullptr);
    sigaction(SIGTERM, &quit, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    std::set_terminate(OnTerminate);
}

bool QuitSignalled()
{
    return quitSignalled.load();
}

} // namespace Core
