#include "Support/MisuseRun.h"
#include "Support/ScriptScenario.h"

#include <gtest/gtest.h>

namespace
{

// The hostile calls in a game that draws: the drawables' functions and the Graphics table join the
// surface, and every frame draws what the calls left.
class HostileDrawingScripts : public ScriptScenario
{
protected:
    HostileDrawingScripts() : ScriptScenario(true) {}
};

TEST_F(HostileDrawingScripts, HostileCallsOnTheDrawingSurfaceLeaveTheEngineRunning)
{
    ExpectHostileCallsLeaveTheEngineRunning(game, 20261125, 20000);
    EXPECT_GT(game.graphics.textures.size(), 2u) << "beside the font, the sprites' checkerboard was drawn";
}

} // namespace
