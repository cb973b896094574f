// The registry: keys in a tree, typed values, names without regard to case, and that all of it survives.
#include "platform/kernel.h"
#include "platform/propdb.h"
#include "platform/registry.h"
#include "platform/text.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
class RegistryTest : public zb::test::DeviceTest
{
  protected:
    static HKEY make(const WCHAR *path, DWORD *disposition = nullptr)
    {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, 0, nullptr, &key, disposition), 0);
        return key;
    }

    static LONG setNumber(HKEY key, const WCHAR *name, DWORD value)
    {
        return RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(&value), sizeof(value));
    }

    static LONG number(HKEY key, const WCHAR *name, DWORD &value)
    {
        DWORD size = sizeof(value);
        return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE *>(&value), &size);
    }
};

TEST_F(RegistryTest, aKeyIsMadeByOpeningItWithAllThatLeadToIt)
{
    DWORD disposition = 0;
    RegCloseKey(make(u"Software\\Kelvo\\Zembrik", &disposition));
    EXPECT_EQ(disposition, 1U);
    RegCloseKey(make(u"software\\KELVO", &disposition));
    EXPECT_EQ(disposition, 2U);
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"\\Software\\\\kelvo\\", 0, 0, &key), 0);
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\None", 0, 0, &key), 2);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software", 0, 0, &key), 2);
}

TEST_F(RegistryTest, readingWaitsForNoBulkAlsoOnADeviceWithoutAnyKeys)
{
    for (const bool hasKeys : {false, true})
    {
        if (hasKeys)
        {
            RegCloseKey(make(u"A"));
        }
        zb::BulkWrite bulk;
        const SORTORDERSPEC order{0x0001001f, 0};
        ASSERT_NE(CeCreateDatabase(hasKeys ? u"Second" : u"First", 0, 1, &order), 0U);
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"B", 0, 0, &key), 2)
            << "not there, instead of a store that is busy";
        DWORD value = 0;
        EXPECT_EQ(number(HKEY_CURRENT_USER, u"none", value), 2);
        DWORD keys = 9;
        EXPECT_EQ(RegQueryInfoKeyW(HKEY_CURRENT_USER, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr,
                                   nullptr, nullptr, nullptr, nullptr),
                  0);
        EXPECT_EQ(keys, hasKeys ? 1U : 0U);
        EXPECT_TRUE(bulk.commit());
    }
}

TEST_F(RegistryTest, aFirstValueMayStandInARoot)
{
    EXPECT_EQ(setNumber(HKEY_CURRENT_USER, u"Number", 42), 0);
    DWORD value = 0;
    EXPECT_EQ(number(HKEY_CURRENT_USER, u"Number", value), 0);
    EXPECT_EQ(value, 42U);
}

TEST_F(RegistryTest, valuesKeepTheirTypeAndBytesOverAReopening)
{
    HKEY key = make(u"A");
    const std::vector<BYTE> bytes = {0, 1, 255, 0};
    EXPECT_EQ(setNumber(key, u"Number", 42), 0);
    EXPECT_EQ(RegSetValueExW(key, u"Bytes", 0, REG_BINARY, bytes.data(), 4), 0);
    EXPECT_EQ(RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE *>(u"é"), 4), 0);
    device.reopen();
    key = make(u"A");
    DWORD value = 0;
    EXPECT_EQ(number(key, u"nUMBER", value), 0);
    EXPECT_EQ(value, 42U);
    BYTE read[8] = {};
    DWORD size = sizeof(read);
    DWORD type = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"Bytes", nullptr, &type, read, &size), 0);
    EXPECT_EQ(type, REG_BINARY);
    EXPECT_EQ(std::vector<BYTE>(read, read + size), bytes);
    WCHAR text[4] = {};
    size = sizeof(text);
    EXPECT_EQ(RegQueryValueExW(key, u"", nullptr, &type, reinterpret_cast<BYTE *>(text), &size), 0);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(std::u16string(text), u"é");
}

TEST_F(RegistryTest, aBufferTooSmallIsToldItsSize)
{
    HKEY key = make(u"A");
    RegSetValueExW(key, u"v", 0, REG_SZ, reinterpret_cast<const BYTE *>(u"four"), 10);
    BYTE small[4];
    DWORD size = sizeof(small);
    EXPECT_EQ(RegQueryValueExW(key, u"v", nullptr, nullptr, small, &size), 234);
    EXPECT_EQ(size, 10U);
    EXPECT_EQ(RegQueryValueExW(key, u"v", nullptr, nullptr, nullptr, &size), 0);
    EXPECT_EQ(RegQueryValueExW(key, u"none", nullptr, nullptr, nullptr, &size), 2);
}

