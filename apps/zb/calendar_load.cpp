#include "zb/calendar_load.h"

#include "calendar/CCalendarThread.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/pim.h"
#include "platform/user.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "zb/days.h"

#include <algorithm>
#include <stdexcept>

namespace zb::cli
{
namespace
{
constexpr const WCHAR *windowClass = u"ZBCOMMANDHOST";
constexpr int daysOfYear = 366;

/// A window without a screen, for the loader's messages.
class HostWindow
{
  public:
    HostWindow()
    {
        WNDCLASSW description{};
        description.lpfnWndProc = DefWindowProcW;
        description.lpszClassName = windowClass;
        RegisterClassW(&description);
        m_window = CreateWindowExW(0, windowClass, u"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        if (m_window == nullptr)
        {
            throw std::runtime_error("no window for the calendar loader");
        }
    }
    ~HostWindow()
    {
        DestroyWindow(m_window);
        UnregisterClassW(windowClass, nullptr);
    }
    HostWindow(const HostWindow &) = delete;
    HostWindow &operator=(const HostWindow &) = delete;

    HWND handle() const
    {
        return m_window;
    }

    /// Dispatches messages until the loader is done; true when it told a complete list before.
    bool awaitList() const
    {
        bool complete = false;
        MSG message{};
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
        {
            if (message.hwnd == m_window && message.message == loaderListComplete)
            {
                complete = true;
            }
            if (message.hwnd == m_window && message.message == loaderDone)
            {
                return complete;
            }
            DispatchMessageW(&message);
        }
        return false;
    }

  private:
    HWND m_window;
};

SYSTEMTIME timeOf(double date)
{
    SYSTEMTIME time{};
    VariantTimeToSystemTime(date, &time);
    return time;
}

bool isMidnight(const SYSTEMTIME &time)
{
    return time.wHour == 0 && time.wMinute == 0 && time.wSecond == 0;
}

std::u16string textOf(const WCHAR *text)
{
    return text == nullptr ? std::u16string() : std::u16string(text);
}

/// The end by the clock on the wall. Rows have the start with the length on top, which is an hour off where daylight
/// time changes in between; a series counts by the wall's clock anyway.
SYSTEMTIME endOf(const DATACALENDAR &row, const SYSTEMTIME &start, const std::string &zone)
{
    const std::optional<FILETIME> from =
        row.m_bAllDay != 0 || row.m_bRecurring != 0 ? std::nullopt : zoneLocalToUtc(zone, start);
    if (!from)
    {
        return timeOf(row.m_dtEnd);
    }
    const LONGLONG utc = ticksOf(*from) + row.m_nDuration * ticksPerMinute;
    const std::optional<int> offset = zoneOffsetMinutes(zone, fileTimeOf(utc));
    const FILETIME local = fileTimeOf(utc + offset.value_or(0) * ticksPerMinute);
    SYSTEMTIME end{};
    return offset && FileTimeToSystemTime(&local, &end) != FALSE ? end : timeOf(row.m_dtEnd);
}

AgendaRow rowOf(const DATACALENDAR &row, const std::string &zone)
{
    AgendaRow copy;
    copy.id = row.m_oid;
    copy.day = row.m_nDay;
    // Through fields, which are rounded to the second: sums of days and minutes miss whole days by a hair.
    copy.start = timeOf(row.m_dtStart);
    copy.end = endOf(row, copy.start, zone);
    copy.firstDay = dayOf(copy.start);
    copy.lastDay = dayOf(copy.end);
    copy.allDay = row.m_bAllDay != 0;
    // An end at midnight belongs to the day before.
    if (!copy.allDay && copy.lastDay > copy.firstDay && isMidnight(copy.end))
    {
        --copy.lastDay;
    }
    copy.busyStatus = row.m_nBusyStatus;
    copy.isPrivate = row.m_bPrivate != 0;
    copy.reminder = row.m_bReminder != 0;
    copy.recurring = row.m_bRecurring != 0;
    copy.hasNotes = row.m_bHasNotes != 0;
    copy.isBirthday = row.m_bContact;
    copy.subject = textOf(row.m_bstrSubject);
    copy.location = textOf(row.m_bstrLocation);
    return copy;
}

/// Local day of the start of the first record that has one, walking by `seekOn` from `id`.
std::optional<int> dayOfStart(CeDb &database, CEOID id, CEOID (CeDb::*seekOn)(DWORD *))
{
    CeDbRecord record;
    for (; id != 0; id = (database.*seekOn)(nullptr))
    {
        FILETIME start{};
        SYSTEMTIME fields{};
        if (database.ReadRec(record, 1, &appointmentStart) && record.GetIndexVal(0, start) &&
            FileTimeToSystemTime(&start, &fields) != FALSE)
        {
            fields.wYear = std::min<WORD>(fields.wYear, 9999);
            return dayOf(fields);
        }
    }
    return std::nullopt;
}
} // namespace

void visitAppointments(int firstDay, int lastDay, const std::function<void(const DATACALENDAR &)> &take)
{
    const HostWindow window;
    CCalendarThread loader;
    const SYSTEMTIME first = dateOf(firstDay);
    const SYSTEMTIME last = dateOf(lastDay);
    loader.m_hWndHost = window.handle();
    // Headers of days are this program's own; without them a long range costs nothing.
    loader.SetNoHeaderDates(true);
    loader.SetRestrict(&first, &last);
    if (loader.Start() == FALSE || !window.awaitList())
    {
        throw std::runtime_error("the appointments could not be loaded");
    }
    loader.Stop(FALSE);
    loader.SortDataList(true);
    CePtrList<DATACALENDAR *> &list = loader.GetList();
    for (int n = list.GetBase(); n <= list.GetLastIndex(); ++n)
    {
        const DATACALENDAR *const row = list.GetAt(n);
        if (row->m_oid != 0 && row->m_pTask == nullptr)
        {
            take(*row);
        }
    }
}

std::vector<AgendaRow> loadAppointments(int firstDay, int lastDay)
{
    std::vector<AgendaRow> rows;
    const std::string zone = deviceZoneName();
    visitAppointments(firstDay, lastDay,
                      [&](const DATACALENDAR &row)
                      {
                          AgendaRow copy = rowOf(row, zone);
                          // The hour that a row's end is off can take it over midnight.
                          const bool lasts = copy.day <= std::max(copy.firstDay, copy.lastDay);
                          if (lasts && copy.day >= firstDay && copy.day <= lastDay)
                          {
                              rows.push_back(std::move(copy));
                          }
                      });
    return rows;
}

std::optional<DayRange> daysWithAppointments()
{
    CeDb database;
    if (!database.Open(appointmentsDatabase, appointmentStart, 0, nullptr))
    {
        return std::nullopt;
    }
    const std::optional<int> first = dayOfStart(database, database.SeekFirst(), &CeDb::SeekNext);
    const std::optional<int> last = dayOfStart(database, database.SeekLast(), &CeDb::SeekPrev);
    if (!first || !last)
    {
        return std::nullopt;
    }
    // A day more on each side for the zone; a year for series that begin last.
    return DayRange{std::clamp(*first - 1, firstListedDay, lastListedDay),
                    std::clamp(*last + daysOfYear, firstListedDay, lastListedDay)};
}
} // namespace zb::cli
