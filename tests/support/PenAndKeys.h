// What a user does with pen and keys; each call returns when all that follows from it has happened.
#pragma once

#include "platform/screen.h"
#include "support/ScreenWindow.h"

#include <initializer_list>
#include <string_view>

namespace zb::test
{
/// The others are held meanwhile.
inline void pressKey(int key, std::initializer_list<int> held = {})
{
    for (const int one : held)
    {
        zb::keyDown(one);
    }
    settle();
    zb::keyDown(key);
    settle();
    zb::keyUp(key);
    for (const int one : held)
    {
        zb::keyUp(one);
    }
    settle();
}

inline void typeText(std::u16string_view characters)
{
    for (const WCHAR character : characters)
    {
        zb::typeCharacter(character);
    }
    settle();
}

inline void putPenDown(int x, int y)
{
    zb::penDown(x, y);
    settle();
}

inline void liftPen(int x, int y)
{
    zb::penUp(x, y);
    settle();
}

inline void tapAt(int x, int y)
{
    putPenDown(x, y);
    liftPen(x, y);
}
} // namespace zb::test