TEST_F(RegistryTest, namesComeInOrderAndKeepTheirCase)
{
    HKEY key = make(u"Top");
    RegCloseKey(make(u"Top\\beta"));
    RegCloseKey(make(u"Top\\Alpha"));
    setNumber(key, u"Two", 2);
    setNumber(key, u"one", 1);
    WCHAR name[10] = {};
    DWORD size = 10;
    EXPECT_EQ(RegEnumKeyExW(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(std::u16string(name, size), u"Alpha");
    size = 10;
    EXPECT_EQ(RegEnumKeyExW(key, 1, name, &size, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(std::u16string(name, size), u"beta");
    size = 10;
    EXPECT_EQ(RegEnumKeyExW(key, 2, name, &size, nullptr, nullptr, nullptr, nullptr), 259);
    size = 4;
    EXPECT_EQ(RegEnumKeyExW(key, 1, name, &size, nullptr, nullptr, nullptr, nullptr), 234);
    size = 10;
    DWORD value = 0;
    DWORD valueSize = sizeof(value);
    DWORD type = 0;
    EXPECT_EQ(RegEnumValueW(key, 1, name, &size, nullptr, &type, reinterpret_cast<BYTE *>(&value), &valueSize), 0);
    EXPECT_EQ(std::u16string(name, size), u"Two");
    EXPECT_EQ(type, REG_DWORD);
    EXPECT_EQ(value, 2U);
    DWORD subKeys = 0;
    DWORD longest = 0;
    DWORD values = 0;
    DWORD longestName = 0;
    DWORD longestValue = 0;
    EXPECT_EQ(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subKeys, &longest, nullptr, &values, &longestName,
                               &longestValue, nullptr, nullptr),
              0);
    EXPECT_EQ(subKeys, 2U);
    EXPECT_EQ(longest, 5U);
    EXPECT_EQ(values, 2U);
    EXPECT_EQ(longestName, 3U);
    EXPECT_EQ(longestValue, 4U);
}

TEST_F(RegistryTest, aDeletedKeyTakesAllBelowItAlongAndItsHandlesTurnBad)
{
    HKEY below = make(u"Top\\Sub\\Leaf");
    setNumber(below, u"v", 1);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"Top"), 0);
    DWORD value = 0;
    EXPECT_EQ(number(below, u"v", value), 1010);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"Top"), 2);
    HKEY again = make(u"Top\\Sub\\Leaf");
    EXPECT_EQ(number(again, u"v", value), 2);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u""), 2); // the roots stay
}

TEST_F(RegistryTest, staleAndForeignKeysAreRefusedAndTheLastErrorStays)
{
    HKEY key = make(u"A");
    EXPECT_EQ(RegCloseKey(key), 0);
    SetLastError(77);
    EXPECT_EQ(RegCloseKey(key), 1010);
    EXPECT_EQ(setNumber(key, u"v", 1), 1010);
    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    SetLastError(77);
    EXPECT_EQ(setNumber(reinterpret_cast<HKEY>(event), u"v", 1), 1010);
    EXPECT_EQ(RegCloseKey(reinterpret_cast<HKEY>(event)), 1010);
    EXPECT_EQ(GetLastError(), 77U);
    CloseHandle(event);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(RegSetValueExW(HKEY_CURRENT_USER, u"v", 0, REG_SZ, nullptr, 4), 87);
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"A", 0, nullptr, 0, 0, nullptr, nullptr, nullptr), 87);
    device.close();
    EXPECT_EQ(setNumber(HKEY_CURRENT_USER, u"v", 1), 1010);
}

TEST_F(RegistryTest, deletingAValueTwiceSaysThatItIsGone)
{
    HKEY key = make(u"A");
    setNumber(key, u"v", 1);
    EXPECT_EQ(RegDeleteValueW(key, u"V"), 0);
    EXPECT_EQ(RegDeleteValueW(key, u"v"), 2);
    EXPECT_EQ(RegFlushKey(key), 0);
}
} // namespace
