#include "Components/Space.h"
#include "Debug/Profile.h"
#include "Graphics/Bitmap.h"
#include "Graphics/GraphicsSystem.h"
#include "Support/OffscreenWindow.h"
#include "Support/RaiseCheck.h"
#include "Support/ScriptScenario.h"
#include "Support/TempFolder.h"

#include <cmath>
#include <gtest/gtest.h>
#include <lua.hpp>

namespace
{

using Graphics::Colour;
using Graphics::DebugLine;
using Graphics::DebugSquare;

std::vector<uint8_t> Bytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

// A started graphics system on an 800 × 600 window, in a Data folder with the shipped shaders and font
// unless a test writes its own before Start.
class Drawing : public testing::Test
{
protected:
    Drawing() : cwd(data.Path()), window(OpenOffscreenWindow(800, 600)) {}

    void Start()
    {
        graphics.Initialise(window.get());
        graphics.Resize(800, 600);
        started = true;
    }

    void TearDown() override
    {
        if (started)
        {
            graphics.Shutdown();
        }
    }

    TempFolder data;
    ScopedWorkingDirectory cwd;
    std::unique_ptr<Core::Window> window;
    Graphics::GraphicsSystem graphics;
    bool started = false;
};

// The Graphics lines of a start, as "level: text", the GL error's place and the compiler's log cut off.
std::vector<std::string> GraphicsLines(const LogCapture& capture)
{
    std::vector<std::string> lines;
    for (const LogEntry& entry : capture.Entries())
    {
        if (entry.category == "Graphics" && entry.level != LogLevel::Debug)
        {
            std::string head = entry.message.substr(0, entry.message.find('\n'));
            head = head.substr(0, head.find(" File:"));
            if (head.starts_with("Failed to link"))
            {
                head = head.substr(0, head.find("\": ") + 3);
            }
            lines.push_back(std::string(LogLevelName(entry.level)) + ": " + head);
        }
    }
    return lines;
}

TEST_F(Drawing, ShaderFailuresAreLoggedInOrderAndTheEngineGoesOn)
{
    const std::string vertex = ReadFile(std::filesystem::path(QUELLMAR_SHIPPED_DATA) / "Shaders/Vert.glsl");
    const std::string fragment = ReadFile(std::filesystem::path(QUELLMAR_SHIPPED_DATA) / "Shaders/Frag.glsl");
    const std::string noPosition = "#version 330 compatibility\nvoid main() { gl_Position = gl_Vertex; }\n";
    // Compiles, but a program can't link without a main.
    const std::string noMain = "#version 330 compatibility\nlayout(location = 0) in vec2 position;\n";
    struct Case
    {
        const char* name;
        std::string vertexSource;
        std::string fragmentSource;
        std::vector<std::string> lines;
    };
    const std::vector<Case> cases = {
        {"both missing",
         "",
         "",
         {"Error: Failed to compile Shader!", "Error: Failed to compile Shader!",
          "Error: Failed to Create program \"Texture Shader\": Vertex shader failed to compile",
          "Error: OpenGL error: Invalid Operation (1282)"}},
        {"malformed fragment",
         vertex,
         "#version 330 compatibility\nnot glsl",
         {"Error: Failed to compile Shader!",
          "Error: Failed to Create program \"Texture Shader\": Fragment shader failed to compile",
          "Error: OpenGL error: Invalid Operation (1282)"}},
        {"no position",
         noPosition,
         fragment,
         {"Warning:  Shader Program \"Texture Shader\" does not use \"position\""}},
        {"unlinkable",
         noMain,
         fragment,
         {"Warning:  Shader Program \"Texture Shader\" does not use \"position\"",
          "Error: OpenGL error: Invalid Operation (1282)", "Error: OpenGL error: Invalid Operation (1282)",
          "Error: Failed to link program \"Texture Shader\": ",
          "Error: OpenGL error: Invalid Operation (1282)"}},
    };
    CopyDrawingData(data.Path());
    for (const Case& row : cases)
    {
        data.Write("Shaders/Vert.glsl", Bytes(row.vertexSource));
        data.Write("Shaders/Frag.glsl", Bytes(row.fragmentSource));
        LogCapture capture;
        Graphics::GraphicsSystem system;
        ASSERT_TRUE(system.Initialise(window.get())) << row.name;
        EXPECT_EQ(system.debugProgram.id != 0, true) << row.name;
        EXPECT_EQ(GraphicsLines(capture), row.lines) << row.name;
        system.Shutdown();
    }
}

TEST_F(Drawing, ReleasingTexturesDropsOnlyThoseNothingElseHolds)
{
    CopyDrawingData(data.Path());
    Start();
    auto pixels = [] { return std::make_unique<uint8_t[]>(4); };
    auto kept = std::make_shared<Graphics::Bitmap>(1, 1, pixels(), "kept");
    auto dropped = std::make_shared<Graphics::Bitmap>(1, 1, pixels(), "dropped");
    graphics.UploadTexture(kept);
    graphics.UploadTexture(dropped);
    dropped.reset();
    LogCapture capture;
    EXPECT_EQ(graphics.ReleaseUnusedTextures(), 1u);
    EXPECT_EQ(graphics.ReleaseUnusedTextures(), 0u);
    ASSERT_EQ(graphics.textures.size(), 3u) << "the font stands twice and can't go";
    EXPECT_NE(kept->texture, 0u);
    {
        Graphics::Bitmap onCard(1, 1, pixels(), "card.png");
        onCard.texture = 7;
    }
    EXPECT_EQ(capture.Messages("Graphics", LogLevel::Error),
              std::vector<std::string>{"Bitmap texture handle leaked!"})
        << "only a bitmap that dies with its texture on the card is reported";
}

// Arrow heads scale with short arrows only; profile bars stand in rows and go red with their share.
TEST_F(Drawing, ArrowHeadsAndProfileBars)
{
    const Colour black{0.0f, 0.0f, 0.0f, 1.0f};
    graphics.AddDebugArrow(Vec2{0.0f, 0.0f}, Vec2{0.5f, 0.0f}, black);
    graphics.AddDebugArrow(Vec2{0.0f, 0.0f}, Vec2{0.0f, 3.0f}, black);
    graphics.AddDebugArrow(Vec2{1.0f, 1.0f}, Vec2{1.0f, 1.0f}, black);
    ASSERT_EQ(graphics.debugLines.size(), 9u);
    const std::vector<DebugLine>& lines = graphics.debugLines;
    EXPECT_EQ(lines[1].end, (Vec2{0.375f, -0.125f}));
    EXPECT_EQ(lines[2].end, (Vec2{0.375f, 0.125f}));
    EXPECT_EQ(lines[4].end, (Vec2{0.25f, 2.75f}));
    EXPECT_EQ(lines[5].end, (Vec2{-0.25f, 2.75f}));
    EXPECT_TRUE(std::isnan(lines[7].end.x)) << "a zero-length arrow has no usable head, and nothing fails";

    CopyDrawingData(data.Path());
    Start();
    // Root (100) holds A (75) and B (25); A holds C (50), which stands in the row above A.
    const std::vector<Debug::ProfileRecord> records = {
        {"Root", 100, {1, 2}}, {"A", 75, {3}}, {"B", 25, {}}, {"C", 50, {}}};
    graphics.DrawProfile(records);
    ASSERT_EQ(graphics.debugSquares.size(), 3u);
    const float row = 32.0f / 600.0f * 20.0f;
    const float left = -20.0f / 0.75f / 2.0f;
    const struct
    {
        float centreX, width, f, bottom;
    } bars[] = {{left + 13.333333f / 2.0f, 13.333333f, 0.5f, -10.0f + row},
                {left + 10.0f, 20.0f, 0.75f, -10.0f},
                {left + 20.0f + 10.0f / 3.0f, 20.0f / 3.0f, 0.25f, -10.0f}};
    for (size_t index = 0; index < 3; ++index)
    {
        const DebugSquare& square = graphics.debugSquares[index];
        EXPECT_NEAR(square.position.x, bars[index].centreX, 1e-4f) << index;
        EXPECT_NEAR(square.position.y, bars[index].bottom + row / 2.0f, 1e-4f) << index;
        EXPECT_NEAR(square.size.x, bars[index].width, 1e-4f) << index;
        EXPECT_FLOAT_EQ(square.colour.r, bars[index].f) << index;
        EXPECT_FLOAT_EQ(square.colour.g, 1.0f - bars[index].f) << index;
    }
}

TEST_F(Drawing, DrawablesWithoutTheirTransformReportItAndASquareEndsTheGame)
{
    CopyDrawingData(data.Path());
    Start();
    Space space;
    GameObject& object = space.CreateObject().Get();
    auto& square = space.squares.components.at(object.AddComponent(Components::Square));
    auto& sprite = space.sprites.components.at(object.AddComponent(Components::Sprite));
    auto& text = space.textSprites.components.at(object.AddComponent(Components::TextSprite));
    sprite.frames.push_back(graphics.font);
    text.text = "x";
    square.transform = sprite.transform = text.transform = Handle{};
    {
        LogCapture capture;
        sprite.Draw(graphics, space);
        text.Draw(graphics, space);
        EXPECT_EQ(capture.Messages("Components", LogLevel::Error),
                  (std::vector<std::string>{"Sprite has no transform!", "TextSprite has no transform!"}));
    }
    ExpectRaise([&] { square.Draw(graphics, space); }, "Graphics", "Square comopnent has no transform!");
}

class DrawingScripts : public ScriptScenario
{
protected:
    DrawingScripts() : ScriptScenario(true) {}
};

TEST_F(DrawingScripts, EveryFunctionReadsItsArgumentsAndReportsItsFailures)
{
    ASSERT_EQ(Run("o = MainSpace:CreateObject({ Name = 'T' }) s = o:AddComponent('Sprite') "
                  "q = o:AddComponent('Square') t = o:AddComponent('TextSprite') "
                  "function all(...) return table.concat({...}, ',') end"),
              "");
    const struct
    {
        const char* chunk;
        const char* outcome;
    } rows[] = {
        {"return all(s:NumFrames(), select('#', s:GetFrames()), s:GetUV())", "0,0,0.0,0.0,1.0,1.0"},
        {"return all(table.unpack(s:GetAllMembers()))", "Frames,UV,Colour,Visible"},
        {"return all(table.unpack(q:GetAllMembers()))", "Colour,Visible"},
        {"return all(table.unpack(t:GetAllMembers()))", "Text,Colour,Visible"},
        {"s:SetUV(0.25, 0.5, 0.75, 1) return all(s:GetUV())", "0.25,0.5,0.75,1.0"},
        {"s:SetFrame(1)", "bad argument #1 to 'SetFrame' (Frame out of range)"},
        {"s:SetFrames('Fonts/font.png', 'Fonts/font.png') s:LoadFrame('Fonts/font.png') s:SetFrames() "
         "return all(s:GetNumFrames(), s:GetFrames())",
         "3,Fonts/font.png,Fonts/font.png,Fonts/font.png"},
        {"s:SetFrame(0)", "bad argument #1 to 'SetFrame' (Frame out of range)"},
        {"s:SetFrame(4)", "bad argument #1 to 'SetFrame' (Frame out of range)"},
        {"s:SetFrame(2) s:SetUV(0, 0, 0.5, 0.5) return all(s:GetUV())", "0.25,0.5,0.75,1.0"},
        {"s:SetFrameUV(3, 0, 0, 1, 1)", "bad argument #1 to 'SetFrameUV' (Sprite frame index out of range)"},
        {"s:SetFrameUV(-1, 0, 0, 1, 1)", "bad argument #1 to 'SetFrameUV' (Sprite frame index out of range)"},
        {"s:SetFrameUV(2, 0, 0, 1)", "bad argument #5 to 'SetFrameUV' (number expected, got no value)"},
        {"s:SetColour(1, 0, 0, 0.5) s:SetColor('1', 0, 0) return all(s:GetColor())", "1.0,0.0,0.0,1.0"},
        {"q:SetColor(0, 0, 1, 0.5) return all(q:GetColour())", "0.0,0.0,1.0,0.5"},
        {"t:SetColour(1, 1, 1, 0.5) t:SetColour(0, 1, 0) return all(t:GetColour())", "0.0,1.0,0.0,0.5"},
        {"t:SetText('a\\0b') return t:GetText()", "a"},
        {"s:SetVisible(nil)", "bad argument #1 to 'SetVisible' (boolean expected, got nil)"},
        {"q:SetVisible(false) return all(tostring(q:GetVisible()), tostring(q:IsVisible()))", "false,false"},
        {"s.NumFrames(q)", "bad argument #1 to 'NumFrames' (Sprite expected, got Square)"},
        {"return all(Graphics:GetScreenSize())", "0,0"},
        {"Graphics:SetCamera(1, 2) return all(Graphics:GetCamera())", "1.0,2.0,20.0"},
        {"Graphics.SetCamera(1, 2)", "bad argument #3 to 'SetCamera' (number expected, got no value)"},
        {"Graphics:DebugDrawRect(0, 0, 1, 1, 1, 0, 0, nil, nil, 1)",
         "bad argument #10 to 'DebugDrawRect' (boolean expected, got number)"},
        {"Graphics:DebugDrawText(0, 0, 'hi', 1)",
         "bad argument #5 to 'DebugDrawText' (number expected, got no value)"},
        {"Graphics:DebugDrawText(0, 0, 'hi') Graphics:DebugDrawText(0, 0, 'hi', 1, 0, 0)", "nil"},
        {"Graphics:Screenshot({})", "bad argument #1 to 'Screenshot' (string expected, got table)"},
        {"Game.Graphics:SetClearColour(0, 0, 0) Game.Graphics:SetClearColor(1, 1)",
         "bad argument #3 to 'SetClearColor' (number expected, got no value)"},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(Outcome(row.chunk), row.outcome) << row.chunk;
    }
    EXPECT_EQ(Outcome("Graphics:DebugDrawRect(1, 2, 2, 1, 0, 1, 0, 0.5, 0.7853982, true)"), "nil");
    const DebugSquare& queued = game.graphics.debugSquares.back();
    EXPECT_EQ(queued.position, (Vec2{1.0f, 2.0f}));
    EXPECT_EQ(queued.size, (Vec2{2.0f, 1.0f}));
    EXPECT_EQ(queued.colour.a, 0.5f);
    EXPECT_EQ(queued.rotation, 0.7853982f);
    EXPECT_TRUE(queued.outline);

    Frame(1.0 / 60.0);
    EXPECT_TRUE(game.graphics.debugSquares.empty()) << "the frame drains the queue";
    EXPECT_EQ(log.Messages("Graphics", LogLevel::Error), std::vector<std::string>{});
    ASSERT_EQ(Run("o:Destroy()"), "");
    Frame(1.0 / 60.0);
    EXPECT_EQ(Outcome("s:GetFrames()"), "Sprite component is null");
    EXPECT_EQ(Outcome("t:GetText()"), "Transform component is null");
}

} // namespace
