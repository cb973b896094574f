#include "zembrik/script_player.h"

#include "platform/clock.h"
#include "platform/image.h"
#include "platform/screen.h"

namespace zb::screens
{
namespace
{
constexpr UINT tickTime = 1;          // milliseconds
constexpr unsigned skippedAtOnce = 5; // milliseconds: no timer that somebody sees runs faster
constexpr DWORD longestWork = 30'000; // milliseconds that a view may be busy

ScriptPlayer *current = nullptr;
} // namespace

ScriptPlayer::ScriptPlayer(Script script, Surroundings surroundings)
    : m_script(std::move(script)), m_surroundings(std::move(surroundings))
{
    current = this;
    m_timer = SetTimer(nullptr, 0, tickTime, tick);
}

ScriptPlayer::~ScriptPlayer()
{
    KillTimer(nullptr, m_timer);
    current = nullptr;
}

void ScriptPlayer::tick(HWND, UINT, UINT_PTR, DWORD)
{
    if (current != nullptr)
    {
        current->step();
    }
}

void ScriptPlayer::fail(const std::string &what)
{
    m_failure = what;
    KillTimer(nullptr, m_timer);
    PostQuitMessage(0);
}

bool ScriptPlayer::waitsForView()
{
    if (!m_surroundings.isBusy())
    {
        m_busyTicks = 0;
        return false;
    }
    const DWORD now = GetTickCount();
    m_busySince = m_busyTicks++ == 0 ? now : m_busySince;
    if (now - m_busySince > longestWork)
    {
        fail("the view is still busy after " + std::to_string(longestWork / 1000) + " seconds");
    }
    return true;
}

void ScriptPlayer::waitOn()
{
    if (m_surroundings.skipsTime)
    {
        const unsigned part = std::min(m_wait, skippedAtOnce);
        skipTime(part);
        m_wait -= part;
    }
    else if (GetTickCount() - m_waitBegan >= m_wait)
    {
        m_wait = 0;
    }
}

void ScriptPlayer::step()
{
    if (m_wait > 0)
    {
        waitOn();
        return;
    }
    if (waitsForView())
    {
        return;
    }
    if (m_next < m_script.size())
    {
        const ScriptStep &now = m_script[m_next++];
        std::visit([this](const auto &action) { act(action); }, now.action);
        return;
    }
    KillTimer(nullptr, m_timer);
    if (m_surroundings.quitsAtEnd)
    {
        PostQuitMessage(0);
    }
}

void ScriptPlayer::act(const PenStep &pen)
{
    switch (pen.kind)
    {
    case PenStep::Kind::Down:
        return penDown(pen.x, pen.y);
    case PenStep::Kind::Move:
        return penMove(pen.x, pen.y);
    case PenStep::Kind::Up:
        return penUp(pen.x, pen.y);
    }
}

void ScriptPlayer::act(const KeyStep &key)
{
    if (!key.down)
    {
        keyUp(key.key);
        return;
    }
    keyDown(key.key);
    if (key.character != 0)
    {
        typeCharacter(key.character);
    }
}

void ScriptPlayer::act(const TypeStep &type)
{
    for (const WCHAR character : type.text)
    {
        typeCharacter(character);
    }
}

void ScriptPlayer::act(const WheelStep &wheel)
{
    turnWheel(wheel.steps);
}

void ScriptPlayer::act(const WaitStep &wait)
{
    m_wait = wait.milliseconds;
    m_waitBegan = GetTickCount();
}

void ScriptPlayer::act(const ShotStep &shot)
{
    const HBITMAP picture = captureScreen();
    const bool written = picture != nullptr && writePng(picture, shot.file);
    DeleteObject(picture);
    if (!written)
    {
        fail(shot.file.string() + ": the picture can't be written");
    }
}

void ScriptPlayer::act(const SizeStep &size)
{
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    if (size.width == 0)
    {
        setScreenSize(height, width);
    }
    else
    {
        setScreenSize(size.width, size.height);
    }
}

void ScriptPlayer::act(const QuitStep &)
{
    m_next = m_script.size();
    KillTimer(nullptr, m_timer);
    PostQuitMessage(0);
}
} // namespace zb::screens
