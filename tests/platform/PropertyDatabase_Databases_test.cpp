// Databases as a whole: making, opening, deleting, telling about them, changing them, enumerating.
#include "support/PropertyRecords.h"
#include "support/QuickDevice.h"

#include <limits>

using namespace zb::test;

namespace
{
constexpr CEPROPID number = MakePropId(0x0001, CEVT_I4);
constexpr CEPROPID start = MakePropId(0x420d, CEVT_FILETIME);
constexpr CEPROPID subject = MakePropId(0x0037, CEVT_LPWSTR);
constexpr CEPROPID blob = MakePropId(0x0017, CEVT_BLOB);
constexpr CEGUID systemVolume = {};

class PropertyDatabases : public QuickDeviceTest
{
  protected:
    static std::u16string nameOf(CEOID oid)
    {
        return infoOf(oid).infDatabase.szDbaseName;
    }
    static CEOID openByName(const WCHAR *name)
    {
        CEOID oid = 0;
        const HANDLE handle = CeOpenDatabase(&oid, name, 0, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
        {
            return 0;
        }
        CloseHandle(handle);
        return oid;
    }
    static std::vector<CEOID> databases(DWORD type)
    {
        std::vector<CEOID> found;
        const HANDLE find = CeFindFirstDatabase(type);
        for (CEOID oid = CeFindNextDatabase(find); oid != 0; oid = CeFindNextDatabase(find))
        {
            found.push_back(oid);
        }
        EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
        EXPECT_TRUE(CloseHandle(find));
        return found;
    }
};
} // namespace

TEST_F(PropertyDatabases, AreMadeWithNameTypeAndOrders)
{
    const CEOID oid = makeDatabase(u"Notes", {{start, 0}, {subject, CEDB_SORT_CASEINSENSITIVE}}, 77);
    ASSERT_NE(oid, 0U);
    const CEOIDINFO info = infoOf(oid);
    EXPECT_EQ(info.wObjType, OBJTYPE_DATABASE);
    EXPECT_EQ(nameOf(oid), u"Notes");
    EXPECT_EQ(info.infDatabase.dwDbaseType, 77U);
    EXPECT_EQ(info.infDatabase.wNumSortOrder, 2);
    EXPECT_EQ(info.infDatabase.rgSortSpecs[0].propid, start);
    EXPECT_EQ(info.infDatabase.rgSortSpecs[0].dwFlags, 0U);
    EXPECT_EQ(info.infDatabase.rgSortSpecs[1].propid, subject);
    EXPECT_EQ(info.infDatabase.rgSortSpecs[1].dwFlags, CEDB_SORT_CASEINSENSITIVE);
    EXPECT_EQ(info.infDatabase.wNumRecords, 0);
    EXPECT_EQ(info.infDatabase.dwNumRecords, 0U);
    EXPECT_EQ(info.infDatabase.dwSize, 0U);
    EXPECT_EQ(describe(info.infDatabase.ftLastModified), "2026-03-02 09:00:00");
    EXPECT_EQ(info.infDatabase.dwFlags, CEDB_VALIDNAME | CEDB_VALIDTYPE | CEDB_VALIDSORTSPEC | CEDB_VALIDMODTIME);
}

TEST_F(PropertyDatabases, RefuseANameThatIsTakenInAnyCase)
{
    ASSERT_NE(makeDatabase(u"Bücher"), 0U);
    EXPECT_EQ(makeDatabase(u"bÜCHER"), 0U);
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
}

TEST_F(PropertyDatabases, TakeNamesOf1To32Characters)
{
    EXPECT_NE(makeDatabase(u"x"), 0U);
    EXPECT_NE(makeDatabase(std::u16string(32, u'n').c_str()), 0U);
    for (const std::u16string &name : {std::u16string(), std::u16string(33, u'n'), std::u16string(500, u'n')})
    {
        SetLastError(0);
        EXPECT_EQ(makeDatabase(name.c_str()), 0U) << name.size();
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(makeDatabase(nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    const WCHAR half[] = {u'a', 0xD800, 0};
    EXPECT_EQ(makeDatabase(half), 0U);
}

TEST_F(PropertyDatabases, RefuseOrdersThatCanNotBe)
{
    const std::vector<std::vector<SORTORDERSPEC>> bad = {
        {{blob, 0}},
        {{number, 0}, {number, CEDB_SORT_DESCENDING}},
        {{MakePropId(1, 99), 0}},
        {{number, 8}},
    };
    for (const auto &orders : bad)
    {
        SetLastError(0);
        EXPECT_EQ(makeDatabase(u"Bad", orders), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    std::vector<SORTORDERSPEC> many;
    for (WORD property = 1; property <= 9; ++property)
    {
        many.push_back({MakePropId(property, CEVT_I4), 0});
    }
    EXPECT_EQ(makeDatabase(u"Nine", many), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CeCreateDatabase(u"None given", 0, 1, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    many.pop_back();
    EXPECT_NE(makeDatabase(u"Eight", many), 0U);
}

TEST_F(PropertyDatabases, OpenByNameInAnyCaseAndTellTheId)
{
    const CEOID oid = makeDatabase(u"Straße Nord");
    EXPECT_EQ(openByName(u"straße NORD"), oid);
    SetLastError(0);
    EXPECT_EQ(openByName(u"Straße Süd"), 0U);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(PropertyDatabases, OpenByIdWhateverTheName)
{
    CEOID oid = makeDatabase(u"One");
    makeDatabase(u"Two");
    const HANDLE handle = CeOpenDatabase(&oid, u"Two", 0, 0, nullptr);
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(nameOf(oid), u"One");
    CloseHandle(handle);
    CEOID none = 12345;
    EXPECT_EQ(CeOpenDatabase(&none, nullptr, 0, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(PropertyDatabases, OpenOnlyInAnOrderTheyHave)
{
    const CEOID oid = makeDatabase(u"One", {{start, 0}});
    EXPECT_TRUE(OpenedDatabase(oid, start).isOpen());
    EXPECT_FALSE(OpenedDatabase(oid, number).isOpen());
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(PropertyDatabases, RefuseBadArgumentsToOpen)
{
    EXPECT_EQ(CeOpenDatabase(nullptr, u"One", 0, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    CEOID oid = makeDatabase(u"One");
    EXPECT_EQ(CeOpenDatabase(&oid, nullptr, 0, 2, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    oid = 0;
    EXPECT_EQ(CeOpenDatabase(&oid, nullptr, 0, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(PropertyDatabases, AreDeletedOnlyWhenNobodyHasThemOpen)
{
    const CEOID oid = makeDatabase(u"One", {{number, 0}, {subject, 0}});
    OpenedDatabase database(oid);
    const CEOID record = database.add({longValue(number, 1)});
    EXPECT_FALSE(CeDeleteDatabase(oid));
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(database.first(), record);
    database.close();
    EXPECT_TRUE(CeDeleteDatabase(oid));
    EXPECT_EQ(infoOf(oid).wObjType, OBJTYPE_INVALID);
    EXPECT_EQ(infoOf(record).wObjType, OBJTYPE_INVALID);
    EXPECT_FALSE(CeDeleteDatabase(oid));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_NE(makeDatabase(u"One"), 0U) << "the name is free again";
}

TEST_F(PropertyDatabases, ShareOneSpaceOfIdsThatAreNeverUsedAgain)
{
    std::vector<CEOID> ids;
    const CEOID first = makeDatabase(u"One");
    ids.push_back(first);
    {
        OpenedDatabase database(first);
        ids.push_back(database.add({longValue(number, 1)}));
        EXPECT_TRUE(database.remove(ids.back()));
        ids.push_back(database.add({longValue(number, 2)}));
    }
    ids.push_back(makeDatabase(u"Two"));
    EXPECT_TRUE(CeDeleteDatabase(first));
    EXPECT_TRUE(CeDeleteDatabase(ids.back()));
    device.reopen();
    ids.push_back(makeDatabase(u"Three"));
    for (std::size_t at = 1; at < ids.size(); ++at)
    {
        EXPECT_GT(ids[at], ids[at - 1]);
    }
}

TEST_F(PropertyDatabases, TellOfRecordsAndOfNothing)
{
    const CEOID oid = makeDatabase(u"One");
    const CEOID record = OpenedDatabase(oid).add({longValue(number, 1)});
    CEOIDINFO info = {};
    EXPECT_TRUE(CeOidGetInfo(record, &info));
    EXPECT_EQ(info.wObjType, OBJTYPE_RECORD);
    EXPECT_EQ(info.infRecord.oidParent, oid);
    info.wObjType = 99;
    EXPECT_FALSE(CeOidGetInfo(record + 1000, &info));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(info.wObjType, OBJTYPE_INVALID);
    EXPECT_FALSE(CeOidGetInfo(0, &info));
    EXPECT_FALSE(CeOidGetInfo(oid, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(PropertyDatabases, CountRecordsBytesAndTheTimeOfChange)
{
    const CEOID oid = makeDatabase(u"One");
    const OpenedDatabase database(oid);
    const std::vector<BYTE> bytes(5000, 7);
    const CEOID record = database.add({longValue(number, 1), blobValue(blob, bytes)});
    const DWORD full = infoOf(oid).infDatabase.dwSize;
    EXPECT_GE(full, 5000U);
    device.setClock(makeFileTime(2026, 3, 3, 10, 30));
    database.write(record, {removal(blob)});
    EXPECT_LE(infoOf(oid).infDatabase.dwSize, full - 5000);
    EXPECT_EQ(describe(infoOf(oid).infDatabase.ftLastModified), "2026-03-03 10:30:00");
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 1U);
    database.remove(record);
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 0U);
    EXPECT_EQ(infoOf(oid).infDatabase.dwSize, 0U);
}

TEST_F(PropertyDatabases, HoldTheShortCountAt65535)
{
    const CEOID oid = makeDatabase(u"Many");
    const OpenedDatabase database(oid);
    zb::BulkWrite bulk;
    for (LONG added = 0; added < 65'534; ++added)
    {
        ASSERT_NE(database.add({longValue(number, added)}), 0U);
    }
    EXPECT_EQ(infoOf(oid).infDatabase.wNumRecords, 65'534);
    database.add({});
    EXPECT_EQ(infoOf(oid).infDatabase.wNumRecords, 65'535);
    database.add({});
    ASSERT_TRUE(bulk.commit());
    EXPECT_EQ(infoOf(oid).infDatabase.wNumRecords, 65'535);
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 65'536U);
}

TEST_F(PropertyDatabases, ChangeJustWhatIsNamed)
{
    const CEOID oid = makeDatabase(u"One", {{number, 0}}, 5);
    CEDBASEINFO info = {};
    info.dwFlags = CEDB_VALIDTYPE;
    info.dwDbaseType = 6;
    info.szDbaseName[0] = u'X';
    EXPECT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
    EXPECT_EQ(infoOf(oid).infDatabase.dwDbaseType, 6U);
    EXPECT_EQ(nameOf(oid), u"One");
    EXPECT_EQ(infoOf(oid).infDatabase.wNumSortOrder, 1);

    info.dwFlags = CEDB_VALIDNAME;
    info.dwDbaseType = 7;
    EXPECT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
    EXPECT_EQ(nameOf(oid), u"X");
    EXPECT_EQ(infoOf(oid).infDatabase.dwDbaseType, 6U);
    EXPECT_EQ(openByName(u"x"), oid);

    info.dwFlags = CEDB_VALIDMODTIME;
    info.ftLastModified = makeFileTime(1999, 12, 31, 23, 59, 58);
    EXPECT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
    EXPECT_EQ(describe(infoOf(oid).infDatabase.ftLastModified), "1999-12-31 23:59:58");
    EXPECT_EQ(nameOf(oid), u"X");
    info.dwFlags = 0;
    EXPECT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
}

TEST_F(PropertyDatabases, RefuseChangesThatCanNotBe)
{
    const CEOID oid = makeDatabase(u"One", {{number, 0}});
    makeDatabase(u"Two");
    const auto refused = [oid](const CEDBASEINFO &info, DWORD code)
    {
        SetLastError(0);
        EXPECT_FALSE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
        EXPECT_EQ(GetLastError(), code);
    };
    CEDBASEINFO info = {};
    info.dwFlags = CEDB_VALIDNAME;
    refused(info, ERROR_INVALID_PARAMETER);
    std::fill_n(info.szDbaseName, 33, u'n'); // no terminator
    refused(info, ERROR_INVALID_PARAMETER);
    std::u16string(u"TWO").copy(info.szDbaseName, 3);
    info.szDbaseName[3] = 0;
    refused(info, ERROR_ALREADY_EXISTS);
    info.dwFlags = 16;
    refused(info, ERROR_INVALID_PARAMETER);
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 9;
    refused(info, ERROR_INVALID_PARAMETER);
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0] = {blob, 0};
    refused(info, ERROR_INVALID_PARAMETER);
    info.wNumSortOrder = 2;
    info.rgSortSpecs[0] = info.rgSortSpecs[1] = {number, 0};
    refused(info, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nameOf(oid), u"One");
    EXPECT_EQ(infoOf(oid).infDatabase.wNumSortOrder, 1);
}

TEST_F(PropertyDatabases, AreChangedOnTheSystemVolumeAlone)
{
    const CEOID oid = makeDatabase(u"One");
    CEDBASEINFO info = {};
    info.dwFlags = CEDB_VALIDTYPE;
    const CEGUID other = {0, 0, 0, 1};
    EXPECT_FALSE(CeSetDatabaseInfoEx(&other, oid, &info));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(CeSetDatabaseInfoEx(nullptr, oid, &info));
    EXPECT_FALSE(CeSetDatabaseInfoEx(&systemVolume, oid, nullptr));
    EXPECT_FALSE(CeSetDatabaseInfoEx(&systemVolume, oid + 1000, &info));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(PropertyDatabases, KeepTheirNameInAnotherCase)
{
    const CEOID oid = makeDatabase(u"One");
    CEDBASEINFO info = {};
    info.dwFlags = CEDB_VALIDNAME;
    std::u16string(u"ONE").copy(info.szDbaseName, 3);
    EXPECT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
    EXPECT_EQ(nameOf(oid), u"ONE");
}

TEST_F(PropertyDatabases, PutTheirRecordsIntoNewOrders)
{
    const CEOID oid = makeDatabase(u"One", {{number, 0}, {subject, 0}});
    const std::vector<std::u16string> texts = {u"b", u"c", u"a"};
    std::vector<CEOID> ids;
    {
        const OpenedDatabase database(oid, number);
        for (LONG at = 0; at < 3; ++at)
        {
            ids.push_back(database.add({longValue(number, at), textValue(subject, texts[at]),
                                        timeValue(start, static_cast<ULONGLONG>(10 - at))}));
        }
    }
    CEDBASEINFO info = {};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 3;
    info.rgSortSpecs[0] = {subject, 0};
    info.rgSortSpecs[1] = {start, 0};
    info.rgSortSpecs[2] = {number, CEDB_SORT_DESCENDING};
    ASSERT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_EQ(OpenedDatabase(oid, subject).walk(), (std::vector{ids[2], ids[0], ids[1]}));
        EXPECT_EQ(OpenedDatabase(oid).walk(), (std::vector{ids[2], ids[0], ids[1]}));
        EXPECT_EQ(OpenedDatabase(oid, start).walk(), (std::vector{ids[2], ids[1], ids[0]}));
        EXPECT_EQ(OpenedDatabase(oid, number).walkBack(), ids);
        device.reopen();
    }
    info.wNumSortOrder = 0;
    ASSERT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
    EXPECT_EQ(OpenedDatabase(oid).walk(), ids) << "without orders they lie by id";
    EXPECT_FALSE(OpenedDatabase(oid, number).isOpen());
}

TEST_F(PropertyDatabases, KeepTheRecordUnderAHandleThroughNewOrders)
{
    const CEOID oid = makeDatabase(u"One", {{number, 0}});
    const OpenedDatabase writer(oid);
    std::vector<CEOID> ids;
    for (LONG at = 0; at < 4; ++at)
    {
        ids.push_back(writer.add({longValue(number, at), timeValue(start, static_cast<ULONGLONG>(10 - at))}));
    }
    const OpenedDatabase walker(oid);
    const OpenedDatabase byNumber(oid, number);
    EXPECT_EQ(walker.seek(CEDB_SEEK_BEGINNING, 2), ids[2]);
    CEDBASEINFO info = {};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0] = {start, 0};
    ASSERT_TRUE(CeSetDatabaseInfoEx(&systemVolume, oid, &info));
    EXPECT_EQ(ReadRecord(walker).oid(), ids[2]);
    EXPECT_EQ(walker.next(), ids[1]);
    EXPECT_EQ(walker.next(), ids[0]);
    EXPECT_EQ(walker.next(), 0U);
    EXPECT_EQ(byNumber.first(), 0U) << "its order is no more";
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(byNumber.next(), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(PropertyDatabases, AreEnumeratedByTypeInOrderOfTheirIds)
{
    const std::vector<CEOID> before = databases(0);
    const CEOID one = makeDatabase(u"One", {}, 4711);
    const CEOID two = makeDatabase(u"Two", {}, 4712);
    const CEOID three = makeDatabase(u"Three", {}, 4711);
    EXPECT_EQ(databases(4711), (std::vector{one, three}));
    EXPECT_EQ(databases(4713), std::vector<CEOID>());
    std::vector<CEOID> all = before;
    all.insert(all.end(), {one, two, three});
    EXPECT_EQ(databases(0), all);
}

TEST_F(PropertyDatabases, EnumerationClearsAnOldEnd)
{
    makeDatabase(u"One", {}, 4711);
    const HANDLE find = CeFindFirstDatabase(4711);
    SetLastError(ERROR_NO_MORE_ITEMS);
    EXPECT_NE(CeFindNextDatabase(find), 0U);
    EXPECT_NE(GetLastError(), ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(CeFindNextDatabase(find), 0U);
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
    CloseHandle(find);
    EXPECT_EQ(CeFindNextDatabase(find), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(PropertyDatabases, LieOnTheOneSystemVolume)
{
    CEGUID volume = {0xFFFFFFFFU, 0xFFFFFFFFU, 0xFFFFFFFFU, 0xFFFFFFFFU};
    WCHAR name[260] = {};
    EXPECT_FALSE(CeEnumDBVolumes(&volume, name, 2));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_TRUE(CeEnumDBVolumes(&volume, name, 260));
    EXPECT_EQ(volume.Data1 | volume.Data2 | volume.Data3 | volume.Data4, 0U);
    EXPECT_EQ(std::u16string(name), u"System");
    EXPECT_FALSE(CeEnumDBVolumes(&volume, name, 260));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
    EXPECT_FALSE(CeEnumDBVolumes(nullptr, name, 260));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(PropertyDatabases, RefuseStaleAndForeignHandles)
{
    const CEOID oid = makeDatabase(u"One");
    OpenedDatabase database(oid);
    const HANDLE stale = database.handle();
    database.close();
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    for (const HANDLE handle : {stale, event, static_cast<HANDLE>(nullptr), INVALID_HANDLE_VALUE})
    {
        const CEPROPVAL value = longValue(number, 1);
        WORD count = 0;
        BYTE *buffer = nullptr;
        DWORD size = 0;
        const auto refused = [] { return GetLastError(); };
        SetLastError(0);
        EXPECT_EQ(CeSeekDatabase(handle, CEDB_SEEK_BEGINNING, 0, nullptr), 0U);
        EXPECT_EQ(refused(), ERROR_INVALID_HANDLE);
        SetLastError(0);
        EXPECT_EQ(CeReadRecordProps(handle, CEDB_ALLOWREALLOC, &count, nullptr, &buffer, &size), 0U);
        EXPECT_EQ(refused(), ERROR_INVALID_HANDLE);
        SetLastError(0);
        EXPECT_EQ(CeWriteRecordProps(handle, 0, 1, &value), 0U);
        EXPECT_EQ(refused(), ERROR_INVALID_HANDLE);
        SetLastError(0);
        EXPECT_FALSE(CeDeleteRecord(handle, 1));
        EXPECT_EQ(refused(), ERROR_INVALID_HANDLE);
    }
    CloseHandle(event);
}

TEST_F(PropertyDatabases, AreClosedWithTheDevice)
{
    const OpenedDatabase database(makeDatabase(u"One"));
    device.reopen();
    EXPECT_EQ(database.first(), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(PropertyDatabasesWithoutDevice, FailPlainly)
{
    CEOID oid = 0;
    EXPECT_EQ(makeDatabase(u"One"), 0U);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(CeOpenDatabase(&oid, u"One", 0, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(CeDeleteDatabase(1));
    EXPECT_EQ(infoOf(1).wObjType, OBJTYPE_INVALID);
    EXPECT_EQ(CeFindFirstDatabase(0), INVALID_HANDLE_VALUE);
    zb::BulkWrite bulk;
    EXPECT_FALSE(bulk.commit());
}
