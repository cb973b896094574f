// The file form of lists: bytes, round trips, damage, and that the old file stays when a save fails.
#include "core/CePtrList.h"
#include "core/CeStrList.h"

#include "platform/files.h"
#include "platform/linux/file_faults.h"
#include "support/TestDevice.h"

#include <cerrno>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace
{
using Bytes = std::vector<unsigned char>;
constexpr const WCHAR *path = u"\\My Documents\\list.bin";

class CeListFile : public zb::test::DeviceTest
{
  protected:
    void SetUp() override
    {
        std::filesystem::create_directories(file().parent_path());
    }
    void TearDown() override
    {
        zb::setFileFaults({});
    }
    std::filesystem::path file() const
    {
        return device.files() / "My Documents" / "list.bin";
    }
    Bytes stored() const
    {
        std::ifstream in(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void store(const Bytes &bytes) const
    {
        std::ofstream out(file(), std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
};

/// Two numbers, cursor on the second, base 1, user value 0x00000007; signature "Sig".
Bytes sample()
{
    return {1,                                   // version
            4, 0, 0, 0, 'S',  'i',  'g',  0,     // signature
            2, 0, 0, 0,                          // count
            2, 0, 0, 0,                          // cursor
            1, 0, 0, 0,                          // base
            7, 0, 0, 0,                          // user value
            4, 0, 0, 0, 0x0A, 0,    0,    0,     // 10
            4, 0, 0, 0, 0x04, 0x03, 0x02, 0x01}; // 0x01020304
}
constexpr std::size_t headerBytes = 25;

std::vector<ULONG> valuesOf(CeList<ULONG> &list)
{
    std::vector<ULONG> values;
    for (int i = 0; i < list.GetCount(); ++i)
    {
        values.push_back(list.GetAt(list.GetBase() + i));
    }
    return values;
}

TEST_F(CeListFile, BytesAreThoseOfTheFormat)
{
    CeList<ULONG> list(1);
    list.AddTail(10);
    list.AddTail(0x01020304);
    list.SetUser(7);
    ASSERT_EQ(list.SaveFile(path, "Sig", true), 0);
    EXPECT_EQ(stored(), sample());
    ASSERT_EQ(list.SaveFile(path, "Sig"), 0);
    Bytes withoutUser = sample();
    withoutUser[21] = 0;
    EXPECT_EQ(stored(), withoutUser);
}

TEST_F(CeListFile, EmptyListHasACursorBeforeItsBase)
{
    CeList<ULONG> list(0);
    ASSERT_EQ(list.SaveFile(path, "S", false), 0);
    EXPECT_EQ(stored(), (Bytes{1, 2, 0, 0, 0, 'S', 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0}));
    list.AddTail(1);
    EXPECT_EQ(list.LoadFile(path, "S", true), 0);
    EXPECT_EQ(list.GetCount(), 0);
}

TEST_F(CeListFile, LoadsWhatWasStored)
{
    store(sample());
    for (const bool sized : {false, true})
    {
        CeList<ULONG> list(0);
        list.AddTail(99);
        list.SetUser(1);
        ASSERT_EQ(list.LoadFile(path, "Sig", sized, true), 0);
        EXPECT_EQ(list.GetBase(), sized ? 1 : 0) << "only a sized load takes the base";
        EXPECT_EQ(list.GetUser(), 7U);
        EXPECT_EQ(list.GetIndex(), sized ? 2 : 1) << "index 2 is out of range with base 0";
        EXPECT_EQ(valuesOf(list), (std::vector<ULONG>{10, 0x01020304}));
    }
    CeList<ULONG> list(1);
    list.SetUser(1);
    ASSERT_EQ(list.LoadFile(path, "Sig"), 0);
    EXPECT_EQ(list.GetUser(), 1U);
    EXPECT_EQ(list.GetIndex(), 2);
}

TEST_F(CeListFile, CursorIsRestored)
{
    CeList<ULONG> list(1);
    for (ULONG i = 0; i < 20; ++i)
    {
        list.AddTail(i);
    }
    list.MoveTo(5);
    ASSERT_EQ(list.SaveFile(path, "Sig"), 0);
    CeList<ULONG> other(1);
    ASSERT_EQ(other.LoadFile(path, "Sig", true), 0);
    EXPECT_EQ(other.GetIndex(), 5);
    EXPECT_EQ(other.GetCount(), 20);
}

TEST_F(CeListFile, WrongVersionOrSignatureIs5AndClears)
{
    CeList<ULONG> list(1);
    Bytes version = sample();
    version[0] = 2;
    store(version);
    list.AddTail(1);
    EXPECT_EQ(list.LoadFile(path, "Sig"), 5);
    EXPECT_EQ(list.GetCount(), 0);
    store(sample());
    list.AddTail(1);
    EXPECT_EQ(list.LoadFile(path, "Sib"), 5);
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.LoadFile(path, "Signature"), 5);
    EXPECT_EQ(list.LoadFile(path, "Si"), 5);
    EXPECT_EQ(list.LoadFile(path, ""), 5);
}

TEST_F(CeListFile, NoSignatureIsAnEmptyOne)
{
    CeList<ULONG> list(1);
    list.AddTail(10);
    ASSERT_EQ(list.SaveFile(path, nullptr), 0);
    EXPECT_EQ(list.LoadFile(path, ""), 0);
    EXPECT_EQ(list.LoadFile(path, nullptr), 0);
    EXPECT_EQ(valuesOf(list), std::vector<ULONG>{10});
    store(sample());
    EXPECT_EQ(list.LoadFile(path, nullptr), 5);
    EXPECT_EQ(list.SaveFile(nullptr, "Sig"), 4);
    EXPECT_EQ(list.LoadFile(nullptr, "Sig"), 4);
}

TEST_F(CeListFile, MissingFileIs4AndClears)
{
    CeList<ULONG> list(1);
    list.AddTail(1);
    EXPECT_EQ(list.LoadFile(path, "Sig"), 4);
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.LoadFile(u"\\No Folder\\x", "Sig"), 4);
}

TEST_F(CeListFile, EveryTruncationIsAnErrorOrWhatStoodBefore)
{
    const Bytes whole = sample();
    for (std::size_t length = 0; length < whole.size(); ++length)
    {
        store(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        for (const bool sized : {false, true})
        {
            CeList<ULONG> list(1);
            list.AddTail(5);
            const int error = list.LoadFile(path, "Sig", sized);
            std::vector<ULONG> expected;
            int expectedError = 4;
            // Items are 8 bytes; a cut inside a size word ends the list, one inside an item is an error.
            if (length >= headerBytes && (length - headerBytes) % 8 < 4)
            {
                expectedError = 0;
                expected.assign((length - headerBytes) / 8, 10);
            }
            else if (length >= headerBytes && (length - headerBytes) % 8 == 4)
            {
                expectedError = 4;
            }
            EXPECT_EQ(error, expectedError) << length;
            EXPECT_EQ(valuesOf(list), expected) << length;
        }
    }
}

TEST_F(CeListFile, CountsThatLieChangeNothing)
{
    for (const ULONG count : {0U, 1U, 3U, 1000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
    {
        Bytes bytes = sample();
        for (unsigned i = 0; i < 4; ++i)
        {
            bytes[9 + i] = static_cast<unsigned char>(count >> (8 * i));
        }
        store(bytes);
        for (const bool sized : {false, true})
        {
            CeList<ULONG> list(1);
            EXPECT_EQ(list.LoadFile(path, "Sig", sized), 0) << count;
            EXPECT_EQ(valuesOf(list), (std::vector<ULONG>{10, 0x01020304})) << count;
        }
    }
}

TEST_F(CeListFile, SizesThatLieAreAnError)
{
    for (const ULONG size : {5U, 0x7FFFFFFFU, 0xFFFFFFFFU})
    {
        Bytes bytes = sample();
        for (unsigned i = 0; i < 4; ++i)
        {
            bytes[headerBytes + 8 + i] = static_cast<unsigned char>(size >> (8 * i));
        }
        store(bytes);
        CeList<ULONG> list(1);
        EXPECT_EQ(list.LoadFile(path, "Sig"), 4) << size;
        EXPECT_EQ(list.GetCount(), 0);
    }
}

TEST_F(CeListFile, BasesOtherThan0And1AreRefusedWhereTheyCount)
{
    Bytes bytes = sample();
    bytes[20] = 0x7F;
    store(bytes);
    CeList<ULONG> list(1);
    EXPECT_EQ(list.LoadFile(path, "Sig", true), 4);
    EXPECT_EQ(list.GetBase(), 1);
    EXPECT_EQ(list.LoadFile(path, "Sig", false), 0);
    EXPECT_EQ(list.GetCount(), 2);
}

TEST_F(CeListFile, ACursorOutsideLeavesItOnTheLast)
{
    Bytes bytes = sample();
    bytes[13] = 200;
    store(bytes);
    CeList<ULONG> list(1);
    EXPECT_EQ(list.LoadFile(path, "Sig", true), 0);
    EXPECT_EQ(list.GetIndex(), 2);
}

TEST_F(CeListFile, NumbersOfAnyWidthRoundTrip)
{
    CeList<BYTE> bytes(0);
    bytes.AddTail(200);
    ASSERT_EQ(bytes.SaveFile(path, "Sig"), 0);
    EXPECT_EQ(stored().size(), headerBytes + 5);
    ASSERT_EQ(bytes.LoadFile(path, "Sig"), 0);
    EXPECT_EQ(bytes.GetAt(0), 200);
    CeList<LONGLONG> longs(0);
    longs.AddTail(-2);
    ASSERT_EQ(longs.SaveFile(path, "Sig"), 0);
    ASSERT_EQ(longs.LoadFile(path, "Sig"), 0);
    EXPECT_EQ(longs.GetAt(0), -2);
}

// --- Pack callbacks ----------------------------------------------------------------------------------------------

struct Entry
{
    char *text;
};
int built = 0;
int released = 0;
int refuseAfter = 1000;

void copyEntry(Entry &dest, const Entry &source, DWORD_PTR)
{
    dest.text = source.text != nullptr ? strdup(source.text) : nullptr;
    built += source.text != nullptr ? 1 : 0;
}

void freeEntry(Entry &element, DWORD_PTR)
{
    released += element.text != nullptr ? 1 : 0;
    std::free(element.text);
}

int packEntry(Entry &element, UINT &size, void *&buffer, _CELIST_STREAMTYPE type, DWORD_PTR user)
{
    EXPECT_EQ(user, 5U);
    if (--refuseAfter < 0)
    {
        return CELIST_MEMORY;
    }
    if (type == CELIST_WRITE)
    {
        buffer = element.text;
        size = static_cast<UINT>(std::strlen(element.text));
        return 0;
    }
    element.text = strndup(static_cast<const char *>(buffer), size);
    ++built;
    return 0;
}

class CeListPack : public CeListFile
{
  protected:
    using Entries = CeList<Entry>;
    void SetUp() override
    {
        CeListFile::SetUp();
        built = released = 0;
        refuseAfter = 1000;
    }
    void fill(Entries &list, const std::vector<std::string> &texts)
    {
        list.SetUser(5);
        for (std::string text : texts)
        {
            list.AddTail({text.data()});
        }
    }
};

TEST_F(CeListPack, ElementsThatOwnMemoryRoundTripWithoutLeak)
{
    const std::vector<std::string> texts{"one", "two", "three", "four", "five", "six", "seven"};
    for (const bool sized : {false, true})
    {
        {
            Entries list(1, copyEntry, freeEntry, nullptr, packEntry);
            fill(list, texts);
            ASSERT_EQ(list.SaveFile(path, "Sig"), 0);
            ASSERT_EQ(list.LoadFile(path, "Sig", sized), 0);
            ASSERT_EQ(list.GetCount(), 7);
            for (int i = 1; i <= 7; ++i)
            {
                EXPECT_EQ(list.GetAt(i).text, texts[static_cast<std::size_t>(i - 1)]);
            }
        }
        EXPECT_EQ(built, released);
    }
}

TEST_F(CeListPack, AnErrorOfTheCallbackEndsALoadWithAnEmptyList)
{
    {
        Entries list(1, copyEntry, freeEntry, nullptr, packEntry);
        fill(list, {"a", "b", "c"});
        ASSERT_EQ(list.SaveFile(path, "Sig"), 0);
        refuseAfter = 2;
        EXPECT_EQ(list.LoadFile(path, "Sig", true), 2);
        EXPECT_EQ(list.GetCount(), 0);
    }
    EXPECT_EQ(built, released);
}

TEST_F(CeListPack, AnErrorOfTheCallbackLeavesTheOldFile)
{
    store(sample());
    Entries list(1, copyEntry, freeEntry, nullptr, packEntry);
    fill(list, {"a", "b", "c"});
    refuseAfter = 2;
    EXPECT_EQ(list.SaveFile(path, "Sig"), 2);
    EXPECT_EQ(stored(), sample());
}

TEST_F(CeListPack, PointersHaveNoFormOfTheirOwn)
{
    CePtrList<int *> list(0, 6);
    int value = 0;
    list.AddTail(&value);
    EXPECT_EQ(list.SaveFile(path, "Sig"), 4);
    EXPECT_FALSE(std::filesystem::exists(file()));
}

// --- Atomic saves ------------------------------------------------------------------------------------------------

TEST_F(CeListFile, AFailedSaveIs4AndLeavesTheOldFile)
{
    store(sample());
    for (const zb::FileStep failing :
         {zb::FileStep::Create, zb::FileStep::Write, zb::FileStep::Sync, zb::FileStep::Rename})
    {
        zb::setFileFaults(
            [failing](zb::FileStep step, std::size_t) {
                return zb::FileFault{step == failing ? ENOSPC : 0, 3};
            });
        CeList<ULONG> list(1);
        list.AddTail(123);
        EXPECT_EQ(list.SaveFile(path, "Sig"), 4);
        EXPECT_EQ(list.GetAt(1), 123U);
        zb::setFileFaults({});
        EXPECT_EQ(stored(), sample());
    }
    CeList<ULONG> list(1);
    EXPECT_EQ(list.SaveFile(u"\\No Folder\\x.bin", "Sig"), 4);
}

// --- String lists ------------------------------------------------------------------------------------------------

TEST_F(CeListFile, StringsAreStoredWithTheirZeroAndEmptyOnesWithoutBytes)
{
    CeStrList<> list(0, 5);
    list.AddString(u"aé");
    list.AddString(u"");
    ASSERT_EQ(list.SaveFile(path, "ZBSEARCH1.0"), 0);
    const Bytes expected{1, 12, 0, 0, 0, 'Z', 'B', 'S', 'E', 'A', 'R', 'C', 'H', '1', '.', '0',  0, 2, 0, 0, 0, 1, 0, 0,
                         0, 0,  0, 0, 0, 0,   0,   0,   0,   6,   0,   0,   0,   'a', 0,   0xE9, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(stored(), expected);
    CeStrList<> other(0, 5);
    ASSERT_EQ(other.LoadFile(path, "ZBSEARCH1.0", true), 0);
    ASSERT_EQ(other.GetCount(), 2);
    EXPECT_EQ(zb::test::utf8(other.GetAt(0)), "aé");
    EXPECT_EQ(zb::test::utf8(other.GetAt(1)), "");
}

TEST_F(CeListFile, StringsThatAreCutOrOddAreReadSafely)
{
    Bytes bytes = sample();
    bytes.resize(headerBytes);
    for (const Bytes &item :
         {Bytes{4, 0, 0, 0, 'a', 0, 'b', 0}, Bytes{3, 0, 0, 0, 'c', 0, 'd'}, Bytes{1, 0, 0, 0, 'e'}})
    {
        bytes.insert(bytes.end(), item.begin(), item.end());
    }
    store(bytes);
    CeStrList<> list(1, 2);
    ASSERT_EQ(list.LoadFile(path, "Sig"), 0);
    ASSERT_EQ(list.GetCount(), 3);
    EXPECT_EQ(zb::test::utf8(list.GetAt(1)), "ab");
    EXPECT_EQ(zb::test::utf8(list.GetAt(2)), "c");
    EXPECT_EQ(zb::test::utf8(list.GetAt(3)), "");
    for (const int ownership : {2, 3, 5})
    {
        // The file's user value, 7 here, has no say in how the next load allocates.
        CeStrList<> taking(1, ownership);
        ASSERT_EQ(taking.LoadFile(path, "Sig", false, true), 0);
        EXPECT_EQ(taking.GetUser(), 7U);
        ASSERT_EQ(taking.LoadFile(path, "Sig", false, true), 0);
        EXPECT_EQ(zb::test::utf8(taking.GetAt(1)), "ab");
    }
    CeStrList<> borrowing(1, 6);
    EXPECT_EQ(borrowing.LoadFile(path, "Sig"), 4) << "nobody would free the texts";
}
} // namespace
