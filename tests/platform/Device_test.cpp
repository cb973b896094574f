// Opening and closing a device: what becomes one, what is refused and left as it was, what the host's settings give.
#include "platform/device.h"

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/locale.h"
#include "platform/propdb.h"
#include "platform/resources.h"
#include "support/Child.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <sys/stat.h>
#include <thread>

namespace
{
namespace fs = std::filesystem;
using namespace zb::test;
using zb::DeviceError;
using zb::DeviceFault;
using zb::DeviceOptions;
using zb::OpenDevice;

/// Sets environment variables for a test and puts them back.
class Environment
{
  public:
    void set(const char *name, const char *value)
    {
        if (m_before.count(name) == 0)
        {
            const char *old = std::getenv(name);
            m_before[name] = old == nullptr ? std::nullopt : std::optional<std::string>(old);
        }
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    }
    ~Environment()
    {
        for (const auto &[name, value] : m_before)
        {
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        }
    }

  private:
    std::map<std::string, std::optional<std::string>> m_before;
};

class OpenDeviceTest : public testing::Test
{
  protected:
    DeviceOptions at(const fs::path &root, bool create = true) const
    {
        DeviceOptions options;
        options.root = root;
        options.create = create;
        options.locale = "en-US";
        options.timeZone = "UTC";
        return options;
    }

    /// Why a device does not open; nothing when it does.
    std::optional<DeviceFault> refusal(const DeviceOptions &options)
    {
        try
        {
            OpenDevice(options);
        }
        catch (const DeviceError &error)
        {
            message = error.what();
            return error.fault();
        }
        return std::nullopt;
    }

    /// All paths below a folder with the bytes of files.
    static std::map<std::string, std::string> snapshot(const fs::path &folder)
    {
        std::map<std::string, std::string> found;
        for (const auto &entry : fs::recursive_directory_iterator(folder))
        {
            found[entry.path().string()] = entry.is_regular_file() ? hostBytes(entry.path()) : "folder";
        }
        return found;
    }

