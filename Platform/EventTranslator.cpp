#include "Platform/EventTranslator.h"

#include "Input/EventQueue.h"
#include "Platform/KeyCodes.h"

#include <SDL.h>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace Platform
{
namespace
{

using Input::EventKind;
using Input::InputEvent;

// The character that a key types besides its text: these keys type control characters on Windows, which
// scripts read for editing. 0 for all other keys.
int32_t ControlCharacterOf(SDL_Keycode keycode)
{
    switch (keycode)
    {
    case SDLK_BACKSPACE:
        return 8;
    case SDLK_TAB:
        return 9;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
        return 13;
    case SDLK_ESCAPE:
        return 27;
    default:
        return 0;
    }
}

// One code point from UTF-8 text; malformed bytes read as U+FFFD one byte at a time.
char32_t NextCodePoint(const unsigned char*& text)
{
    constexpr char32_t kReplacement = 0xFFFD;
    const unsigned char lead = *text++;
    int continuation = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if (lead >= 0x80 && continuation == 0)
    {
        return kReplacement;
    }
    char32_t point = continuation == 0 ? lead : lead & (0x3F >> continuation);
    for (; continuation > 0; --continuation)
    {
        if ((*text & 0xC0) != 0x80)
        {
            return kReplacement;
        }
        point = point << 6 | (*text++ & 0x3F);
    }
    return point;
}

// One "Char" per UTF-16 unit of the text, as the Windows message would deliver it.
void PushCharacters(const char* text, Input::EventQueue& queue)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    while (*bytes != 0)
    {
        const char32_t point = NextCodePoint(bytes);
        if (point < 0x10000)
        {
            queue.Push(MakeEvent(EventKind::Char, static_cast<int32_t>(point)));
            continue;
        }
        const char32_t offset = point - 0x10000;
        queue.Push(MakeEvent(EventKind::Char, static_cast<int32_t>(0xD800 + (offset >> 10))));
        queue.Push(MakeEvent(EventKind::Char, static_cast<int32_t>(0xDC00 + (offset & 0x3FF))));
    }
}

// The engine numbers the buttons left, right, middle; 0 for one it doesn't know.
int32_t ButtonOf(uint8_t button)
{
    switch (button)
    {
    case SDL_BUTTON_LEFT:
        return 1;
    case SDL_BUTTON_RIGHT:
        return 2;
    case SDL_BUTTON_MIDDLE:
        return 3;
    default:
        return 0;
    }
}

void FreeDropStrings(const SDL_Event& event)
{
    if (event.type == SDL_DROPFILE || event.type == SDL_DROPTEXT)
    {
        SDL_free(event.drop.file);
    }
}

} // namespace

void EventTranslator::Translate(const SDL_Event& event, SDL_Window* window, Input::EventQueue* queue)
{
    if (queue == nullptr)
    {
        FreeDropStrings(event);
        return;
    }
    switch (event.type)
    {
    case SDL_QUIT:
        queue->Push(MakeEvent(EventKind::Quit));
        break;
    case SDL_WINDOWEVENT:
        TranslateWindowEvent(event, window, *queue);
        break;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        TranslateKey(event, *queue);
        break;
    case SDL_TEXTINPUT:
        PushCharacters(event.text.text, *queue);
        break;
    case SDL_MOUSEMOTION:
        queue->Push(MakeEvent(EventKind::MouseMove, event.motion.x, event.motion.y));
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        if (const int32_t button = ButtonOf(event.button.button); button != 0)
        {
            const EventKind kind =
                event.type == SDL_MOUSEBUTTONDOWN ? EventKind::MouseDown : EventKind::MouseUp;
            queue->Push(MakeEvent(kind, event.button.x, event.button.y, button));
        }
        break;
    case SDL_MOUSEWHEEL:
        if (event.wheel.y != 0)
        {
            const bool away = (event.wheel.y > 0) != (event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED);
            queue->Push(MakeSwitch(EventKind::MouseWheel, away));
        }
        break;
    case SDL_DROPBEGIN:
    case SDL_DROPFILE:
    case SDL_DROPTEXT:
    case SDL_DROPCOMPLETE:
        TranslateDrop(event, window, *queue);
        break;
    default:
        break;
    }
}

