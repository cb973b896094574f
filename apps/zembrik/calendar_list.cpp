#include "zembrik/calendar_list.h"

#include "common/days.h"
#include "platform/locale.h"
#include "platform/pim.h"

#include <algorithm>

namespace zb::screens
{
using namespace zb::host;

CalendarList::CalendarList(DWORD CalendarSettings::*showTasks, Listener listener)
    : m_showTasks(showTasks), m_listener(std::move(listener))
{
}

CalendarList::~CalendarList()
{
    m_loader.m_hWndHost = nullptr;
    m_loader.Stop(FALSE);
    if (m_hWnd != nullptr)
    {
        DestroyWindow(m_hWnd);
    }
}

bool CalendarList::open()
{
    const auto dayChanged = [this](int former)
    {
        m_listener.dayChanged(former);
        reload();
    };
    if (!Create(nullptr, nullptr, 0, 0, 0, 0, 0, 0, nullptr) || !m_days.open(dayChanged) ||
        !m_changes.open({appointmentsDatabase, tasksDatabase, contactsDatabase}, [this](const auto &) { reload(); }))
    {
        return false;
    }
    m_loader.m_hWndHost = m_hWnd;
    // Headers of days are the views' own.
    m_loader.SetNoHeaderDates(true);
    return true;
}

/// The settings of all calendar lists; of the tasks only those of this view count.
CalendarSettings CalendarList::settings() const
{
    CalendarSettings settings = CalendarSettings::read(CCalendarThread::DEFAULT_SETTINGS_KEY);
    settings.CAV_FilterAppointments = CalendarFilter::Range;
    const DWORD shows = settings.*m_showTasks;
    settings.AV_ShowTasks = settings.WV_ShowTasks = settings.DV_ShowTasks = 0;
    settings.MV_ShowTasks = settings.MVD_ShowTasks = 0;
    settings.*m_showTasks = shows;
    return settings;
}

void CalendarList::load(int first, int last)
{
    m_first = std::max(first, firstListedDay);
    m_last = std::min(last, lastListedDay);
    if (m_running)
    {
        m_waiting = true;
        return;
    }
    start();
}

void CalendarList::reload()
{
    load(m_first, m_last);
}

void CalendarList::start()
{
    m_waiting = false;
    m_runFirst = m_first;
    m_runLast = m_last;
    const SYSTEMTIME first = dateOf(m_first);
    const SYSTEMTIME last = dateOf(m_last);
    m_loader.m_ownSettings = settings();
    m_loader.SetRestrict(&first, &last);
    m_running = m_loader.Start() != FALSE;
}

void CalendarList::take()
{
    std::vector<AgendaRow> rows;
    const std::string zone = deviceZoneName();
    CePtrList<DATACALENDAR *> &list = m_loader.GetList();
    rows.reserve(static_cast<std::size_t>(list.GetCount()));
    for (int n = list.GetBase(); n <= list.GetLastIndex(); ++n)
    {
        // Birthdays come for the whole years of the range, and long events from their first day on.
        if (const DATACALENDAR &row = *list.GetAt(n); row.m_nDay >= m_runFirst && row.m_nDay <= m_runLast)
        {
            addAgendaRow(rows, row, zone);
        }
    }
    m_rows = std::move(rows);
    m_shownFirst = m_runFirst;
    m_shownLast = m_runLast;
}

std::span<const AgendaRow> CalendarList::rowsOf(int day) const
{
    const auto first = std::ranges::lower_bound(m_rows, day, {}, &AgendaRow::day);
    return {first, std::ranges::upper_bound(first, m_rows.end(), day, {}, &AgendaRow::day)};
}

LRESULT CalendarList::OnMessage(UINT uMsg, WPARAM, LPARAM, bool &handled)
{
    if (uMsg == loaderListComplete && !m_waiting)
    {
        handled = true;
        m_loader.SortDataList(true);
        take();
        m_listener.loaded();
    }
    else if (uMsg == loaderDone)
    {
        handled = true;
        m_running = false;
        if (m_waiting)
        {
            start();
        }
    }
    return 0;
}
} // namespace zb::screens
