// Categories as text: names to lists, to records' blobs, to and from the settings, to icons.
#include "records/CategoryNames.h"

#include "core/CRegistry.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "records/FullCategories.h"
#include "support/CategoryRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zb::test
{
namespace
{
using Names = std::vector<std::string>;
using Bytes = std::vector<BYTE>;

constexpr const WCHAR *key = u"Software\\Kelvo\\Zembrik";

struct List
{
    Names names()
    {
        Names all;
        for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
        {
            all.push_back(utf8(list.GetAt(i)->m_pszName));
        }
        return all;
    }
    void add(const std::u16string &name)
    {
        auto *category = new CFullCategory;
        category->m_pszName = _wcsdup(name.c_str());
        list.AddTail(category);
    }
    CePtrList<CFullCategory *> list{1, CEOWN_DELETE};
};

Names namesIn(const WCHAR *text)
{
    List list;
    ReadCategory(list.list, text);
    return list.names();
}

class CategoryNames : public DeviceTest
{
  protected:
    CategoryNames()
    {
        BulkWrite bulk;
        addCategoryRecord(u"Home", 0);
        addCategoryRecord(u"Work", 5);
        addCategoryRecord(u"Zoo", 33);
        bulk.commit();
    }

    static CEOID addItem(const WCHAR *database, const std::vector<CEPROPVAL> &values)
    {
        CEOID oid = 0;
        const HANDLE handle = CeOpenDatabase(&oid, database, 0, 0, nullptr);
        const CEOID record = CeWriteRecordProps(handle, 0, static_cast<WORD>(values.size()), values.data());
        CloseHandle(handle);
        m_database = oid;
        return record;
    }
    /// The record's blob; a single 0xEE when it has none.
    static Bytes blobOf(CEOID record)
    {
        const OpenedDatabase database(m_database);
        database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(record));
        const ReadRecord read(database, {0x00160041});
        return read.find(0x00160041) != nullptr ? read.bytes(0x00160041) : Bytes{0xEE};
    }

    static inline CEOID m_database = 0;
};

// --- ReadCategory ------------------------------------------------------------------------------------------------

TEST_F(CategoryNames, TextsAreTakenApart)
{
    EXPECT_EQ(namesIn(u"Work"), Names{"Work"});
    EXPECT_EQ(namesIn(u"Zoo, Home"), (Names{"Home", "Zoo"}));
    EXPECT_EQ(namesIn(u"Home, Work, Zoo"), (Names{"Home", "Work", "Zoo"}));
}

TEST_F(CategoryNames, OneCharacterBehindACommaIsDroppedUnseen)
{
    EXPECT_EQ(namesIn(u"Home,Work"), Names{"Home"});
    addCategoryRecord(u"ork", 7);
    ResetFullCategoryList();
    EXPECT_EQ(namesIn(u"Home,Work"), (Names{"Home", "ork"}));
    EXPECT_EQ(namesIn(u"Home,xWork"), (Names{"Home", "Work"}));
    EXPECT_EQ(namesIn(u"Home,  Work"), Names{"Home"});
    EXPECT_EQ(namesIn(u" Home, Work"), Names{"Work"});
}

TEST_F(CategoryNames, EmptyFieldsFindNothing)
{
    EXPECT_EQ(namesIn(u"Home, "), Names{"Home"});
    EXPECT_EQ(namesIn(u"Home,"), Names{"Home"});
    EXPECT_EQ(namesIn(u",,Work"), Names{});
    EXPECT_EQ(namesIn(u",, Work"), Names{"Work"});
    EXPECT_EQ(namesIn(u","), Names{});
}

TEST_F(CategoryNames, UnknownNamesAreLostAndOthersAreComparedToTheLetter)
{
    EXPECT_EQ(namesIn(u"Nobody"), Names{});
    EXPECT_EQ(namesIn(u"home, WORK, Zoo"), Names{"Zoo"});
    EXPECT_EQ(namesIn(u"Homes, Wor"), Names{});
}

TEST_F(CategoryNames, StandInTheOrderOfTheFullListAndOnce)
{
    EXPECT_EQ(namesIn(u"Zoo, Work, Zoo, Home"), (Names{"Home", "Work", "Zoo"}));
}

TEST_F(CategoryNames, AnEmptyTextLeavesTheList)
{
    List list;
    list.add(u"Old");
    ReadCategory(list.list, u"");
    ReadCategory(list.list, nullptr);
    EXPECT_EQ(list.names(), Names{"Old"});
    ReadCategory(list.list, u"Nobody");
    EXPECT_EQ(list.names(), Names{});
}

TEST_F(CategoryNames, ATextOfManyNamesIsReadWhole)
{
    std::u16string text;
    Names expected;
    {
        BulkWrite bulk;
        for (int id = 1000; id < 1700; ++id)
        {
            const std::string name = "Category " + std::to_string(id);
            addCategoryRecord(utf16(name), static_cast<SHORT>(id));
            text += (text.empty() ? u"" : u", ") + utf16(name);
            expected.push_back(name);
        }
        ASSERT_TRUE(bulk.commit());
    }
    ASSERT_GT(text.size(), 8192U);
    EXPECT_EQ(namesIn(text.c_str()), expected);
}

// --- SaveCategoriesToPIMRecord -----------------------------------------------------------------------------------

TEST_F(CategoryNames, AreSavedAsTheBlobOfARecord)
{
    for (const WCHAR *database : {appointmentsDatabase, tasksDatabase, contactsDatabase})
    {
        const Bytes old{0xFF, 0xFF, 0xFF, 0xFF};
        const CEOID item = addItem(database, {blobValue(0x00160041, old), shortValue(0x00040002, 2)});
        EXPECT_TRUE(SaveCategoriesToPIMRecord(u"Zoo, Home, Work", nullptr, item, false));
        EXPECT_EQ(blobOf(item), (Bytes{0x21, 0, 0, 0, 2, 0, 0, 0}));
        const OpenedDatabase opened(m_database);
        opened.first();
        EXPECT_EQ(ReadRecord(opened, {0x00040002})[0].val.iVal, 2);
    }
}

TEST_F(CategoryNames, ARecordWithoutCategoriesGetsThem)
{
    const CEOID item = addItem(appointmentsDatabase, {shortValue(0x00040002, 0)});
    EXPECT_EQ(blobOf(item), Bytes{0xEE});
    EXPECT_TRUE(SaveCategoriesToPIMRecord(u"Work", nullptr, item, true));
    EXPECT_EQ(blobOf(item), (Bytes{0x20, 0, 0, 0}));
}

TEST_F(CategoryNames, AnEmptyTextLeavesTheRecord)
{
    const Bytes old{8, 0, 0, 0};
    const CEOID item = addItem(appointmentsDatabase, {blobValue(0x00160041, old)});
    EXPECT_FALSE(SaveCategoriesToPIMRecord(u"", nullptr, item, false));
    EXPECT_FALSE(SaveCategoriesToPIMRecord(nullptr, nullptr, item, false));
    EXPECT_EQ(blobOf(item), old);
}

TEST_F(CategoryNames, UnknownNamesClearTheRecord)
{
    const Bytes old{8, 0, 0, 0};
    const CEOID item = addItem(appointmentsDatabase, {blobValue(0x00160041, old)});
    EXPECT_TRUE(SaveCategoriesToPIMRecord(u"Nobody", nullptr, item, false));
    EXPECT_EQ(blobOf(item), Bytes{});
}

TEST_F(CategoryNames, CategoriesThatCannotBeReadChangeNoRecord)
{
    const Bytes old{8, 0, 0, 0};
    const CEOID item = addItem(appointmentsDatabase, {blobValue(0x00160041, old)});
    CEOID categories = 0;
    CloseHandle(CeOpenDatabase(&categories, categoriesDatabase, 0, 0, nullptr));
    ASSERT_TRUE(CeDeleteDatabase(categories));
    EXPECT_FALSE(SaveCategoriesToPIMRecord(u"Work", nullptr, item, false));
    EXPECT_EQ(blobOf(item), old);
}

TEST_F(CategoryNames, OnlyRecordsAreWritten)
{
    const CEOID item = addItem(appointmentsDatabase, {shortValue(0x00040002, 0)});
    EXPECT_FALSE(SaveCategoriesToPIMRecord(u"Work", nullptr, m_database, false));
    EXPECT_FALSE(SaveCategoriesToPIMRecord(u"Work", nullptr, 0, false));
    EXPECT_FALSE(SaveCategoriesToPIMRecord(u"Work", nullptr, item + 1, false));
    IDispatch *none = nullptr;
    EXPECT_TRUE(SaveCategoriesToPIMRecord(u"Work", &none, item, false));
    EXPECT_EQ(none, nullptr);
}

// --- The saved choice --------------------------------------------------------------------------------------------

std::u16string saved(const WCHAR *store = nullptr)
{
    std::vector<WCHAR> text(9000, u'#');
    CRegistry settings(store);
    settings.OpenKey(HKEY_CURRENT_USER, key);
    return settings.QueryValue(u"Choice", text.data(), 9000) == 0 ? std::u16string(text.data()) : u"(none)";
}

TEST_F(CategoryNames, AChoiceIsSavedWithEllipsesInTheSettings)
{
    List list;
    list.add(u"Work");
    list.add(u"Zoo");
    SaveCategoryFromRegistry(key, u"Choice", list.list);
    EXPECT_EQ(saved(), u"Work\u2026Zoo");
    List read;
    read.add(u"Old");
    ReadCategoryFromRegistry(key, u"Choice", read.list, false);
    EXPECT_EQ(read.names(), (Names{"Work", "Zoo"}));
    ReadCategoryFromRegistry(key, u"Choice", read.list, true);
    EXPECT_EQ(read.names(), Names{});
}

TEST_F(CategoryNames, ChoicesOfCustomViewsHaveAStoreOfTheirOwn)
{
    CRegistry store(u"%s\\Kelvo\\ZBCustomViews.reg");
    ASSERT_EQ(store.OpenKey(HKEY_CURRENT_USER, key), 0);
    store.SetValue(u"Choice", u"Zoo\u2026Nobody\u2026Home");
    List read;
    ReadCategoryFromRegistry(key, u"Choice", read.list, true);
    EXPECT_EQ(read.names(), (Names{"Home", "Zoo"}));
    ReadCategoryFromRegistry(key, u"Choice", read.list, false);
    EXPECT_EQ(read.names(), Names{});
}

TEST_F(CategoryNames, WithoutSavedChoiceTheListIsEmpty)
{
    List list;
    list.add(u"Old");
    ReadCategoryFromRegistry(key, u"Missing", list.list, false);
    EXPECT_EQ(list.names(), Names{});
    SaveCategoryFromRegistry(key, u"Choice", list.list);
    EXPECT_EQ(saved(), u"");
    list.add(u"Old");
    ReadCategoryFromRegistry(key, u"Choice", list.list, false);
    EXPECT_EQ(list.names(), Names{});
}

TEST_F(CategoryNames, AChoiceIsSplitAtEllipsesAlone)
{
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, key);
    settings.SetValue(u"Choice", u"Home, Work\u2026Zoo");
    List list;
    ReadCategoryFromRegistry(key, u"Choice", list.list, false);
    EXPECT_EQ(list.names(), Names{"Zoo"});
}

