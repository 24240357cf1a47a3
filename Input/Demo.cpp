// Demo files are read back with the rules of the C library's scanners (leading blanks, one sign, decimal
// digits), but every number saturates instead of overflowing and no read goes past the line's end, so a
// damaged or hostile file only ever turns into odd events. Invariants:
//   - a frame's events are stored only once the next frame line has been read;
//   - every path that LoadDemo allocates is owned by exactly one record, or freed before it returns.

#include "Input/Demo.h"

#include "Debug/Logger.h"

#include <charconv>
#include <cstdint>
#include <iomanip>
#include <istream>
#include <limits>
#include <ostream>
#include <string>

namespace Input
{
namespace
{

bool IsBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

// The sign and the size of a decimal number; saturated when it has more digits than 64 bits hold.
struct Digits
{
    bool negative = false;
    uint64_t magnitude = 0;
    bool saturated = false;
};

// Walks over one line; every read stops at its end.
class LineScanner
{
public:
    explicit LineScanner(std::string_view line) : text(line) {}

    bool Take(char expected)
    {
        if (position < text.size() && text[position] == expected)
        {
            ++position;
            return true;
        }
        return false;
    }

    bool TakeWord(std::string_view word)
    {
        if (text.substr(position).starts_with(word))
        {
            position += word.size();
            return true;
        }
        return false;
    }

    void SkipBlanks()
    {
        while (position < text.size() && IsBlank(text[position]))
        {
            ++position;
        }
    }

    // Like "%d": false, with the value untouched, when no digit follows; clamped to the range of int32_t.
    bool ReadInt(int32_t& value)
    {
        Digits digits;
        if (!ReadDigits(digits))
        {
            return false;
        }
        constexpr uint64_t kLimit = uint64_t{1} << 31;
        if (digits.negative)
        {
            value = digits.magnitude >= kLimit ? std::numeric_limits<int32_t>::min()
                                               : -static_cast<int32_t>(digits.magnitude);
        }
        else
        {
            value = digits.magnitude >= kLimit ? std::numeric_limits<int32_t>::max()
                                               : static_cast<int32_t>(digits.magnitude);
        }
        return true;
    }

    // Like "%llu" and strtoull: a minus sign negates modulo 2^64, too many digits give the largest value.
    bool ReadFrameNumber(uint64_t& value)
    {
        Digits digits;
        if (!ReadDigits(digits))
        {
            return false;
        }
        if (digits.saturated)
        {
            value = std::numeric_limits<uint64_t>::max();
        }
        else
        {
            value = digits.negative ? uint64_t{0} - digits.magnitude : digits.magnitude;
        }
        return true;
    }

    // Like "%lf" with the value thrown away, but independent of the locale. Hexadecimal floats are not
    // read: no writer of demos produces them.
    bool SkipReal()
    {
        SkipBlanks();
        if (Take('+') && position < text.size() && text[position] == '-')
        {
            return false;
        }
        const char* first = text.data() + position;
        double ignored = 0.0;
        const auto result = std::from_chars(first, text.data() + text.size(), ignored);
        if (result.ec == std::errc::invalid_argument)
        {
            return false;
        }
        position += static_cast<size_t>(result.ptr - first);
        return true;
    }

private:
    bool ReadDigits(Digits& digits)
    {
        SkipBlanks();
        if (!Take('+'))
        {
            digits.negative = Take('-');
        }
        if (position == text.size() || !IsDigit(text[position]))
        {
            return false;
        }
        constexpr uint64_t kMax = std::numeric_limits<uint64_t>::max();
        for (; position < text.size() && IsDigit(text[position]); ++position)
        {
            const auto digit = static_cast<uint64_t>(text[position] - '0');
            digits.saturated = digits.saturated || digits.magnitude > (kMax - digit) / 10;
            digits.magnitude = digits.saturated ? kMax : digits.magnitude * 10 + digit;
        }
        return true;
    }

