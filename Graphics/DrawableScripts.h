#pragma once

// What scripts see of the drawing: the "Square", "Sprite", "TextSprite" and "Particle" handle types and the
// Graphics table. Only a game with a window has them.

#include <lua.hpp>

namespace Graphics
{

class GraphicsSystem;

// Makes the metatables "Square", "Sprite" and "TextSprite" with their functions.
void RegisterDrawableScriptTypes(lua_State* L);
// Makes the metatable "Particle" with its functions.
void RegisterParticleScriptType(lua_State* L);

// +1: the Graphics table, whose functions carry the system and are called with a colon.
void PushGraphicsTable(lua_State* L, GraphicsSystem& graphics);

} // namespace Graphics
