#include "zembrik/day_watch.h"

#include "common/days.h"
#include "platform/clock.h"

#include <algorithm>
#include <utility>

namespace zb::screens
{
namespace
{
constexpr UINT_PTR dayTimer = 1;
constexpr UINT minute = 60'000;

/// Milliseconds up to the next day.
UINT untilMidnight()
{
    SYSTEMTIME now{};
    GetLocalTime(&now);
    const UINT passed = ((now.wHour * 60U + now.wMinute) * 60U + now.wSecond) * 1000U + now.wMilliseconds;
    return 24 * 60 * minute - passed;
}
} // namespace

DayWatch::~DayWatch()
{
    if (m_hWnd != nullptr)
    {
        DestroyWindow(m_hWnd);
    }
}

bool DayWatch::open(std::function<void(int former)> changed)
{
    m_changed = std::move(changed);
    if (!Create(nullptr, nullptr, 0, 0, 0, 0, 0, 0, nullptr))
    {
        return false;
    }
    m_today = host::today();
    await();
    return true;
}

void DayWatch::await()
{
    SetTimer(m_hWnd, dayTimer, std::min(untilMidnight(), minute), nullptr);
}

void DayWatch::OnTimer(UINT_PTR, bool &handled)
{
    handled = true;
    await();
    if (const int now = host::today(); now != m_today)
    {
        m_changed(std::exchange(m_today, now));
    }
}
} // namespace zb::screens
