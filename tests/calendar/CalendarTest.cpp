// Records, loader, window and row texts of the calendar's tests.
#include "calendar/CalendarTest.h"

#include "core/CRegistry.h"
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/pim_recurrence.h"
#include "support/CategoryRecords.h"

#include <chrono>
#include <cmath>

namespace zb::test
{
namespace
{
constexpr WORD shortType = 2;
constexpr WORD longType = 3;
constexpr WORD textType = 31;
constexpr WORD timeType = 64;
constexpr WORD blobType = 65;

template <typename Value>
void setIf(RecordProperties &properties, WORD number, WORD type, const std::optional<Value> &value)
{
    if (value)
    {
        properties.set(MakePropId(number, type), *value);
    }
}

DeviceOptions utcOptions()
{
    DeviceOptions options;
    options.timeZone = "UTC";
    return options;
}

DWORD minutesOf(const FILETIME &time)
{
    return static_cast<DWORD>(ticksOf(time) / ticksPerMinute);
}
} // namespace

AppointmentRecord timed(const char16_t *subject, const FILETIME &start, LONG minutes)
{
    AppointmentRecord record;
    record.subject = subject;
    record.start = start;
    record.duration = minutes;
    return record;
}

AppointmentRecord allDay(const char16_t *subject, const FILETIME &midnight, LONG days)
{
    AppointmentRecord record = timed(subject, midnight, days * 1440 - 1);
    record.durationType = 1;
    return record;
}

AppointmentRecord yearlyAllDay(const char16_t *subject, int year, int month, int day)
{
    AppointmentRecord record = allDay(subject, makeFileTime(year, month, day));
    RecurrencePattern pattern;
    pattern.frequency = RecurrenceFrequency::Yearly;
    pattern.type = RecurrenceType::DayOfMonth;
    pattern.interval = 12;
    pattern.dayOfMonth = static_cast<DWORD>(day);
    pattern.month = static_cast<DWORD>(month);
    pattern.firstDate = minutesOf(makeFileTime(year, month, day));
    pattern.lastDate = endlessSeriesDate;
    pattern.endMinute = 1440;
    record.recurrence = encodeRecurrence(pattern).value();
    return record;
}

CEOID addRecord(const AppointmentRecord &record)
{
    RecordProperties properties;
    setIf(properties, 0x420d, timeType, record.start);
    setIf(properties, 0x4213, longType, record.duration);
    setIf(properties, 0x4215, longType, record.durationType);
    setIf(properties, 0x4503, shortType, record.reminder);
    setIf(properties, 0x4223, shortType, record.unused);
    setIf(properties, 0x0004, shortType, record.sensitivity);
    setIf(properties, 0x000f, shortType, record.busy);
    setIf(properties, 0x0037, textType, record.subject);
    setIf(properties, 0x4208, textType, record.location);
    setIf(properties, 0x2a08, textType, record.extra);
    setIf(properties, 0x0017, blobType, record.notes);
    setIf(properties, 0x0016, blobType, record.categories);
    setIf(properties, 0x4015, blobType, record.recurrence);
    setIf(properties, 0x0030, blobType, record.attendees);
    setIf(properties, 0x0001, blobType, record.zone);
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Appointments Database", 0, 0, nullptr);
    const CEOID oid = CeWriteRecordProps(handle, 0, properties.count(), properties.values());
    CloseHandle(handle);
    return oid;
}

// --- The host window ---------------------------------------------------------------------------------------------

HostWindow::HostWindow()
{
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = procedure;
    windowClass.lpszClassName = u"CalendarTestHost";
    RegisterClassW(&windowClass);
    m_window = CreateWindowExW(0, windowClass.lpszClassName, u"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    SetWindowLongW(m_window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

HostWindow::~HostWindow()
{
    SetWindowLongW(m_window, GWL_USERDATA, 0);
    DestroyWindow(m_window);
    UnregisterClassW(u"CalendarTestHost", nullptr);
}

LRESULT HostWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *self = reinterpret_cast<HostWindow *>(GetWindowLongW(window, GWL_USERDATA));
    if (self != nullptr && (message == 1274 || message >= WM_APP))
    {
        self->m_messages.push_back({message, wParam, lParam});
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void HostWindow::pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        DispatchMessageW(&message);
    }
}

bool HostWindow::waitFor(UINT number)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (;;)
    {
        pump();
        for (const Message &message : m_messages)
        {
            if (message.number == number)
            {
                return true;
            }
        }
        if (std::chrono::steady_clock::now() > deadline)
        {
            return false;
        }
        MsgWaitForMultipleObjectsEx(0, nullptr, 50, QS_ALLINPUT, 0);
    }
}

std::vector<UINT> HostWindow::numbers() const
{
    std::vector<UINT> numbers;
    for (const Message &message : m_messages)
    {
        numbers.push_back(message.number);
    }
    return numbers;
}

// --- The loader --------------------------------------------------------------------------------------------------

TestLoader::TestLoader() : CCalendarThread(nullptr)
{
}

TestLoader::~TestLoader()
{
    Stop(TRUE);
}

void TestLoader::setRange(int year, int month, int day, int days)
{
    const SYSTEMTIME first = makeSystemTime(year, month, day);
    const FILETIME lastTime = fileTimeOf(ticksOf(makeFileTime(year, month, day)) + (days - 1) * ticksPerDay);
    SYSTEMTIME last{};
    FileTimeToSystemTime(&lastTime, &last);
    SetRestrict(&first, &last);
}

void TestLoader::set(const WCHAR *name, DWORD value)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, GetSettingsKey());
    registry.SetValue(name, value);
}

