// Finding, loading and freeing libraries by the device's names.
#include "platform/kernel.h"
#include "platform/modules.h"
#include "support/PlatformThread.h"
#include "support/TestDevice.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace
{
namespace fs = std::filesystem;
using Counter = int (*)();

fs::path programFolder()
{
    return fs::read_symlink("/proc/self/exe").parent_path();
}

class Libraries : public zb::test::DeviceTest
{
};

Counter counterOf(HMODULE module)
{
    return reinterpret_cast<Counter>(GetProcAddressW(module, u"zbTestCounter"));
}

TEST_F(Libraries, AreFoundBesideTheProgram)
{
    for (const WCHAR *name :
         {u"ZBTestModule.dll", u"ZBTestModule.DLL", u"zbtestmodule.dll", u"ZBTestModule", u"libZBTestModule.so"})
    {
        HMODULE module = LoadLibraryW(name);
        ASSERT_NE(module, nullptr) << zb::test::utf8(name);
        EXPECT_NE(counterOf(module), nullptr);
        EXPECT_TRUE(FreeLibrary(module));
    }
}

TEST_F(Libraries, LoadedOnesAreFoundByNameAndByAnAddressInThem)
{
    ASSERT_NE(GetModuleHandleW(nullptr), nullptr);
    EXPECT_EQ(GetModuleHandleW(nullptr), GetModuleHandleW(nullptr));
    static const int here = 0;
    EXPECT_EQ(zb::moduleAt(&here), GetModuleHandleW(nullptr)) << "this is the program";
    EXPECT_EQ(zb::moduleAt(nullptr), nullptr);
    EXPECT_NE(GetModuleHandleW(u"ZBPlatform.dll"), nullptr);
    HMODULE module = LoadLibraryW(u"ZBTestModule.dll");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(GetModuleHandleW(u"ZBTestModule.dll"), module);
    EXPECT_EQ(zb::moduleAt(GetProcAddressW(module, u"zbTestValue")), module);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(FreeLibrary(module)) << "asking did not count";
    SetLastError(0);
    EXPECT_EQ(GetModuleHandleW(u"No such.dll"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
}

TEST_F(Libraries, GiveFunctionsAndData)
{
    HMODULE module = LoadLibraryW(u"ZBTestModule.dll");
    ASSERT_NE(module, nullptr);
    const auto *value = static_cast<int *>(GetProcAddressW(module, u"zbTestValue"));
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(*value, 4711);
    for (const WCHAR *missing : {u"zbTestNoSuchSymbol", u"ZBTESTCOUNTER", u""})
    {
        SetLastError(0);
        EXPECT_EQ(GetProcAddressW(module, missing), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    }
    SetLastError(0);
    EXPECT_EQ(GetProcAddressW(module, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    EXPECT_TRUE(FreeLibrary(module));
}

TEST_F(Libraries, LoadedTwiceAreOneAndStayUntilFreedTwice)
{
    HMODULE first = LoadLibraryW(u"ZBTestModule.dll");
    HMODULE second = LoadLibraryW(u"ZBTestModule.dll");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    const int before = counterOf(first)();
    EXPECT_EQ(counterOf(second)(), before + 1);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_EQ(counterOf(second)(), before + 2);
    EXPECT_TRUE(FreeLibrary(second));
    SetLastError(0);
    EXPECT_FALSE(FreeLibrary(second));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(Libraries, AreFoundInTheDevicesWindowsFolder)
{
    const fs::path folder = device.files() / "Windows";
    fs::create_directories(folder);
    fs::copy_file(programFolder() / "libZBTestModule.so", folder / "libOnDevice.so");
    for (const WCHAR *name :
         {u"OnDevice.dll", u"ondevice.dll", u"OnDevice", u"\\Windows\\OnDevice.dll", u"\\windows\\libOnDevice.so"})
    {
        HMODULE module = LoadLibraryW(name);
        ASSERT_NE(module, nullptr) << zb::test::utf8(name);
        EXPECT_NE(counterOf(module), nullptr);
        EXPECT_TRUE(FreeLibrary(module));
    }
}

TEST_F(Libraries, WithAPathAreFoundThereAlone)
{
    const fs::path folder = device.files() / "Storage Card" / "Plugins";
    fs::create_directories(folder);
    fs::copy_file(programFolder() / "libZBTestModule.so", folder / "libPlugin.so");
    HMODULE module = LoadLibraryW(u"\\Storage Card\\Plugins\\Plugin.dll");
    ASSERT_NE(module, nullptr);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(LoadLibraryW(u"Plugin.dll"), nullptr) << "not in any of the places for plain names";
    EXPECT_EQ(LoadLibraryW(u"\\Storage Card\\ZBTestModule.dll"), nullptr) << "a path is not searched for elsewhere";
}

TEST_F(Libraries, OfTwoDevicesAreToldApart)
{
    const fs::path folder = device.files() / "Windows";
    fs::create_directories(folder);
    fs::copy_file(programFolder() / "libZBTestModule.so", folder / "libFirst.so");
    fs::copy_file(programFolder() / "libZBTestModule.so", folder / "libSecond.so");
    HMODULE first = LoadLibraryW(u"First.dll");
    HMODULE second = LoadLibraryW(u"Second.dll");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(counterOf(first)(), 1);
    EXPECT_EQ(counterOf(second)(), 1);
    FreeLibrary(first);
    FreeLibrary(second);
}

TEST_F(Libraries, ThatAreNotThereAreRefused)
{
    const fs::path folder = device.files() / "Windows";
    fs::create_directories(folder / "libFolder.so");
    for (const WCHAR *name : {u"ZBNoSuchLibrary.dll", u"", u"\\", u"\\Windows\\", u"Folder.dll",
                              u"../bin/ZBTestModule.dll", u"\\..\\..\\ZBTestModule.dll", u".dll"})
    {
        SetLastError(0);
        EXPECT_EQ(LoadLibraryW(name), nullptr) << zb::test::utf8(name);
        EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND) << zb::test::utf8(name);
    }
    EXPECT_EQ(LoadLibraryW(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
}

TEST_F(Libraries, ThatAreNoneAreRefusedAndToldToTheDebugger)
{
    const fs::path folder = device.files() / "Windows";
    fs::create_directories(folder);
    std::ofstream(folder / "libText.so") << "no library at all";
    std::u16string told;
    zb::setDebugSink([&](const WCHAR *text) { told += text; });
    EXPECT_EQ(LoadLibraryW(u"Text.dll"), nullptr);
    zb::setDebugSink({});
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    EXPECT_NE(told.find(u"libText.so"), told.npos);
}

TEST_F(Libraries, RefuseForeignModules)
{
    int value = 0;
    for (HMODULE bad : {HMODULE{nullptr}, reinterpret_cast<HMODULE>(&value), reinterpret_cast<HMODULE>(0x1234)})
    {
        SetLastError(0);
        EXPECT_EQ(GetProcAddressW(bad, u"zbTestCounter"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        SetLastError(0);
        EXPECT_FALSE(FreeLibrary(bad));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
}

std::atomic<int> unloadStage = 0;

void lingerInUnload()
{
    unloadStage = 1;
    while (unloadStage == 1)
    {
    }
    zb::stoppingPoint();
    unloadStage = 3;
}

TEST_F(Libraries, AreNotLockedByAThreadThatIsTerminatedInsideTheLoader)
{
    const fs::path folder = device.files() / "Windows";
    fs::create_directories(folder);
    fs::copy_file(programFolder() / "libZBTestModule.so", folder / "libUnloading.so");
    const zb::test::PlatformThread thread(
        []
        {
            HMODULE module = LoadLibraryW(u"Unloading.dll");
            *static_cast<void (**)()>(GetProcAddressW(module, u"zbTestAtUnload")) = lingerInUnload;
            FreeLibrary(module);
            Sleep(INFINITE);
        });
    while (unloadStage == 0)
    {
        Sleep(1);
    }
    EXPECT_TRUE(TerminateThread(thread.handle(), 1));
    unloadStage = 2;
    HMODULE module = LoadLibraryW(u"ZBTestModule.dll");
    EXPECT_NE(module, nullptr) << "comes back at all: the loader was left before the thread stopped";
    EXPECT_EQ(unloadStage, 3);
    FreeLibrary(module);
}

TEST(LibrariesWithoutADevice, AreFoundBesideTheProgram)
{
    HMODULE module = LoadLibraryW(u"ZBTestModule.dll");
    EXPECT_NE(module, nullptr);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(LoadLibraryW(u"\\Windows\\ZBTestModule.dll"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
}
} // namespace
