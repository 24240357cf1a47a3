#pragma once

// The failures raised through the logger. A raise logs the exception's text at level Fatal before it
// throws, and nothing in the engine catches these but asset loading (FileSystemError), so a raise is seen
// even though it ends the process.

#include <memory>
#include <stdexcept>
#include <string>

namespace Debug
{

class Exception : public std::runtime_error
{
public:
    // Captures the stack trace of the constructing thread.
    explicit Exception(const std::string& message);

    const std::string& StackTrace() const { return stackTrace; }
    const Exception* Inner() const { return inner.get(); }
    void SetInner(const Exception& innerException) { inner = std::make_shared<Exception>(innerException); }

    // "Exception: " message, a line end, the stack trace; then the inner exception in the same form.
    std::string Text() const;

private:
    std::string stackTrace;
    std::shared_ptr<const Exception> inner;
};

} // namespace Debug

namespace FileSystem
{

// Never raised by itself: the class by which file failures are caught around asset loading.
class FileSystemError : public Debug::Exception
{
public:
    using Debug::Exception::Exception;
};

// Failures of the binary file reader.
class SerializerError : public FileSystemError
{
public:
    using FileSystemError::FileSystemError;
};

} // namespace FileSystem
