// The script functions of the three drawable handle types. Each resolves its handle anew. These functions
// raise Lua errors, which are longjmps: every argument is read before any C++ object with a destructor
// comes to life.

#include "Graphics/DrawableScripts.h"

#include "Graphics/Bitmap.h"
#include "Graphics/SpriteComponent.h"
#include "Graphics/SquareComponent.h"
#include "Graphics/TextSpriteComponent.h"
#include "Lua/ScriptArguments.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

namespace Graphics
{
namespace
{

using Components::Graphics::SpriteComponent;
using Components::Graphics::SquareComponent;
using Components::Graphics::TextSpriteComponent;
using Lua::CheckFloat;

int PushColour(lua_State* L, const Colour& colour)
{
    Lua::EnsureStack(L, 4);
    lua_pushnumber(L, colour.r);
    lua_pushnumber(L, colour.g);
    lua_pushnumber(L, colour.b);
    lua_pushnumber(L, colour.a);
    return 4;
}

// r, g, b and an optional alpha from argument 2 on.
Colour CheckColour(lua_State* L, float absentAlpha)
{
    const float r = CheckFloat(L, 2);
    const float g = CheckFloat(L, 3);
    const float b = CheckFloat(L, 4);
    return Colour{r, g, b, Lua::OptFloat(L, 5, absentAlpha)};
}

UVRect CheckRect(lua_State* L, int first)
{
    const float left = CheckFloat(L, first);
    const float top = CheckFloat(L, first + 1);
    const float right = CheckFloat(L, first + 2);
    return UVRect{left, top, right, CheckFloat(L, first + 3)};
}

// Functions that the three types share, over the type's check of argument 1.
template <auto Check>
int SetColourWithOpaqueDefault(lua_State* L)
{
    auto& component = Check(L);
    component.colour = CheckColour(L, 1.0f);
    return 0;
}

template <auto Check>
int GetColour(lua_State* L)
{
    return PushColour(L, Check(L).colour);
}

template <auto Check>
int SetVisible(lua_State* L)
{
    auto& component = Check(L);
    component.visible = Lua::CheckBoolean(L, 2);
    return 0;
}

template <auto Check>
int GetVisible(lua_State* L)
{
    lua_pushboolean(L, Check(L).visible);
    return 1;
}

template <auto Check, size_t count>
int GetAllMembers(lua_State* L, const char* const (&members)[count])
{
    Check(L);
    Lua::PushStringArray(L, members, static_cast<int>(count));
    return 1;
}

int SpriteMembers(lua_State* L)
{
    static constexpr const char* kMembers[] = {"Frames", "UV", "Colour", "Visible"};
    return GetAllMembers<Lua::CheckSprite>(L, kMembers);
}

// Appends a frame for each path in order; paths before a bad argument stay loaded.
int LoadFrames(lua_State* L)
{
    SpriteComponent& sprite = Lua::CheckSprite(L);
    const int top = lua_gettop(L);
    for (int index = 2; index <= top; ++index)
    {
        const char* path = luaL_checkstring(L, index);
        Components::Graphics::LoadFrame(sprite.frames, sprite.uvs, path);
    }
    return 0;
}

int GetFrames(lua_State* L)
{
    const SpriteComponent& sprite = Lua::CheckSprite(L);
    const auto count = static_cast<int>(sprite.frames.size());
    Lua::EnsureStack(L, count);
    for (const std::shared_ptr<Bitmap>& bitmap : sprite.frames)
    {
        lua_pushlstring(L, bitmap->name.data(), bitmap->name.size());
    }
    return count;
}

int NumFrames(lua_State* L)
{
    lua_pushinteger(L, static_cast<lua_Integer>(Lua::CheckSprite(L).frames.size()));
    return 1;
}

int SetFrame(lua_State* L)
{
    SpriteComponent& sprite = Lua::CheckSprite(L);
    // Unsigned, so that 0 and negative numbers fall out of range with the rest.
    const uint64_t index = static_cast<uint64_t>(luaL_checkinteger(L, 2)) - 1;
    if (index >= sprite.frames.size())
    {
        return luaL_argerror(L, 2, "Frame out of range");
    }
    sprite.frame = static_cast<int32_t>(index);
    return 0;
}

int SetUV(lua_State* L)
{
    SpriteComponent& sprite = Lua::CheckSprite(L);
    const UVRect rect = CheckRect(L, 2);
    if (sprite.frames.empty())
    {
        // Before any frame, the rectangle is the one the first frame will take.
        if (sprite.uvs.empty())
        {
            sprite.uvs.push_back(rect);
        }
        else
        {
            sprite.uvs.front() = rect;
        }
        return 0;
    }
    if (static_cast<size_t>(sprite.frame) >= sprite.frames.size())
    {
        return luaL_error(L, "Sprite frame index %d out of range: %d", static_cast<int>(sprite.frame),
                          static_cast<int>(sprite.frames.size()));
    }
    sprite.uvs[static_cast<size_t>(sprite.frame)] = rect;
    return 0;
}

int GetUV(lua_State* L)
{
    const SpriteComponent& sprite = Lua::CheckSprite(L);
    const UVRect rect = sprite.uvs.empty() ? defaultUV : sprite.uvs.front();
    Lua::EnsureStack(L, 4);
    lua_pushnumber(L, rect.left);
    lua_pushnumber(L, rect.top);
    lua_pushnumber(L, rect.right);
    lua_pushnumber(L, rect.bottom);
    return 4;
}

// Counted from 0; an index without an entry in uvs is refused before the numbers are read.
int SetFrameUV(lua_State* L)
{
    SpriteComponent& sprite = Lua::CheckSprite(L);
    const lua_Integer index = luaL_checkinteger(L, 2);
    if (index < 0 || static_cast<uint64_t>(index) >= sprite.uvs.size())
    {
        return luaL_argerror(L, 2, "Sprite frame index out of range");
    }
    sprite.uvs[static_cast<size_t>(index)] = CheckRect(L, 3);
    return 0;
}

constexpr luaL_Reg kSpriteFunctions[] = {
    {"GetAllMembers", SpriteMembers},
    {"LoadFrame", LoadFrames},
    {"SetFrames", LoadFrames},
    {"GetFrames", GetFrames},
    {"NumFrames", NumFrames},
    {"GetNumFrames", NumFrames},
    {"SetFrame", SetFrame},
    {"SetUV", SetUV},
    {"GetUV", GetUV},
    {"SetFrameUV", SetFrameUV},
    {"SetColour", SetColourWithOpaqueDefault<Lua::CheckSprite>},
    {"SetColor", SetColourWithOpaqueDefault<Lua::CheckSprite>},
    {"GetColour", GetColour<Lua::CheckSprite>},
    {"GetColor", GetColour<Lua::CheckSprite>},
    {"SetVisible", SetVisible<Lua::CheckSprite>},
    {"GetVisible", GetVisible<Lua::CheckSprite>},
    {"IsVisible", GetVisible<Lua::CheckSprite>},
    {nullptr, nullptr},
};

int SquareMembers(lua_State* L)
{
    static constexpr const char* kMembers[] = {"Colour", "Visible"};
    return GetAllMembers<Lua::CheckSquare>(L, kMembers);
}

constexpr luaL_Reg kSquareFunctions[] = {
    {"GetAllMembers", SquareMembers},
    {"SetColour", SetColourWithOpaqueDefault<Lua::CheckSquare>},
    {"SetColor", SetColourWithOpaqueDefault<Lua::CheckSquare>},
    {"GetColour", GetColour<Lua::CheckSquare>},
    {"GetColor", GetColour<Lua::CheckSquare>},
    {"SetVisible", SetVisible<Lua::CheckSquare>},
    {"GetVisible", GetVisible<Lua::CheckSquare>},
    {"IsVisible", GetVisible<Lua::CheckSquare>},
    {nullptr, nullptr},
};

int TextMembers(lua_State* L)
{
    static constexpr const char* kMembers[] = {"Text", "Colour", "Visible"};
    return GetAllMembers<Lua::CheckTextSprite>(L, kMembers);
}

// Up to the first NUL byte.
int SetText(lua_State* L)
{
    TextSpriteComponent& textSprite = Lua::CheckTextSprite(L);
    textSprite.text = luaL_checkstring(L, 2);
    return 0;
}

int GetText(lua_State* L)
{
    const TextSpriteComponent& textSprite = Lua::CheckTextSprite(L);
    lua_pushlstring(L, textSprite.text.data(), textSprite.text.size());
    return 1;
}

// Unlike sprites and squares, an absent alpha keeps the text's own.
int SetTextColour(lua_State* L)
{
    TextSpriteComponent& textSprite = Lua::CheckTextSprite(L);
    textSprite.colour = CheckColour(L, textSprite.colour.a);
    return 0;
}

constexpr luaL_Reg kTextSpriteFunctions[] = {
    {"GetAllMembers", TextMembers},
    {"SetText", SetText},
    {"GetText", GetText},
    {"SetColour", SetTextColour},
    {"SetColor", SetTextColour},
    {"GetColour", GetColour<Lua::CheckTextSprite>},
    {"GetColor", GetColour<Lua::CheckTextSprite>},
    {"SetVisible", SetVisible<Lua::CheckTextSprite>},
    {"GetVisible", GetVisible<Lua::CheckTextSprite>},
    {"IsVisible", GetVisible<Lua::CheckTextSprite>},
    {nullptr, nullptr},
};

} // namespace

void RegisterDrawableScriptTypes(lua_State* L)
{
    Lua::RegisterMethodType(L, "Square", kSquareFunctions);
    Lua::RegisterMethodType(L, "Sprite", kSpriteFunctions);
    Lua::RegisterMethodType(L, "TextSprite", kTextSpriteFunctions);
}

} // namespace Graphics