    TemporaryFolder temporary;
    const fs::path root = temporary.path() / "device";
    std::string message;
};

using Names = std::vector<std::string>;

TEST_F(OpenDeviceTest, AMissingFolderIsMadeWithItsParents)
{
    const fs::path deep = temporary.path() / "a" / "b" / "device";
    {
        const auto device = OpenDevice(at(deep));
        EXPECT_EQ(device->root(), deep);
        EXPECT_TRUE(fs::is_regular_file(deep / "store.db"));
        EXPECT_EQ(hostNames(deep / "files"), (Names{"My Documents", "Storage Card", "Temp", "Windows"}));
    }
    EXPECT_EQ(refusal(at(deep, false)), std::nullopt);
}

TEST_F(OpenDeviceTest, AnEmptyFolderBecomesADevice)
{
    fs::create_directory(root);
    EXPECT_EQ(refusal(at(root)), std::nullopt);
    EXPECT_TRUE(fs::exists(root / "store.db"));
}

TEST_F(OpenDeviceTest, AFolderWithOtherThingsIsRefusedAndLeftAsItWas)
{
    fs::create_directories(root / "holiday");
    putHostFile(root / "holiday" / "beach.jpg", "sand");
    const auto before = snapshot(temporary.path());
    EXPECT_EQ(refusal(at(root)), DeviceFault::NotADevice);
    EXPECT_NE(message.find(root.string()), std::string::npos);
    EXPECT_EQ(refusal(at(root, false)), DeviceFault::NotADevice);
    EXPECT_EQ(snapshot(temporary.path()), before);
}

TEST_F(OpenDeviceTest, AFolderOfHiddenFilesHoldsOtherThingsToo)
{
    fs::create_directory(root);
    putHostFile(root / ".profile", "x");
    EXPECT_EQ(refusal(at(root)), DeviceFault::NotADevice);
    EXPECT_EQ(hostNames(root), Names{".profile"});
}

TEST_F(OpenDeviceTest, AFileIsNoDevice)
{
    putHostFile(root, "just a file");
    EXPECT_EQ(refusal(at(root)), DeviceFault::NotADevice);
    EXPECT_EQ(refusal(at(root / "below")), DeviceFault::NotADevice);
    EXPECT_EQ(hostBytes(root), "just a file");
}

TEST_F(OpenDeviceTest, NothingIsMadeWhenNotAskedFor)
{
    EXPECT_EQ(refusal(at(root, false)), DeviceFault::NotFound);
    EXPECT_NE(message.find(root.string()), std::string::npos);
    EXPECT_FALSE(fs::exists(root));
    fs::create_directory(root);
    EXPECT_EQ(refusal(at(root, false)), DeviceFault::NotFound);
    EXPECT_EQ(hostNames(root), Names{});
}

TEST_F(OpenDeviceTest, WhatMayNotBeWrittenIsReadOnly)
{
    fs::permissions(temporary.path(), fs::perms(0755));
    OpenDevice(at(root));
    const fs::path parent = temporary.path() / "parent";
    fs::create_directory(parent);
    // With the rights of nobody, which root's own would hide.
    const auto faultOf = [&](const fs::path &folder)
    {
        Child child(
            [&]
            {
                if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
                {
                    return 98;
                }
                const auto fault = refusal(at(folder));
                return fault ? static_cast<int>(*fault) : 97;
            });
        return child.wait();
    };
    fs::permissions(root, fs::perms(0555));
    fs::permissions(parent, fs::perms(0555));
    const auto before = snapshot(temporary.path());
    EXPECT_EQ(faultOf(root), static_cast<int>(DeviceFault::ReadOnly));
    EXPECT_EQ(faultOf(parent / "new" / "device"), static_cast<int>(DeviceFault::ReadOnly));
    fs::permissions(root, fs::perms(0000));
    EXPECT_EQ(faultOf(root), static_cast<int>(DeviceFault::ReadOnly));
    fs::permissions(root, fs::perms(0777));
    EXPECT_EQ(snapshot(temporary.path()), before);
}

TEST_F(OpenDeviceTest, AStoreThatIsNoneIsDamagedAndLeftAsItWas)
{
    fs::create_directory(root);
    putHostFile(root / "store.db", std::string(8192, 'x'));
    EXPECT_EQ(refusal(at(root)), DeviceFault::Damaged);
    EXPECT_EQ(hostBytes(root / "store.db"), std::string(8192, 'x'));
    EXPECT_EQ(hostNames(root), Names{"store.db"});
}

TEST_F(OpenDeviceTest, AStoreThatCannotBeMadeLeavesNoFolder)
{
    DeviceOptions options = at(temporary.path() / "a" / "device");
    options.storeFileLayer = "no such layer";
    EXPECT_NE(refusal(options), std::nullopt);
    EXPECT_EQ(hostNames(temporary.path()), Names{});
}

TEST_F(OpenDeviceTest, AFileInPlaceOfTheTreeIsRefused)
{
    OpenDevice(at(root));
    fs::remove_all(root / "files");
    putHostFile(root / "files", "in the way");
    EXPECT_EQ(refusal(at(root)), DeviceFault::NotADevice);
    EXPECT_EQ(hostBytes(root / "files"), "in the way");
    fs::remove(root / "files");
    EXPECT_EQ(refusal(at(root)), std::nullopt);
}

TEST_F(OpenDeviceTest, OneDeviceIsOpenAtATime)
{
    auto first = OpenDevice(at(root));
    EXPECT_THROW(OpenDevice(at(temporary.path() / "other")), std::logic_error);
    EXPECT_FALSE(fs::exists(temporary.path() / "other"));
    EXPECT_TRUE(putFile(u"\\x", "the first goes on"));
    first.reset();
    EXPECT_EQ(refusal(at(temporary.path() / "other")), std::nullopt);
}

TEST_F(OpenDeviceTest, AfterARefusalAnotherDeviceOpens)
{
    EXPECT_EQ(refusal(at(root, false)), DeviceFault::NotFound);
    EXPECT_EQ(refusal(at(root)), std::nullopt);
}

TEST_F(OpenDeviceTest, AnUnknownZoneIsRefused)
{
    for (const char *zone : {"Europe/Atlantis", "../../etc/passwd", "/usr/share/zoneinfo/UTC", "Europe", "a b"})
    {
        DeviceOptions options = at(root);
        options.timeZone = zone;
        EXPECT_EQ(refusal(options), DeviceFault::Other) << zone;
        EXPECT_NE(message.find(zone), std::string::npos);
        EXPECT_FALSE(fs::exists(root));
    }
}

TEST_F(OpenDeviceTest, ARelativeRootStaysTheSameWhenTheProgramGoesElsewhere)
{
    const fs::path before = fs::current_path();
    fs::current_path(temporary.path());
    const auto device = OpenDevice(at("./x/../device/"));
    fs::current_path(before);
    EXPECT_EQ(device->root(), root);
    EXPECT_TRUE(putFile(u"\\x", "found"));
    EXPECT_EQ(hostBytes(root / "files" / "x"), "found");
}

TEST_F(OpenDeviceTest, MissingFoldersOfTheTreeComeBackAndOthersStay)
{
    OpenDevice(at(root));
    fs::remove(root / "files" / "Temp");
    fs::rename(root / "files" / "Windows", root / "files" / "WINDOWS");
    fs::create_directory(root / "files" / "Mine");
    OpenDevice(at(root));
    EXPECT_EQ(hostNames(root / "files"), (Names{"Mine", "My Documents", "Storage Card", "Temp", "WINDOWS"}));
}

TEST_F(OpenDeviceTest, AHalfMadeDeviceIsCompleted)
{
    // What a maker killed before the store is in place leaves.
    fs::create_directory(root);
    putHostFile(root / "store.db-new-1234", "half a store");
    EXPECT_EQ(refusal(at(root)), std::nullopt) << message;
    EXPECT_TRUE(fs::is_directory(root / "files" / "My Documents"));
    // And one killed behind that.
    fs::remove_all(root / "files");
    EXPECT_EQ(refusal(at(root)), std::nullopt) << message;
    EXPECT_TRUE(fs::is_directory(root / "files" / "My Documents"));
}

TEST_F(OpenDeviceTest, AMakerKilledAtAnyMomentLeavesADeviceThatOpens)
{
    constexpr unsigned rounds = 25;
    const auto begin = std::chrono::steady_clock::now();
    OpenDevice(at(root));
    const auto whole = std::chrono::steady_clock::now() - begin;
    int unfinished = 0;
    for (unsigned round = 0; round < rounds; ++round)
    {
        const fs::path folder = temporary.path() / ("device" + std::to_string(round));
        {
            Signal ready;
            Signal never;
            Child child(
                [&]
                {
                    ready.give();
                    const auto device = OpenDevice(at(folder));
                    never.take();
                    return 0;
                });
            ASSERT_TRUE(ready.take());
            std::this_thread::sleep_for(whole * round / rounds);
        }
        unfinished += fs::exists(folder / "files" / "Storage Card") ? 0 : 1;
        ASSERT_EQ(refusal(at(folder)), std::nullopt) << "round " << round << ": " << message;
        ASSERT_EQ(hostNames(folder / "files"), (Names{"My Documents", "Storage Card", "Temp", "Windows"}));
    }
    EXPECT_GT(unfinished, 0);
}

TEST_F(OpenDeviceTest, ManyProcessesMakeTheSameDeviceAtOnce)
{
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < 6; ++i)
    {
        children.push_back(std::make_unique<Child>(
            [&]
            {
                const auto fault = refusal(at(root));
                return fault ? 1 + static_cast<int>(*fault) : 0;
            }));
    }
    for (const auto &child : children)
    {
        EXPECT_EQ(child->wait(), 0);
    }
    const auto device = OpenDevice(at(root));
    HANDLE find = CeFindFirstDatabase(0);
    int databases = 0;
    while (CeFindNextDatabase(find) != 0)
    {
        ++databases;
    }
    CloseHandle(find);
    EXPECT_EQ(databases, 4);
}

