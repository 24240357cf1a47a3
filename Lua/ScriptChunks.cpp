#include "Lua/ScriptChunks.h"

#include "Lua/Stack.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <lua.hpp>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace Lua
{
namespace
{

// A binary chunk starts with a header that records the sizes of the machine it was made on: the signature,
// version and format bytes, six check bytes, five sizes, then a sample integer and a sample number. The
// byte after it is the main function's number of upvalues.
constexpr size_t kHeaderSize = 4 + 1 + 1 + 6 + 5 + sizeof(lua_Integer) + sizeof(lua_Number);
constexpr size_t kVersionByte = 4;
constexpr size_t kIntSizeByte = 12;
constexpr size_t kInstructionSizeByte = 14;
constexpr char kVersion = 0x53;

// The factory's code, in the instruction format of Lua 5.3: six bits of opcode, then A in eight bits, then
// either C and B in nine bits each or Bx in eighteen.
constexpr uint32_t kLoadNil = 4;
constexpr uint32_t kReturn = 38;
constexpr uint32_t kClosure = 44;

constexpr uint32_t Instruction(uint32_t opcode, uint32_t a, uint32_t b)
{
    return opcode | a << 6 | b << 23;
}

constexpr uint32_t InstructionBx(uint32_t opcode, uint32_t a, uint32_t bx)
{
    return opcode | a << 6 | bx << 14;
}

// local _ENV (register 0); register 1 = closure of the nested function over it; return register 1.
constexpr std::array<uint32_t, 3> kFactoryCode = {Instruction(kLoadNil, 0, 0), InstructionBx(kClosure, 1, 0),
                                                  Instruction(kReturn, 1, 2)};

// What tracebacks and the debug library call a factory.
constexpr char kFactoryName[] = "=script factory";

// Reads the file in blocks through a descriptor, so that checking a file that hasn't changed allocates
// nothing: allocations between those of the Lua state scatter the objects of the scripts being made, and
// every later frame pays for that.
class FileReader
{
public:
    // Only a regular file is read: a device such as /dev/zero would never end, and what isn't a regular
    // file is left to luaL_loadfilex, which reads it as it always has.
    explicit FileReader(const char* fileName) : descriptor(open(fileName, O_RDONLY | O_CLOEXEC))
    {
        struct stat status;
        if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)))
        {
            close(descriptor);
            descriptor = -1;
        }
    }
    ~FileReader()
    {
        if (descriptor >= 0)
        {
            close(descriptor);
        }
    }
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    bool IsOpen() const { return descriptor >= 0; }
    // The next block: its size, 0 at the end, or -1 on an error.
    ssize_t Next()
    {
        ssize_t count = 0;
        do
        {
            count = read(descriptor, block.data(), block.size());
        } while (count < 0 && errno == EINTR);
        return count;
    }
    const char* Block() const { return block.data(); }

private:
    int descriptor;
    std::array<char, 4096> block;
};

bool ReadFileBytes(const char* fileName, std::string& bytes)
{
    FileReader reader(fileName);
    ssize_t count = 0;
    while (reader.IsOpen() && (count = reader.Next()) > 0)
    {
        bytes.append(reader.Block(), static_cast<size_t>(count));
    }
    return reader.IsOpen() && count == 0;
}

bool FileHolds(const char* fileName, std::string_view expected)
{
    FileReader reader(fileName);
    ssize_t count = 0;
    while (reader.IsOpen() && (count = reader.Next()) > 0)
    {
        const auto size = static_cast<size_t>(count);
        if (size > expected.size() || expected.compare(0, size, reader.Block(), size) != 0)
        {
            return false;
        }
        expected.remove_prefix(size);
    }
    return reader.IsOpen() && count == 0 && expected.empty();
}

int AddToBuffer(lua_State*, const void* part, size_t size, void* buffer)
{
    luaL_addlstring(static_cast<luaL_Buffer*>(buffer), static_cast<const char*>(part), size);
    return 0;
}

template <typename T>
void AddValue(luaL_Buffer& buffer, T value)
{
    luaL_addlstring(&buffer, reinterpret_cast<const char*>(&value), sizeof(value));
}

// The dump of a main function is on top; pushes the factory chunk that nests it, or returns false, pushing
// nothing, when the dump was made with sizes that the parts written here don't have.
bool PushFactoryChunk(lua_State* L)
{
    size_t size = 0;
    const char* dump = lua_tolstring(L, -1, &size);
    if (size <= kHeaderSize || dump[kVersionByte] != kVersion || dump[kIntSizeByte] != sizeof(int) ||
        dump[kInstructionSizeByte] != sizeof(uint32_t) || dump[kHeaderSize] != 1)
    {
        return false;
    }
    luaL_Buffer chunk;
    luaL_buffinit(L, &chunk);
    luaL_addlstring(&chunk, dump, kHeaderSize);
    AddValue<char>(chunk, 0);                    // the factory's upvalues
    AddValue<char>(chunk, sizeof(kFactoryName)); // its source name, as a dump writes strings
    luaL_addlstring(&chunk, kFactoryName, sizeof(kFactoryName) - 1);
    AddValue<int>(chunk, 0);                   // first line
    AddValue<int>(chunk, 0);                   // last line
    AddValue<char>(chunk, 0);                  // parameters
    AddValue<char>(chunk, 0);                  // not variadic
    AddValue<char>(chunk, 2);                  // registers
    AddValue<int>(chunk, kFactoryCode.size()); // code
    for (const uint32_t instruction : kFactoryCode)
    {
        AddValue(chunk, instruction);
    }
    AddValue<int>(chunk, 0); // constants
    AddValue<int>(chunk, 0); // upvalues
    AddValue<int>(chunk, 1); // nested functions: the file's main function, which refers to register 0
    luaL_addlstring(&chunk, dump + kHeaderSize + 1, size - kHeaderSize - 1);
    AddValue<int>(chunk, 0); // line information
    AddValue<int>(chunk, 0); // local names
    AddValue<int>(chunk, 0); // upvalue names
    luaL_pushresult(&chunk);
    return true;
}

