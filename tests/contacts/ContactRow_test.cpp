// One row: its number, flags and texts; the properties that are read; settings; the order of rows.
#include "contacts/ContactListTest.h"
#include "core/bstrtools.h"
#include "platform/text.h"
#include "support/PropertyRecords.h"

#include <map>
#include <random>

namespace
{
using namespace zb::test;

class ContactRow : public ContactListTest
{
  protected:
    /// Text and property of the number that shows.
    std::string detail(CEOID oid)
    {
        const DATACONTACTS *each = row(oid);
        if (each == nullptr)
        {
            return "(no row)";
        }
        std::ostringstream text;
        text << utf8(each->m_pszDetail) << " " << std::hex << each->m_propDetail;
        return text.str();
    }
    static zb::ContactItem withNumbers()
    {
        zb::ContactItem item;
        item.lastName = u"Berg";
        item.businessPhone = u"business";
        item.mobilePhone = u"mobile";
        item.carPhone = u"car";
        item.homePhone = u"home";
        item.email1 = u"mail";
        item.email2 = u"mail2";
        item.pager = u"pager";
        return item;
    }
};

TEST_F(ContactRow, showsTheFirstConfiguredKindThatHasText)
{
    zb::ContactItem item = withNumbers();
    const CEOID oid = addContact(item);
    const auto shows = [&]
    {
        changeContact(oid, item);
        load(1);
        return detail(oid);
    };
    EXPECT_EQ(shows(), "business 3a08001f");
    item.businessPhone.clear();
    EXPECT_EQ(shows(), "mobile 3a1c001f");
    item.mobilePhone.clear();
    EXPECT_EQ(shows(), "car 4009001f");
    item.carPhone.clear();
    EXPECT_EQ(shows(), "home 3a09001f");
    item.homePhone.clear();
    EXPECT_EQ(shows(), "mail 4083001f");
    item.email1.clear();
    EXPECT_EQ(shows(), " 0") << "other numbers show only when they are chosen";
}

TEST_F(ContactRow, theSettingsOrderTheKinds)
{
    const CEOID oid = addContact(withNumbers());
    set(u"CV_dwNumber1Type", 7);
    load(1);
    EXPECT_EQ(detail(oid), "home 3a09001f");
    set(u"CV_dwNumber1Type", 8);
    load(1);
    EXPECT_EQ(detail(oid), "mail 4083001f");
}

TEST_F(ContactRow, theNumberThatItsOwnerChoseComesFirst)
{
    zb::ContactItem item = withNumbers();
    item.preferredNumber = 0x3a1e001f;
    const CEOID oid = addContact(item);
    load(1);
    EXPECT_EQ(detail(oid), "pager 3a1e001f");
    item.preferredNumber = 0x4093001f;
    changeContact(oid, item);
    load(1);
    EXPECT_EQ(detail(oid), "mail2 4093001f");
}

TEST_F(ContactRow, aChosenNumberWithoutTextGivesWayToTheConfiguredKinds)
{
    zb::ContactItem item = withNumbers();
    const CEOID oid = addContact(item);
    for (const CEPROPID chosen : {0x40a3001fU, 0x00500003U, 0x12345678U, 0U, 0x3a16001fU})
    {
        item.preferredNumber = chosen;
        item.company = u"Acme";
        changeContact(oid, item);
        load(1);
        EXPECT_EQ(detail(oid), "business 3a08001f") << std::hex << chosen;
    }
}

TEST_F(ContactRow, namesOnlyReadsTwoPropertiesAndShowsNoNumber)
{
    const CEOID oid = addContact(withNumbers());
    set(u"ShowNamesOnly", 1);
    load(1);
    EXPECT_EQ(detail(oid), " 0");
    EXPECT_EQ(loader().SetPropIds(true), 2);
}

TEST_F(ContactRow, namesOnlyWithADeepSearchReadsAllAndStillShowsNoNumber)
{
    const CEOID oid = addContact(withNumbers());
    set(u"ShowNamesOnly", 1);
    display(1);
    EXPECT_EQ(search(u"pager", true), "Berg");
    EXPECT_EQ(loader().SetPropIds(false), 36);
    EXPECT_EQ(detail(oid), " 0");
}

TEST_F(ContactRow, theListsOfProperties)
{
    const std::vector<CEPROPID> all{
        0x2a08001f, 0x00170041, 0x3a08001f, 0x3a1c001f, 0x4009001f, 0x3a09001f, 0x4083001f, 0x4093001f, 0x40a3001f,
        0x4007001f, 0x3a2f001f, 0x3a24001f, 0x3a1d001f, 0x3a1e001f, 0x4004001f, 0x3a25001f, 0x00500003, 0x4045001f,
        0x4046001f, 0x4047001f, 0x4048001f, 0x4049001f, 0x4040001f, 0x4041001f, 0x4042001f, 0x4044001f, 0x4002001f,
        0x4006001f, 0x400a001f, 0x3a18001f, 0x3a17001f, 0x404a001f, 0x404b001f, 0x404c001f, 0x404d001f, 0x404e001f};
    const auto ids = [&](int count)
    { return std::vector<CEPROPID>(loader().GetPropIds().begin(), loader().GetPropIds().begin() + count); };
    ASSERT_EQ(loader().SetPropIds(true), 17);
    EXPECT_EQ(ids(17), std::vector<CEPROPID>(all.begin(), all.begin() + 17));
    loader().SetCompareString(u"x", true);
    ASSERT_EQ(loader().SetPropIds(true), 36);
    EXPECT_EQ(ids(36), all);
    EXPECT_EQ(loader().GetPropIds().size(), 50U);
}

TEST_F(ContactRow, notesOfMoreThanFourBytesCount)
{
    const auto hasNotes = [&](std::size_t size)
    {
        zb::RecordProperties properties;
        properties.set(0x3a11001f, std::u16string(u"N"));
        properties.set(0x00170041, Bytes(size, BYTE{1}));
        const CEOID oid = writeContact(0, properties);
        loader().ClearCatCache();
        load(1);
        return row(oid)->m_bHasNotes;
    };
    EXPECT_EQ(hasNotes(4), 0);
    EXPECT_EQ(hasNotes(5), 1);
    zb::ContactItem item;
    item.notes = u"x";
    item.lastName = u"M";
    const CEOID oid = addContact(item);
    loader().ClearCatCache();
    load(1);
    EXPECT_EQ(row(oid)->m_bHasNotes, 1);
}

TEST_F(ContactRow, hasCategoriesIconAndWhatARowStartsWith)
{
    const CEOID plain = addContact(u"", u"Plain");
    const CEOID rich = addContact(u"", u"Rich", u"", {workBit, gardenBit});
    zb::RecordProperties icon;
    icon.set(0x2a08001f, std::u16string(u"\\star.bmp"));
    writeContact(rich, icon);
    load(1);
    EXPECT_EQ(utf8(row(plain)->m_pszCategories), "");
    EXPECT_EQ(row(plain)->m_pszIcon, nullptr);
    EXPECT_EQ(utf8(row(rich)->m_pszCategories), "Work, Garden");
    EXPECT_EQ(utf8(row(rich)->m_pszIcon), "\\star.bmp");
    EXPECT_FALSE(row(rich)->m_bSortLast);
    EXPECT_FALSE(row(rich)->m_bHeader);
    EXPECT_TRUE(row(rich)->m_bLoaded);
    EXPECT_EQ(row(rich)->m_nNode, 0);
    EXPECT_EQ(row(rich)->m_nSortGroup, 0);
}

TEST_F(ContactRow, tellsOfLinksAndJournal)
{
    const CEOID linked = addContact(u"", u"A");
    const CEOID inJournal = addContact(u"", u"B");
    load(1);
    EXPECT_EQ(row(linked)->m_bHasLinks, 0) << "without the databases";
    for (const auto &[name, property, contact] :
         {std::tuple(u"ZembrikLinks", 0x00010003U, linked), {u"ZembrikJournal", 0x002e0003U, inJournal}})
    {
        const SORTORDERSPEC sort{property, 0};
        CEOID database = CeCreateDatabase(name, 0, 1, &sort);
        const HANDLE handle = CeOpenDatabase(&database, nullptr, property, 0, nullptr);
        zb::RecordProperties properties;
        properties.set(property, static_cast<LONG>(contact));
        CeWriteRecordProps(handle, 0, properties.count(), properties.values());
        CloseHandle(handle);
    }
    load(1);
    EXPECT_EQ(row(linked)->m_bHasLinks, 1);
    EXPECT_EQ(row(linked)->m_bHasJournal, 0);
    EXPECT_EQ(row(inJournal)->m_bHasLinks, 0);
    EXPECT_EQ(row(inJournal)->m_bHasJournal, 1);
}

/// Rows whose order is like that of the records, unlike it, or both by turns, since records lie by letters' codes.
class ContactRecords : public ContactRow, public ::testing::WithParamInterface<unsigned>
{
  protected:
    ContactRecords()
    {
        std::mt19937 random(GetParam());
        const auto word = [&]
        {
            static const std::vector<std::u16string> syllables{u"an", u"be", u"é", u"Ü", u"ño", u"ca", u"Ж", u"山"};
            std::u16string made;
            for (unsigned n = 1 + static_cast<unsigned>(random() % 4); n > 0; --n)
            {
                made += syllables[random() % syllables.size()];
            }
            return made;
        };
        zb::BulkWrite bulk;
        for (int i = 0; i < 600; ++i)
        {
            zb::ContactItem item;
            item.firstName = random() % 8 != 0 ? word() : u"";
            item.lastName = random() % 8 != 0 ? word() : u"";
            item.company = word();
            item.mobilePhone = utf16(std::to_string(i));
            numbers[addContact(item)] = std::to_string(i);
        }
        bulk.commit();
    }
    /// Each contact that is listed, with the number that its row shows.
    std::map<CEOID, std::string> listed()
    {
        std::map<CEOID, std::string> rows;
        for (int i = 1; i <= loader().GetList().GetDisplayCount(); ++i)
        {
            const DATACONTACTS *each = loader().GetList().GetAt(i);
            rows[each->m_oid] = utf8(each->m_pszDetail);
        }
        return rows;
    }
    std::map<CEOID, std::string> numbers;
};

TEST_P(ContactRecords, giveEachRowItsOwnNumber)
{
    for (const LONG display : {0, 1, 3})
    {
        load(display);
        EXPECT_EQ(loader().GetList().GetDisplayCount(), 600);
        EXPECT_EQ(listed(), numbers) << display;
    }
    int n = 0;
    for (auto each = numbers.begin(); each != numbers.end();)
    {
        const bool goes = ++n % 7 == 0;
        ASSERT_TRUE(!goes || removeContact(each->first));
        each = goes ? numbers.erase(each) : std::next(each);
    }
    for (const LONG display : {1, 0, 3})
    {
        load(display);
        EXPECT_EQ(listed(), numbers) << "some are gone, " << display;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ContactRecords, ::testing::Range(1U, 5U));

// --- AddContactItem -----------------------------------------------------------------------------------------------

class ContactAdding : public ContactListTest
{
  protected:
    ContactAdding()
    {
        a = addContact(u"", u"A", u"", {workBit});
        b = addContact(u"", u"B");
        load(1);
        loader().InitDBStuff(true);
    }
    DATACONTACTS *add(CEOID oid, int index, LONG node = 0, bool filter = false)
    {
        loader().FindCatCacheItem(oid, 0);
        return loader().AddContactItem(&added, index, node, false, filter);
    }
    int count()
    {
        return loader().GetList().GetCount();
    }
    CEOID a = 0;
    CEOID b = 0;
    bool added = false;
};

TEST_F(ContactAdding, minusOneAppendsAndMinusTwoOnlyCounts)
{
    EXPECT_NE(add(a, -1), nullptr);
    EXPECT_TRUE(added);
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(add(b, -2), nullptr);
    EXPECT_TRUE(added);
    EXPECT_EQ(count(), 3);
}

TEST_F(ContactAdding, anIndexRefillsTheRowThatIsThere)
{
    DATACONTACTS *first = loader().GetList().GetAt(1);
    EXPECT_EQ(add(b, 1), first);
    EXPECT_EQ(describe(first), "B");
    EXPECT_EQ(count(), 2);
}

TEST_F(ContactAdding, withANodeAnIndexInsertsThere)
{
    DATACONTACTS *made = add(b, 1, 7);
    EXPECT_EQ(loader().GetList().GetAt(1), made);
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(made->m_nNode, 7);
    EXPECT_EQ(made->m_nSortGroup, 7);
    made = add(b, 0, 7);
    EXPECT_EQ(loader().GetList().GetAt(4), made) << "below 1 it appends";
}

TEST_F(ContactAdding, whoIsNotWantedLeavesItsSlot)
{
    removeContact(a);
    EXPECT_EQ(add(a, 1), nullptr);
    EXPECT_FALSE(added);
    EXPECT_EQ(describe(loader().GetList().GetAt(1)), "B");
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 1);
    EXPECT_EQ(add(a, 1, 7), nullptr) << "under a node no row goes";
    EXPECT_EQ(count(), 1);
}

TEST_F(ContactAdding, theChoiceOfCategoriesCountsWithANodeOrWhenItIsAskedFor)
{
    choose({workBit});
    add(b, -1);
    EXPECT_TRUE(added);
    add(b, -1, 0, true);
    EXPECT_FALSE(added);
    add(b, -1, 7);
    EXPECT_FALSE(added);
    add(a, -1, 7);
    EXPECT_TRUE(added);
}

TEST_F(ContactAdding, withoutOpenDatabaseNobodyIsWanted)
{
    loader().InitDBStuff(false);
    EXPECT_EQ(add(a, -1), nullptr);
    EXPECT_FALSE(added);
}

// --- Settings -----------------------------------------------------------------------------------------------------

TEST_F(ContactListTest, settingsHaveTheirDefaultsAndAreNotWrittenBack)
{
    const ContactListSettings &settings = loader().GetSettings();
    EXPECT_EQ(settings.CV_DisplayFormat, 3);
    EXPECT_EQ(settings.CV_DisplayFormatCompany, 1U);
    EXPECT_EQ(settings.OpenOnCompare, 1U);
    EXPECT_EQ(settings.bSearchCompanySubNodes, 0U);
    EXPECT_EQ(settings.CV_dwNumberType, (std::array<ULONG, 5>{4, 5, 6, 7, 8}));
    EXPECT_EQ(settings.ShowNamesOnly, 0U);
    EXPECT_EQ(settings.bHideCategories, 0U);
    EXPECT_EQ(settings.m_bIncludeNoCat, 0U);
    EXPECT_EQ(settings.CategoryANDOR, 0U);
    load();
    for (const WCHAR *name : {u"CV_DisplayFormat", u"CV_DisplayFormatCompany", u"OpenOnCompare",
                              u"bSearchCompanySubNodes", u"CV_dwNumber1Type", u"ShowNamesOnly", u"bHideCategories"})
    {
        EXPECT_EQ(setting(name), std::nullopt) << utf8(name);
    }
}

TEST_F(ContactListTest, settingsAreReadFromTheContactsKey)
{
    set(u"CV_DisplayFormat", static_cast<DWORD>(-5));
    set(u"CV_DisplayFormatCompany", 0);
    set(u"OpenOnCompare", 0);
    set(u"bSearchCompanySubNodes", 1);
    set(u"ShowNamesOnly", 1);
    set(u"CategoryANDOR", 1);
    for (int i = 1; i <= 5; ++i)
    {
        set((u"CV_dwNumber" + utf16(std::to_string(i)) + u"Type").c_str(), static_cast<DWORD>(9 - i));
    }
    loader().SettingChange();
    const ContactListSettings &settings = loader().GetSettings();
    EXPECT_EQ(settings.CV_DisplayFormat, -5);
    EXPECT_EQ(settings.CV_DisplayFormatCompany, 0U);
    EXPECT_EQ(settings.OpenOnCompare, 0U);
    EXPECT_EQ(settings.bSearchCompanySubNodes, 1U);
    EXPECT_EQ(settings.ShowNamesOnly, 1U);
    EXPECT_EQ(settings.CategoryANDOR, 1U);
    EXPECT_EQ(settings.CV_dwNumberType, (std::array<ULONG, 5>{8, 7, 6, 5, 4}));
    EXPECT_EQ(loader().GetCatCache().GetUser(), static_cast<DWORD_PTR>(-5)) << "the cache's order goes by it";
}

TEST_F(ContactListTest, kindsOfNumbersOutsideTheirRangeTakeTheirOwnDefault)
{
    for (const DWORD kind : {3U, 9U, 0U, 0xFFFFFFFFU})
    {
        for (int i = 1; i <= 5; ++i)
        {
            set((u"CV_dwNumber" + utf16(std::to_string(i)) + u"Type").c_str(), kind);
        }
        loader().SettingChange();
        EXPECT_EQ(loader().GetSettings().CV_dwNumberType, (std::array<ULONG, 5>{4, 5, 6, 7, 8})) << kind;
    }
    ContactListSettings own;
    own.CV_dwNumberType = {8, 9, 3, 4, 0};
    loader().m_ownSettings = own;
    loader().SettingChange();
    EXPECT_EQ(loader().GetSettings().CV_dwNumberType, (std::array<ULONG, 5>{8, 5, 6, 4, 8}));
}

TEST_F(ContactListTest, settingsOfAHostStandForTheStores)
{
    addContact(u"Anna", u"Berg");
    display(1);
    ContactListSettings own;
    own.CV_DisplayFormat = 0;
    loader().m_ownSettings = own;
    EXPECT_EQ(load(), "Anna Berg");
    loader().m_ownSettings.reset();
    EXPECT_EQ(load(), "Berg, Anna");
    EXPECT_EQ(setting(u"CV_DisplayFormat"), 1U);
}

// --- Orders of rows -----------------------------------------------------------------------------------------------

struct Row : DATACONTACTS
{
    explicit Row(const WCHAR *name, LONG group = 0, bool header = false, CEOID oid = 1)
    {
        m_pszName = _wcsdup(name);
        m_nSortGroup = group;
        m_bHeader = header;
        m_oid = oid;
    }
    Row &last()
    {
        m_bSortLast = true;
        return *this;
    }
};

int compare(DATACONTACTS *a, DATACONTACTS *b)
{
    return CContactsThread::CompareFunc(a, b, 0);
}

int compareSimple(DATACONTACTS *a, DATACONTACTS *b)
{
    return CContactsThread::CompareFuncSimple(a, b, 0);
}

TEST(ContactOrder, rowsGoByNodeHeaderAndName)
{
    Row a(u"a", 2);
    Row b(u"b", 1);
    Row header(u"z", 2, true);
    EXPECT_EQ(compare(&a, &b), 1);
    EXPECT_EQ(compare(&b, &a), -1);
    EXPECT_EQ(compare(&header, &a), -1);
    EXPECT_EQ(compare(&a, &header), 1);
    Row other(u"\u00c1", 2);
    EXPECT_EQ(compare(&a, &other), 0) << "case and accents do not count";
    Row hyphen(u"-a", 2);
    EXPECT_EQ(compare(&a, &hyphen), 0) << "nor do symbols";
    EXPECT_EQ(compare(&a, &a), 0);
}

TEST(ContactOrder, rowsThatSortLastComeBehindAndNullBehindEvenThose)
{
    Row a(u"a", 9);
    Row last(u"a", 1);
    Row second(u"b", 2);
    last.last();
    second.last();
    for (const auto order : {compare, compareSimple})
    {
        EXPECT_EQ(order(&a, &last), -1);
        EXPECT_EQ(order(&last, &a), 1);
        EXPECT_EQ(order(&last, &second), 0);
        EXPECT_EQ(order(nullptr, &last), 1);
        EXPECT_EQ(order(&last, nullptr), -1);
        EXPECT_EQ(order(nullptr, nullptr), 0);
    }
}

TEST(ContactOrder, theSimpleOneGoesByNameWithASpecialRowFirst)
{
    Row a(u"a", 9);
    Row b(u"b", 1, true);
    Row special(u"z", 0, false, 0xFFFFFFFF);
    EXPECT_EQ(compareSimple(&a, &b), -1);
    EXPECT_EQ(compareSimple(&b, &a), 1);
    EXPECT_EQ(compareSimple(&special, &a), -1);
    EXPECT_EQ(compareSimple(&a, &special), 1);
}

TEST_F(ContactListTest, theSimpleSortIsDescendingAndFileAsListsStayAsTheyAre)
{
    addContact(u"Anna", u"Berg");
    addContact(u"Carl", u"Dorn");
    load(1);
    loader().SortDataList(true);
    EXPECT_EQ(shown(), "Dorn, Carl; Berg, Anna");
    loader().SortDataList(false);
    EXPECT_EQ(shown(), "Berg, Anna; Dorn, Carl");
    load(3);
    loader().SortDataList(true);
    EXPECT_EQ(shown(), "Berg, Anna; Dorn, Carl");
}

TEST(ContactRowData, releasesAndCopiesItsTexts)
{
    Row row(u"name", 3, true, 8);
    row.m_pszDetail = _wcsdup(u"(1)");
    row.m_bOpen = true;
    row.m_nChildren = 5;
    DATACONTACTS copy(row);
    row.NullData();
    EXPECT_EQ(row.m_pszName, nullptr);
    EXPECT_EQ(row.m_pszDetail, nullptr);
    EXPECT_EQ(row.m_oid, 0U);
    EXPECT_EQ(row.m_nChildren, 0);
    EXPECT_FALSE(row.m_bHeader || row.m_bOpen);
    EXPECT_EQ(describe(&copy), "[name (1) +]");
    EXPECT_EQ(copy.m_nChildren, 5);
    EXPECT_EQ(copy.m_oid, 8U);
}
} // namespace
