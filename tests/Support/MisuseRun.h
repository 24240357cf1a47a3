#pragma once

// A seeded run of the hostile call generator on a started game, as a test: every call comes back through
// its pcall, the main stack stays where it was, calls both succeed and fail, and frames run between them.

#include <cstdint>

namespace Core
{
class Game;
}

void ExpectHostileCallsLeaveTheEngineRunning(Core::Game& game, uint32_t seed, int steps);
