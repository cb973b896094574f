// The flat displays: their orders and names, pages, and the choice of categories.
#include "contacts/ContactListTest.h"
#include "platform/kernel.h"
#include "support/LoaderHost.h"

namespace
{
using namespace zb::test;

class ContactFlat : public ContactListTest
{
  protected:
    void addPeople()
    {
        addContact(u"Zoë", u"Adams");
        addContact(u"Émile", u"Zola");
        addContact(u"Bob", u"");
        addContact(u"", u"Ng");
        addCompany(u"Cobalt Ltd");
        addContact(u"一郎", u"山田");
        addContact(u"anna", u"Berg");
        addContact(u"Anna", u"Abel");
        zb::RecordProperties nameless;
        nameless.set(0x3a1c001f, std::u16string(u"555"));
        writeContact(0, nameless);
        zb::ContactItem dentist;
        dentist.fileAs = u"Dentist";
        addContact(dentist);
    }
};

TEST_F(ContactFlat, firstNamesFirstWithCompaniesAndFileAsNamesAmongThem)
{
    addPeople();
    // Who has no first name stands by the last name, the file-as name when there is no name at all.
    EXPECT_EQ(load(0), "; anna Berg; Anna Abel; Bob; Cobalt Ltd; Dentist; Émile Zola; Ng; Zoë Adams; 一郎 山田");
}

TEST_F(ContactFlat, lastNamesFirst)
{
    addPeople();
    EXPECT_EQ(load(1), "; Abel, Anna; Adams, Zoë; Berg, anna; Bob; Cobalt Ltd; Dentist; Ng; Zola, Émile; 山田, 一郎");
}

TEST_F(ContactFlat, byFileAsNameIsTheDisplayWithoutSettings)
{
    addPeople();
    const std::string golden =
        "; Abel, Anna; Adams, Zoë; Berg, anna; Bob; Cobalt Ltd; Dentist; Ng; Zola, Émile; 山田, 一郎";
    EXPECT_EQ(load(), golden);
    EXPECT_EQ(load(3), golden);
}

TEST_F(ContactFlat, fileAsNamesThatDifferFromNames)
{
    zb::ContactItem item;
    item.firstName = u"Anna";
    item.lastName = u"Zorn";
    item.fileAs = u"Aunt";
    addContact(item);
    addContact(u"Bea", u"Berg");
    EXPECT_EQ(load(3), "Aunt; Berg, Bea");
    EXPECT_EQ(load(1), "Berg, Bea; Zorn, Anna");
    EXPECT_EQ(load(0), "Anna Zorn; Bea Berg");
}

TEST_F(ContactFlat, equalFirstKeysGoByTheSecond)
{
    addContact(u"Anna", u"Zorn");
    addContact(u"Anna", u"Berg");
    addContact(u"Carl", u"Berg");
    EXPECT_EQ(load(0), "Anna Berg; Anna Zorn; Carl Berg");
    EXPECT_EQ(load(1), "Berg, Anna; Berg, Carl; Zorn, Anna");
}

TEST_F(ContactFlat, aNamelessContactFallsIntoTheAlphabetByItsFileAsName)
{
    addContact(u"An", u"Zorn");
    addCompany(u"Anb");
    addContact(u"Bob", u"Lee");
    EXPECT_EQ(load(0), "An Zorn; Anb; Bob Lee") << "as the lines read";
    EXPECT_EQ(load(1), "Anb; Lee, Bob; Zorn, An");
}

TEST_F(ContactFlat, aNameThatBeginsWithACharacterOfLowByteZeroIsKept)
{
    addContact(u"\u4e00", u"\u0100bc");
    EXPECT_EQ(load(0), "\u4e00 \u0100bc");
}

TEST_F(ContactFlat, joinedNamesAreCutAt2000Characters)
{
    addContact(std::u16string(1500, u'a'), std::u16string(1500, u'b'));
    EXPECT_EQ(load(0).size(), 2000U);
    addContact(std::u16string(2500, u'c'), u"");
    loader().ClearCatCache();
    load(0);
    EXPECT_EQ(describe(loader().GetList().GetAt(2)).size(), 2500U) << "one name alone is not joined";
}

TEST_F(ContactFlat, aContactWithVeryLongTextsIsListed)
{
    addContact(u"Anna", std::u16string(20'000, u'x'));
    addContact(u"Bob", u"Y");
    load(0);
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 2);
}

TEST_F(ContactFlat, withoutHostAllRowsComeAtOnce)
{
    for (int i = 0; i < 45; ++i)
    {
        addContact(u"", utf16("name " + std::to_string(100 + i)));
    }
    load(1);
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 45);
    EXPECT_EQ(loader().GetTotalNumRecords(), 45);
}

TEST_F(ContactFlat, withoutDatabaseTheListIsEmpty)
{
    addContact(u"Anna", u"Berg");
    load(1);
    ASSERT_TRUE(deleteContactsDatabase());
    EXPECT_EQ(load(1), "");
    EXPECT_EQ(loader().GetList().GetCount(), 0);
}

TEST_F(ContactFlat, aRecordThatIsGoneHasNoRow)
{
    addContact(u"Anna", u"Berg");
    const CEOID gone = addContact(u"Bob", u"Clay");
    addContact(u"Carl", u"Dorn");
    load(1);
    removeContact(gone);
    EXPECT_EQ(load(1), "Berg, Anna; Dorn, Carl");
}

// --- Categories ---------------------------------------------------------------------------------------------------

class ContactChoice : public ContactFlat
{
  protected:
    ContactChoice()
    {
        addContact(u"", u"A", u"", {workBit});
        addContact(u"", u"B", u"", {homeBit, workBit});
        addContact(u"", u"C");
        addContact(u"", u"D", u"", {homeBit});
    }
};

TEST_F(ContactChoice, showsTheChosenOnes)
{
    EXPECT_EQ(load(1), "A; B; C; D");
    choose({workBit});
    EXPECT_EQ(load(1), "A; B");
    choose({workBit}, 0, true);
    EXPECT_EQ(load(1), "A; B; C");
    choose({workBit}, 1);
    EXPECT_EQ(load(1), "C; D");
    choose({}, -1);
    EXPECT_EQ(load(1), "C");
    choose({});
    EXPECT_EQ(load(1), "A; B; C; D");
}

TEST_F(ContactChoice, thatMatchesNothingLeavesAnEmptyList)
{
    load(1);
    choose({gardenBit});
    EXPECT_EQ(load(1), "");
    EXPECT_EQ(loader().GetList().GetCount(), 0);
    EXPECT_EQ(loader().GetTotalNumRecords(), 0);
}

TEST_F(ContactChoice, modeAndFlagsAreSavedUnderTheContactsKey)
{
    choose({workBit}, 1, true);
    EXPECT_EQ(setting(u"bHideCategories"), 1U);
    EXPECT_EQ(setting(u"m_bIncludeNoCat"), 1U);
    EXPECT_EQ(setting(u"CategoryANDOR"), 0U);
}

TEST_F(ContactChoice, aModeChangedInTheSettingsCountsAtTheNextRun)
{
    load(1);
    set(u"bHideCategories", static_cast<DWORD>(-1));
    EXPECT_EQ(load(1), "C");
}

TEST_F(ContactChoice, searchesLookAtTheChosenOnesAlone)
{
    choose({workBit});
    display(1);
    EXPECT_EQ(search(u"b"), "B");
    EXPECT_EQ(search(u"d"), "");
}

TEST_F(ContactChoice, followsTheOrderOfTheDisplay)
{
    addContact(u"Yan", u"AA", u"", {workBit});
    addContact(u"Xan", u"AB", u"", {workBit});
    choose({workBit});
    EXPECT_EQ(load(1), "A; AA, Yan; AB, Xan; B");
    EXPECT_EQ(load(0), "A; B; Xan AB; Yan AA");
}

// --- Pages --------------------------------------------------------------------------------------------------------

class ContactPages : public ContactListTest
{
  protected:
    ContactPages()
    {
        loader().m_hWndHost = host.window();
    }
    void addMany(int count)
    {
        zb::BulkWrite bulk;
        for (int i = 0; i < count; ++i)
        {
            oids.push_back(addContact(u"", utf16("name " + std::to_string(100 + i))));
        }
        bulk.commit();
    }
    void nextPage(LONG from)
    {
        messages.clear();
        loader().SetLastRowRead(from);
        loader().SetStartListIndex(from);
        load();
    }
    int filled()
    {
        int count = 0;
        for (int i = 1; i <= loader().GetList().GetCount(); ++i)
        {
            count += loader().GetList().GetAt(i) != nullptr ? 1 : 0;
        }
        return count;
    }

