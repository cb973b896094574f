// The cached list of all categories, and names for ids.
#include "records/FullCategories.h"

#include "platform/pim.h"
#include "platform/text.h"
#include "support/CategoryRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zb::test
{
namespace
{
using Names = std::vector<std::string>;

std::string assemble(std::initializer_list<unsigned> wanted)
{
    CeList<unsigned int> ids(0);
    for (const unsigned id : wanted)
    {
        ids.AddTail(id);
    }
    WCHAR *text = CategoryAssembler(ids);
    const std::string names = utf8(text);
    std::free(text);
    return names;
}

struct FullList
{
    explicit FullList(bool reload = false) : count(GetFullCategoryInfo(list, reload))
    {
    }
    Names names()
    {
        Names all;
        for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
        {
            all.push_back(utf8(list.GetAt(i)->m_pszName));
        }
        return all;
    }
    CePtrList<CFullCategory *> list{1, CEOWN_DELETE};
    int count;
};

Names offered(ULONG affiliations)
{
    CeStrList<WCHAR *> list;
    GetCategories(list, 0, affiliations, 0);
    Names names;
    for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
    {
        names.push_back(utf8(list.GetAt(i)));
    }
    return names;
}

bool deleteDatabase()
{
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, u"\\Categories Database", 0, 0, nullptr));
    return CeDeleteDatabase(oid) != FALSE;
}

std::size_t recordsLeft()
{
    return openCategories().walk().size();
}

class FullCategories : public DeviceTest
{
};

// --- Reading -----------------------------------------------------------------------------------------------------

TEST_F(FullCategories, TellsEveryFieldOfARecord)
{
    addCategoryRecord(
        {.name = u"Work", .id = 7, .active = 0, .refsA = 1, .refsB = 2, .refsContacts = 3, .shown = false});
    FullList full;
    ASSERT_EQ(full.count, 1);
    const CFullCategory &category = *full.list.GetAt(1);
    EXPECT_EQ(utf8(category.m_pszName), "Work");
    EXPECT_EQ(category.m_nId, 7);
    EXPECT_EQ(category.m_nActive, 0);
    EXPECT_EQ(category.m_nRefsA, 1);
    EXPECT_EQ(category.m_nRefsB, 2);
    EXPECT_EQ(category.m_nRefsContacts, 3);
    EXPECT_EQ(category.m_nReserved, 0);
    EXPECT_FALSE(category.m_bShown);
}

TEST_F(FullCategories, WhatARecordLacksTakesItsDefault)
{
    addCategoryRecord({.name = u"Bare"});
    FullList full;
    ASSERT_EQ(full.count, 1);
    const CFullCategory &category = *full.list.GetAt(1);
    EXPECT_EQ(category.m_nId, 0);
    EXPECT_EQ(category.m_nActive, 1);
    EXPECT_EQ(category.m_nRefsA, 0);
    EXPECT_EQ(category.m_nRefsB, 0);
    EXPECT_EQ(category.m_nRefsContacts, 0);
    EXPECT_TRUE(category.m_bShown);
}

TEST_F(FullCategories, ValuesOfOtherTypesCountAsMissing)
{
    const std::u16string name = u"Odd";
    const std::u16string text = u"9";
    openCategories().add({textValue(0x4001001f, name), longValue(0x40020003, 5), shortValue(0x40030002, 0),
                          longValue(0x40060003, 4), textValue(0x4005001f, text), longValue(0x30040003, 0)});
    FullList full;
    ASSERT_EQ(full.count, 1);
    const CFullCategory &category = *full.list.GetAt(1);
    EXPECT_EQ(category.m_nId, 0);
    EXPECT_EQ(category.m_nActive, 1);
    EXPECT_EQ(category.m_nRefsA, 0);
    EXPECT_EQ(category.m_nRefsB, 0);
    EXPECT_TRUE(category.m_bShown);
}

TEST_F(FullCategories, StandInTheOrderOfTheirRecords)
{
    addCategoryRecord(u"beta", 1);
    addCategoryRecord(u"Gamma", 2);
    addCategoryRecord(u"Alpha", 3);
    EXPECT_EQ(FullList().names(), (Names{"Alpha", "beta", "Gamma"}));
    layCategoriesById();
    addCategoryRecord(u"Zoo", 1);
    addCategoryRecord(u"Home", 2);
    EXPECT_EQ(FullList(true).names(), (Names{"Zoo", "Home"}));
}

