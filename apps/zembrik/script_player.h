// Plays a script on the main thread, also while a menu or a dialog runs a loop of its own.
//
// A step is done as soon as nothing waits any more: no message, no paint, no work of the view in the background. "wait"
// lets the time of timers and ticks go by at once where nobody looks at the screen, and really waits where somebody
// does. Threads: the main thread. One at a time.
#pragma once

#include "platform/user.h"
#include "zembrik/script.h"

#include <functional>

namespace zb::screens
{
class ScriptPlayer
{
  public:
    struct Surroundings
    {
        std::function<bool()> isBusy;
        /// Time is made up: waiting costs none.
        bool skipsTime = true;
        /// After the last step the host ends.
        bool quitsAtEnd = true;
    };
    ScriptPlayer(Script script, Surroundings surroundings);
    ~ScriptPlayer();
    ScriptPlayer(const ScriptPlayer &) = delete;
    ScriptPlayer &operator=(const ScriptPlayer &) = delete;

    /// False when the host has ended before the script.
    bool isDone() const
    {
        return m_next == m_script.size();
    }
    /// The first thing that went wrong, which ended the script; empty when all went well.
    const std::string &failure() const
    {
        return m_failure;
    }

  private:
    static void tick(HWND, UINT, UINT_PTR, DWORD);
    void step();
    void waitOn();
    bool waitsForView();
    void fail(const std::string &what);

    void act(const PenStep &pen);
    void act(const KeyStep &key);
    void act(const TypeStep &type);
    void act(const WheelStep &wheel);
    void act(const WaitStep &wait);
    void act(const ShotStep &shot);
    void act(const SizeStep &size);
    void act(const QuitStep &quit);

    Script m_script;
    Surroundings m_surroundings;
    std::size_t m_next = 0;
    unsigned m_wait = 0; ///< milliseconds still to go
    DWORD m_waitBegan = 0;
    unsigned m_busyTicks = 0;
    DWORD m_busySince = 0;
    std::string m_failure;
    UINT_PTR m_timer = 0;
};
} // namespace zb::screens
