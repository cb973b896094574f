// Category blobs, and which records a category restriction lets pass.
#include "records/CCategoryFilterInfo.h"
#include "records/CFullCategory.h"

#include "platform/kernel.h"
#include "platform/text.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

namespace
{
class Blob
{
  public:
    Blob(std::initializer_list<int> bytes)
    {
        for (const int byte : bytes)
        {
            m_bytes.push_back(static_cast<BYTE>(byte));
        }
        m_blob = CEBLOB{static_cast<DWORD>(m_bytes.size()), m_bytes.data()};
    }
    const CEBLOB *get() const
    {
        return &m_blob;
    }

  private:
    std::vector<BYTE> m_bytes;
    CEBLOB m_blob{};
};

struct Chosen
{
    explicit Chosen(std::initializer_list<int> ids)
    {
        for (const int id : ids)
        {
            auto *category = new CFullCategory;
            category->m_nId = static_cast<SHORT>(id);
            list.AddTail(category);
        }
        Categories2BLOB(&info.m_blobFilter, list);
        info.m_pSelected = &list;
    }
    ~Chosen()
    {
        LocalFree(info.m_blobFilter.lpb);
    }
    std::vector<BYTE> bytes() const
    {
        return {info.m_blobFilter.lpb, info.m_blobFilter.lpb + info.m_blobFilter.dwCount};
    }

