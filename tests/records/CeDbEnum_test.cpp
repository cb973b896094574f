// The databases and volumes of a device, one after the other.
#include "RecordsTest.h"

#include "records/CeDbEnum.h"
#include "records/CeDbVolumeEnum.h"

#include <set>

namespace zb::test
{
namespace
{
class CeDbEnumTest : public DeviceTest
{
  protected:
    static CEOID create(const WCHAR *name, DWORD type, WORD sorts = 0, const SORTORDERSPEC *specs = nullptr)
    {
        CeDb db;
        EXPECT_TRUE(db.Create(name, type, sorts, specs));
        return db.GetDatabaseOID();
    }

    static std::vector<CEOID> walk(DWORD type)
    {
        std::vector<CEOID> found;
        CeDbEnum databases;
        EXPECT_TRUE(databases.First(type));
        while (databases.Next())
        {
            found.push_back(databases.GetOid());
        }
        return found;
    }
};

TEST_F(CeDbEnumTest, walksTheDatabasesOfOneType)
{
    const CEOID a = create(u"Alpha", 4242);
    create(u"Other", 4243);
    const CEOID b = create(u"Beta", 4242);
    EXPECT_EQ(walk(4242), (std::vector<CEOID>{a, b}));
    EXPECT_EQ(walk(9999), std::vector<CEOID>{});
}

TEST_F(CeDbEnumTest, typeZeroIsAllOfThem)
{
    const CEOID a = create(u"Alpha", 4242);
    const CEOID b = create(u"Beta", 4243);
    const std::vector<CEOID> all = walk(0);
    const std::set<CEOID> found(all.begin(), all.end());
    EXPECT_EQ(found.size(), all.size());
    EXPECT_EQ(found.count(a), 1U);
    EXPECT_EQ(found.count(b), 1U);
}

TEST_F(CeDbEnumTest, nextAtTheEndIsFalseAndStaysSo)
{
    create(u"Alpha", 4242);
    CeDbEnum databases;
    ASSERT_TRUE(databases.First(4242));
    EXPECT_EQ(databases.GetOid(), 0U);
    EXPECT_TRUE(databases.Next());
    EXPECT_FALSE(databases.Next());
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(databases.GetOid(), 0U);
    EXPECT_FALSE(databases.Next());
    EXPECT_FALSE(databases.Next(true));
}

TEST_F(CeDbEnumTest, aStaleErrorOfAnotherCallEndsNothing)
{
    create(u"Alpha", 4242);
    CeDbEnum databases;
    ASSERT_TRUE(databases.First(4242));
    SetLastError(ERROR_NO_MORE_ITEMS);
    EXPECT_TRUE(databases.Next());
}

TEST_F(CeDbEnumTest, nextWithoutFirstIsFalse)
{
    create(u"Alpha", 4242);
    CeDbEnum databases;
    EXPECT_FALSE(databases.Next());
    EXPECT_FALSE(databases.GetInfo());
    EXPECT_EQ(utf8(databases.GetName()), "");
}

TEST_F(CeDbEnumTest, tellsEachDatabasesInformation)
{
    const SORTORDERSPEC sorts[] = {{keyId, 0}, {rankId, CEDB_SORT_DESCENDING}};
    const CEOID oid = create(u"Alpha", 4242, 2, sorts);
    CeDb db;
    ASSERT_TRUE(db.Open(oid, keyId, 0, nullptr));
    for (LONG key = 0; key < 3; ++key)
    {
        const CEPROPVAL prop = longProp(keyId, key);
        ASSERT_NE(CeWriteRecordProps(db.GetHandle(), 0, 1, &prop), 0U);
    }
    const FILETIME modified = makeFileTime(2025, 6, 7, 8, 9, 10);
    ASSERT_TRUE(db.SetLastModified(modified));
    CEOIDINFO platform{};
    ASSERT_TRUE(CeOidGetInfo(oid, &platform));

    CeDbEnum databases;
    ASSERT_TRUE(databases.First(4242));
    ASSERT_TRUE(databases.Next(true));
    EXPECT_EQ(databases.GetOid(), oid);
    EXPECT_EQ(utf8(databases.GetName()), "Alpha");
    EXPECT_EQ(databases.GetType(), 4242U);
    EXPECT_EQ(databases.GetNumRecords(), 3);
    EXPECT_EQ(databases.GetNumSorts(), 2);
    EXPECT_GT(databases.GetSize(), 0U);
    EXPECT_EQ(databases.GetSize(), platform.infDatabase.dwSize);
    EXPECT_EQ(databases.GetFlags(), platform.infDatabase.dwFlags);
    EXPECT_EQ(describe(databases.GetModified()), "2025-06-07 08:09:10");

    CEDBASEINFO info{};
    ASSERT_TRUE(databases.GetInfo(info));
    EXPECT_EQ(utf8(info.szDbaseName), "Alpha");
    EXPECT_EQ(info.rgSortSpecs[1].propid, rankId);
}

TEST_F(CeDbEnumTest, informationIsReadOnceForEachPlace)
{
    const CEOID oid = create(u"Alpha", 4242);
    create(u"Beta", 4242);
    CeDb db;
    ASSERT_TRUE(db.Open(oid, 0, 0, nullptr));
    CeDbEnum databases;
    ASSERT_TRUE(databases.First(4242));
    ASSERT_TRUE(databases.Next());
    EXPECT_TRUE(databases.GetInfo());
    ASSERT_TRUE(db.SetName(u"Gamma"));
    EXPECT_TRUE(databases.GetInfo());
    EXPECT_EQ(utf8(databases.GetName()), "Alpha") << "as it was when first asked";
    ASSERT_TRUE(databases.Next());
    EXPECT_EQ(utf8(databases.GetName()), "Beta") << "asked anew at the next place";
}

TEST_F(CeDbEnumTest, informationOfADatabaseThatIsGoneIsRefused)
{
    create(u"Alpha", 4242);
    CeDbEnum databases;
    ASSERT_TRUE(databases.First(4242));
    ASSERT_TRUE(databases.Next());
    CeDb db;
    ASSERT_TRUE(db.Open(u"Alpha", 0, 0, nullptr));
    ASSERT_TRUE(db.Delete());
    CEDBASEINFO info{};
    info.dwDbaseType = 5;
    EXPECT_FALSE(databases.GetInfo(info));
    EXPECT_EQ(info.dwDbaseType, 5U);
    EXPECT_EQ(utf8(databases.GetName()), "");
    EXPECT_EQ(databases.GetNumRecords(), 0);
}

TEST_F(CeDbEnumTest, firstStartsOver)
{
    const CEOID a = create(u"Alpha", 4242);
    create(u"Beta", 4242);
    CeDbEnum databases;
    ASSERT_TRUE(databases.First(4242));
    ASSERT_TRUE(databases.Next());
    ASSERT_TRUE(databases.Next());
    ASSERT_TRUE(databases.First(4242));
    EXPECT_EQ(databases.GetOid(), 0U);
    ASSERT_TRUE(databases.Next());
    EXPECT_EQ(databases.GetOid(), a);
}

class CeDbVolumeEnumTest : public DeviceTest
{
};

bool isAll(const CEGUID &volume, DWORD word)
{
    return volume.Data1 == word && volume.Data2 == word && volume.Data3 == word && volume.Data4 == word;
}

TEST_F(CeDbVolumeEnumTest, isBuiltAtNoVolume)
{
    static_assert(sizeof(CEGUID) == 16);
    CeDbVolumeEnum volumes;
    EXPECT_TRUE(isAll(volumes.GetVolume(), 0xFFFFFFFFU));
    EXPECT_EQ(utf8(volumes.GetName()), "");
}

TEST_F(CeDbVolumeEnumTest, findsTheSystemVolumeAlone)
{
    CeDbVolumeEnum volumes;
    ASSERT_TRUE(volumes.First());
    EXPECT_TRUE(isAll(volumes.GetVolume(), 0)) << "all zeros is the system volume";
    EXPECT_FALSE(volumes.Next());
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
    ASSERT_TRUE(volumes.First()) << "starts over";
    EXPECT_TRUE(isAll(volumes.GetVolume(), 0));
}

TEST_F(CeDbVolumeEnumTest, nextOnANewOneIsTheFirst)
{
    CeDbVolumeEnum volumes;
    ASSERT_TRUE(volumes.Next());
    EXPECT_TRUE(isAll(volumes.GetVolume(), 0));
}
} // namespace
} // namespace zb::test