TEST_F(OpenDeviceTest, TheDefaultRootFollowsTheEnvironment)
{
    Environment environment;
    environment.set("ZB_DEVICE", "/x/device");
    environment.set("XDG_DATA_HOME", "/x/data");
    environment.set("HOME", "/x/home");
    EXPECT_EQ(zb::defaultRoot(), "/x/device");
    environment.set("ZB_DEVICE", "");
    EXPECT_EQ(zb::defaultRoot(), "/x/data/zembrik");
    environment.set("ZB_DEVICE", nullptr);
    EXPECT_EQ(zb::defaultRoot(), "/x/data/zembrik");
    environment.set("XDG_DATA_HOME", "relative");
    EXPECT_EQ(zb::defaultRoot(), "/x/home/.local/share/zembrik");
    environment.set("XDG_DATA_HOME", nullptr);
    EXPECT_EQ(zb::defaultRoot(), "/x/home/.local/share/zembrik");
    environment.set("ZB_DEVICE", root.c_str());
    DeviceOptions options = at({});
    EXPECT_EQ(OpenDevice(options)->root(), root);
}

TEST_F(OpenDeviceTest, TheHostsLocaleIsTakenFromTheFirstVariableThatIsSet)
{
    struct Case
    {
        const char *all;
        const char *time;
        const char *lang;
        const char *locale;
    };
    const Case cases[] = {
        {"de_DE.UTF-8", "fr_FR.UTF-8", "es_ES.UTF-8", "de-DE"},
        {nullptr, "fr_FR.UTF-8", "es_ES.UTF-8", "fr-FR"},
        {"", "", "es_ES.UTF-8", "es-ES"},
        {nullptr, nullptr, nullptr, "en-US"},
        {"C", "fr_FR", "fr_FR", "en-US"},
        {"POSIX", nullptr, nullptr, "en-US"},
        {"C.UTF-8", nullptr, nullptr, "en-US"},
        {nullptr, nullptr, "de_AT@euro", "de-AT"},
        {nullptr, nullptr, "sr_RS.UTF-8@latin", "sr-Latn-RS"},
        {nullptr, nullptr, "uz_UZ@cyrillic", "uz-Cyrl-UZ"},
        {nullptr, nullptr, "pt", "pt"},
    };
    Environment environment;
    HMODULE module = LoadLibraryW(u"ZBTestModule.dll");
    ASSERT_NE(module, nullptr);
    for (const Case &each : cases)
    {
        environment.set("LC_ALL", each.all);
        environment.set("LC_TIME", each.time);
        environment.set("LANG", each.lang);
        DeviceOptions options = at(root);
        options.locale.clear();
        const auto device = OpenDevice(options);
        WCHAR text[32];
        // Text 5 of this module is the language that it is asked in.
        EXPECT_GT(LoadStringW(module, 5, text, 32), 0);
        EXPECT_EQ(utf8(text), each.locale);
    }
    FreeLibrary(module);
}