    LoaderHost host{u"ContactPagesHost"};
    LoaderMessages &messages = host.messages;
    std::vector<CEOID> oids;
};

TEST_F(ContactPages, areOf20RowsInAListOfItsWholeLength)
{
    addMany(45);
    load(1);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 3, 45}})) << "the list has its whole length";
    EXPECT_EQ(loader().GetList().GetCount(), 45);
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 20);
    EXPECT_EQ(filled(), 20);
    EXPECT_EQ(loader().GetTotalNumRecords(), 45);
    EXPECT_EQ(describe(loader().GetList().GetAt(20)), "name 119");
    EXPECT_EQ(loader().GetList().GetAt(21), nullptr);
}

TEST_F(ContactPages, laterOnesFillTheirSlotsAndSendNothing)
{
    addMany(45);
    load(1);
    const DATACONTACTS *first = loader().GetList().GetAt(1);
    nextPage(20);
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(filled(), 40);
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 40);
    EXPECT_EQ(loader().GetList().GetAt(1), first) << "rows that were read keep their slots";
    EXPECT_EQ(describe(loader().GetList().GetAt(21)), "name 120");
    nextPage(40);
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(filled(), 45);
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 45);
    EXPECT_EQ(describe(loader().GetList().GetAt(45)), "name 144");
}

