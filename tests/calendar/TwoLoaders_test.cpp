// Two calendar loaders at once: each gets what it would get alone, and the system says "Thread Collision" once.
#include "calendar/CalendarTest.h"

#include "platform/pim_recurrence.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

namespace zb::test
{
namespace
{
struct Told
{
    std::u16string text;
    std::u16string caption;
    UINT flags;
};

std::mutex toldGuard;
std::vector<Told> told;

DeviceOptions listeningOptions()
{
    DeviceOptions options;
    options.timeZone = "UTC";
    options.messageBox = [](std::u16string_view text, std::u16string_view caption, UINT flags)
    {
        const std::lock_guard guard(toldGuard);
        told.push_back({std::u16string(text), std::u16string(caption), flags});
        return 1;
    };
    return options;
}

std::size_t toldCount()
{
    const std::lock_guard guard(toldGuard);
    return told.size();
}

RecurrencePattern everyDay()
{
    RecurrencePattern pattern;
    pattern.firstDate = static_cast<DWORD>(ticksOf(makeFileTime(2026, 3, 1)) / ticksPerMinute);
    pattern.lastDate = endlessSeriesDate;
    pattern.startMinute = 600;
    pattern.endMinute = 660;
    return pattern;
}

class TwoLoaders : public ::testing::Test
{
  protected:
    TwoLoaders() : device(listeningOptions())
    {
        told.clear();
    }
    TestDevice device;
};

/// Reads one blob over and over until the flag is set; false when a reading came out wrong.
bool readUntil(const std::atomic<bool> &stop)
{
    const Bytes blob = encodeRecurrence(everyDay()).value();
    CRecurrenceReader reader;
    bool right = true;
    while (!stop)
    {
        DATACALENDARDB row;
        std::vector<DWORD> deleted;
        right = right && reader.Read(blob.data(), static_cast<DWORD>(blob.size()), 1, row, deleted, false) == 0 &&
                row.m_wFrequency == 0x200A && row.m_wStartHour == 10 && row.m_wEndHour == 11;
    }
    return right;
}

TEST_F(TwoLoaders, ReadingsThatMeetAreToldOnceAndGoOn)
{
    std::atomic<bool> stop{false};
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int n = 0; n < 2; ++n)
    {
        threads.emplace_back([&] { right += readUntil(stop) ? 1 : 0; });
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (toldCount() == 0 && std::chrono::steady_clock::now() < deadline)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    // Long enough for the two to meet again and again.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    stop = true;
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(right, 2);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].text, u"Thread Collision");
    EXPECT_EQ(told[0].caption, u"");
    EXPECT_EQ(told[0].flags, 0x40010U);
}

TEST_F(TwoLoaders, OneReaderAfterTheOtherIsNoCollision)
{
    const Bytes blob = encodeRecurrence(everyDay()).value();
    const Bytes foreign(100, 0x55);
    for (int n = 0; n < 100; ++n)
    {
        CRecurrenceReader reader;
        DATACALENDARDB row;
        std::vector<DWORD> deleted;
        reader.Read(blob.data(), static_cast<DWORD>(blob.size()), 1, row, deleted, false);
        reader.Read(foreign.data(), static_cast<DWORD>(foreign.size()), 1, row, deleted, false);
        reader.Read(nullptr, 0, 1, row, deleted, false);
    }
    EXPECT_EQ(toldCount(), 0U);
}

TEST_F(TwoLoaders, EachLoadsWhatItWouldLoadAlone)
{
    for (int n = 0; n < 200; ++n)
    {
        AppointmentRecord record = timed(u"series", makeFileTime(2026, 3, 1, 10), 60);
        record.recurrence = encodeRecurrence(everyDay()).value();
        addRecord(record);
    }
    TestLoader march;
    march.setRange(2026, 3, 1, 31);
    TestLoader june;
    june.setRange(2026, 6, 1, 30);
    const std::vector<std::string> marchAlone = march.load();
    const std::vector<std::string> juneAlone = june.load();
    EXPECT_EQ(marchAlone.size(), 31U * 201U);
    EXPECT_EQ(juneAlone.size(), 30U * 201U);
    HostWindow host;
    march.m_hWndHost = host.handle();
    ASSERT_TRUE(march.Start());
    for (int n = 0; n < 3; ++n)
    {
        EXPECT_EQ(june.load(), juneAlone);
    }
    ASSERT_TRUE(host.waitFor(32803));
    march.Stop(TRUE);
    EXPECT_EQ(march.rows(), marchAlone);
    EXPECT_LE(toldCount(), 1U);
}
} // namespace
} // namespace zb::test
