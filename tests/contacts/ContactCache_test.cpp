// The cache: its order, live updates and what they leave stale, finding, and a model of it all.
#include "contacts/ContactListTest.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <map>
#include <random>

namespace
{
using namespace zb::test;

class ContactCache : public ContactListTest
{
  protected:
    CCatCache *item(CEOID oid)
    {
        return loader().GetCatCache().GetPtrAt(loader().FindCatCacheItem(oid, 0));
    }
    int size()
    {
        return loader().GetCatCache().GetCount();
    }
};

TEST_F(ContactCache, loadsAtTheFirstNeedAndStays)
{
    addContact(u"", u"A");
    EXPECT_FALSE(loader().IsCatCacheLoaded());
    load(1);
    EXPECT_TRUE(loader().IsCatCacheLoaded());
    addContact(u"", u"B");
    EXPECT_EQ(load(1), "A") << "a record that nobody told of";
    loader().ClearCatCache();
    EXPECT_FALSE(loader().IsCatCacheLoaded());
    EXPECT_EQ(load(1), "A; B");
}

TEST_F(ContactCache, isReadInTheOrderOfFileAsNames)
{
    for (const WCHAR *name : {u"Carl", u"anna", u"Émile", u"Bob"})
    {
        addContact(u"", name);
    }
    loader().LoadCatCache();
    EXPECT_EQ(cached(), "anna; Bob; Carl; Émile");
}

TEST_F(ContactCache, isSortedForTheDisplayAfterItWasCleared)
{
    addContact(u"Zoe", u"Alpha");
    addContact(u"Bob", u"Beta");
    EXPECT_EQ(load(0), "Bob Beta; Zoe Alpha");
    loader().ClearCatCache();
    EXPECT_EQ(load(0), "Bob Beta; Zoe Alpha");
}

TEST_F(ContactCache, holdsTheFivePropertiesAndNullForWhatARecordLacks)
{
    const CEOID full = addContact(u"Anna", u"Berg", u"Acme", {workBit});
    const CEOID bare = writeContact(0, zb::RecordProperties());
    load(1);
    EXPECT_EQ(utf8(item(full)->m_bstrFirstName), "Anna");
    EXPECT_EQ(utf8(item(full)->m_bstrLastName), "Berg");
    EXPECT_EQ(utf8(item(full)->m_bstrCompany), "Acme");
    EXPECT_EQ(utf8(item(full)->m_bstrFileAs), "Berg, Anna");
    ASSERT_EQ(item(full)->m_cbCategories, 4U);
    EXPECT_EQ(item(full)->m_pCategories[0], 1U << workBit);
    if (bare != 0)
    {
        EXPECT_EQ(item(bare)->m_bstrFirstName, nullptr);
        EXPECT_EQ(item(bare)->m_bstrFileAs, nullptr);
        EXPECT_EQ(item(bare)->m_cbCategories, 0U);
        EXPECT_EQ(item(bare)->m_pCategories, nullptr);
    }
}

TEST_F(ContactCache, anAddedContactWaitsAtTheEndForTheOrder)
{
    addContact(u"", u"B");
    addContact(u"", u"C");
    load(1);
    const CEOID added = addContact(u"", u"A");
    loader().AddCatCacheItem(added);
    EXPECT_EQ(cached(), "B; C; A");
    loader().FinishUpdatingCatCacheItem();
    EXPECT_EQ(cached(), "A; B; C");
    loader().AddCatCacheItem(added);
    EXPECT_EQ(size(), 3) << "told of twice, it is there once";
    EXPECT_EQ(load(1), "A; B; C");
}

TEST_F(ContactCache, updatesDoNothingWhileItIsEmpty)
{
    const CEOID oid = addContact(u"", u"A");
    loader().AddCatCacheItem(oid);
    loader().UpdateCatCacheItem(oid);
    loader().DeleteCatCacheItem(oid);
    EXPECT_EQ(size(), 0);
}

TEST_F(ContactCache, anUpdatedContactTakesItsNewTextsAndKeepsWhatItLost)
{
    const CEOID oid = addContact(u"Anna", u"Berg", u"Acme", {workBit});
    load(2);
    zb::ContactItem changed;
    changed.firstName = u"Hanna";
    changed.lastName = u"Berg";
    changeContact(oid, changed);
    loader().UpdateCatCacheItem(oid);
    EXPECT_EQ(utf8(item(oid)->m_bstrFirstName), "Hanna");
    EXPECT_EQ(utf8(item(oid)->m_bstrFileAs), "Berg, Hanna");
    EXPECT_EQ(utf8(item(oid)->m_bstrCompany), "Acme") << "kept";
    EXPECT_EQ(item(oid)->m_cbCategories, 0U) << "categories are not kept";
    EXPECT_EQ(item(oid)->m_pCategories, nullptr);
}

TEST_F(ContactCache, aClearedCompanyStaysInTheTreeUntilTheNextFullLoad)
{
    const CEOID oid = addContact(u"Anna", u"Berg", u"Acme");
    EXPECT_EQ(load(2), "[Acme (1) -]");
    zb::ContactItem changed;
    changed.firstName = u"Anna";
    changed.lastName = u"Berg";
    changeContact(oid, changed);
    loader().UpdateCatCacheItem(oid);
    loader().FinishUpdatingCatCacheItem();
    EXPECT_EQ(load(2), "[Acme (1) -]");
    loader().ClearCatCache();
    EXPECT_EQ(load(2), "[None (1) -]");
}

TEST_F(ContactCache, anUpdateOfAnUnknownContactAddsIt)
{
    addContact(u"", u"A");
    load(1);
    loader().UpdateCatCacheItem(addContact(u"", u"B"));
    EXPECT_EQ(cached(), "A; B");
    loader().UpdateCatCacheItem(4'000'000'000U);
    EXPECT_EQ(size(), 2) << "one that does not exist adds nothing";
}

TEST_F(ContactCache, anUpdateOfARecordThatIsGoneLeavesItsItem)
{
    const CEOID oid = addContact(u"", u"A");
    load(1);
    removeContact(oid);
    loader().UpdateCatCacheItem(oid);
    EXPECT_EQ(cached(), "A");
    loader().DeleteCatCacheItem(oid);
    EXPECT_EQ(size(), 0);
}

TEST_F(ContactCache, theFilteredListFollowsAdditionsAndDeletionsAndUpdatesThatNoLongerPass)
{
    const CEOID a = addContact(u"", u"A", u"", {workBit});
    const CEOID b = addContact(u"", u"B", u"", {homeBit});
    const CEOID c = addContact(u"", u"C", u"", {workBit});
    choose({workBit});
    EXPECT_EQ(load(1), "A; C");
    const CEOID d = addContact(u"", u"D", u"", {workBit});
    loader().AddCatCacheItem(d);
    EXPECT_EQ(load(1), "A; C; D");
    loader().AddCatCacheItem(addContact(u"", u"E", u"", {homeBit}));
    EXPECT_EQ(load(1), "A; C; D") << "a new one that does not pass";
    loader().DeleteCatCacheItem(c);
    EXPECT_EQ(load(1), "A; D");
    zb::ContactItem item;
    item.lastName = u"A";
    changeContact(a, item, {homeBit});
    loader().UpdateCatCacheItem(a);
    EXPECT_EQ(load(1), "D");
    item.lastName = u"B";
    changeContact(b, item, {workBit});
    loader().UpdateCatCacheItem(b);
    EXPECT_EQ(load(1), "D") << "who newly passes waits for the end of the updates";
    loader().FinishUpdatingCatCacheItem();
    EXPECT_EQ(load(1), "B; D");
}

// --- Orders -------------------------------------------------------------------------------------------------------

class CacheItem
{
  public:
    CacheItem(CEOID oid, const WCHAR *first, const WCHAR *last, const WCHAR *company, const WCHAR *fileAs)
        : m_item{oid,
                 0,
                 nullptr,
                 SysAllocString(first),
                 SysAllocString(last),
                 SysAllocString(company),
                 SysAllocString(fileAs)}
    {
    }
    ~CacheItem()
    {
        FreeCatCacheItem(m_item);
    }
    CacheItem(const CacheItem &) = delete;
    CacheItem &operator=(const CacheItem &) = delete;
    const CCatCache *get() const
    {
        return &m_item;
    }

  private:
    CCatCache m_item;
};

TEST_F(ContactCache, comparesByTheKeysOfTheDisplay)
{
    const CacheItem a(1, u"Anna", u"Zorn", u"Middle", u"K");
    const CacheItem b(2, u"Bob", u"Adams", u"Middle", u"L");
    const auto order = [&](LONG display)
    { return CompareCatCacheItem(a.get(), b.get(), static_cast<DWORD_PTR>(display)); };
    EXPECT_EQ(order(0), -1);
    EXPECT_EQ(order(1), 1);
    EXPECT_EQ(order(2), -1) << "by file-as name where the company is the same";
    EXPECT_EQ(order(3), -1);
    EXPECT_EQ(order(1058), -1);
    EXPECT_EQ(order(-1), -1);
    EXPECT_EQ(CompareCatCacheItem(b.get(), a.get(), 1), -1);
    EXPECT_EQ(CompareCatCacheItem(a.get(), a.get(), 0), 0);
    const CacheItem sister(3, u"Anna", u"Berg", u"Middle", u"Z");
    EXPECT_EQ(CompareCatCacheItem(a.get(), sister.get(), 0), 1) << "Zorn behind Berg, whatever they are filed under";
    const CacheItem cousin(4, u"Carl", u"Adams", u"Middle", u"A");
    EXPECT_EQ(CompareCatCacheItem(b.get(), cousin.get(), 1), -1) << "Bob before Carl";
    const CacheItem sameId(1, u"X", u"X", u"X", u"X");
    EXPECT_EQ(CompareCatCacheItem(a.get(), sameId.get(), 0), 0) << "one contact";
    EXPECT_EQ(CompareCatCacheItem(a.get(), &CContactsThread::ccNullItem, 0), 1);
    EXPECT_EQ(CompareCatCacheItem(&CContactsThread::ccNullItem, a.get(), 0), -1);
}

TEST_F(ContactCache, ordersMindCaseAndAccents)
{
    const CacheItem lower(1, u"anna", nullptr, nullptr, nullptr);
    const CacheItem upper(2, u"Anna", nullptr, nullptr, nullptr);
    const CacheItem accent(3, u"\u00c1nna", nullptr, nullptr, nullptr);
    EXPECT_EQ(CompareCatCacheItem(lower.get(), upper.get(), 0), -1);
    EXPECT_EQ(CompareCatCacheItem(upper.get(), accent.get(), 0), -1);
}

TEST_F(ContactCache, itemsAreCopiedAndFreedWithAllTheyOwn)
{
    const CEOID oid = addContact(u"Anna", u"Berg", u"Acme", {workBit});
    load(1);
    CCatCache copy{};
    CopyCatCacheItem(copy, *item(oid));
    EXPECT_NE(copy.m_bstrCompany, item(oid)->m_bstrCompany);
    EXPECT_NE(copy.m_pCategories, item(oid)->m_pCategories);
    loader().ClearCatCache();
    EXPECT_EQ(utf8(copy.m_bstrCompany), "Acme");
    EXPECT_EQ(copy.m_oid, oid);
    FreeCatCacheItem(copy);
    EXPECT_EQ(copy.m_bstrCompany, nullptr);
    EXPECT_EQ(copy.m_cbCategories, 0U);
    EXPECT_EQ(copy.m_oid, oid);
    EXPECT_EQ(CContactsThread::ccNullItem.m_oid, 0U);
    EXPECT_EQ(CContactsThread::ccNullItem.m_bstrFileAs, nullptr);
}

// --- Finding ------------------------------------------------------------------------------------------------------

class ContactFinding : public ContactCache
{
  protected:
    ContactFinding()
    {
        zb::ContactItem item;
        item.firstName = u"Anna";
        item.lastName = u"Berg";
        item.company = u"Cobalt";
        item.fileAs = u"Doctor";
        first = addContact(item);
        addContact(u"Emil", u"Fox", u"Gold");
        addContact(u"Hans", u"Ivy", u"Jade");
    }
    int find(const WCHAR *text, ContactsDisplay display, int from = 0, int stop = -1)
    {
        return loader().FindCatCacheItem(text, static_cast<int>(wcslen(text)), display, from, stop);
    }
    CEOID first = 0;
};

TEST_F(ContactFinding, anIdFromAnIndexOn)
{
    load(1);
    EXPECT_EQ(loader().FindCatCacheItem(first, 0), 0);
    EXPECT_EQ(loader().FindCatCacheItem(first, 1), -1);
    EXPECT_EQ(loader().FindCatCacheItem(99'999'999U, 0), -1);
}

TEST_F(ContactFinding, goesOnToTheOtherKeysBeforeGivingUp)
{
    load(1); // Berg, Fox, Ivy
    EXPECT_EQ(find(u"fo", contactsLastName), 1);
    EXPECT_EQ(find(u"co", contactsLastName), 0) << "company";
    EXPECT_EQ(find(u"do", contactsLastName), 0) << "file-as name";
    EXPECT_EQ(find(u"ha", contactsLastName), 2) << "first name, around the end of the circle";
    EXPECT_EQ(find(u"zz", contactsLastName), 3) << "one past the last";
    EXPECT_EQ(find(u"an", contactsLastName, 1), 3) << "only from the index on";
}

TEST_F(ContactFinding, leavesCaseAccentsSymbolsKanaAndWidthOutOfAccount)
{
    addContact(u"", u"Ölgård");
    addContact(u"", u"O'Pry");
    addContact(u"", u"オノ");
    addContact(u"", u"Ｑｕｉｎｎ");
    load(1); // Berg, Fox, Ivy, O'Pry, Ölgård, Quinn, オノ
    EXPECT_EQ(find(u"o-p", contactsLastName), 3);
    EXPECT_EQ(find(u"OLGA", contactsLastName), 4);
    EXPECT_EQ(find(u"qui", contactsLastName), 5);
    EXPECT_EQ(find(u"おの", contactsLastName), 6);
}

TEST_F(ContactFinding, theCircleEndsAtTheDisplayOfTheSettings)
{
    load(1);
    EXPECT_EQ(find(u"ha", contactsCompanies), 2) << "2, 3, 0";
    load(3);
    EXPECT_EQ(find(u"ha", contactsCompanies), 3) << "2, 3, and there it ends";
    EXPECT_EQ(find(u"ha", contactsFileAs, 0, contactsFileAs), 3) << "where it is told to end at once";
}

TEST_F(ContactFinding, endsAlsoWhereTheDisplayIsOutsideOfTheCircle)
{
    load(1058);
    EXPECT_EQ(find(u"zz", contactsLastName), 3);
    EXPECT_EQ(find(u"ha", contactsLastName), loader().FindCatCacheItem(loader().GetCatCache().GetAt(2).m_oid, 0));
}

TEST_F(ContactFinding, aLengthBelowZeroAsksForTheWholeName)
{
    load(1);
    EXPECT_EQ(loader().FindCatCacheItem(u"gold", -1, contactsCompanies, 0, contactsCompanies), 1);
    EXPECT_EQ(loader().FindCatCacheItem(u"gol", -1, contactsCompanies, 0, contactsCompanies), 3);
}

TEST_F(ContactFinding, theItemFoundIsTheCurrentOne)
{
    load(1);
    find(u"iv", contactsLastName);
    EXPECT_EQ(loader().GetCatCache().GetIndex(), 2);
}

// --- Model --------------------------------------------------------------------------------------------------------

/// A contact as the cache may show it: texts that it lost stay, categories don't.
struct Remembered
{
    std::u16string first, last, company, fileAs;
    int category = 0;
    auto key() const
    {
        return std::tie(first, last, company, fileAs, category);
    }
};

class ContactModel : public ContactCache, public ::testing::WithParamInterface<unsigned>
{
  protected:
    unsigned below(unsigned limit)
    {
        return static_cast<unsigned>(random() % limit);
    }
    std::u16string word()
    {
        static const std::vector<std::u16string> words{u"Anna", u"Åse", u"berg", u"Berg", u"Zola", u"山田", u"O'Neil"};
        return below(4) == 0 ? std::u16string() : words[below(static_cast<unsigned>(words.size()))];
    }
    zb::ContactItem person()
    {
        zb::ContactItem made;
        made.firstName = word();
        made.lastName = word();
        made.company = word();
        return made;
    }
    static void write(Remembered &seen, const zb::ContactItem &made, int category)
    {
        const auto take = [](std::u16string &to, const std::u16string &from) { to = from.empty() ? to : from; };
        take(seen.first, made.firstName);
        take(seen.last, made.lastName);
        take(seen.company, made.company);
        take(seen.fileAs, zb::fileAsOf(made));
        seen.category = category;
    }
    void step()
    {
        const unsigned kind = model.empty() ? 0 : below(5);
        if (kind <= 1)
        {
            const zb::ContactItem made = person();
            const int category = static_cast<int>(below(4));
            const CEOID oid = category != 0 ? addContact(made, {category}) : addContact(made);
            ASSERT_NE(oid, 0U);
            write(model[oid], made, category);
            loader().AddCatCacheItem(oid);
            return;
        }
        auto at = model.begin();
        std::advance(at, below(static_cast<unsigned>(model.size())));
        if (kind == 2 && model.size() > 1)
        {
            removeContact(at->first);
            loader().DeleteCatCacheItem(at->first);
            model.erase(at);
            return;
        }
        const zb::ContactItem made = person();
        const int category = static_cast<int>(below(4));
        ASSERT_TRUE(category != 0 ? changeContact(at->first, made, {category}) : changeContact(at->first, made));
        write(at->second, made, category);
        loader().UpdateCatCacheItem(at->first);
    }
    static std::u16string text(BSTR of)
    {
        return of != nullptr ? of : u"";
    }
    Remembered seen(const CCatCache &cacheItem) const
    {
        Remembered found{text(cacheItem.m_bstrFirstName), text(cacheItem.m_bstrLastName), text(cacheItem.m_bstrCompany),
                         text(cacheItem.m_bstrFileAs)};
        while (cacheItem.m_cbCategories != 0 && (cacheItem.m_pCategories[0] >> found.category) != 1)
        {
            ++found.category;
        }
        return found;
    }
    /// All that is remembered is there once, and each item is not behind the next.
    void check(LONG order)
    {
        CeList<CCatCache> &cache = loader().GetCatCache();
        ASSERT_EQ(static_cast<std::size_t>(cache.GetCount()), model.size());
        std::map<CEOID, int> times;
        for (int i = 0; i < cache.GetCount(); ++i)
        {
            const CCatCache &each = *cache.GetPtrAt(i);
            ASSERT_EQ(model.count(each.m_oid), 1U);
            EXPECT_EQ(seen(each).key(), model.at(each.m_oid).key()) << each.m_oid;
            EXPECT_EQ(++times[each.m_oid], 1);
            if (i > 0)
            {
                EXPECT_LE(CompareCatCacheItem(cache.GetPtrAt(i - 1), cache.GetPtrAt(i), static_cast<DWORD_PTR>(order)),
                          0);
            }
        }
    }
    std::mt19937 random{GetParam()};
    std::map<CEOID, Remembered> model;
};

TEST_P(ContactModel, updatesLeaveWhatAFullLoadShowsButForLostTexts)
{
    // First and last names are compared at all strengths at once here, so orders without a first key alone could
    // contradict themselves; company and file-as name never do.
    const LONG order = GetParam() % 2 == 0 ? 3 : 2;
    const zb::ContactItem first = person();
    write(model[addContact(first)], first, 0);
    load(order);
    for (int round = 0; round < 12; ++round)
    {
        for (unsigned n = below(12); n > 0; --n)
        {
            step();
        }
        loader().FinishUpdatingCatCacheItem();
        check(order);
    }
    // The next full load has what the records have, and nothing that they lost.
    std::map<CEOID, Remembered> stale;
    std::swap(stale, model);
    loader().ClearCatCache();
    CContactsThread fresh;
    fresh.LoadCatCache();
    for (int i = 0; i < fresh.GetCatCache().GetCount(); ++i)
    {
        const CCatCache &each = *fresh.GetCatCache().GetPtrAt(i);
        model[each.m_oid] = seen(each);
        const Remembered &old = stale.at(each.m_oid);
        const Remembered now = seen(each);
        EXPECT_TRUE(now.first.empty() || now.first == old.first);
        EXPECT_TRUE(now.company.empty() || now.company == old.company);
        EXPECT_EQ(now.category, old.category);
    }
    EXPECT_EQ(model.size(), stale.size());
    load(order);
    check(order);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ContactModel, ::testing::Range(1U, 9U));
} // namespace