TEST_F(FullCategories, InactiveOnesAreAmongThem)
{
    addCategoryRecord({.name = u"Gone", .id = 1, .active = 0});
    EXPECT_EQ(FullList().names(), Names{"Gone"});
}

TEST_F(FullCategories, RecordsWithoutNameAreDeleted)
{
    addCategoryRecord(u"A", 1);
    addCategoryRecord({.name = u"", .id = 2});
    addCategoryRecord({.id = 3});
    openCategories().add({longValue(0x40010003, 77), shortValue(0x40020002, 4)});
    addCategoryRecord(u"B", 5);
    ASSERT_EQ(recordsLeft(), 5U);
    EXPECT_EQ(FullList().names(), (Names{"A", "B"}));
    EXPECT_EQ(recordsLeft(), 2U);
}

TEST_F(FullCategories, RecordsOverTheReadBufferAreLeftOutAndStay)
{
    // Seven property values stand in front of the name and its zero in the 2,048 bytes.
    const std::size_t longest = (2048 - 7 * sizeof(CEPROPVAL)) / 2 - 1;
    addCategoryRecord(std::u16string(longest, u'a'), 1);
    addCategoryRecord(std::u16string(longest + 1, u'b'), 2);
    addCategoryRecord(u"c", 3);
    EXPECT_EQ(FullList().names(), (Names{std::string(longest, 'a'), "c"}));
    EXPECT_EQ(recordsLeft(), 3U);
}

// --- The cache ---------------------------------------------------------------------------------------------------

TEST_F(FullCategories, AreReadOnceUntilTheyAreForced)
{
    addCategoryRecord(u"A", 1);
    EXPECT_EQ(FullList().count, 1);
    addCategoryRecord(u"B", 2);
    EXPECT_EQ(FullList().names(), Names{"A"});
    EXPECT_EQ(FullList(true).names(), (Names{"A", "B"}));
    EXPECT_EQ(FullList().names(), (Names{"A", "B"}));
}

TEST_F(FullCategories, AnEmptyCacheIsReadAgain)
{
    EXPECT_EQ(FullList().count, 0);
    addCategoryRecord(u"A", 1);
    EXPECT_EQ(FullList().names(), Names{"A"});
}

TEST_F(FullCategories, CopiesAreTheCallersOwn)
{
    addCategoryRecord(u"A", 1);
    FullList full;
    full.list.GetAt(1)->m_pszName[0] = u'X';
    EXPECT_EQ(FullList().names(), Names{"A"});
}

TEST_F(FullCategories, TheListIsEmptiedFirst)
{
    addCategoryRecord(u"A", 1);
    FullList full;
    EXPECT_EQ(GetFullCategoryInfo(full.list, false), 1);
    EXPECT_EQ(full.names(), Names{"A"});
}

TEST_F(FullCategories, WithoutDatabaseListAndCacheStay)
{
    addCategoryRecord(u"A", 1);
    FullList full;
    ASSERT_TRUE(deleteDatabase());
    EXPECT_EQ(GetFullCategoryInfo(full.list, true), 0);
    EXPECT_EQ(full.names(), Names{"A"});
    EXPECT_EQ(FullList().names(), Names{"A"});
}

TEST_F(FullCategories, FollowTheOpenDevice)
{
    addCategoryRecord(u"A", 1);
    EXPECT_EQ(FullList().count, 1);
    EXPECT_EQ(assemble({1}), "A");
    openCategories().write(openCategories().first(), {textValue(0x4001001f, u"Z")});
    device.reopen();
    EXPECT_EQ(FullList().names(), Names{"Z"});
    EXPECT_EQ(assemble({1}), "Z");
    device.close();
    EXPECT_EQ(FullList().count, 0);
    EXPECT_EQ(assemble({1}), "");
}

// --- Names for choosers ------------------------------------------------------------------------------------------

