#include "Core/Window.h"
#include "Graphics/GLContext.h"
#include "Graphics/GraphicsSystem.h"
#include "Input/InputSystem.h"
#include "Support/LogCapture.h"
#include "Support/OffscreenWindow.h"
#include "Support/RaiseCheck.h"
#include "Support/TempFolder.h"

#include <array>
#include <epoxy/gl.h>
#include <gtest/gtest.h>

namespace
{

// A window with the graphics system's context current on this thread, started in a Data folder with the
// shipped shaders and font.
class GLContext : public testing::Test
{
protected:
    GLContext() : cwd(data.Path()), window(OpenOffscreenWindow(800, 600)) { CopyDrawingData(data.Path()); }

    void SetUp() override
    {
        LogCapture capture;
        ASSERT_TRUE(graphics.Initialise(window.get()));
        EXPECT_EQ(capture.Messages("Graphics", LogLevel::Debug),
                  (std::vector<std::string>{"Started GL function Grab", "Finished GL function Grab"}));
    }

    void TearDown() override { graphics.Shutdown(); }

    TempFolder data;
    ScopedWorkingDirectory cwd;
    std::unique_ptr<Core::Window> window;
    Graphics::GraphicsSystem graphics;
};

TEST_F(GLContext, ErrorChecksReportOnePendingErrorByNameAndPlace)
{
    LogCapture capture;
    Graphics::CheckGLError("Quiet.cpp", 1);
    EXPECT_EQ(capture.Entries().size(), 0u);

    glEnable(0xFFFF);
    Graphics::CheckGLError("Here.cpp", 42);
    Graphics::CheckGLError("Clean.cpp", 9);
    glEnable(0xFFFF);
    Graphics::CheckGLError(nullptr, 7);
    EXPECT_EQ(capture.Messages("Graphics", LogLevel::Error),
              (std::vector<std::string>{"OpenGL error: Invalid Enum (1280) File: Here.cpp Line: 42",
                                        "OpenGL error: Invalid Enum (1280) File: NULL Line: 7"}));
}

TEST(GLErrorString, NamesTheKnownCodesAndNoOthers)
{
    const std::pair<uint32_t, const char*> names[] = {{0, "No error"},           {1280, "Invalid Enum"},
                                                      {1281, "Invalid Value"},   {1282, "Invalid Operation"},
                                                      {1283, "Stack Overflow"},  {1284, "Stack Underflow"},
                                                      {1285, "Out of Memory"},   {1286, "Unknown Error"},
                                                      {32817, "Table Too Large"}};
    for (const auto& [code, name] : names)
    {
        EXPECT_STREQ(Graphics::GLErrorString(code), name) << code;
    }
}

TEST_F(GLContext, AClearedFrameHoldsTheClearColourAndResizeSetsViewportAspectAndProjection)
{
    graphics.Resize(800, 600);
    glClearColor(0.25f, 0.5f, 0.75f, 1.0f);
    graphics.ClearFrame();
    std::array<unsigned char, 4> pixel{};
    glReadPixels(400, 300, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_NEAR(pixel[0], 64, 1);
    EXPECT_NEAR(pixel[1], 128, 1);
    EXPECT_NEAR(pixel[2], 191, 1);
    LogCapture capture;
    Graphics::PresentFrame(graphics);
    EXPECT_EQ(capture.Count(LogLevel::Error), 0u);

    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 800, 600}));
    EXPECT_EQ(graphics.aspect, 0.75f);
    std::array<GLfloat, 16> projection{};
    glGetFloatv(GL_PROJECTION_MATRIX, projection.data());
    EXPECT_FLOAT_EQ(projection[0], 2.0f / (20.0f / 0.75f));
    EXPECT_FLOAT_EQ(projection[5], 0.1f);

    const Vec2 centre = graphics.ScreenToWorld(Vec2{400.0f, 300.0f});
    EXPECT_EQ(centre, (Vec2{0.0f, 0.0f}));
    const Vec2 corner = graphics.ScreenToWorld(Vec2{0.0f, 0.0f});
    EXPECT_NEAR(corner.x, -13.333333f, 1e-5f);
    EXPECT_EQ(corner.y, 10.0f);

    graphics.SetCamera(Vec2{1.0f, 2.0f}, 10.0f);
    graphics.Resize(0, 600);
    EXPECT_EQ(graphics.screenWidth, 800u) << "a minimised window's zero size changes nothing";
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport[2], 800);
    glGetFloatv(GL_PROJECTION_MATRIX, projection.data());
    EXPECT_FLOAT_EQ(projection[5], 0.2f);
    EXPECT_FLOAT_EQ(projection[13], -0.4f) << "the camera's centre moves the view";
}

TEST_F(GLContext, DestroyingTwiceIsHarmlessAndAPresentWithoutContextIsFatal)
{
    Graphics::DestroyGLContext(graphics);
    EXPECT_EQ(graphics.deviceContext, nullptr);
    EXPECT_EQ(graphics.renderContext, nullptr);
    Graphics::DestroyGLContext(graphics);
    EXPECT_EQ(graphics.renderContext, nullptr);
    ExpectRaise([&] { Graphics::PresentFrame(graphics); }, "Graphics",
                "Failed to swap Buffers: Device context has not been created yet!");
}

TEST(GLContextCreation, GraphicsAndInputRefuseAMissingOrMovedFromWindow)
{
    {
        Graphics::GraphicsSystem graphics;
        const LogCapture capture;
        EXPECT_FALSE(graphics.Initialise(nullptr));
        EXPECT_EQ(capture.Messages("Graphics", LogLevel::Error),
                  std::vector<std::string>{"Failed to Initialize: No Window passed"});
    }
    Input::InputSystem input;
    ExpectRaise([&] { input.Initialise(nullptr); }, "InputSystem",
                "Tried to intiailise input with a NULL window");
    std::unique_ptr<Core::Window> window = OpenOffscreenWindow();
    Core::Window moved(std::move(*window));
    ExpectRaise([&] { input.Initialise(window.get()); }, "InputSystem",
                "Tried to initialise input with a window with bad handle");
}

} // namespace
