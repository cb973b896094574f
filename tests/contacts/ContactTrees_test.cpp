// The trees of categories and companies: counts, open state, members, searches.
#include "contacts/ContactListTest.h"
#include "platform/kernel.h"
#include "records/CategoryEdit.h"
#include "records/FullCategories.h"
#include "support/CategoryRecords.h"
#include "support/MessageWindow.h"

namespace
{
using namespace zb::test;

class ContactTree : public ContactListTest
{
  protected:
    DATACONTACTS *header(const char *name)
    {
        for (int i = 1; i <= loader().GetList().GetCount(); ++i)
        {
            DATACONTACTS *each = loader().GetList().GetAt(i);
            if (each->m_bHeader && utf8(each->m_pszName) == name)
            {
                return each;
            }
        }
        return nullptr;
    }
    int rowOf(const DATACONTACTS *wanted)
    {
        for (int i = 1; i <= loader().GetList().GetCount(); ++i)
        {
            if (loader().GetList().GetAt(i) == wanted)
            {
                return i;
            }
        }
        return 0;
    }
    LONG open(const char *name)
    {
        const DATACONTACTS *node = header(name);
        return loader().ListTreeContacts(static_cast<LONG>(node->m_oid), rowOf(node), false);
    }
    void close(const char *name)
    {
        loader().DeleteTreeContacts(static_cast<LONG>(header(name)->m_oid));
    }
};

// --- Categories ---------------------------------------------------------------------------------------------------

class CategoryTree : public ContactTree
{
  protected:
    CategoryTree()
    {
        addContact(u"Anna", u"Berg", u"", {workBit, homeBit, gardenBit});
        addContact(u"Émile", u"Zola", u"", {workBit});
        addContact(u"", u"山田");
        addCompany(u"Cobalt");
        display(1058);
    }
};

TEST_F(CategoryTree, hasAHeaderForEachCategoryInOrderWithItsCount)
{
    EXPECT_EQ(load(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) -]");
    EXPECT_EQ(loader().GetTotalNumRecords(), 4);
    LONG id = 0;
    for (const char *name : {"None", "Garden", "Home", "Work"})
    {
        const DATACONTACTS *node = header(name);
        EXPECT_EQ(node->m_oid, static_cast<CEOID>(++id)) << "1 for those without, else its place";
        EXPECT_EQ(node->m_nSortGroup, id);
        EXPECT_TRUE(node->m_bLoaded);
        EXPECT_EQ(utf8(node->m_pszCategories), name);
        EXPECT_EQ(node->m_nNode, 0);
    }
    EXPECT_EQ(header("Work")->m_nChildren, 2);
}

TEST_F(CategoryTree, aContactInThreeCategoriesStandsUnderEachOpenOne)
{
    load();
    EXPECT_EQ(open("Garden"), 1);
    EXPECT_EQ(open("Home"), 1);
    EXPECT_EQ(open("Work"), 2);
    EXPECT_EQ(open("None"), 2);
    EXPECT_EQ(shown(), "[None (2) +]; Cobalt; 山田; [Garden (1) +]; Berg, Anna; [Home (1) +]; Berg, Anna; [Work (2) "
                       "+]; Berg, Anna; Zola, Émile");
    EXPECT_EQ(loader().GetTotalNumRecords(), 10);
}

TEST_F(CategoryTree, openNodesStayOpenAcrossRunsAndNewHeaders)
{
    addCategoryRecord(u"Alpine", 4);
    load();
    open("Home");
    open("Work");
    const DATACONTACTS *work = header("Work");
    EXPECT_EQ(load(), "[None (2) -]; [Garden (1) -]; [Home (1) +]; Berg, Anna; [Work (2) +]; Berg, Anna; Zola, Émile");
    EXPECT_EQ(header("Work"), work) << "the row is used again";
    const CEOID added = addContact(u"New", u"Person", u"", {4});
    loader().AddCatCacheItem(added);
    loader().FinishUpdatingCatCacheItem();
    EXPECT_EQ(load(), "[None (2) -]; [Alpine (1) -]; [Garden (1) -]; [Home (1) +]; Berg, Anna; [Work (2) +]; Berg, "
                      "Anna; Zola, Émile");
}

TEST_F(CategoryTree, closingTakesTheMembersOut)
{
    load();
    open("Work");
    close("Work");
    EXPECT_EQ(shown(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) -]");
    EXPECT_EQ(loader().GetTotalNumRecords(), 4);
    EXPECT_EQ(load(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) -]");
}

TEST_F(CategoryTree, openingTwiceListsTheMembersOnce)
{
    load();
    open("Work");
    open("Work");
    EXPECT_EQ(shown(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) +]; Berg, Anna; Zola, Émile");
}

TEST_F(CategoryTree, theNoneNodeDisappearsWhenItIsEmpty)
{
    addContact(u"", u"X", u"", {workBit});
    load();
    std::vector<CEOID> without;
    for (int i = 0; i < loader().GetCatCache().GetCount(); ++i)
    {
        if (loader().GetCatCache().GetAt(i).m_cbCategories == 0)
        {
            without.push_back(loader().GetCatCache().GetAt(i).m_oid);
        }
    }
    for (const CEOID oid : without)
    {
        removeContact(oid);
        loader().DeleteCatCacheItem(oid);
    }
    EXPECT_EQ(load(), "[Garden (1) -]; [Home (1) -]; [Work (3) -]");
    EXPECT_EQ(header("Garden")->m_oid, 2U) << "its place as if the first one were there";
    EXPECT_EQ(open("Work"), 3);
}

TEST_F(CategoryTree, aSearchOpensWhatHasHitsAndDropsTheRest)
{
    EXPECT_EQ(search(u"zo"), "[Work (1) +]; Zola, Émile");
    EXPECT_EQ(search(u"ber"), "[Garden (1) +]; Berg, Anna; [Home (1) +]; Berg, Anna; [Work (1) +]; Berg, Anna");
    EXPECT_EQ(search(u"anna"), "") << "file-as names alone";
    EXPECT_EQ(search(u"xx"), "");
    loader().ClearCompareString();
    EXPECT_EQ(load(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) -]");
}

TEST_F(CategoryTree, aSearchLeavesAccentsAndSymbolsOutOfAccount)
{
    addContact(u"", u"O'Ção", u"", {gardenBit});
    EXPECT_EQ(search(u"o-ca"), "[Garden (1) +]; O'Ção");
}

TEST_F(CategoryTree, aSearchCountsInClosedNodesWhereItMustNotOpen)
{
    set(u"OpenOnCompare", 0);
    EXPECT_EQ(search(u"ber"), "[Garden (1) -]; [Home (1) -]; [Work (1) -]");
    EXPECT_EQ(open("Work"), 1) << "opening lists whatever the setting says";
    EXPECT_EQ(shown(), "[Garden (1) -]; [Home (1) -]; [Work (1) +]; Berg, Anna");
}

TEST_F(CategoryTree, aDeepSearchReadsTheRecords)
{
    zb::ContactItem item;
    item.lastName = u"Deep";
    item.business.city = u"Oslo";
    addContact(item, {homeBit});
    EXPECT_EQ(search(u"slo", true), "[Home (1) +]; Deep");
}

TEST_F(CategoryTree, aStoppedRunLeavesNoTotal)
{
    load();
    CeManualEvent stopped(false);
    loader().LoadContacts(&stopped);
    EXPECT_EQ(loader().GetTotalNumRecords(), 0);
    load();
    EXPECT_EQ(loader().GetTotalNumRecords(), 4);
}

TEST_F(CategoryTree, theChoiceOfCategoriesDoesNotCount)
{
    choose({gardenBit});
    EXPECT_EQ(load(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) -]");
    EXPECT_EQ(open("Work"), 2);
}

TEST_F(CategoryTree, aCategoryThatIsGoneLeavesNoHeader)
{
    addContact(u"", u"Lost", u"", {workBit, 7});
    EXPECT_EQ(load(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (3) -]");
}

TEST_F(CategoryTree, aHeaderWhoseCategoryIsGoneOpensToNobody)
{
    load();
    ASSERT_EQ(zb::renameCategory(u"Work", u"Office"), zb::CategoryChange::Done);
    ResetFullCategoryList();
    EXPECT_EQ(open("Work"), 0);
    EXPECT_EQ(shown(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) -]");
}

TEST_F(CategoryTree, namesThatDifferInCaseAloneShareAHeader)
{
    addCategoryRecord(u"work", 5);
    addContact(u"", u"X", u"", {5});
    EXPECT_EQ(load(), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [work (3) -]");
    EXPECT_EQ(open("work"), 3);
}

TEST_F(CategoryTree, rowsOfAnotherDisplayGo)
{
    load(2);
    EXPECT_EQ(shown(), "[None (3) -]; [Cobalt (1) -]");
    open("None");
    EXPECT_EQ(load(1058), "[None (2) -]; [Garden (1) -]; [Home (1) -]; [Work (2) -]") << "nor do nodes stay open";
    EXPECT_EQ(load(3), "Berg, Anna; Cobalt; Zola, Émile; 山田");
}

// --- Companies ----------------------------------------------------------------------------------------------------

class CompanyTree : public ContactTree
{
  protected:
    CompanyTree()
    {
        addContact(u"Anna", u"Berg", u"Acme", {workBit});
        addContact(u"Émile", u"Adams", u"ACME");
        addContact(u"Bob", u"Clay", u"Zenith", {homeBit});
        addContact(u"Carl", u"Dorn");
        addContact(u"一郎", u"山田", u"東京");
        addCompany(u"Zenith");
        display(2);
    }
};

TEST_F(CompanyTree, hasAHeaderForEachCompanyWithItsCount)
{
    EXPECT_EQ(load(), "[None (1) -]; [Acme (2) -]; [Zenith (2) -]; [東京 (1) -]");
    EXPECT_EQ(loader().GetTotalNumRecords(), 4);
    EXPECT_EQ(header("None")->m_oid, 1U);
    EXPECT_EQ(header("Acme")->m_oid, 2U);
    EXPECT_EQ(header("東京")->m_nSortGroup, 4);
}

TEST_F(CompanyTree, membersAreNamedByTheirOwnSetting)
{
    load();
    open("Acme");
    open("Zenith");
    open("None");
    EXPECT_EQ(shown(), "[None (1) +]; Dorn, Carl; [Acme (2) +]; Adams, Émile; Berg, Anna; [Zenith (2) +]; Clay, Bob; "
                       "Zenith; [東京 (1) -]");
    set(u"CV_DisplayFormatCompany", 2);
    EXPECT_EQ(load().substr(0, 26), "[None (1) +]; Dorn, Carl; ") << "any other number too";
    set(u"CV_DisplayFormatCompany", 0);
    EXPECT_EQ(load(), "[None (1) +]; Carl Dorn; [Acme (2) +]; Anna Berg; Émile Adams; [Zenith (2) +]; Bob Clay; "
                      "Zenith; [東京 (1) -]");
}

TEST_F(CompanyTree, valuesThatAreNoDisplayShowItWithFileAsNames)
{
    for (const LONG value : {-1L, 4L, 77L})
    {
        load(value);
        EXPECT_EQ(shown(), "[None (1) -]; [Acme (2) -]; [Zenith (2) -]; [東京 (1) -]") << value;
        open("Acme");
        EXPECT_EQ(describe(loader().GetList().GetAt(3)), "Adams, Émile");
        close("Acme");
    }
}

TEST_F(CompanyTree, openNodesStayOpenAcrossRunsAndNewCompanies)
{
    load();
    open("Zenith");
    const CEOID added = addContact(u"New", u"Person", u"Beta");
    loader().AddCatCacheItem(added);
    loader().FinishUpdatingCatCacheItem();
    EXPECT_EQ(load(), "[None (1) -]; [Acme (2) -]; [Beta (1) -]; [Zenith (2) +]; Clay, Bob; Zenith; [東京 (1) -]");
}

TEST_F(CompanyTree, theNoneNodeDisappearsWhenItIsEmpty)
{
    load();
    const CEOID dorn = loader().GetCatCache().GetAt(0).m_oid;
    loader().DeleteCatCacheItem(dorn);
    EXPECT_EQ(load(), "[Acme (2) -]; [Zenith (2) -]; [東京 (1) -]");
}

TEST_F(CompanyTree, nodesStayOpenWhenARunIsStopped)
{
    load();
    open("None");
    open("Zenith");
    CeManualEvent stopped(false);
    loader().LoadContacts(&stopped);
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 0);
    EXPECT_EQ(load(), "[None (1) +]; Dorn, Carl; [Acme (2) -]; [Zenith (2) +]; Clay, Bob; Zenith; [東京 (1) -]");
}

TEST_F(CompanyTree, aSearchGoesByTheCompany)
{
    EXPECT_EQ(search(u"ac"), "[Acme (2) +]; Adams, Émile; Berg, Anna");
    EXPECT_EQ(search(u"be"), "") << "not by names";
    EXPECT_EQ(search(u"acmex"), "") << "longer than the company";
    EXPECT_EQ(search(u"東"), "[東京 (1) +]; 山田, 一郎");
    loader().ClearCompareString();
    EXPECT_EQ(load(), "[None (1) -]; [Acme (2) -]; [Zenith (2) -]; [東京 (1) +]; 山田, 一郎") << "what it opened stays";
}

TEST_F(CompanyTree, anEmptyCompanyIsNone)
{
    zb::RecordProperties properties;
    properties.set(0x3a11001f, std::u16string(u"Ender"));
    properties.set(0x3a16001f, std::u16string());
    writeContact(0, properties);
    load();
    EXPECT_EQ(open("None"), 2);
    EXPECT_EQ(shown(), "[None (2) +]; Dorn, Carl; Ender; [Acme (2) -]; [Zenith (2) -]; [東京 (1) -]");
}

TEST_F(CompanyTree, aSearchForACompanyMindsAccentsButNotCase)
{
    addContact(u"A", u"B", u"Évian");
    EXPECT_EQ(search(u"ev"), "");
    EXPECT_EQ(search(u"év"), "[Évian (1) +]; B, A");
}

TEST_F(CompanyTree, aNodeWhoseRecordsAreGoneDoesNotOpen)
{
    const CEOID gone = addContact(u"A", u"B", u"Beta");
    load();
    removeContact(gone);
    EXPECT_EQ(open("Beta"), 0);
    EXPECT_FALSE(header("Beta")->m_bOpen);
}

TEST_F(CompanyTree, aSearchGoesByNamesTooWhereItIsToldTo)
{
    set(u"bSearchCompanySubNodes", 1);
    EXPECT_EQ(search(u"be"), "[Acme (1) +]; Berg, Anna");
    EXPECT_EQ(search(u"do"), "[None (1) +]; Dorn, Carl");
    EXPECT_EQ(search(u"an"), "") << "last names";
    set(u"CV_DisplayFormatCompany", 0);
    EXPECT_EQ(search(u"an"), "[Acme (1) +]; Anna Berg");
    EXPECT_EQ(search(u"em"), "[ACME (1) +]; Émile Adams")
        << "accents do not count; the header is as its first hit has it";
    EXPECT_EQ(search(u"be"), "");
}

TEST_F(CompanyTree, aSearchCountsInClosedNodesWhereItMustNotOpen)
{
    set(u"OpenOnCompare", 0);
    EXPECT_EQ(search(u"ac"), "[Acme (2) -]");
    EXPECT_EQ(open("Acme"), 2) << "opening lists whatever the setting says";
    EXPECT_EQ(shown(), "[Acme (2) +]; Adams, Émile; Berg, Anna");
}

TEST_F(CompanyTree, aDeepSearchReadsTheRecords)
{
    zb::ContactItem item;
    item.lastName = u"Deep";
    item.company = u"Beta";
    item.business.city = u"Oslo";
    addContact(item);
    EXPECT_EQ(search(u"slo", true), "[Beta (1) +]; Deep");
}

TEST_F(CompanyTree, theChoiceOfCategoriesCounts)
{
    choose({workBit});
    EXPECT_EQ(load(), "[Acme (1) -]");
    EXPECT_EQ(open("Acme"), 1);
    EXPECT_EQ(shown(), "[Acme (1) +]; Berg, Anna");
    choose({gardenBit});
    EXPECT_EQ(load(), "") << "matches nothing";
    EXPECT_EQ(loader().GetList().GetCount(), 0);
}

TEST_F(CompanyTree, companiesThatDifferInSymbolsAreTwo)
{
    addContact(u"X", u"One", u"B-1");
    addContact(u"Y", u"Two", u"B1");
    load();
    EXPECT_EQ(open("B1"), 1);
    EXPECT_EQ(open("B-1"), 1);
}

TEST_F(CompanyTree, withoutDatabaseItIsEmpty)
{
    load();
    ASSERT_TRUE(deleteContactsDatabase());
    EXPECT_EQ(load(), "");
}

TEST_F(CompanyTree, aHeaderThatIsNotThereListsNothing)
{
    load();
    EXPECT_EQ(loader().ListTreeContacts(99, 99, false), 0);
    loader().DeleteTreeContacts(99);
    loader().UpdateCompanyTree(2);
    EXPECT_EQ(shown(), "[None (1) -]; [Acme (2) -]; [Zenith (2) -]; [東京 (1) -]");
}
} // namespace