TEST_F(CategoryNames, ALongChoiceIsCutAtAWholeName)
{
    List list;
    list.add(std::u16string(1000, u'a'));
    list.add(std::u16string(997, u'b')); // 1,000 + 997 + 2 is 1,999
    list.add(u"c");                      // 1,998 + 1 + 2 is 2,001
    list.add(u"");                       // 1,998 + 0 + 2 would fit, but all that follow are lost
    SaveCategoryFromRegistry(key, u"Choice", list.list);
    EXPECT_EQ(saved(), std::u16string(1000, u'a') + u"\u2026" + std::u16string(997, u'b'));

    List one;
    one.add(std::u16string(1998, u'a'));
    SaveCategoryFromRegistry(key, u"Choice", one.list);
    EXPECT_EQ(saved().size(), 1998U);
    List tooLong;
    tooLong.add(std::u16string(1999, u'a'));
    SaveCategoryFromRegistry(key, u"Choice", tooLong.list);
    EXPECT_EQ(saved(), u"");
}

TEST_F(CategoryNames, AtMost7900CharactersOfAChoiceAreRead)
{
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, key);
    const std::u16string filling(7895, u'x');
    settings.SetValue(u"Choice", (filling + u"\u2026Home").c_str()); // 7,900 in all
    List list;
    ReadCategoryFromRegistry(key, u"Choice", list.list, false);
    EXPECT_EQ(list.names(), Names{"Home"});
    settings.SetValue(u"Choice", (filling + u"x\u2026Home").c_str());
    ReadCategoryFromRegistry(key, u"Choice", list.list, false);
    EXPECT_EQ(list.names(), Names{});
}

