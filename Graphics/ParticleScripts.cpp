// The script functions of the "Particle" handle type: an effect is assembled by naming its policies, each
// with its numbers. Every function resolves its handle anew, reads and checks all of its arguments, and
// only then builds anything: the Lua errors raised on bad arguments are longjmps, which must not pass a
// C++ object with a destructor, and a failed call leaves the component as it was.
//
// Type names are compared exactly, case included; a number given as the type is read as its string.

#include "Graphics/DrawableScripts.h"
#include "Graphics/ParticleComponent.h"
#include "Graphics/SpriteComponent.h"
#include "Lua/ScriptArguments.h"
#include "Lua/ScriptHandles.h"

#include <cstring>

namespace Graphics
{
namespace
{

using Components::Graphics::ParticleComponent;
using Lua::CheckFloat;
using Lua::OptFloat;
using namespace Particles;

// A policy that scripts can name: its name and the function that reads its numbers from argument 3 on and
// makes it.
template <typename Policy>
struct NamedPolicy
{
    const char* name;
    std::unique_ptr<Policy> (*make)(lua_State* L, const ParticleSystem& system);
};

// The policy of the name in argument 2, read and made; a name not in the table raises the message, with
// the name for its %s.
template <typename Policy, size_t count>
std::unique_ptr<Policy> MakeNamed(lua_State* L, const ParticleSystem& system,
                                  const NamedPolicy<Policy> (&table)[count], const char* notFound)
{
    const char* name = luaL_checkstring(L, 2);
    for (const NamedPolicy<Policy>& entry : table)
    {
        if (std::strcmp(entry.name, name) == 0)
        {
            return entry.make(L, system);
        }
    }
    luaL_error(L, notFound, name);
    return nullptr;
}

constexpr NamedPolicy<Emitters::ParticleEmitter> kEmitters[] = {
    {"Constant",
     [](lua_State* L, const ParticleSystem&) -> std::unique_ptr<Emitters::ParticleEmitter>
     {
         const float rate = CheckFloat(L, 3);
         return std::make_unique<Emitters::EmitConstant>(rate);
     }},
    {"Once",
     [](lua_State* L, const ParticleSystem& system) -> std::unique_ptr<Emitters::ParticleEmitter>
     {
         // Narrowed to 32 bits as it stands: -1 asks for the whole pool.
         const auto count = static_cast<uint32_t>(luaL_checkinteger(L, 3));
         return std::make_unique<Emitters::EmitOnce>(count, system.maxParticles);
     }},
    {"Pulse",
     [](lua_State*, const ParticleSystem&) -> std::unique_ptr<Emitters::ParticleEmitter>
     { return std::make_unique<Emitters::EmitPulse>(); }},
};

Initializers::RandomBounds CheckRandomBounds(lua_State* L, int first)
{
    Initializers::RandomBounds bounds;
    bounds.angle = CheckFloat(L, first);
    bounds.speed = CheckFloat(L, first + 1);
    bounds.colour.r = CheckFloat(L, first + 2);
    bounds.colour.g = CheckFloat(L, first + 3);
    bounds.colour.b = CheckFloat(L, first + 4);
    bounds.colour.a = CheckFloat(L, first + 5);
    bounds.life = CheckFloat(L, first + 6);
    bounds.rotation = CheckFloat(L, first + 7);
    bounds.scale = CheckFloat(L, first + 8);
    return bounds;
}

using InitializerPointer = std::unique_ptr<Initializers::ParticleInitializer>;

constexpr NamedPolicy<Initializers::ParticleInitializer> kInitializers[] = {
    {"RandomVelocity",
     [](lua_State* L, const ParticleSystem&) -> InitializerPointer
     {
         const float minAngle = CheckFloat(L, 3);
         const float maxAngle = CheckFloat(L, 4);
         const float minSpeed = CheckFloat(L, 5);
         const float maxSpeed = CheckFloat(L, 6);
         return std::make_unique<Initializers::RandomVelocity>(minAngle, maxAngle, minSpeed, maxSpeed);
     }},
    {"RandomScale",
     [](lua_State* L, const ParticleSystem&) -> InitializerPointer
     {
         const float min = CheckFloat(L, 3);
         const float max = CheckFloat(L, 4);
         return std::make_unique<Initializers::RandomScale>(min, max);
     }},
    {"Random",
     [](lua_State* L, const ParticleSystem&) -> InitializerPointer
     {
         const Initializers::RandomBounds min = CheckRandomBounds(L, 3);
         const Initializers::RandomBounds max = CheckRandomBounds(L, 12);
         return std::make_unique<Initializers::RandomInitializer>(min, max);
     }},
    {"Basic",
     [](lua_State* L, const ParticleSystem&) -> InitializerPointer
     {
         const Vec2 velocity = Lua::CheckVec2(L, 3);
         Colour colour;
         colour.r = OptFloat(L, 5, 1.0f);
         colour.g = OptFloat(L, 6, 1.0f);
         colour.b = OptFloat(L, 7, 1.0f);
         colour.a = OptFloat(L, 8, 1.0f);
         const float life = OptFloat(L, 9, 10.0f);
         const float rotation = OptFloat(L, 10, 0.0f);
         const float scale = OptFloat(L, 11, 1.0f);
         return std::make_unique<Initializers::BasicInitializer>(velocity, colour, life, rotation, scale);
     }},
};

// Minimum and maximum of two quantities as the offsets take them: four required numbers.
struct FourNumbers
{
    float a;
    float b;
    float c;
    float d;
};

FourNumbers CheckFourNumbers(lua_State* L)
{
    FourNumbers numbers{};
    numbers.a = CheckFloat(L, 3);
    numbers.b = CheckFloat(L, 4);
    numbers.c = CheckFloat(L, 5);
    numbers.d = CheckFloat(L, 6);
    return numbers;
}

constexpr NamedPolicy<Initializers::ParticleInitializer> kOffsets[] = {
    {"Square",
     [](lua_State* L, const ParticleSystem&) -> InitializerPointer
     {
         const FourNumbers n = CheckFourNumbers(L);
         return std::make_unique<Initializers::SquareOffset>(n.a, n.b, n.c, n.d);
     }},
    {"Circle",
     [](lua_State* L, const ParticleSystem&) -> InitializerPointer
     {
         const FourNumbers n = CheckFourNumbers(L);
         return std::make_unique<Initializers::CircleOffset>(n.a, n.b, n.c, n.d);
     }},
};

using UpdaterPointer = std::unique_ptr<Updaters::ParticleUpdater>;

constexpr NamedPolicy<Updaters::ParticleUpdater> kUpdaters[] = {
    {"Drag",
     [](lua_State* L, const ParticleSystem&) -> UpdaterPointer
     { return std::make_unique<Updaters::DragUpdater>(CheckFloat(L, 3)); }},
    {"Position",
     [](lua_State*, const ParticleSystem&) -> UpdaterPointer
     { return std::make_unique<Updaters::PositionUpdater>(); }},
    {"Vortex",
     [](lua_State* L, const ParticleSystem&) -> UpdaterPointer
     {
         const Vec2 centre = Lua::CheckVec2(L, 3);
         const float strength = CheckFloat(L, 5);
         return std::make_unique<Updaters::VortexUpdater>(centre, strength);
     }},
    {"FadeIn",
     [](lua_State* L, const ParticleSystem&) -> UpdaterPointer
     { return std::make_unique<Updaters::FadeInUpdater>(CheckFloat(L, 3)); }},
    {"ScaleIn",
     [](lua_State* L, const ParticleSystem&) -> UpdaterPointer
     { return std::make_unique<Updaters::ScaleInUpdater>(CheckFloat(L, 3)); }},
    {"LinearScale",
     [](lua_State* L, const ParticleSystem&) -> UpdaterPointer
     { return std::make_unique<Updaters::LinearScaleUpdater>(CheckFloat(L, 3)); }},
    {"Force",
     [](lua_State* L, const ParticleSystem&) -> UpdaterPointer
     { return std::make_unique<Updaters::ForceUpdater>(Lua::CheckVec2(L, 3)); }},
};

using TerminatorPointer = std::unique_ptr<Terminators::ParticleTerminator>;

constexpr NamedPolicy<Terminators::ParticleTerminator> kTerminators[] = {
    {"Basic",
     [](lua_State*, const ParticleSystem&) -> TerminatorPointer
     { return std::make_unique<Terminators::BasicTerminator>(); }},
    {"FadeOut",
     [](lua_State* L, const ParticleSystem&) -> TerminatorPointer
     {
         // A fade of no time would divide by 0.
         const float time = CheckFloat(L, 3);
         return std::make_unique<Terminators::FadeOut>(time == 0.0f ? 0.0001f : time);
     }},
    {"ScaleOut",
     [](lua_State* L, const ParticleSystem&) -> TerminatorPointer
     { return std::make_unique<Terminators::ScaleOut>(CheckFloat(L, 3)); }},
};

int SetEmitter(lua_State* L)
{
    ParticleComponent& component = Lua::CheckParticle(L);
    component.system.emitter = MakeNamed(L, component.system, kEmitters, "Emitter type: %s not found");
    return 0;
}

int SetInitializer(lua_State* L)
{
    ParticleComponent& component = Lua::CheckParticle(L);
    component.system.initializers.push_back(
        MakeNamed(L, component.system, kInitializers, "Initializer type: %s not found"));
    return 0;
}

int SetOffset(lua_State* L)
{
    ParticleComponent& component = Lua::CheckParticle(L);
    component.system.initializers.push_back(
        MakeNamed(L, component.system, kOffsets, "Offset type:%s not found"));
    return 0;
}

int AddUpdater(lua_State* L)
{
    ParticleComponent& component = Lua::CheckParticle(L);
    component.system.updaters.push_back(
        MakeNamed(L, component.system, kUpdaters, "Updater type: %s not found"));
    return 0;
}

// Shares its message with SetEmitter.
int SetTerminator(lua_State* L)
{
    ParticleComponent& component = Lua::CheckParticle(L);
    component.system.terminator = MakeNamed(L, component.system, kTerminators, "Emitter type: %s not found");
    return 0;
}

int SetBlendMode(lua_State* L)
{
    static constexpr const char* kBlendModes[] = {"Normal", "Additive", "Subtractive"};
    ParticleComponent& component = Lua::CheckParticle(L);
    const char* name = luaL_checkstring(L, 2);
    for (int32_t mode = 0; mode < static_cast<int32_t>(std::size(kBlendModes)); ++mode)
    {
        if (std::strcmp(kBlendModes[mode], name) == 0)
        {
            component.system.blendMode = mode;
            return 0;
        }
    }
    return luaL_error(L, "BlendMode:%s not found", name);
}

// Frames accumulate over calls, as a sprite's do; only the first is drawn.
int SetFrames(lua_State* L)
{
    ParticleComponent& component = Lua::CheckParticle(L);
    const int top = lua_gettop(L);
    for (int index = 2; index <= top; ++index)
    {
        const char* path = luaL_checkstring(L, index);
        Components::Graphics::LoadFrame(component.frames, component.uvs, path);
    }
    if (!component.frames.empty())
    {
        component.system.texture = component.frames.front();
    }
    return 0;
}

// Adds to the pending pulses as 32-bit integers that wrap: a negative count takes away.
int Pulse(lua_State* L)
{
    ParticleComponent& component = Lua::CheckParticle(L);
    const auto count = static_cast<uint32_t>(luaL_checkinteger(L, 2));
    component.system.pendingPulses =
        static_cast<int32_t>(static_cast<uint32_t>(component.system.pendingPulses) + count);
    return 0;
}

constexpr luaL_Reg kParticleFunctions[] = {
    {"SetEmitter", SetEmitter},
    {"SetInitializer", SetInitializer},
    {"SetOffset", SetOffset},
    {"AddUpdater", AddUpdater},
    {"SetUpdater", AddUpdater},
    {"SetUpdater0", AddUpdater},
    {"SetUpdater1", AddUpdater},
    {"SetUpdater2", AddUpdater},
    {"SetUpdater3", AddUpdater},
    {"SetUpdater4", AddUpdater},
    {"SetUpdater5", AddUpdater},
    {"SetUpdater6", AddUpdater},
    {"SetUpdater7", AddUpdater},
    {"SetUpdater8", AddUpdater},
    {"SetUpdater9", AddUpdater},
    {"SetTerminator", SetTerminator},
    {"SetBlendMode", SetBlendMode},
    {"SetFrames", SetFrames},
    {"Pulse", Pulse},
    {nullptr, nullptr},
};

} // namespace

void RegisterParticleScriptType(lua_State* L)
{
    Lua::RegisterMethodType(L, "Particle", kParticleFunctions);
}

} // namespace Graphics
