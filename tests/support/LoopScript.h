// Drives what runs a loop of its own (menus, modal dialogs): each step runs as soon as nothing waits any more.
#pragma once

#include "platform/menu.h"
#include "platform/screen.h"

#include <functional>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace zb::test
{
/// Steps run on the thread that made it, one each time its queue is empty. Goes with its object.
class LoopScript
{
  public:
    using Step = std::function<void()>;

    explicit LoopScript(std::vector<Step> steps) : m_steps(std::move(steps))
    {
        current() = this;
        m_timer = SetTimer(nullptr, 0, 20, tick);
    }
    ~LoopScript()
    {
        KillTimer(nullptr, m_timer);
        current() = nullptr;
    }
    LoopScript(const LoopScript &) = delete;
    LoopScript &operator=(const LoopScript &) = delete;

    /// False when the loop ended before all steps had run.
    bool isDone() const
    {
        return m_next == m_steps.size();
    }

  private:
    static LoopScript *&current()
    {
        static LoopScript *script = nullptr;
        return script;
    }
    static void tick(HWND, UINT, UINT_PTR, DWORD)
    {
        LoopScript *script = current();
        if (script == nullptr)
        {
            return;
        }
        if (script->m_next < script->m_steps.size())
        {
            script->m_steps[script->m_next++]();
        }
        else if (++script->m_idle == 50)
        {
            ADD_FAILURE() << "the loop goes on after the last step";
            ReleaseCapture();
        }
    }

    std::vector<Step> m_steps;
    std::size_t m_next = 0;
    int m_idle = 0;
    UINT_PTR m_timer = 0;
};

inline LoopScript::Step key(int number)
{
    return [number]
    {
        zb::keyDown(number);
        zb::keyUp(number);
    };
}
inline LoopScript::Step letter(WCHAR character)
{
    return [character] { zb::typeCharacter(character); };
}
inline LoopScript::Step down(int x, int y)
{
    return [x, y] { zb::penDown(x, y); };
}
inline LoopScript::Step move(int x, int y)
{
    return [x, y] { zb::penMove(x, y); };
}
inline LoopScript::Step up(int x, int y)
{
    return [x, y] { zb::penUp(x, y); };
}
inline LoopScript::Step tap(int x, int y)
{
    return [x, y]
    {
        zb::penDown(x, y);
        zb::penUp(x, y);
    };
}
} // namespace zb::test
