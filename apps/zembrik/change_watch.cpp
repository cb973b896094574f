#include "zembrik/change_watch.h"

#include "platform/propdb.h"

#include <utility>

namespace zb::screens
{
namespace
{
constexpr UINT_PTR flockTimer = 1;
constexpr UINT flockDelay = 60; // milliseconds
} // namespace

ChangeWatch::~ChangeWatch()
{
    m_databases.clear();
    if (m_hWnd != nullptr)
    {
        DestroyWindow(m_hWnd);
    }
}

bool ChangeWatch::open(std::initializer_list<const WCHAR *> databases, Changed changed)
{
    m_changed = std::move(changed);
    bool all = Create(nullptr, nullptr, 0, 0, 0, 0, 0, 0, nullptr);
    for (const WCHAR *name : databases)
    {
        all = all && m_databases.emplace_back().Open(name, 0, 0, m_hWnd);
    }
    return all;
}

LRESULT ChangeWatch::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    switch (uMsg)
    {
    case DB_CEOID_CREATED:
    case DB_CEOID_CHANGED:
    case DB_CEOID_RECORD_DELETED:
    {
        handled = true;
        const auto id = static_cast<CEOID>(wParam);
        m_changes.push_back({uMsg, id == static_cast<CEOID>(lParam) ? 0 : id});
        SetTimer(m_hWnd, flockTimer, flockDelay, nullptr);
        break;
    }
    default:
        break;
    }
    return 0;
}

void ChangeWatch::OnTimer(UINT_PTR, bool &handled)
{
    handled = true;
    KillTimer(m_hWnd, flockTimer);
    m_changed(std::exchange(m_changes, {}));
}
} // namespace zb::screens
