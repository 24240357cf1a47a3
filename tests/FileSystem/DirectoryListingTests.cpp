#include "FileSystem/DirectoryListing.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>
#include <random>

namespace
{

using FileSystem::ListDirectory;
using FileSystem::MatchesPattern;
using Names = std::vector<std::string>;

// Names are matched case-sensitively and sorted bytewise; the folder part is plain, relative or absolute.
TEST(Listing, NamesMatchingThePatternInTheFolderComeSorted)
{
    const TempFolder folder;
    for (const char* file : {"b.lvl", "a.lvl", "A.LVL", ".hidden", "noext", "x[1].txt",
                             "\xC3\xA9t\xC3\xA9.lvl", "Levels/one.lvl", "Levels/two.lua"})
    {
        folder.Touch(file);
    }
    folder.MakeFolder("dir.lvl");
    std::filesystem::create_directory_symlink(folder.Path() / "Levels", folder.Path() / "link");
    const ScopedWorkingDirectory inside(folder.Path());
    EXPECT_EQ(ListDirectory("*.lvl", true), (Names{"a.lvl", "b.lvl", "dir.lvl", "\xC3\xA9t\xC3\xA9.lvl"}));
    EXPECT_EQ(ListDirectory("*.lvl", false), (Names{"a.lvl", "b.lvl", "\xC3\xA9t\xC3\xA9.lvl"}));
    EXPECT_EQ(ListDirectory("?.lvl", true), (Names{"a.lvl", "b.lvl"}));
    EXPECT_EQ(ListDirectory("?t?.lvl", true), Names{"\xC3\xA9t\xC3\xA9.lvl"}) << "? takes a whole character";
    EXPECT_EQ(ListDirectory(".*", true), Names{".hidden"});
    EXPECT_EQ(ListDirectory("x[1].txt", true), Names{"x[1].txt"}) << "brackets are literal";
    EXPECT_EQ(ListDirectory("*.*", true).size(), 10u) << "every name, with or without a dot";
    EXPECT_EQ(ListDirectory("*", false),
              (Names{".hidden", "A.LVL", "a.lvl", "b.lvl", "noext", "x[1].txt", "\xC3\xA9t\xC3\xA9.lvl"}))
        << "symlinked folders count as folders";
    EXPECT_EQ(ListDirectory("Levels/*", true), (Names{"one.lvl", "two.lua"}));
    EXPECT_EQ(ListDirectory("Levels\\*.lvl", true), Names{"one.lvl"});
    EXPECT_EQ(ListDirectory("link/t*", true), Names{"two.lua"});
    EXPECT_EQ(ListDirectory((folder.Path() / "Levels/o*").string(), true), Names{"one.lvl"});
    EXPECT_FALSE(ListDirectory("/t*", true).empty()) << "a leading / lists the root";
    EXPECT_TRUE(ListDirectory("Lev*/*", true).empty());
    EXPECT_TRUE(ListDirectory("Levels/", true).empty());
    EXPECT_TRUE(ListDirectory("Missing/*", true).empty());
    EXPECT_TRUE(ListDirectory("b.lvl/*", true).empty());
    EXPECT_TRUE(ListDirectory(std::string("a.lvl\0*", 7), true).empty());
    EXPECT_TRUE(ListDirectory(std::string(100000, 'x') + "/*", true).empty());
    EXPECT_EQ(ListDirectory(std::string(100000, '*') + "l", true).size(), 4u);
}

// Every way of splitting the name tried: the meaning the greedy matcher must keep.
bool NaiveMatch(std::string_view name, std::string_view pattern)
{
    if (pattern.empty())
    {
        return name.empty();
    }
    if (pattern[0] == '*')
    {
        for (size_t taken = 0; taken <= name.size();
             taken += taken < name.size() ? FileSystem::CharacterLength(name, taken) : 1)
        {
            if (NaiveMatch(name.substr(taken), pattern.substr(1)))
            {
                return true;
            }
        }
        return false;
    }
    if (name.empty())
    {
        return false;
    }
    const size_t nameLength = FileSystem::CharacterLength(name, 0);
    if (pattern[0] == '?')
    {
        return NaiveMatch(name.substr(nameLength), pattern.substr(1));
    }
    const size_t patternLength = FileSystem::CharacterLength(pattern, 0);
    return nameLength == patternLength && name.substr(0, nameLength) == pattern.substr(0, patternLength) &&
           NaiveMatch(name.substr(nameLength), pattern.substr(patternLength));
}

TEST(PatternMatching, AgreesWithTheNaiveMatcherOnRandomShortInputsAndOnHeavyBacktracking)
{
    const std::vector<std::string> pieces = {
        "*", "?", "a", "b", ".", "[", "]", "\\", "/", "\xC3\xA9", "\xC3", "\xA9", "\xF0\x9F\x98\x80", "\x80"};
    std::mt19937 random(99);
    const auto build = [&](size_t length, size_t alphabet)
    {
        std::string text;
        for (size_t index = 0; index < length; ++index)
        {
            text += pieces[random() % alphabet];
        }
        return text;
    };
    for (int round = 0; round < 200000; ++round)
    {
        const std::string pattern = build(random() % 7, pieces.size());
        // Names without wildcards, mostly.
        std::string name = build(random() % 8, pieces.size());
        ASSERT_EQ(MatchesPattern(name, pattern), NaiveMatch(name, pattern))
            << testing::PrintToString(name) << " " << testing::PrintToString(pattern);
    }
    const std::string name = std::string(255, 'a');
    EXPECT_FALSE(MatchesPattern(name, "*a*a*a*a*a*a*a*a*a*a*b"));
    EXPECT_FALSE(MatchesPattern(name, std::string(100000, '*') + "b"));
    EXPECT_TRUE(MatchesPattern(name, "*a*a*a*a*a*a*a*a*a*a"));
    EXPECT_TRUE(MatchesPattern("\xC3\x41", "??")) << "an invalid byte is a character of its own";
}

} // namespace
