// A device of its own for each test: a temporary folder, a known locale, zone and clock.
//
//     class NotesTest : public zb::test::DeviceTest {};
//     TEST_F(NotesTest, Opens) { device.setLocale("de-DE"); ... }
//
// or, without a fixture, `zb::test::TestDevice device;`. One TestDevice lives at a time, since a process has one device
// open. The folder lies below TMPDIR (else /tmp) and goes away with the object.
#pragma once

#include "platform/clock.h"
#include "platform/device.h"
#include "platform/types.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

namespace zb::test
{
/// UTF-8 of a text, for messages and comparisons with plain literals; null gives "(null)".
std::string utf8(const WCHAR *text);
std::string utf8(std::u16string_view text);
std::u16string utf16(std::string_view text);

/// A moment by its date and time, without any zone. Calculated here, not by the platform under test. The date must
/// exist.
FILETIME makeFileTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
/// Fields with the day of week filled in.
SYSTEMTIME makeSystemTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
/// "2026-03-02 09:00:00", for messages and comparisons.
std::string describe(const SYSTEMTIME &fields);
std::string describe(const FILETIME &time);

/// A folder below TMPDIR that is removed, with all in it, at the end.
class TemporaryFolder
{
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    const std::filesystem::path &path() const
    {
        return m_path;
    }

  private:
    std::filesystem::path m_path;
};

/// An open device: locale "en-US", zone "Europe/Berlin", and a clock that stands at 2026-03-02 09:00 UTC until it is
/// set. What `options` gives (other than root and clock, which are always the test's own) takes the place of these.
/// With a file layer of its own the device is made through that; else it is a copy of one that was made once a process.
class TestDevice
{
  public:
    explicit TestDevice(const DeviceOptions &options = {});
    ~TestDevice();
    TestDevice(const TestDevice &) = delete;
    TestDevice &operator=(const TestDevice &) = delete;

    /// The device's folder.
    std::filesystem::path path() const;
    /// The folder on the host that "\" of the device's file tree stands for.
    std::filesystem::path files() const;

    /// Closes the device and opens it again: what a later process would see.
    void reopen();
    void close();
    void open();
    bool isOpen() const;

    /// These two take effect by opening anew, so handles opened before are closed.
    void setLocale(const std::string &name);
    void setZone(const std::string &name);
    /// At once, for all threads; UTC.
    void setClock(const FILETIME &now);
    void advanceClock(LONGLONG ticks);

    /// What the device is opened with the next time.
    DeviceOptions &options();

  private:
    TemporaryFolder m_folder;
    DeviceOptions m_options;
    std::shared_ptr<std::atomic<LONGLONG>> m_now;
    std::unique_ptr<Device> m_device;
};

/// Fixture whose tests each get a device.
class DeviceTest : public ::testing::Test
{
  protected:
    TestDevice device;
};
} // namespace zb::test