TEST_F(FullCategories, ChoosersGetTheShownOnes)
{
    addCategoryRecord({.name = u"A", .id = 1, .shown = true});
    addCategoryRecord({.name = u"B", .id = 2, .shown = false});
    addCategoryRecord({.name = u"C", .id = 3});
    EXPECT_EQ(offered(0), (Names{"A", "C"}));
}

TEST_F(FullCategories, AffiliationsTakeThoseInUse)
{
    addCategoryRecord({.name = u"A", .id = 1, .refsA = 1});
    addCategoryRecord({.name = u"B", .id = 2, .refsB = 1});
    addCategoryRecord({.name = u"C", .id = 3, .refsContacts = 1});
    addCategoryRecord({.name = u"D", .id = 4, .refsA = -1, .refsB = -1, .refsContacts = 0});
    addCategoryRecord({.name = u"E", .id = 5, .refsA = 1, .shown = false});
    EXPECT_EQ(offered(0), (Names{"A", "B", "C", "D"}));
    EXPECT_EQ(offered(1), Names{"A"});
    EXPECT_EQ(offered(2), Names{"B"});
    EXPECT_EQ(offered(3), (Names{"A", "B"}));
    EXPECT_EQ(offered(4), Names{"C"});
    EXPECT_EQ(offered(7), (Names{"A", "B", "C"}));
    EXPECT_EQ(offered(8), Names{});
}

TEST_F(FullCategories, ChoosersNamesAreAppendedAndTheListCounted)
{
    addCategoryRecord(u"A", 1);
    CeStrList<WCHAR *> list;
    list.AddString(u"first");
    EXPECT_EQ(GetCategories(list, 0, 0, 0), 2);
    EXPECT_EQ(utf8(list.GetAt(1)), "A");
    EXPECT_EQ(GetCategories(list, 17, 0, -3), 3);
}

// --- Names for ids -----------------------------------------------------------------------------------------------

TEST_F(FullCategories, AssemblesNamesInOrderOfTheIds)
{
    addCategoryRecord(u"Home", 3);
    addCategoryRecord(u"Work", 0);
    EXPECT_EQ(assemble({3}), "Home");
    EXPECT_EQ(assemble({0, 3}), "Work, Home");
    EXPECT_EQ(assemble({3, 0, 3}), "Home, Work, Home");
}

TEST_F(FullCategories, AMissingLastCategoryLeavesTheSeparator)
{
    addCategoryRecord(u"Home", 3);
    EXPECT_EQ(assemble({3, 9}), "Home, ");
    EXPECT_EQ(assemble({9, 3}), "Home");
    EXPECT_EQ(assemble({9}), "");
    EXPECT_EQ(assemble({3, 9, 10, 3, 9}), "Home, Home, ");
}

TEST_F(FullCategories, NoIdsAssembleToAnEmptyTextOf32Bytes)
{
    CeList<unsigned int> ids(1);
    WCHAR *text = CategoryAssembler(ids);
    ASSERT_NE(text, nullptr);
    for (int i = 0; i < 16; ++i)
    {
        EXPECT_EQ(text[i], 0);
    }
    std::free(text);
}

TEST_F(FullCategories, TheTextHasRoomForEightMoreCharacters)
{
    addCategoryRecord(u"Home", 3);
    CeList<unsigned int> ids(1);
    ids.AddTail(3);
    WCHAR *text = CategoryAssembler(ids);
    wcscpy(text + 4, u"abcdefg"); // the sanitizers watch this
    EXPECT_EQ(utf8(text), "Homeabcdefg");
    std::free(text);
}

TEST_F(FullCategories, TheFirstOfSeveralWithOneIdCounts)
{
    addCategoryRecord(u"Beta", 3);
    addCategoryRecord(u"Alpha", 3);
    addCategoryRecord(u"Gamma", 3);
    EXPECT_EQ(assemble({3}), "Alpha");
}

TEST_F(FullCategories, IdsAreSixteenBitsWideAndSigned)
{
    addCategoryRecord(u"Minus", -1);
    addCategoryRecord(u"Low", -32768);
    addCategoryRecord(u"High", 32767);
    EXPECT_EQ(assemble({0xFFFFFFFF}), "Minus");
    EXPECT_EQ(assemble({0xFFFF8000}), "Low");
    EXPECT_EQ(assemble({32767}), "High");
    EXPECT_EQ(assemble({0xFFFF}), "");
    EXPECT_EQ(assemble({0x8000}), "");
    EXPECT_EQ(assemble({0x1FFFF}), "");
    EXPECT_EQ(assemble({0x17FFF}), "");
}

