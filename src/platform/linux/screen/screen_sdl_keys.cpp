// Keys of the desktop as keys of the screen.
#include "platform/linux/screen/screen_sdl.h"
#include "platform/user.h"

#include <map>

namespace zb::internal
{
namespace
{
const std::map<SDL_Keycode, int> &namedKeys()
{
    static const std::map<SDL_Keycode, int> keys = {
        {SDLK_BACKSPACE, VK_BACK}, {SDLK_TAB, VK_TAB},        {SDLK_RETURN, VK_RETURN}, {SDLK_RETURN2, VK_RETURN},
        {SDLK_KP_ENTER, VK_RETURN}, {SDLK_ESCAPE, VK_ESCAPE}, {SDLK_SPACE, VK_SPACE},   {SDLK_PAGEUP, VK_PRIOR},
        {SDLK_PAGEDOWN, VK_NEXT},  {SDLK_END, VK_END},        {SDLK_HOME, VK_HOME},     {SDLK_LEFT, VK_LEFT},
        {SDLK_UP, VK_UP},          {SDLK_RIGHT, VK_RIGHT},    {SDLK_DOWN, VK_DOWN},     {SDLK_DELETE, VK_DELETE},
        {SDLK_LSHIFT, VK_SHIFT},   {SDLK_RSHIFT, VK_SHIFT},   {SDLK_LCTRL, VK_CONTROL}, {SDLK_RCTRL, VK_CONTROL},
        {SDLK_LALT, VK_MENU}};
    return keys;
}

/// Keys of the number block while it does not give numbers.
const std::map<SDL_Keycode, int> &blockKeys()
{
    static const std::map<SDL_Keycode, int> keys = {
        {SDLK_KP_1, VK_END},   {SDLK_KP_2, VK_DOWN}, {SDLK_KP_3, VK_NEXT}, {SDLK_KP_4, VK_LEFT},       {SDLK_KP_6, VK_RIGHT},
        {SDLK_KP_7, VK_HOME},  {SDLK_KP_8, VK_UP},   {SDLK_KP_9, VK_PRIOR}, {SDLK_KP_PERIOD, VK_DELETE}};
    return keys;
}

/// 0 to 9 on the number block, -1 for anything else.
int blockDigit(SDL_Keycode key)
{
    if (key == SDLK_KP_0)
    {
        return 0;
    }
    return key >= SDLK_KP_1 && key <= SDLK_KP_9 ? key - SDLK_KP_1 + 1 : -1;
}

bool givesNumbers(const SDL_Keysym &key)
{
    return (key.mod & KMOD_NUM) != 0;
}
} // namespace

int keyNumber(const SDL_Keysym &key)
{
    if (const auto found = namedKeys().find(key.sym); found != namedKeys().end())
    {
        return found->second;
    }
    if (key.sym >= SDLK_a && key.sym <= SDLK_z)
    {
        return key.sym - SDLK_a + 'A';
    }
    if (key.sym >= SDLK_0 && key.sym <= SDLK_9)
    {
        return key.sym;
    }
    if (key.sym >= SDLK_F1 && key.sym <= SDLK_F12)
    {
        return key.sym - SDLK_F1 + VK_F1;
    }
    if (givesNumbers(key) && blockDigit(key.sym) >= 0)
    {
        return '0' + blockDigit(key.sym);
    }
    if (const auto found = blockKeys().find(key.sym); found != blockKeys().end())
    {
        return found->second;
    }
    // Letters of other scripts stand on keys that have a Latin one too: commands go by that.
    if (key.scancode >= SDL_SCANCODE_A && key.scancode <= SDL_SCANCODE_Z)
    {
        return key.scancode - SDL_SCANCODE_A + 'A';
    }
    return 0;
}

char16_t keyCharacter(const SDL_Keysym &key, bool editing)
{
    constexpr int firstPlain = 0x20;
    constexpr int firstOwn = 1 << 30; // from here on keys have no character
    if ((key.mod & (KMOD_CTRL | KMOD_LALT | KMOD_GUI)) != 0)
    {
        return 0;
    }
    switch (key.sym)
    {
    case SDLK_RETURN:
    case SDLK_RETURN2:
    case SDLK_KP_ENTER:
        return u'\r';
    case SDLK_BACKSPACE:
    case SDLK_TAB:
    case SDLK_ESCAPE:
        return static_cast<char16_t>(key.sym);
    default:
        break;
    }
    if (editing)
    {
        return 0; // the desktop sends it as text
    }
    if (givesNumbers(key) && blockDigit(key.sym) >= 0)
    {
        return static_cast<char16_t>(u'0' + blockDigit(key.sym));
    }
    if (key.sym < firstPlain || key.sym == SDLK_DELETE || key.sym >= firstOwn || key.sym > 0xFFFF)
    {
        return 0;
    }
    const bool shift = (key.mod & KMOD_SHIFT) != 0;
    const bool capital = shift != ((key.mod & KMOD_CAPS) != 0);
    const bool isLetter = key.sym >= SDLK_a && key.sym <= SDLK_z;
    if (shift && !isLetter && key.sym != SDLK_SPACE)
    {
        return 0; // what that types only the layout of the keys knows
    }
    return static_cast<char16_t>(isLetter && capital ? key.sym - SDLK_a + 'A' : key.sym);
}
} // namespace zb::internal