TEST_F(ContactPages, aListThatFitsOnePageIsComplete)
{
    addMany(19);
    load(1);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 19}}));
    EXPECT_EQ(loader().GetTotalNumRecords(), 19);
    EXPECT_EQ(filled(), 19);
}

TEST_F(ContactPages, aListOfExactlyOnePageIsCompleteAndOneMoreIsNot)
{
    addMany(20);
    load(1);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 20}}));
    messages.clear();
    addMany(1);
    loader().ClearCatCache();
    load(1);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 3, 21}}));
}

TEST_F(ContactPages, aPlaceOutsideTheCacheIsTheFirstPage)
{
    addMany(25);
    load(1);
    nextPage(25);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 25}})) << "counted from the 25 rows that the host has";
    EXPECT_EQ(filled(), 25);
    loader().SetStartListIndex(0);
    loader().SetLastRowRead(-3);
    messages.clear();
    load();
    EXPECT_EQ(messages, (LoaderMessages{{1274, 3, 25}}));
}

TEST_F(ContactPages, aChangedDisplayBeginsWithTheFirstPage)
{
    addMany(45);
    load(1);
    loader().SetLastRowRead(20);
    loader().SetStartListIndex(20);
    messages.clear();
    load(3);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 3, 45}}));
    EXPECT_EQ(filled(), 20);
}

TEST_F(ContactPages, theFirstRunCountsAsAChangeOfDisplay)
{
    addMany(45);
    loader().SetLastRowRead(20);
    loader().SetStartListIndex(20);
    load(3);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 3, 45}}));
    EXPECT_EQ(filled(), 20);
}

TEST_F(ContactPages, aRefilledSlotWhoseRecordIsGoneLeavesTheList)
{
    addMany(45);
    load(1);
    removeContact(oids[22]);
    nextPage(20);
    EXPECT_EQ(loader().GetList().GetCount(), 44);
    EXPECT_EQ(describe(loader().GetList().GetAt(22)), "name 121");
    EXPECT_EQ(describe(loader().GetList().GetAt(23)), "name 123");
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 40);
}

TEST_F(ContactPages, underAChoiceCountWhatIsChosen)
{
    addMany(30);
    for (int i = 0; i < 30; ++i)
    {
        addContact(u"", utf16("home " + std::to_string(100 + i)), u"", {homeBit});
    }
    choose({homeBit});
    load(1);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 3, 30}}));
    EXPECT_EQ(filled(), 20);
    nextPage(20);
    EXPECT_EQ(filled(), 30);
    EXPECT_EQ(describe(loader().GetList().GetAt(30)), "home 129");
}

TEST_F(ContactPages, aSearchComesAtOnceAndAllContactsInPagesAgainAfterIt)
{
    addMany(45);
    load(1);
    nextPage(20);
    EXPECT_NE(search(u"name"), "");
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 45}}));
    EXPECT_EQ(filled(), 45);
    loader().ClearCompareString();
    messages.clear();
    load();
    EXPECT_EQ(messages, (LoaderMessages{{1274, 3, 45}}));
}

TEST_F(ContactPages, anEmptyListIsTold)
{
    load(1);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 0}}));
    addMany(3);
    ASSERT_TRUE(deleteContactsDatabase());
    messages.clear();
    load(1);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 0}}));
}
} // namespace
