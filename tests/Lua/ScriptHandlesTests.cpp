#include "Lua/ScriptHandles.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

// The checks as script functions: each takes its argument as a script would give it.
class ScriptHandles : public ScriptScenario
{
protected:
    void SetUp() override
    {
        ScriptScenario::SetUp();
        const luaL_Reg checks[] = {
            {"CheckTransform", [](lua_State* state) { return (Lua::CheckTransform(state), 0); }},
            {"CheckScript", [](lua_State* state) { return (Lua::CheckScript(state), 0); }},
            {"CheckSpace", [](lua_State* state) { return (Lua::CheckSpace(state), 0); }},
            {"ToObject", [](lua_State* state) { return (Lua::ToGameObject(state, 1), 0); }},
            {nullptr, nullptr}};
        lua_pushglobaltable(L());
        luaL_setfuncs(L(), checks, 0);
        lua_pop(L(), 1);
    }
    // Each row is a call and what it gives, or its error without the position; no tail call, so that
    // errors name the function.
    void ExpectOutcomes(const std::vector<std::pair<std::string, std::string>>& rows)
    {
        for (const auto& [call, outcome] : rows)
        {
            EXPECT_EQ(Outcome("return (" + call + ")"), outcome) << call;
        }
    }
    void Publish(const char* name) { lua_setglobal(L(), name); }
};

TEST_F(ScriptHandles, GameObjectsAndSpacesHaveOneHandleEachUntilTheyGo)
{
    const GameObjectHandle object = game.rootSpace.CreateObject();
    Lua::PushGameObject(object.Get(), L());
    Lua::PushGameObject(object.Get(), L());
    EXPECT_TRUE(lua_rawequal(L(), -1, -2));
    Publish("a");
    Publish("b");
    Lua::PushSpace(&game.rootSpace, L());
    Lua::PushSpace(&game.rootSpace, L());
    EXPECT_TRUE(lua_rawequal(L(), -1, -2));
    Publish("space");
    lua_pop(L(), 1);
    EXPECT_EQ(Run("t = {[a] = 1} assert(t[b] == 1 and a == b)"), "");
    EXPECT_GT(object.Get().luaRef, 0);
    ExpectOutcomes({{"ToObject(a)", "nil"}, {"CheckSpace(space)", "nil"}});

    object.Get().Destroy();
    Frame(0.1);
    Space& child = game.rootSpace.CreateChild();
    Lua::PushGameObject(child.CreateObject().Get(), L());
    Publish("c");
    Lua::PushSpace(&child, L());
    Publish("childSpace");
    child.destroyRequested = true;
    game.rootSpace.DestroyFlagged(game);
    ExpectOutcomes({
        {"ToObject(a)", "bad argument #1 to 'ToObject' (GameObject or space is null)"},
        {"ToObject(space)", "bad argument #1 to 'ToObject' (GameObject expected, got Space)"},
        {"CheckSpace(childSpace)", "Space was NULL!"},
        {"ToObject(c)", "bad argument #1 to 'ToObject' (GameObject or space is null)"},
    });
    EXPECT_EQ(Run("for k, v in pairs(__registry) do assert(v ~= childSpace) end"), "");
}

TEST_F(ScriptHandles, ComponentChecksNameTheTypeAndTellStaleFromMissing)
{
    Write("s.lua", "");
    const GameObjectHandle object = Attach("s.lua");
    const Handle transform = object.Get().AddComponent(Components::Transform);
    Lua::PushComponent(L(), &game.rootSpace, Components::Transform, transform);
    Publish("t");
    Lua::PushComponent(L(), &game.rootSpace, Components::Script,
                       object.Get().GetComponent(Components::Script));
    Publish("s");
    Lua::PushComponent(L(), &game.rootSpace, Components::Transform, Handle{});
    EXPECT_TRUE(lua_isnil(L(), -1));
    Lua::PushComponent(L(), &game.rootSpace, 9, transform);
    EXPECT_TRUE(lua_isnil(L(), -1));
    lua_pop(L(), 2);
    EXPECT_EQ(Run("forged = debug.setmetatable(io.stdout, __registry.Script)"), "");
    // A forged handle has the metatable but not the size.
    ExpectOutcomes({
        {"CheckTransform(t)", "nil"},
        {"CheckScript(s)", "nil"},
        {"CheckTransform(s)", "bad argument #1 to 'CheckTransform' (Transform expected, got Script)"},
        {"CheckTransform()", "bad argument #1 to 'CheckTransform' (Transform expected, got no value)"},
        {"CheckScript(forged)", "bad argument #1 to 'CheckScript' (Script expected, got Script)"},
    });
    EXPECT_EQ(Run("debug.setmetatable(io.stdout, getmetatable(io.stdin))"), "");
    EXPECT_EQ(Run("assert(t ~= t == false) local a = s assert(a == s)"), "");

    object.Get().RemoveComponent(Components::Script);
    object.Get().RemoveComponent(Components::Transform);
    // Other types work until the sweep.
    ExpectOutcomes({{"CheckScript(s)", "Script component has been removed"}, {"CheckTransform(t)", "nil"}});
    object.Get().Destroy();
    Frame(0.1);
    ExpectOutcomes({{"CheckScript(s)", "Script component is null"},
                    {"CheckTransform(t)", "Transform component is null"}});
}

// Listings themselves are checked end to end; here the refusals and a folder that isn't there.
TEST_F(ScriptHandles, DirectoryListingsRefuseBadArguments)
{
    ExpectOutcomes({
        {"next(GetFilesInDirectory('Nowhere/*'))", "nil"},
        {"GetFilesInDirectory({})", "bad argument #1 to 'GetFilesInDirectory' (string expected, got table)"},
        {"GetFilesInDirectory('*', nil)",
         "bad argument #2 to 'GetFilesInDirectory' (boolean expected, got nil)"},
    });
}

} // namespace