    CePtrList<CFullCategory *> list{1, CEOWN_DELETE};
    CCategoryFilterInfo info;
};

TEST(CategoryBlob, SetsTheBitOfEachCategoryInTheSmallestSize)
{
    EXPECT_EQ(Chosen({0, 5, 33}).bytes(), (std::vector<BYTE>{0x21, 0, 0, 0, 2, 0, 0, 0}));
    EXPECT_EQ(Chosen({31}).bytes(), (std::vector<BYTE>{0, 0, 0, 0x80}));
    EXPECT_EQ(Chosen({32}).bytes(), (std::vector<BYTE>{0, 0, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(Chosen({63}).bytes(), (std::vector<BYTE>{0, 0, 0, 0, 0, 0, 0, 0x80}));
    EXPECT_EQ(Chosen({8191}).bytes().size(), 1024U);
    EXPECT_EQ(Chosen({8191}).bytes().back(), 0x80);
}

TEST(CategoryBlob, OfNoCategoriesIsEmpty)
{
    Chosen chosen({3});
    chosen.list.RemoveAll();
    Categories2BLOB(&chosen.info.m_blobFilter, chosen.list);
    EXPECT_EQ(chosen.info.m_blobFilter.dwCount, 0U);
    EXPECT_EQ(chosen.info.m_blobFilter.lpb, nullptr);
}

TEST(CategoryBlob, HasZerosBehindItsSizeUpTo1024Bytes)
{
    const Chosen chosen({3});
    ASSERT_EQ(chosen.info.m_blobFilter.dwCount, 4U);
    for (int at = 4; at < 1024; ++at)
    {
        EXPECT_EQ(chosen.info.m_blobFilter.lpb[at], 0) << at; // the sanitizers watch the length of the block
    }
}

TEST(CategoryBlob, IsFourBytesWhenNoIdFits)
{
    EXPECT_EQ(Chosen({-5}).bytes(), (std::vector<BYTE>{0, 0, 0, 0}));
}

TEST(CategoryBlob, LeavesOutIdsThatItCannotHold)
{
    EXPECT_EQ(Chosen({-1, 8192, 1}).bytes(), (std::vector<BYTE>{2, 0, 0, 0}));
}

std::vector<unsigned> idsOf(std::vector<BYTE> bytes)
{
    CeList<unsigned int> ids(1);
    BLOB2Categories(CEBLOB{static_cast<DWORD>(bytes.size()), bytes.data()}, ids);
    std::vector<unsigned> all;
    for (int i = ids.GetBase(); i <= ids.GetLastIndex(); ++i)
    {
        all.push_back(ids.GetAt(i));
    }
    return all;
}

TEST(CategoryBlob, TellsItsIdsTheLowestFirst)
{
    EXPECT_EQ(idsOf({0x21, 0, 0, 0, 2, 0, 0, 0}), (std::vector<unsigned>{0, 5, 33}));
    EXPECT_EQ(idsOf({0, 0, 0, 0x80}), std::vector<unsigned>{31});
    EXPECT_EQ(idsOf({0x80, 0x40, 0x20, 0x10}), (std::vector<unsigned>{7, 14, 21, 28}));
    EXPECT_EQ(idsOf({0, 0, 0, 0}), std::vector<unsigned>{});
    std::vector<BYTE> largest(1024);
    largest.back() = 0x80;
    EXPECT_EQ(idsOf(largest), std::vector<unsigned>{8191});
}

TEST(CategoryBlob, TornBytesAreIgnored)
{
    EXPECT_EQ(idsOf({1, 0, 0, 0, 0xFF, 0xFF}), std::vector<unsigned>{0});
    EXPECT_EQ(idsOf({1, 0, 0, 0, 0xFF, 0xFF, 0xFF}), std::vector<unsigned>{0});
    EXPECT_EQ(idsOf({0xFF, 0xFF, 0xFF}), std::vector<unsigned>{});
    EXPECT_EQ(idsOf({}), std::vector<unsigned>{});
    CeList<unsigned int> ids(0);
    BLOB2Categories(CEBLOB{8, nullptr}, ids);
    EXPECT_TRUE(ids.IsEmpty());
}

TEST(CategoryBlob, IdsAreAppended)
{
    CeList<unsigned int> ids(0);
    ids.AddTail(99);
    BYTE bytes[] = {2, 0, 0, 0};
    BLOB2Categories(CEBLOB{4, bytes}, ids);
    ASSERT_EQ(ids.GetCount(), 2);
    EXPECT_EQ(ids.GetAt(0), 99U);
    EXPECT_EQ(ids.GetAt(1), 1U);
}

TEST(CategoryBlob, AnySetOfIdsComesBackFromItsBlob)
{
    for (unsigned seed = 1; seed <= 300; ++seed)
    {
        std::mt19937 random(seed);
        std::set<unsigned> ids;
        const unsigned limit = 1 + random() % 8192;
        for (unsigned n = random() % 40; n != 0; --n)
        {
            ids.insert(random() % limit);
        }
        CePtrList<CFullCategory *> list(1, CEOWN_DELETE);
        std::vector<unsigned> shuffled(ids.begin(), ids.end());
        std::shuffle(shuffled.begin(), shuffled.end(), random);
        for (const unsigned id : shuffled)
        {
            auto *category = new CFullCategory;
            category->m_nId = static_cast<SHORT>(id);
            list.AddTail(category);
        }
        CEBLOB blob{};
        Categories2BLOB(&blob, list);
        EXPECT_EQ(blob.dwCount, ids.empty() ? 0U : *ids.rbegin() / 32 * 4 + 4) << "seed " << seed;
        EXPECT_EQ(idsOf({blob.lpb, blob.lpb + blob.dwCount}), std::vector<unsigned>(ids.begin(), ids.end()))
            << "seed " << seed;
        LocalFree(blob.lpb);
    }
}

TEST(FullCategory, HasItsFirstValuesAndCopiesAll)
{
    CFullCategory category;
    EXPECT_EQ(category.m_pszName, nullptr);
    EXPECT_EQ(category.m_nId, 0);
    EXPECT_EQ(category.m_nActive, 1);
    EXPECT_EQ(category.m_nRefsA + category.m_nRefsB + category.m_nRefsContacts + category.m_nReserved, 0);
    EXPECT_TRUE(category.m_bShown);

    category.m_pszName = _wcsdup(u"Work");
    category.m_nId = 7;
    category.m_nActive = 0;
    category.m_nRefsA = 1;
    category.m_nRefsB = 2;
    category.m_nRefsContacts = 3;
    category.m_nReserved = 4;
    category.m_bShown = false;
    const std::unique_ptr<CFullCategory> copy(category.Copy());
    EXPECT_NE(copy->m_pszName, category.m_pszName);
    EXPECT_EQ(std::u16string(copy->m_pszName), u"Work");
    EXPECT_EQ(copy->m_nId, 7);
    EXPECT_EQ(copy->m_nActive, 0);
    EXPECT_EQ(copy->m_nRefsA, 1);
    EXPECT_EQ(copy->m_nRefsB, 2);
    EXPECT_EQ(copy->m_nRefsContacts, 3);
    EXPECT_EQ(copy->m_nReserved, 4);
    EXPECT_FALSE(copy->m_bShown);
}

TEST(CategoryFilter, AndWantsAllOfTheFilter)
{
    const Blob filter{0x21, 0, 0, 0};
    EXPECT_TRUE(CategoryAndFilter(Blob{0x21, 0, 0, 0}.get(), filter.get()));
    EXPECT_TRUE(CategoryAndFilter(Blob{0xFF, 0, 0, 0, 1, 0, 0, 0}.get(), filter.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x20, 0, 0, 0}.get(), filter.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0}.get(), filter.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0, 0, 0, 0}.get(), filter.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0, 0, 1, 0, 0, 0}.get(), Blob{0x21, 0, 0, 0, 2, 0, 0, 0}.get()));
    EXPECT_TRUE(CategoryAndFilter(Blob{0x21, 0, 0, 0, 3, 0, 0, 0}.get(), Blob{0x21, 0, 0, 0, 2, 0, 0, 0}.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0, 0, 0, 0, 0, 0}.get(), Blob{0x21, 0, 0, 0, 0, 0}.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0, 0}.get(), Blob{0x21, 0, 0, 0, 0, 0, 0, 0}.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0, 0}.get(), Blob{}.get()));
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0, 0}.get(), Blob{0x21}.get()));
    BYTE bytes[4] = {};
    const CEBLOB emptyFilter{0, bytes};
    EXPECT_FALSE(CategoryAndFilter(Blob{0x21, 0, 0, 0}.get(), &emptyFilter));
}

