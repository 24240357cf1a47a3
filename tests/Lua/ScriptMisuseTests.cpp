#include "Support/MisuseRun.h"
#include "Support/ScriptScenario.h"

#include <gtest/gtest.h>

namespace
{

using HostileScripts = ScriptScenario;

// Thousands of seeded hostile calls on the whole script surface, frames between them, while the sanitizers
// of the debug build watch memory.
TEST_F(HostileScripts, HostileCallsOnTheScriptSurfaceLeaveTheEngineRunningAndTheStackBalanced)
{
    ExpectHostileCallsLeaveTheEngineRunning(game, 20261123, 50000);
}

} // namespace
