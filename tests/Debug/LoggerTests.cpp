#include "Debug/Exception.h"
#include "Debug/Logger.h"
#include "Support/LogCapture.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

// Outside the anonymous namespace, so the executable exports its name for the trace to find.
std::string TraceFromNamedCaller();
__attribute__((noinline)) std::string TraceFromNamedCaller()
{
    return Debug::Exception("x").StackTrace();
}

namespace
{

std::vector<std::string> recordedOrder;

// "[" any time stamp "] [" category "] [" level "]: " message; the stamp's shape depends on the locale.
bool IsLogLine(const std::string& line, const std::string& category, const std::string& level,
               const std::string& message)
{
    const std::string tail = "] [" + category + "] [" + level + "]: " + message;
    return line.starts_with("[") && line.ends_with(tail) && line.find(']') == line.size() - tail.size();
}

void FirstSink(std::string_view, LogLevel, std::string_view)
{
    recordedOrder.push_back("first");
}

void SecondSink(std::string_view, LogLevel, std::string_view)
{
    recordedOrder.push_back("second");
}

// Lines read "[time] [category] [level]: message"; coloured ones wrap the line in the level's colour.
TEST(Logger, LinesHaveTimeCategoryLevelAndMessageAndColourWrapsThem)
{
    EXPECT_FALSE(IsLogLine(FormatLogLine("Space", LogLevel::Warning, "a"), "Space", "Error", "a"));
    EXPECT_STREQ(LogLevelName(static_cast<LogLevel>(3)), "Unknown");
    char* buffer = nullptr;
    size_t size = 0;
    std::FILE* file = open_memstream(&buffer, &size);
    WriteLogLine(file, true, "Cat", LogLevel::Error, "red");
    WriteLogLine(file, false, "Space", LogLevel::Fatal, "a [x]");
    std::fclose(file);
    const std::string text(buffer, size);
    std::free(buffer);
    const size_t end = text.find('\n');
    const std::vector<std::string> lines = {text.substr(0, end), text.substr(end + 1)};
    EXPECT_TRUE(lines[0].starts_with("\033[91m[")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with("] [Cat] [Error]: red\033[0m"));
    EXPECT_TRUE(IsLogLine(lines[1], "Space", "Fatal", "a [x]\n")) << text;
}

TEST(Logger, AnInvalidLevelGivesOneErrorLineAndReachesNoOtherSink)
{
    LogCapture capture;
    for (const int32_t level : {0, 3, -1, 24})
    {
        capture.Clear();
        Logger::Log("Physics", static_cast<LogLevel>(level), "body lost");
        ASSERT_EQ(capture.Entries().size(), 1u) << level;
        EXPECT_EQ(capture.Entries()[0].category, "Logger");
        EXPECT_EQ(capture.Entries()[0].level, LogLevel::Error);
        EXPECT_EQ(capture.Entries()[0].message,
                  "Security Level can not be more than 1 level. Message:[Physics]: [UNKNOWN]: body lost");
    }
}

TEST(Logger, SinksRunInAttachOrderAndAMaskWithoutLevelsChangesNothing)
{
    LogCapture capture;
    recordedOrder.clear();
    Logger::Attach(FirstSink, 2 | 8);
    Logger::Attach(SecondSink, 8);
    Logger::Attach(SecondSink, 0);
    Logger::Attach(SecondSink, 32);
    Logger::Log("Cat", LogLevel::Error, "x");
    Logger::Log("Cat", LogLevel::Info, "y");
    Logger::Log("Cat", LogLevel::Warning, "z");
    Logger::Detach(FirstSink);
    Logger::Detach(SecondSink);
    EXPECT_EQ(recordedOrder, (std::vector<std::string>{"first", "second", "first"}));
    EXPECT_EQ(capture.Messages("Logger", LogLevel::Warning),
              (std::vector<std::string>{"No valid level selected for attaching. No action taken.",
                                        "No valid level selected for attaching. No action taken."}));
}

// Destroyed while the raise unwinds: what it sees was logged before unwinding began.
struct UnwindWitness
{
    const LogCapture& capture;
    size_t& fatalLinesSeen;
    ~UnwindWitness() { fatalLinesSeen = capture.Count(LogLevel::Fatal); }
};

TEST(Logger, RaisesLogTheFatalTextBeforeTheyUnwind)
{
    LogCapture capture;
    size_t fatalLinesSeen = 0;
    bool caught = false;
    try
    {
        UnwindWitness witness{capture, fatalLinesSeen};
        Logger::Raise("Game", "Game is already running!");
    }
    catch (const Debug::Exception& exception)
    {
        EXPECT_STREQ(exception.what(), "Game is already running!");
        EXPECT_EQ(fatalLinesSeen, 1u);
        caught = true;
        const std::vector<std::string> fatal = capture.Messages("Game", LogLevel::Fatal);
        ASSERT_EQ(fatal.size(), 1u);
        EXPECT_EQ(fatal[0], exception.Text());
        EXPECT_TRUE(fatal[0].starts_with("Exception: Game is already running!\nat: ")) << fatal[0];
        EXPECT_EQ(fatal[0].find("Inner Exception"), std::string::npos);
    }
    EXPECT_TRUE(caught) << "Raise returned";
    // A serializer's raise is caught as a file system error.
    EXPECT_THROW(Logger::RaiseSerializerError("Serializer", "Unexpected end of file"),
                 FileSystem::FileSystemError);
    EXPECT_EQ(capture.Messages("Serializer", LogLevel::Fatal).size(), 1u);
}

TEST(Exception, TextNamesTheInnerExceptionOnlyWhenThereIsOne)
{
    Debug::Exception outer("outer");
    EXPECT_EQ(outer.Text(), "Exception: outer\n" + outer.StackTrace());
    outer.SetInner(Debug::Exception("inner"));
    const Debug::Exception copy = outer;
    ASSERT_NE(copy.Inner(), nullptr);
    EXPECT_EQ(copy.Text(), "Exception: outer\n" + outer.StackTrace() +
                               "\nInner Exception: \nException: inner\n" + copy.Inner()->StackTrace());
}

TEST(StackTrace, NamesTheCallingFunctionsInnermostFirst)
{
    const std::string trace = TraceFromNamedCaller();
    ASSERT_TRUE(trace.starts_with("at: ")) << trace;
    const size_t constructor = trace.find("Debug::Exception::Exception");
    const size_t test = trace.find("at: TraceFromNamedCaller[abi:cxx11]()");
    ASSERT_NE(constructor, std::string::npos) << trace;
    ASSERT_NE(test, std::string::npos) << trace;
    EXPECT_LT(constructor, test);
    EXPECT_EQ(trace.find("GetStackTrace"), std::string::npos) << trace;
}

} // namespace