TEST_F(FullCategories, InactiveAndHiddenOnesHaveNames)
{
    addCategoryRecord({.name = u"Gone", .id = 1, .active = 0, .shown = false});
    EXPECT_EQ(assemble({1}), "Gone");
}

TEST_F(FullCategories, NamesOfIdsStayUntilTheyAreReset)
{
    addCategoryRecord(u"A", 1);
    EXPECT_EQ(assemble({1, 2}), "A, ");
    addCategoryRecord(u"B", 2);
    EXPECT_EQ(FullList(true).count, 2);
    EXPECT_EQ(assemble({1, 2}), "A, ");
    ResetFullCategoryList();
    EXPECT_EQ(assemble({1, 2}), "A, B");
}

TEST_F(FullCategories, ResettingRenewsTheCacheToo)
{
    addCategoryRecord(u"A", 1);
    EXPECT_EQ(FullList().count, 1);
    addCategoryRecord(u"B", 2);
    ResetFullCategoryList();
    EXPECT_EQ(FullList().names(), (Names{"A", "B"}));
}

TEST_F(FullCategories, ResettingWithoutDatabaseKeepsTheNames)
{
    addCategoryRecord(u"A", 1);
    ResetFullCategoryList();
    ASSERT_TRUE(deleteDatabase());
    ResetFullCategoryList();
    EXPECT_EQ(assemble({1}), "A");
}

TEST_F(FullCategories, EightThousandOfThemAssembleWhole)
{
    BulkWrite bulk;
    const OpenedDatabase database = openCategories();
    std::string expected;
    CeList<unsigned int> ids(0);
    for (int id = 0; id < 8192; ++id)
    {
        const std::string name = "Category " + std::to_string(id);
        database.add(categoryValues({.name = utf16(name), .id = static_cast<SHORT>(id)}));
        expected += (id == 0 ? "" : ", ") + name;
        ids.AddTail(static_cast<unsigned>(id));
    }
    ASSERT_TRUE(bulk.commit());
    EXPECT_EQ(FullList().count, 8192);
    WCHAR *text = CategoryAssembler(ids);
    EXPECT_EQ(utf8(text), expected);
    std::free(text);
}

TEST_F(FullCategories, ManyThreadsAssembleWhileOneResets)
{
    addCategoryRecord(u"Home", 3);
    addCategoryRecord(u"Work", 5);
    std::atomic<int> wrong = 0;
    std::atomic<bool> done = false;
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
    {
        threads.emplace_back(
            [&]
            {
                for (int round = 0; round < 300; ++round)
                {
                    wrong += assemble({3, 5, 6}) != "Home, Work, " ? 1 : 0;
                }
            });
    }
    threads.emplace_back(
        [&]
        {
            while (!done)
            {
                ResetFullCategoryList();
                wrong += FullList().count != 2 ? 1 : 0;
            }
        });
    for (int t = 0; t < 3; ++t)
    {
        threads[static_cast<std::size_t>(t)].join();
    }
    done = true;
    threads.back().join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(FullCategories, SortByNameThenById)
{
    addCategoryRecord(u"beta", 2);
    addCategoryRecord(u"beta", 1);
    addCategoryRecord(u"Alpha", 3);
    FullList full;
    CFullCategory *alpha = full.list.GetAt(1);
    CFullCategory *first = full.list.GetAt(2);
    CFullCategory *second = full.list.GetAt(3);
    EXPECT_LT(FullCategoryCompareFunc(alpha, first, 0), 0);
    EXPECT_GT(FullCategoryCompareFunc(first, alpha, 0), 0);
    EXPECT_EQ(first->m_nId, 2);
    EXPECT_GT(FullCategoryCompareFunc(first, second, 0), 0);
    EXPECT_EQ(FullCategoryCompareFunc(alpha, alpha, 0), 0);
}
} // namespace
} // namespace zb::test