// --- Icons -------------------------------------------------------------------------------------------------------

struct Icons
{
    int result;
    std::string markup;
};

Icons icons(const WCHAR *names, int limit = 2048, bool noCategoryIcon = false)
{
    std::vector<WCHAR> out(5000, u'#');
    WCHAR copy[500];
    WCHAR tag[500];
    const int result = CreateIconString(names, out.data(), limit, noCategoryIcon, copy, tag);
    return {result, utf8(out.data())};
}

TEST_F(CategoryNames, EachHasAnIcon)
{
    EXPECT_EQ(icons(u"Home").markup, "<IMG SRC=\"Home.bmp\">");
    EXPECT_EQ(icons(u"Home").result, 20);
    EXPECT_EQ(icons(u"Home, Work").markup, "<IMG SRC=\"Home.bmp\"><IMG SRC=\"Work.bmp\">");
    EXPECT_EQ(icons(u"Home, Work").result, 40);
}

TEST_F(CategoryNames, OneBlankInFrontOfAnIconIsSkippedIfThereIsOne)
{
    EXPECT_EQ(icons(u"Home,Work,  Zoo").markup, "<IMG SRC=\"Home.bmp\"><IMG SRC=\"Work.bmp\"><IMG SRC=\" Zoo.bmp\">");
    EXPECT_EQ(icons(u" Home").markup, "<IMG SRC=\"Home.bmp\">");
    EXPECT_EQ(icons(u"Home, ").markup, "<IMG SRC=\"Home.bmp\"><IMG SRC=\".bmp\">");
}