TEST(CategoryFilter, OrWantsOneInCommon)
{
    const Blob filter{0x21, 0, 0, 0};
    EXPECT_TRUE(CategoryOrFilter(Blob{0x20, 0, 0, 0}.get(), filter.get()));
    EXPECT_FALSE(CategoryOrFilter(Blob{0x02, 0, 0, 0}.get(), filter.get()));
    EXPECT_FALSE(CategoryOrFilter(Blob{0x02, 0, 0, 0, 1, 0, 0, 0}.get(), filter.get()));
    EXPECT_TRUE(CategoryOrFilter(Blob{0, 0, 0, 0, 1, 0, 0, 0}.get(), Blob{1, 0, 0, 0, 1, 0, 0, 0}.get()));
    EXPECT_TRUE(CategoryOrFilter(Blob{0x20, 0, 0, 0}.get(), Blob{0x21, 0, 0, 0, 1, 0, 0, 0}.get()));
    EXPECT_FALSE(CategoryOrFilter(Blob{}.get(), filter.get()));
    EXPECT_FALSE(CategoryOrFilter(Blob{0x21, 0, 0}.get(), filter.get()));
}

struct Decision
{
    LONG mode;
    bool chosen;
    bool includeNone;
    const CEBLOB *record;
    bool passes;
};

TEST(CategoryFilter, DecidesByModeFilterAndRecord)
{
    const Blob match{0x01, 0, 0, 0};
    const Blob other{0x02, 0, 0, 0};
    const Blob none{};
    for (const Decision &d : {Decision{-1, false, false, none.get(), true},
                              {-1, true, false, nullptr, true},
                              {-1, false, true, match.get(), false},
                              {-1, true, false, match.get(), false},
                              {0, false, false, none.get(), true},
                              {0, false, false, match.get(), true},
                              {0, true, false, none.get(), false},
                              {0, true, true, none.get(), true},
                              {0, true, true, nullptr, true},
                              {0, true, false, match.get(), true},
                              {0, true, true, other.get(), false},
                              {1, false, false, none.get(), true},
                              {1, false, false, match.get(), false},
                              {1, true, false, none.get(), true},
                              {1, true, false, match.get(), false},
                              {1, true, false, other.get(), true},
                              {1, true, true, nullptr, true},
                              {1, false, false, nullptr, true},
                              {0, true, false, nullptr, false},
                              {2, false, false, match.get(), true},
                              {2, true, false, none.get(), true},
                              {-2, true, false, nullptr, true},
                              {2, true, false, other.get(), true},
                              {-2, true, false, match.get(), true}})
    {
        Chosen chosen(d.chosen ? std::initializer_list<int>{0} : std::initializer_list<int>{});
        chosen.info.bHideCategories = d.mode;
        chosen.info.m_bIncludeNoCat = d.includeNone ? 1 : 0;
        EXPECT_EQ(CategoryFilterHighLevel(d.record, &chosen.info), d.passes)
            << "mode " << d.mode << " chosen " << d.chosen << " include " << d.includeNone << " record "
            << (d.record != nullptr && d.record->dwCount != 0);
    }
}

TEST(CategoryFilter, MatchRuleIsOrUntilAndIsChosen)
{
    const Blob record{0x01, 0, 0, 0};
    Chosen chosen({0, 1});
    EXPECT_TRUE(CategoryFilterHighLevel(record.get(), &chosen.info));
    chosen.info.CategoryANDOR = 1;
    EXPECT_FALSE(CategoryFilterHighLevel(record.get(), &chosen.info));
    chosen.info.bHideCategories = 1;
    EXPECT_TRUE(CategoryFilterHighLevel(record.get(), &chosen.info));
}
} // namespace
