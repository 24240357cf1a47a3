#pragma once

// Script files compiled once and shared by every component that runs them.
//
// Each component runs its own closure of its file's main function, with an _ENV of its own. Loading the file
// anew for each component would give each a private copy of the compiled code as well, and ten thousand
// copies of one small loop, all woken in one frame, spend most of that frame fetching code and constants from
// memory. So a file is compiled once for each content it has had: a new component reads the file and, when
// the bytes are those compiled last under that name, gets a new closure of the function compiled then.
//
// Lua makes new closures of nested functions only. Each compiled file therefore gets a factory: a binary
// chunk assembled here, whose main function holds the file's main function as its one nested function. A call
// of the factory declares a local, closes the nested function over it as its _ENV and returns it. The nested
// function keeps its line 0, so tracebacks and the debug library still call it the main chunk.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

struct lua_State;

namespace Lua
{

class ScriptChunks
{
public:
    // Pushes a new closure of the file's main function, whose _ENV is nil until the caller sets it. On
    // failure pushes luaL_loadfilex's message instead and returns its status, as luaL_loadfilex does.
    int PushMainFunction(lua_State* L, const char* fileName);
    // Forgets every file; for a state that is being closed.
    void Clear() { files.clear(); }

private:
    struct CompiledFile
    {
        std::string bytes;
        // Registry reference to the factory; 0 while there is none for these bytes.
        int32_t factory = 0;
        // Counts the changes of bytes, so that a factory made meanwhile for older bytes is not kept.
        uint64_t version = 0;
    };

    // The factory for the file's current bytes, or 0; remembers the bytes read for a factory to come, and
    // hands out the factory of bytes that the file no longer holds, for the caller to give up. False if the
    // file can't be read, which luaL_loadfilex then reports. Touches no Lua state.
    bool FindFactory(const char* fileName, int32_t& factory, int32_t& stale);
    // Gives up a factory that no longer gives functions.
    void DropFactory(lua_State* L, const char* fileName, int32_t factory);
    // Turns the function on top, compiled from the remembered bytes, into the file's factory.
    void MakeFactory(lua_State* L, const char* fileName);

    // Looked up by the name as given, without making a string of it.
    struct NameHash
    {
        using is_transparent = void;
        size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
    };
    std::unordered_map<std::string, CompiledFile, NameHash, std::equal_to<>> files;
};

} // namespace Lua
