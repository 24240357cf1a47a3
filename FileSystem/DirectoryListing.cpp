#include "FileSystem/DirectoryListing.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace FileSystem
{
namespace
{

bool IsContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

// Bounds of the second byte of a sequence by its lead byte; they exclude overlong forms, surrogates and
// values above U+10FFFF.
struct SequenceRule
{
    size_t length;
    unsigned char low;
    unsigned char high;
};

SequenceRule RuleFor(unsigned char lead)
{
    if (lead >= 0xC2 && lead <= 0xDF)
    {
        return {2, 0x80, 0xBF};
    }
    if (lead == 0xE0)
    {
        return {3, 0xA0, 0xBF};
    }
    if (lead == 0xED)
    {
        return {3, 0x80, 0x9F};
    }
    if (lead >= 0xE1 && lead <= 0xEF)
    {
        return {3, 0x80, 0xBF};
    }
    if (lead == 0xF0)
    {
        return {4, 0x90, 0xBF};
    }
    if (lead >= 0xF1 && lead <= 0xF3)
    {
        return {4, 0x80, 0xBF};
    }
    if (lead == 0xF4)
    {
        return {4, 0x80, 0x8F};
    }
    return {1, 0, 0};
}

bool EqualCharacters(std::string_view a, size_t aLength, std::string_view b, size_t bLength)
{
    return aLength == bLength && a.compare(0, aLength, b.substr(0, bLength)) == 0;
}

bool HasWildcard(std::string_view text)
{
    return text.find_first_of("*?") != std::string_view::npos;
}

bool IsDirectory(const std::filesystem::directory_entry& entry)
{
    std::error_code error;
    return entry.is_directory(error);
}

} // namespace

size_t CharacterLength(std::string_view text, size_t position)
{
    const SequenceRule rule = RuleFor(static_cast<unsigned char>(text[position]));
    if (rule.length == 1 || position + rule.length > text.size())
    {
        return 1;
    }
    const auto second = static_cast<unsigned char>(text[position + 1]);
    if (second < rule.low || second > rule.high)
    {
        return 1;
    }
    for (size_t offset = 2; offset < rule.length; ++offset)
    {
        if (!IsContinuation(static_cast<unsigned char>(text[position + offset])))
        {
            return 1;
        }
    }
    return rule.length;
}

bool MatchesPattern(std::string_view name, std::string_view pattern)
{
    size_t n = 0;
    size_t p = 0;
    // The one backtrack point: where the last '*' was in the pattern and where its run ends in the name.
    // Going back only to the last '*' suffices, as it can take whatever an earlier one could have.
    size_t starPattern = std::string_view::npos;
    size_t starName = 0;
    while (n < name.size())
    {
        const size_t nameLength = CharacterLength(name, n);
        if (p < pattern.size() && pattern[p] == '*')
        {
            starPattern = ++p;
            starName = n;
            continue;
        }
        if (p < pattern.size())
        {
            const size_t patternLength = CharacterLength(pattern, p);
            if (pattern[p] == '?' ||
                EqualCharacters(name.substr(n), nameLength, pattern.substr(p), patternLength))
            {
                n += nameLength;
                p += pattern[p] == '?' ? 1 : patternLength;
                continue;
            }
        }
        if (starPattern == std::string_view::npos)
        {
            return false;
        }
        starName += CharacterLength(name, starName);
        n = starName;
        p = starPattern;
    }
    while (p < pattern.size() && pattern[p] == '*')
    {
        ++p;
    }
    return p == pattern.size();
}

std::vector<std::string> ListDirectory(std::string_view pattern, bool includeDirectories)
{
    std::string normalised(pattern);
    std::replace(normalised.begin(), normalised.end(), '\\', '/');
    const size_t separator = normalised.rfind('/');
    const std::string folder =
        separator == std::string::npos ? std::string(".") : normalised.substr(0, separator + 1);
    std::string namePattern = separator == std::string::npos ? normalised : normalised.substr(separator + 1);
    if (namePattern.empty() || HasWildcard(folder) || normalised.find('\0') != std::string::npos)
    {
        return {};
    }
    if (namePattern == "*.*")
    {
        namePattern = "*";
    }

    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
    {
        std::string name = entry->path().filename().string();
        if ((!includeDirectories && IsDirectory(*entry)) || !MatchesPattern(name, namePattern))
        {
            continue;
        }
        names.push_back(std::move(name));
    }
    // The system's order is arbitrary; scripts see a fixed one.
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace FileSystem