    std::string_view text;
    size_t position = 0;
};

// "<%lf> Frame %llu", where each blank of the pattern matches any run of blanks, none included.
bool ReadFrameLine(std::string_view line, uint64_t& frame)
{
    LineScanner scanner(line);
    if (!scanner.Take('<') || !scanner.SkipReal() || !scanner.Take('>'))
    {
        return false;
    }
    scanner.SkipBlanks();
    return scanner.TakeWord("Frame") && scanner.ReadFrameNumber(frame);
}

// The kind is the number from the line's second character on; no number at all reads as 0, "Quit".
int32_t ReadKind(std::string_view line)
{
    int32_t kind = 0;
    LineScanner(line.substr(line.empty() ? 0 : 1)).ReadInt(kind);
    return kind;
}

// Where the payload starts: behind the first "(", or at the end of a line that has none.
size_t PayloadStart(std::string_view line)
{
    const size_t parenthesis = line.find('(');
    return parenthesis == std::string_view::npos ? line.size() : parenthesis + 1;
}

bool ReadBoolean(std::string_view payload)
{
    return payload.empty() || payload.front() != 'f';
}

int32_t ReadCode(std::string_view payload)
{
    int32_t code = 0;
    LineScanner(payload).ReadInt(code);
    return code;
}

// "%d, %d": what doesn't match stays 0.
void ReadPair(std::string_view payload, InputEvent& event)
{
    LineScanner scanner(payload);
    event.values = {0, 0, 0};
    if (scanner.ReadInt(event.values.x) && scanner.Take(','))
    {
        scanner.ReadInt(event.values.y);
    }
}

// "%d: %d, %d", the button first.
void ReadButton(std::string_view payload, InputEvent& event)
{
    LineScanner scanner(payload);
    event.values = {0, 0, 0};
    if (scanner.ReadInt(event.values.button) && scanner.Take(':') && scanner.ReadInt(event.values.x) &&
        scanner.Take(','))
    {
        scanner.ReadInt(event.values.y);
    }
}

// The path runs to the line's last character, which the writer made the closing parenthesis, so a path
// keeps any parentheses of its own. An empty one was written for a drop that named no file.
char* ReadPath(std::string_view line, size_t payloadStart)
{
    if (payloadStart + 1 >= line.size())
    {
        return nullptr;
    }
    return CopyPath(line.data() + payloadStart, line.size() - 1 - payloadStart);
}

void FreePaths(std::vector<InputEvent>& events)
{
    for (InputEvent& event : events)
    {
        FreePath(event);
    }
}

void WritePayload(std::ostream& demo, const InputEvent& event)
{
    switch (event.type)
    {
    case EventKind::Activate:
    case EventKind::MouseWheel:
        demo << event.state;
        break;
    case EventKind::SizeChanged:
    case EventKind::MouseMove:
        demo << event.values.x << ", " << event.values.y;
        break;
    case EventKind::KeyDown:
    case EventKind::KeyUp:
        demo << event.values.x;
        break;
    case EventKind::Char:
        demo << static_cast<uint32_t>(event.values.x);
        break;
    case EventKind::MouseDown:
    case EventKind::MouseUp:
        demo << event.values.button << ": " << event.values.x << ", " << event.values.y;
        break;
    case EventKind::FileDropped:
        if (event.drop.path != nullptr)
        {
            demo << event.drop.path;
        }
        break;
    case EventKind::Quit:
    case EventKind::Minimize:
    case EventKind::Close:
    case EventKind::None:
        break;
    }
}

} // namespace

void WriteFrameLine(std::ostream& demo, double seconds, uint64_t frame)
{
    demo << '<' << seconds << "> Frame " << frame << '\n';
}

void WriteEvent(std::ostream& demo, const InputEvent& event)
{
    const char* name = EventName(event.type);
    demo << std::boolalpha << std::fixed << std::setprecision(3);
    demo << '[' << static_cast<int32_t>(event.type) << "] " << (name != nullptr ? name : "") << " (";
    WritePayload(demo, event);
    demo << ")\n";
}

InputEvent ParseEvent(std::string_view line)
{
    InputEvent event;
    const int32_t kind = ReadKind(line);
    if (kind < 0 || kind > static_cast<int32_t>(EventKind::None))
    {
        Logger::Log("Input", LogLevel::Warning, "Ignoring unknown event: " + std::string(line));
        return event;
    }
    event.type = static_cast<EventKind>(kind);
    const size_t payloadStart = PayloadStart(line);
    const std::string_view payload = line.substr(payloadStart);
    switch (event.type)
    {
    case EventKind::Activate:
    case EventKind::MouseWheel:
        event.state = ReadBoolean(payload);
        break;
    case EventKind::SizeChanged:
    case EventKind::MouseMove:
        ReadPair(payload, event);
        break;
    case EventKind::KeyDown:
    case EventKind::KeyUp:
    case EventKind::Char:
        event.values = {ReadCode(payload), 0, 0};
        break;
    case EventKind::MouseDown:
    case EventKind::MouseUp:
        ReadButton(payload, event);
        break;
    case EventKind::FileDropped:
        // The drop point isn't recorded: a replayed drop lies at the window's origin.
        event.drop = {ReadPath(line, payloadStart), 0, 0};
        break;
    case EventKind::Quit:
    case EventKind::Minimize:
    case EventKind::Close:
    case EventKind::None:
        break;
    }
    return event;
}

void LoadDemo(std::istream& demo, std::deque<DemoFrame>& frames)
{
    DemoFrame current;
    std::string line;
    // A line counts only with its line feed: getline sets end-of-file on a last line without one.
    while (std::getline(demo, line).good())
    {
        if (!line.empty() && line.back() == '\r')
        {
            line.pop_back();
        }
        uint64_t frame = 0;
        if (!ReadFrameLine(line, frame))
        {
            current.events.push_back(ParseEvent(line));
            continue;
        }
        if (!current.events.empty())
        {
            frames.push_back(std::move(current));
            current.events = {};
        }
        current.frame = frame;
    }
    // No frame line follows these events, so they are never played.
    FreePaths(current.events);
}

bool TakeEventsOfFrame(std::deque<DemoFrame>& frames, uint64_t frame, std::vector<InputEvent>& events)
{
    events.clear();
    while (!frames.empty() && frames.front().frame < frame)
    {
        Logger::Log("Input", LogLevel::Warning,
                    "Skipped replay frame " + std::to_string(frames.front().frame));
        FreePaths(frames.front().events);
        frames.pop_front();
    }
    if (frames.empty())
    {
        Logger::Log("Input", LogLevel::Info, "Ending replay");
        return false;
    }
    if (frames.front().frame == frame)
    {
        events.swap(frames.front().events);
        frames.pop_front();
    }
    return true;
}

void DiscardDemoFrames(std::deque<DemoFrame>& frames)
{
    for (DemoFrame& record : frames)
    {
        FreePaths(record.events);
    }
    frames.clear();
}

} // namespace Input
