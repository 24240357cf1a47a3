#include "Debug/Exception.h"

#include "Debug/StackTrace.h"

namespace Debug
{

Exception::Exception(const std::string& message) : std::runtime_error(message), stackTrace(GetStackTrace())
{
}

std::string Exception::Text() const
{
    std::string text = "Exception: ";
    text.append(what()).append("\n").append(stackTrace);
    if (inner)
    {
        text.append("\nInner Exception: \n").append(inner->Text());
    }
    return text;
}

} // namespace Debug