TEST_F(CategoryNames, WithoutAnyTheIconOfNoCategoryIsAChoice)
{
    EXPECT_EQ(icons(u"", 2048, true).markup, "<IMG SRC=\"~NoCategory.bmp\">");
    EXPECT_EQ(icons(u"", 2048, true).result, 1);
    EXPECT_EQ(icons(u"", 2048, false).markup, "");
    EXPECT_EQ(icons(u"", 2048, false).result, 0);
    EXPECT_EQ(icons(u"Home", 2048, true).markup, "<IMG SRC=\"Home.bmp\">");
}

TEST_F(CategoryNames, TheIconThatPassesTheLimitIsLeftOutAndCounted)
{
    EXPECT_EQ(icons(u"Home, Work, Zoo", 40).markup, "<IMG SRC=\"Home.bmp\"><IMG SRC=\"Work.bmp\">");
    EXPECT_EQ(icons(u"Home, Work, Zoo", 40).result, 59);
    EXPECT_EQ(icons(u"Home, Work, Zoo", 39).markup, "<IMG SRC=\"Home.bmp\">");
    EXPECT_EQ(icons(u"Home, Work, Zoo", 39).result, 40);
    EXPECT_EQ(icons(u"Home", 0).markup, "");
    EXPECT_EQ(icons(u"Home", -1).markup, "");
}

TEST_F(CategoryNames, IconsNeedTheirBuffers)
{
    WCHAR buffer[100] = u"x";
    EXPECT_EQ(CreateIconString(nullptr, buffer, 99, true, buffer, buffer), 0);
    EXPECT_EQ(CreateIconString(u"Home", nullptr, 99, true, buffer, buffer), 0);
    EXPECT_EQ(CreateIconString(u"Home", buffer, 99, true, nullptr, buffer), 0);
    EXPECT_EQ(utf8(buffer), "x");
}
} // namespace
} // namespace zb::test