void TestLoader::set(const WCHAR *name, const WCHAR *value)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, GetSettingsKey());
    registry.SetValue(name, value);
}

void TestLoader::unset(const WCHAR *name)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, GetSettingsKey());
    registry.DeleteValue(name);
}

std::vector<std::string> TestLoader::load()
{
    CalendarThreadProc(nullptr, 0);
    return rows();
}

std::vector<std::string> TestLoader::rows()
{
    std::vector<std::string> texts;
    for (int i = GetList().GetBase(); i <= GetList().GetLastIndex(); ++i)
    {
        texts.push_back(describe(*GetList().GetAt(i)));
    }
    return texts;
}

const DATACALENDAR *TestLoader::row(int n)
{
    for (int i = GetList().GetBase(); i <= GetList().GetLastIndex(); ++i)
    {
        const DATACALENDAR *row = GetList().GetAt(i);
        if (row->m_oid != 0 && n-- == 0)
        {
            return row;
        }
    }
    return nullptr;
}

int TestLoader::rowCount()
{
    int count = 0;
    for (int i = GetList().GetBase(); i <= GetList().GetLastIndex(); ++i)
    {
        count += GetList().GetAt(i)->m_oid != 0 ? 1 : 0;
    }
    return count;
}

std::string TestLoader::subjects()
{
    std::string all;
    for (int i = 0; const DATACALENDAR *row = this->row(i); ++i)
    {
        all += (all.empty() ? "" : ", ") + utf8(row->m_bstrSubject);
    }
    return all;
}

// --- Rows as text ------------------------------------------------------------------------------------------------

int dayNumber(int year, int month, int day)
{
    using namespace std::chrono;
    const sys_days date = std::chrono::year(year) / month / day;
    return static_cast<int>((date - sys_days(1899y / 12 / 30)).count());
}

std::string dayText(int day)
{
    using namespace std::chrono;
    const year_month_day date(sys_days(1899y / 12 / 30) + days(day));
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return buffer;
}

namespace
{
std::string momentText(double date)
{
    const auto minutes = static_cast<long long>(std::floor(date * 1440.0 + 0.5));
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, " %02lld:%02lld", minutes % 1440 / 60, minutes % 60);
    return dayText(static_cast<int>(minutes / 1440)) + buffer;
}
} // namespace

std::string describe(const DATACALENDAR &row)
{
    if (row.m_oid == 0)
    {
        return dayText(row.m_nDay) + " header";
    }
    return dayText(row.m_nDay) + " | " + momentText(row.m_dtStart) + " - " + momentText(row.m_dtEnd) + " | " +
           utf8(row.m_bstrSubject);
}

CalendarTest::CalendarTest() : device(utcOptions())
{
    BulkWrite bulk;
    addCategoryRecord(u"Birthdays", birthdaysBit);
    addCategoryRecord(u"Anniversaries", anniversariesBit);
    addCategoryRecord(u"Holiday", holidayBit);
    addCategoryRecord(u"Floats", floatsBit);
    addCategoryRecord(u"Work", workBit);
    bulk.commit();
}

TestLoader &CalendarTest::loader()
{
    if (m_loader == nullptr)
    {
        m_loader = std::make_unique<TestLoader>();
        m_loader->setRange(2026, 3, 1, 31);
        m_loader->setFilter(CalendarFilter::RangeWithoutDays);
    }
    return *m_loader;
}
} // namespace zb::test