TEST_F(OpenDeviceTest, TheHostsZoneIsTakenFromItsVariable)
{
    Environment environment;
    for (const char *value : {"America/New_York", ":America/New_York", "/usr/share/zoneinfo/America/New_York",
                              ":/usr/share/zoneinfo/posix/America/New_York"})
    {
        environment.set("TZ", value);
        DeviceOptions options = at(root);
        options.timeZone.clear();
        const auto device = OpenDevice(options);
        EXPECT_EQ(zb::deviceZoneName(), "America/New_York") << value;
    }
    environment.set("TZ", "No/Such");
    DeviceOptions options = at(root);
    options.timeZone.clear();
    const auto device = OpenDevice(options);
    EXPECT_NE(zb::deviceZoneName(), "No/Such");
    EXPECT_TRUE(zb::zoneRecord(zb::deviceZoneName(), 2026).has_value());
}

// --- The tests' own device -----------------------------------------------------------------------------------------

using TestDeviceTest = DeviceTest;

TEST_F(TestDeviceTest, TheClockStandsUntilItIsSet)
{
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    EXPECT_EQ(describe(now), "2026-03-02 09:00:00");
    device.advanceClock(90 * zb::ticksPerSecond);
    GetSystemTimeAsFileTime(&now);
    EXPECT_EQ(describe(now), "2026-03-02 09:01:30");
    device.setClock(makeFileTime(1999, 12, 31, 23, 59));
    GetSystemTimeAsFileTime(&now);
    EXPECT_EQ(describe(now), "1999-12-31 23:59:00");
    device.reopen();
    GetSystemTimeAsFileTime(&now);
    EXPECT_EQ(describe(now), "1999-12-31 23:59:00");
}

TEST_F(TestDeviceTest, TheZoneIsBerlinUntilItIsSet)
{
    SYSTEMTIME local{};
    GetLocalTime(&local);
    EXPECT_EQ(describe(local), "2026-03-02 10:00:00");
    device.setZone("America/New_York");
    GetLocalTime(&local);
    EXPECT_EQ(describe(local), "2026-03-02 04:00:00");
}

TEST_F(TestDeviceTest, WhatIsStoredIsThereWhenOpenedAgain)
{
    ASSERT_TRUE(putFile(u"\\x", "kept"));
    device.reopen();
    EXPECT_EQ(getFile(u"\\x"), "kept");
}

TEST(TestDeviceItself, LeavesNothingBehind)
{
    fs::path path;
    {
        TestDevice device;
        path = device.path();
        EXPECT_TRUE(fs::exists(path));
    }
    EXPECT_FALSE(fs::exists(path.parent_path()));
}

TEST(TestHelpers, TextsAndTimesAreRight)
{
    EXPECT_EQ(utf8(u"a\u00E4\u20AC\U0001F600"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(utf16("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"), u"a\u00E4\u20AC\U0001F600");
    EXPECT_EQ(utf8(static_cast<const WCHAR *>(nullptr)), "(null)");
    // 2026-03-02 00:00 UTC is 1,772,409,600 seconds after 1970, which is 11,644,473,600 after 1601.
    EXPECT_EQ(zb::ticksOf(makeFileTime(2026, 3, 2)), (1'772'409'600LL + 11'644'473'600LL) * 10'000'000LL);
    EXPECT_EQ(makeSystemTime(2026, 3, 2).wDayOfWeek, 1);
    EXPECT_EQ(describe(makeFileTime(2000, 2, 29, 23, 59, 58)), "2000-02-29 23:59:58");
}
} // namespace
