#include "support/TestDevice.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace zb::test
{
namespace
{
/// Text is converted by rules of its own here, so that a fault of the platform's conversion shows in tests.
void appendUtf8(std::string &target, char32_t code)
{
    if (code < 0x80)
    {
        target += static_cast<char>(code);
        return;
    }
    const int tail = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr unsigned lead[] = {0, 0xC0, 0xE0, 0xF0};
    target += static_cast<char>(lead[tail] | (code >> (6 * tail)));
    for (int i = tail - 1; i >= 0; --i)
    {
        target += static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F));
    }
}

constexpr LONGLONG daysFrom1601To1970 = 134774;

std::chrono::sys_days dayOf(int year, int month, int day)
{
    const auto date = std::chrono::year(year) / month / day;
    if (!date.ok())
    {
        throw std::invalid_argument("a test names a date that does not exist");
    }
    return date;
}

/// A new device that each test gets a copy of: making one costs a dozen syncs, copying it none.
const std::filesystem::path &newDevice()
{
    static const TemporaryFolder folder;
    static const std::filesystem::path root = []
    {
        DeviceOptions options;
        options.root = folder.path() / "device";
        options.locale = "en-US";
        options.timeZone = "UTC";
        OpenDevice(options);
        return options.root;
    }();
    return root;
}

std::filesystem::path makeTemporary()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "zbtest-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::system_error(errno, std::generic_category(), "no temporary folder");
    }
    return pattern;
}
} // namespace

std::string utf8(std::u16string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        char32_t code = text[i];
        const bool pair =
            code >= 0xD800 && code < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
        if (pair)
        {
            code = 0x10000 + ((code - 0xD800) << 10U) + (text[++i] - 0xDC00U);
        }
        appendUtf8(result, code);
    }
    return result;
}

std::string utf8(const WCHAR *text)
{
    return text == nullptr ? "(null)" : utf8(std::u16string_view(text));
}

std::u16string utf16(std::string_view text)
{
    std::u16string result;
    for (std::size_t i = 0; i < text.size();)
    {
        const auto first = static_cast<unsigned char>(text[i++]);
        const int tail = first < 0xC0 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
        char32_t code = tail == 0 ? first : first & (0x3FU >> static_cast<unsigned>(tail));
        for (int n = 0; n < tail && i < text.size(); ++n)
        {
            code = (code << 6U) | (static_cast<unsigned char>(text[i++]) & 0x3FU);
        }
        if (code >= 0x10000)
        {
            result += static_cast<WCHAR>(0xD800 + ((code - 0x10000) >> 10U));
            code = 0xDC00 + ((code - 0x10000) & 0x3FFU);
        }
        result += static_cast<WCHAR>(code);
    }
    return result;
}

FILETIME makeFileTime(int year, int month, int day, int hour, int minute, int second)
{
    const LONGLONG days = dayOf(year, month, day).time_since_epoch().count() + daysFrom1601To1970;
    return fileTimeOf(days * ticksPerDay + hour * ticksPerHour + minute * ticksPerMinute + second * ticksPerSecond);
}

SYSTEMTIME makeSystemTime(int year, int month, int day, int hour, int minute, int second)
{
    const std::chrono::weekday weekday(dayOf(year, month, day));
    return SYSTEMTIME{static_cast<WORD>(year),
                      static_cast<WORD>(month),
                      static_cast<WORD>(weekday.c_encoding()),
                      static_cast<WORD>(day),
                      static_cast<WORD>(hour),
                      static_cast<WORD>(minute),
                      static_cast<WORD>(second),
                      0};
}

std::string describe(const SYSTEMTIME &fields)
{
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", fields.wYear, fields.wMonth, fields.wDay,
                  fields.wHour, fields.wMinute, fields.wSecond);
    return text;
}

std::string describe(const FILETIME &time)
{
    const LONGLONG ticks = ticksOf(time);
    const std::chrono::sys_days day{std::chrono::days(ticks / ticksPerDay - daysFrom1601To1970)};
    const std::chrono::year_month_day date(day);
    const auto seconds = static_cast<int>(ticks % ticksPerDay / ticksPerSecond);
    return describe(SYSTEMTIME{static_cast<WORD>(int(date.year())), static_cast<WORD>(unsigned(date.month())), 0,
                               static_cast<WORD>(unsigned(date.day())), static_cast<WORD>(seconds / 3600),
                               static_cast<WORD>(seconds / 60 % 60), static_cast<WORD>(seconds % 60), 0});
}

TemporaryFolder::TemporaryFolder() : m_path(makeTemporary())
{
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

TestDevice::TestDevice(const DeviceOptions &options)
    : m_options(options), m_now(std::make_shared<std::atomic<LONGLONG>>(ticksOf(makeFileTime(2026, 3, 2, 9))))
{
    m_options.root = m_folder.path() / "device";
    if (m_options.locale.empty())
    {
        m_options.locale = "en-US";
    }
    if (m_options.timeZone.empty())
    {
        m_options.timeZone = "Europe/Berlin";
    }
    m_options.clock = [now = m_now] { return now->load(); };
    if (m_options.storeFileLayer.empty())
    {
        std::filesystem::copy(newDevice(), m_options.root, std::filesystem::copy_options::recursive);
    }
    open();
}

TestDevice::~TestDevice() = default;

std::filesystem::path TestDevice::path() const
{
    return m_options.root;
}

std::filesystem::path TestDevice::files() const
{
    return m_options.root / "files";
}

void TestDevice::reopen()
{
    close();
    open();
}

void TestDevice::close()
{
    m_device.reset();
}

void TestDevice::open()
{
    m_device = OpenDevice(m_options);
}

bool TestDevice::isOpen() const
{
    return m_device != nullptr;
}

void TestDevice::setLocale(const std::string &name)
{
    m_options.locale = name;
    reopen();
}

void TestDevice::setZone(const std::string &name)
{
    m_options.timeZone = name;
    reopen();
}

void TestDevice::setClock(const FILETIME &now)
{
    m_now->store(ticksOf(now));
}

void TestDevice::advanceClock(LONGLONG ticks)
{
    m_now->fetch_add(ticks);
}

DeviceOptions &TestDevice::options()
{
    return m_options;
}
} // namespace zb::test