// Pushes a factory for the main function on top, or returns false with the stack as it was.
bool PushFactory(lua_State* L)
{
    const int function = lua_gettop(L);
    luaL_Buffer dump;
    luaL_buffinit(L, &dump);
    lua_dump(L, AddToBuffer, &dump, 0);
    luaL_pushresult(&dump);
    if (!PushFactoryChunk(L) ||
        luaL_loadbufferx(L, lua_tostring(L, -1), lua_rawlen(L, -1), kFactoryName, "b") != LUA_OK)
    {
        lua_settop(L, function);
        return false;
    }
    lua_replace(L, function + 1);
    lua_settop(L, function + 1);
    return true;
}

// Calls the factory on top in its place; false, with the stack as before the factory was pushed, if that
// fails to give a function. A script can reach the registry and put anything in the factory's place.
bool CallFactory(lua_State* L)
{
    if (lua_type(L, -1) != LUA_TFUNCTION || lua_pcall(L, 0, 1, 0) != LUA_OK ||
        lua_type(L, -1) != LUA_TFUNCTION)
    {
        lua_pop(L, 1);
        return false;
    }
    return true;
}

} // namespace

int ScriptChunks::PushMainFunction(lua_State* L, const char* fileName)
{
    EnsureStack(L, 6);
    int32_t factory = 0;
    int32_t stale = 0;
    const bool readable = FindFactory(fileName, factory, stale);
    if (stale > 0)
    {
        luaL_unref(L, LUA_REGISTRYINDEX, stale);
    }
    if (factory > 0)
    {
        lua_rawgeti(L, LUA_REGISTRYINDEX, factory);
        if (CallFactory(L))
        {
            return LUA_OK;
        }
        DropFactory(L, fileName, factory);
    }
    // Only a chunk compiled from text is sure to have a main function whose one upvalue is the enclosing
    // function's first register, which is what the factory gives it. Binary chunks and every failure are
    // loaded again, exactly as they always are, for the result or the message.
    if (!readable || luaL_loadfilex(L, fileName, "t") != LUA_OK)
    {
        if (readable)
        {
            lua_pop(L, 1);
        }
        return luaL_loadfilex(L, fileName, nullptr);
    }
    MakeFactory(L, fileName);
    return LUA_OK;
}

bool ScriptChunks::FindFactory(const char* fileName, int32_t& factory, int32_t& stale)
{
    factory = 0;
    stale = 0;
    const auto known = files.find(std::string_view(fileName));
    if (known != files.end() && known->second.factory > 0 && FileHolds(fileName, known->second.bytes))
    {
        factory = known->second.factory;
        return true;
    }
    std::string bytes;
    if (!ReadFileBytes(fileName, bytes))
    {
        return false;
    }
    CompiledFile& file = files[fileName];
    stale = file.factory;
    file.factory = 0;
    file.bytes = std::move(bytes);
    ++file.version;
    return true;
}

void ScriptChunks::DropFactory(lua_State* L, const char* fileName, int32_t factory)
{
    const auto file = files.find(std::string_view(fileName));
    if (file != files.end() && file->second.factory == factory)
    {
        file->second.factory = 0;
    }
    luaL_unref(L, LUA_REGISTRYINDEX, factory);
}

void ScriptChunks::MakeFactory(lua_State* L, const char* fileName)
{
    const auto file = files.find(std::string_view(fileName));
    // The file may have changed after it was read: then nobody knows which bytes the function came from.
    if (file == files.end() || !FileHolds(fileName, file->second.bytes))
    {
        return;
    }
    const uint64_t version = file->second.version;
    const int function = lua_gettop(L);
    if (!PushFactory(L))
    {
        return;
    }
    lua_pushvalue(L, -1);
    const int32_t factory = luaL_ref(L, LUA_REGISTRYINDEX);
    if (!CallFactory(L))
    {
        luaL_unref(L, LUA_REGISTRYINDEX, factory);
        lua_settop(L, function);
        return;
    }
    lua_replace(L, function);
    // Collector finalizers may have run scripts meanwhile, and one may have loaded this file anew.
    CompiledFile& compiled = files[fileName];
    if (compiled.version == version && compiled.factory == 0)
    {
        compiled.factory = factory;
    }
    else
    {
        luaL_unref(L, LUA_REGISTRYINDEX, factory);
    }
}

} // namespace Lua
