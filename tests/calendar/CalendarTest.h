// What the calendar's tests share: records written as a device holds them, a device whose categories have names, a
// loader, a host window that keeps the messages, and rows as text.
#pragma once

#include "calendar/CCalendarThread.h"
#include "platform/propdb.h"
#include "platform/user.h"
#include "support/LoaderRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
using Bytes = std::vector<BYTE>;

/// An appointment record. What has no value is not in the record.
struct AppointmentRecord
{
    std::optional<FILETIME> start;
    std::optional<LONG> duration = 60;
    std::optional<LONG> durationType;
    std::optional<SHORT> reminder;
    std::optional<SHORT> unused;
    std::optional<SHORT> sensitivity;
    std::optional<SHORT> busy;
    std::optional<std::u16string> subject;
    std::optional<std::u16string> location;
    std::optional<std::u16string> extra;
    std::optional<Bytes> notes;
    std::optional<Bytes> categories;
    std::optional<Bytes> recurrence;
    std::optional<Bytes> attendees;
    std::optional<Bytes> zone;
};

AppointmentRecord timed(const char16_t *subject, const FILETIME &start, LONG minutes);
/// A single all-day event of n days, as stores write it.
AppointmentRecord allDay(const char16_t *subject, const FILETIME &midnight, LONG days = 1);
/// A yearly all-day series on the day of `midnight`, without end.
AppointmentRecord yearlyAllDay(const char16_t *subject, int year, int month, int day);

/// Adds it to the appointments of the device; 0 on failure.
CEOID addRecord(const AppointmentRecord &record);

/// Category bits that have names on the test's device.
inline constexpr int birthdaysBit = 1;
inline constexpr int anniversariesBit = 2;
inline constexpr int holidayBit = 3;
inline constexpr int floatsBit = 4;
inline constexpr int workBit = 5;

/// Keeps the messages that come to it.
class HostWindow
{
  public:
    struct Message
    {
        UINT number;
        WPARAM wParam;
        LPARAM lParam;
        bool operator==(const Message &) const = default;
    };

    HostWindow();
    ~HostWindow();
    HostWindow(const HostWindow &) = delete;
    HostWindow &operator=(const HostWindow &) = delete;

    HWND handle() const
    {
        return m_window;
    }
    /// Dispatches messages until the number has come, for at most ten seconds; false when it hasn't.
    bool waitFor(UINT number);
    /// Dispatches what is there.
    void pump();
    const std::vector<Message> &messages() const
    {
        return m_messages;
    }
    void clear()
    {
        m_messages.clear();
    }
    std::vector<UINT> numbers() const;

  private:
    static LRESULT procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    HWND m_window;
    std::vector<Message> m_messages;
};

/// A loader with a range and a load on the calling thread.
class TestLoader : public CCalendarThread
{
  public:
    TestLoader();
    ~TestLoader() override;
    void setRange(int year, int month, int day, int days);
    void setFilter(CalendarFilter filter)
    {
        set(u"CAV_FilterAppointments", static_cast<DWORD>(filter));
    }
    /// Writes a setting to the store, under the key of this loader.
    void set(const WCHAR *name, DWORD value);
    void set(const WCHAR *name, const WCHAR *value);
    /// Takes a setting out of the store.
    void unset(const WCHAR *name);
    /// A whole load on this thread; its rows as text.
    std::vector<std::string> load();
    std::vector<std::string> rows();
    /// Row by position from 0, date headers left out.
    const DATACALENDAR *row(int n);
    int rowCount();
    std::string subjects();
};

/// "2026-03-02 | 2026-03-02 10:00 - 2026-03-02 11:00 | Subject", or "2026-03-02 header".
std::string describe(const DATACALENDAR &row);
/// "2026-03-02" of a whole day counted from 1899-12-30, by the standard calendar.
std::string dayText(int day);
/// Whole day of a date, by the standard calendar.
int dayNumber(int year, int month, int day);

class CalendarTest : public ::testing::Test
{
  protected:
    CalendarTest();
    /// The loader of the test, made at first use; the range is March 2026 until it is set.
    TestLoader &loader();
    std::vector<std::string> load()
    {
        return loader().load();
    }
    CEOID add(const AppointmentRecord &record)
    {
        return addRecord(record);
    }

    TestDevice device;

  private:
    std::unique_ptr<TestLoader> m_loader;
};
} // namespace zb::test