void EventTranslator::TranslateWindowEvent(const SDL_Event& event, SDL_Window* window,
                                           Input::EventQueue& queue)
{
    switch (event.window.event)
    {
    case SDL_WINDOWEVENT_CLOSE:
        queue.Push(MakeEvent(EventKind::Close));
        break;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
        if (window != nullptr && (SDL_GetWindowFlags(window) & SDL_WINDOW_MINIMIZED) != 0)
        {
            SDL_RestoreWindow(window);
        }
        queue.Push(MakeSwitch(EventKind::Activate, true));
        break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        queue.Push(MakeSwitch(EventKind::Activate, false));
        break;
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        if (event.window.data1 != lastWidth || event.window.data2 != lastHeight)
        {
            PushSize(queue, event.window.data1, event.window.data2);
        }
        break;
    case SDL_WINDOWEVENT_MINIMIZED:
        PushSize(queue, 0, 0);
        queue.Push(MakeEvent(EventKind::Minimize));
        break;
    case SDL_WINDOWEVENT_RESTORED:
        PushWindowSize(queue, window);
        break;
    case SDL_WINDOWEVENT_SHOWN:
        // The first showing reports the size, so the renderer learns it before any change.
        if (!shown)
        {
            shown = true;
            PushWindowSize(queue, window, true);
        }
        break;
    default:
        break;
    }
}

void EventTranslator::TranslateKey(const SDL_Event& event, Input::EventQueue& queue)
{
    const SDL_Keysym& key = event.key.keysym;
    const int32_t virtualKey = VirtualKeyOf(key.sym);
    // F10 alone opens the window menu on Windows and never reaches the game.
    const bool menuKey = key.sym == SDLK_F10 && (key.mod & KMOD_ALT) == 0;
    if (virtualKey == 0 || menuKey)
    {
        return;
    }
    if (event.type == SDL_KEYUP)
    {
        queue.Push(MakeEvent(EventKind::KeyUp, virtualKey));
        return;
    }
    if (event.key.repeat == 0)
    {
        queue.Push(MakeEvent(EventKind::KeyDown, virtualKey));
    }
    if (const int32_t character = ControlCharacterOf(key.sym); character != 0)
    {
        queue.Push(MakeEvent(EventKind::Char, character));
    }
}

void EventTranslator::TranslateDrop(const SDL_Event& event, SDL_Window* window, Input::EventQueue& queue)
{
    if (!dropOpen)
    {
        // Every file of one drop shares the point where it was let go.
        int32_t mouseX = 0;
        int32_t mouseY = 0;
        int32_t windowX = 0;
        int32_t windowY = 0;
        SDL_GetGlobalMouseState(&mouseX, &mouseY);
        if (window != nullptr)
        {
            SDL_GetWindowPosition(window, &windowX, &windowY);
        }
        dropX = mouseX - windowX;
        dropY = mouseY - windowY;
        dropOpen = true;
        dropHadFile = false;
    }
    if (event.type == SDL_DROPFILE && event.drop.file != nullptr)
    {
        const std::string path = RelativeToData(event.drop.file);
        queue.Push(Input::MakeDrop(Input::CopyPath(path.data(), path.size()), dropX, dropY));
        dropHadFile = true;
    }
    FreeDropStrings(event);
    if (event.type != SDL_DROPCOMPLETE)
    {
        return;
    }
    dropOpen = false;
    if (!dropHadFile)
    {
        queue.Push(Input::MakeDrop(nullptr, dropX, dropY));
    }
}

void EventTranslator::PushWindowSize(Input::EventQueue& queue, SDL_Window* window, bool onlyIfNew)
{
    int32_t width = 0;
    int32_t height = 0;
    if (window != nullptr)
    {
        SDL_GetWindowSize(window, &width, &height);
    }
    if (!onlyIfNew || width != lastWidth || height != lastHeight)
    {
        PushSize(queue, width, height);
    }
}

void EventTranslator::PushSize(Input::EventQueue& queue, int32_t width, int32_t height)
{
    lastWidth = width;
    lastHeight = height;
    queue.Push(MakeEvent(EventKind::SizeChanged, width, height));
}

std::string EventTranslator::RelativeToData(const char* file)
{
    std::error_code error;
    if (dataFolder.empty())
    {
        dataFolder = std::filesystem::current_path(error).string();
    }
    const std::filesystem::path relative = std::filesystem::relative(file, dataFolder, error);
    if (error || relative.empty())
    {
        return file;
    }
    return relative.generic_string();
}

} // namespace Platform
