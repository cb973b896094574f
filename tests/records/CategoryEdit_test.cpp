// Adding, renaming and deleting categories, their colours and icons, and which are offered.
#include "records/CategoryEdit.h"

#include "core/CRegistry.h"
#include "platform/files.h"
#include "platform/pim.h"
#include "records/CCategoryColor.h"
#include "records/CategoryRecord.h"
#include "records/FullCategories.h"
#include "support/CategoryRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
namespace
{
using Names = std::vector<std::string>;

CEOID recordOf(const OpenedDatabase &database, const std::u16string &name)
{
    for (CEOID oid = database.first(); oid != 0; oid = database.next())
    {
        if (ReadRecord(database, {0x4001001f}).text(0x4001001f) == name)
        {
            return oid;
        }
    }
    return 0;
}

/// The value of a property in the record of a name; none when it lacks it.
std::optional<LONG> propertyOf(const std::u16string &name, CEPROPID id)
{
    const OpenedDatabase database = openCategories();
    if (recordOf(database, name) == 0)
    {
        return std::nullopt;
    }
    const ReadRecord read(database);
    const CEPROPVAL *found = read.find(id);
    if (found == nullptr)
    {
        return std::nullopt;
    }
    return (id & 0xFFFFU) == 2 ? found->val.iVal : found->val.lVal;
}

Names allNames()
{
    CePtrList<CFullCategory *> list(1, CEOWN_DELETE);
    GetFullCategoryInfo(list, true);
    Names names;
    for (int i = 1; i <= list.GetCount(); ++i)
    {
        names.push_back(utf8(list.GetAt(i)->m_pszName));
    }
    return names;
}

UsedCategory neverAsked()
{
    ADD_FAILURE() << "asked about a category that is not in use";
    return UsedCategory::Keep;
}

void setSetting(const WCHAR *name, const auto &value)
{
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik");
    settings.SetValue(name, value);
}

class CategoryEdit : public DeviceTest
{
  protected:
    void file(const std::string &name, const std::string &content) const
    {
        std::filesystem::create_directories(device.files() / "Icons");
        std::ofstream(device.files() / "Icons" / name, std::ios::binary) << content;
    }
    std::string contentOf(const std::string &name) const
    {
        std::ifstream in(device.files() / "Icons" / name, std::ios::binary);
        return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "(none)";
    }
};

// --- Adding ------------------------------------------------------------------------------------------------------

TEST_F(CategoryEdit, ANewCategoryHasItsSixProperties)
{
    SHORT id = -1;
    EXPECT_EQ(addCategory(u"Work", &id), CategoryChange::Done);
    EXPECT_EQ(id, 0);
    const OpenedDatabase database = openCategories();
    database.first();
    const ReadRecord read(database);
    EXPECT_EQ(read.count(), 6);
    EXPECT_EQ(read.text(0x4001001f), u"Work");
    for (const auto &[property, value] :
         {std::pair(0x40020002U, 0), {0x40030002U, 1}, {0x40060002U, 0}, {0x40050002U, 0}, {0x40040002U, 0}})
    {
        ASSERT_NE(read.find(property), nullptr) << property;
        EXPECT_EQ(read.find(property)->val.iVal, value) << property;
    }
}

TEST_F(CategoryEdit, NewCategoriesTakeTheLowestFreeId)
{
    for (const SHORT id : {SHORT{0}, SHORT{1}, SHORT{3}, SHORT{-2}, SHORT{1}})
    {
        addCategoryRecord(u"Old" + utf16(std::to_string(id)), id);
    }
    addCategoryRecord({.name = u"Without"});
    SHORT id = -1;
    EXPECT_EQ(addCategory(u"A", &id), CategoryChange::Done);
    EXPECT_EQ(id, 2);
    EXPECT_EQ(addCategory(u"B", &id), CategoryChange::Done);
    EXPECT_EQ(id, 4);
}

TEST_F(CategoryEdit, IdsOfRetiredCategoriesStayTaken)
{
    addCategoryRecord({.name = u"Gone", .id = 0, .active = 0});
    SHORT id = -1;
    EXPECT_EQ(addCategory(u"A", &id), CategoryChange::Done);
    EXPECT_EQ(id, 1);
}

TEST_F(CategoryEdit, NamesWithSeparatorsAreRefused)
{
    for (const WCHAR *name : {u"a,b", u"a;b", u",", u";", u"", u"a\nb", u"\t"})
    {
        EXPECT_EQ(addCategory(name), CategoryChange::BadName);
    }
    EXPECT_EQ(addCategory(nullptr), CategoryChange::BadName);
    EXPECT_EQ(allNames(), Names{});
}

TEST_F(CategoryEdit, NamesThatWouldNotBeReadBackAreRefused)
{
    EXPECT_EQ(addCategory(std::u16string(CATEGORY_NAME_LENGTH + 1, u'a').c_str()), CategoryChange::BadName);
    EXPECT_EQ(addCategory(std::u16string(CATEGORY_NAME_LENGTH, u'a').c_str()), CategoryChange::Done);
    EXPECT_EQ(allNames().size(), 1U);
}

TEST_F(CategoryEdit, ANameIsTakenOnce)
{
    EXPECT_EQ(addCategory(u"Work"), CategoryChange::Done);
    SHORT id = 77;
    EXPECT_EQ(addCategory(u"Work", &id), CategoryChange::Exists);
    EXPECT_EQ(id, 77);
    EXPECT_EQ(addCategory(u"work"), CategoryChange::Done);
    EXPECT_EQ(allNames().size(), 2U);
}

TEST_F(CategoryEdit, WhatIsRefusedCostsABulkOfTheCallersNothing)
{
    EXPECT_EQ(addCategory(u"Home"), CategoryChange::Done);
    {
        BulkWrite bulk;
        EXPECT_EQ(addCategory(u"Work"), CategoryChange::Done);
        EXPECT_EQ(addCategory(u"Home"), CategoryChange::Exists);
        EXPECT_EQ(renameCategory(u"None", u"Other"), CategoryChange::NotFound);
        EXPECT_EQ(renameCategory(u"Home", u"Work"), CategoryChange::Exists);
        EXPECT_TRUE(bulk.commit());
    }
    EXPECT_EQ(allNames().size(), 2U);
}

TEST_F(CategoryEdit, TheNameOfARetiredCategoryIsFree)
{
    addCategoryRecord({.name = u"Work", .id = 0, .active = 0});
    EXPECT_EQ(addCategory(u"Work"), CategoryChange::Done);
    EXPECT_EQ(allNames(), (Names{"Work", "Work"}));
}

TEST_F(CategoryEdit, ThereAreIdsFor8192)
{
    {
        BulkWrite bulk;
        const OpenedDatabase database = openCategories();
        for (int id = 0; id < 8191; ++id)
        {
            database.add(categoryValues({.name = utf16("c" + std::to_string(id)), .id = static_cast<SHORT>(id)}));
        }
        ASSERT_TRUE(bulk.commit());
    }
    SHORT id = -1;
    EXPECT_EQ(addCategory(u"last", &id), CategoryChange::Done);
    EXPECT_EQ(id, 8191);
    EXPECT_EQ(addCategory(u"more"), CategoryChange::Full);
}

TEST_F(CategoryEdit, WithoutDatabaseChangesFail)
{
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, categoriesDatabase, 0, 0, nullptr));
    ASSERT_TRUE(CeDeleteDatabase(oid));
    EXPECT_EQ(addCategory(u"A"), CategoryChange::Failed);
    EXPECT_EQ(renameCategory(u"A", u"B"), CategoryChange::Failed);
    EXPECT_EQ(deleteCategory(u"A", neverAsked), CategoryChange::Failed);
    EXPECT_FALSE(setHiddenCategories({}));
}

// --- Renaming ----------------------------------------------------------------------------------------------------

TEST_F(CategoryEdit, RenamingChangesTheNameAlone)
{
    addCategoryRecord({.name = u"Work", .id = 5, .refsA = 3, .shown = false});
    EXPECT_EQ(renameCategory(u"Work", u"Job"), CategoryChange::Done);
    EXPECT_EQ(allNames(), Names{"Job"});
    EXPECT_EQ(propertyOf(u"Job", 0x40020002), 5);
    EXPECT_EQ(propertyOf(u"Job", 0x40060002), 3);
    EXPECT_EQ(propertyOf(u"Job", 0x3004000b), 0);
}

TEST_F(CategoryEdit, RenamingIsRefusedForTakenBadAndUnknownNames)
{
    addCategoryRecord(u"Work", 1);
    addCategoryRecord(u"Home", 2);
    EXPECT_EQ(renameCategory(u"Work", u"Home"), CategoryChange::Exists);
    EXPECT_EQ(renameCategory(u"Work", u"a,b"), CategoryChange::BadName);
    EXPECT_EQ(renameCategory(u"Work", u""), CategoryChange::BadName);
    EXPECT_EQ(renameCategory(u"Nobody", u"X"), CategoryChange::NotFound);
    EXPECT_EQ(renameCategory(nullptr, u"X"), CategoryChange::NotFound);
    EXPECT_EQ(renameCategory(u"Work", u"Work"), CategoryChange::Done);
    EXPECT_EQ(allNames(), (Names{"Home", "Work"}));
    EXPECT_EQ(renameCategory(u"Work", u"WORK"), CategoryChange::Done);
    EXPECT_EQ(allNames(), (Names{"Home", "WORK"}));
}

TEST_F(CategoryEdit, RenamingTakesColourAndIconAlong)
{
    setSetting(u"IconPath", u"\\Icons");
    file("Work.bmp", "picture");
    addCategoryRecord(u"Work", 1);
    ASSERT_TRUE(setCategoryColor(u"Work", 0x010203));
    EXPECT_EQ(renameCategory(u"Work", u"Job"), CategoryChange::Done);
    EXPECT_EQ(categoryColor(u"Job"), 0x010203U);
    EXPECT_EQ(categoryColor(u"Work"), 0U);
    EXPECT_EQ(contentOf("Job.bmp"), "picture");
    EXPECT_EQ(contentOf("Work.bmp"), "picture");
    EXPECT_EQ(renameCategory(u"Job", u"job"), CategoryChange::Done);
    EXPECT_EQ(contentOf("Job.bmp"), "picture");
    EXPECT_EQ(categoryColor(u"job"), 0x010203U);
}

// --- Deleting ----------------------------------------------------------------------------------------------------

TEST_F(CategoryEdit, AnUnusedCategoryGoesWithoutAsking)
{
    addCategoryRecord({.name = u"Work", .id = 1, .refsA = 2, .refsB = -2});
    addCategoryRecord(u"Home", 2);
    setCategoryColor(u"Work", 7);
    EXPECT_EQ(deleteCategory(u"Work", neverAsked), CategoryChange::Done);
    EXPECT_EQ(allNames(), Names{"Home"});
    EXPECT_EQ(categoryColor(u"Work"), 0U);
    EXPECT_EQ(deleteCategory(u"Work", neverAsked), CategoryChange::NotFound);
    EXPECT_EQ(deleteCategory(nullptr, neverAsked), CategoryChange::NotFound);
}

TEST_F(CategoryEdit, AUsedOneIsDeletedRetiredOrKept)
{
    for (const SHORT which : {SHORT{0}, SHORT{1}, SHORT{2}})
    {
        addCategoryRecord({.name = u"Work",
                           .id = 1,
                           .refsA = which == 0 ? SHORT{1} : SHORT{0},
                           .refsB = which == 1 ? SHORT{1} : SHORT{0},
                           .refsContacts = which == 2 ? SHORT{1} : SHORT{0}});
        int asked = 0;
        for (const UsedCategory answer : {UsedCategory::Keep, UsedCategory::Delete})
        {
            setCategoryColor(u"Work", 7);
            EXPECT_EQ(deleteCategory(u"Work", [&] { return ++asked, answer; }), CategoryChange::Done);
            EXPECT_EQ(allNames(), answer == UsedCategory::Keep ? Names{"Work"} : Names{});
            EXPECT_EQ(categoryColor(u"Work"), 0U); // goes also when the category is kept
        }
        EXPECT_EQ(asked, 2);
    }
}

TEST_F(CategoryEdit, ARetiredOneKeepsItsRecordAndId)
{
    addCategory(u"Work");
    const OpenedDatabase database = openCategories();
    database.write(database.first(), {shortValue(0x40040002, 4)});
    setCategoryColor(u"Work", 7);
    EXPECT_EQ(deleteCategory(u"Work", [] { return UsedCategory::Retire; }), CategoryChange::Done);
    EXPECT_EQ(allNames(), Names{"Work"});
    EXPECT_EQ(propertyOf(u"Work", 0x40030003), 0);
    EXPECT_EQ(propertyOf(u"Work", 0x40030002), 0);
    EXPECT_EQ(categoryColor(u"Work"), 0U);
    CePtrList<CFullCategory *> list(1, CEOWN_DELETE);
    GetFullCategoryInfo(list, true);
    EXPECT_EQ(list.GetAt(1)->m_nActive, 0);
    EXPECT_EQ(deleteCategory(u"Work", neverAsked), CategoryChange::NotFound);
    SHORT id = -1;
    EXPECT_EQ(addCategory(u"Next", &id), CategoryChange::Done);
    EXPECT_EQ(id, 1);
}

TEST_F(CategoryEdit, ARecordWithoutTheShortFlagIsRetiredWithoutOne)
{
    addCategoryRecord({.name = u"Work", .id = 1, .active = 1, .refsA = 1});
    EXPECT_EQ(deleteCategory(u"Work", [] { return UsedCategory::Retire; }), CategoryChange::Done);
    EXPECT_EQ(propertyOf(u"Work", 0x40030003), 0);
    EXPECT_EQ(propertyOf(u"Work", 0x40030002), std::nullopt);
}

TEST_F(CategoryEdit, TheCachesStayUntilTheyAreReset)
{
    addCategoryRecord(u"Work", 0);
    ResetFullCategoryList();
    addCategory(u"Home");
    CePtrList<CFullCategory *> list(1, CEOWN_DELETE);
    EXPECT_EQ(GetFullCategoryInfo(list, false), 1);
    ResetFullCategoryList();
    EXPECT_EQ(GetFullCategoryInfo(list, false), 2);
}

TEST_F(CategoryEdit, UsesThatTheCallerKnowsOfCountToo)
{
    addCategoryRecord(u"Work", 1);
    int asked = 0;
    EXPECT_EQ(deleteCategory(
                  u"Work", [&] { return ++asked, UsedCategory::Keep; }, 1),
              CategoryChange::Done);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(allNames(), Names{"Work"});
}

TEST_F(CategoryEdit, UsesAreCountedInAllItems)
{
    const std::vector<std::pair<const WCHAR *, std::vector<BYTE>>> items = {
        {appointmentsDatabase, {1, 0, 0, 0}},
        {appointmentsDatabase, {3, 0, 0, 0, 2, 0, 0, 0}},
        {tasksDatabase, {1, 0, 0, 0}},
        {contactsDatabase, {1, 0, 0, 0, 0xFF}},
        {contactsDatabase, {}},
        {contactsDatabase, std::vector<BYTE>(2000, 0x80)}};
    for (const auto &[name, bytes] : items)
    {
        CEOID oid = 0;
        CloseHandle(CeOpenDatabase(&oid, name, 0, 0, nullptr));
        OpenedDatabase(oid).add({blobValue(0x00160041, bytes)});
    }
    const std::vector<DWORD> uses = countCategoryUses();
    ASSERT_EQ(uses.size(), 8192U);
    EXPECT_EQ(uses[0], 4U);
    EXPECT_EQ(uses[1], 1U);
    EXPECT_EQ(uses[2], 0U);
    EXPECT_EQ(uses[33], 1U);
    EXPECT_EQ(uses[8191], 1U);
}

// --- Colours and icons -------------------------------------------------------------------------------------------

TEST_F(CategoryEdit, AColourOfZeroTakesTheValueAway)
{
    ASSERT_TRUE(setCategoryColor(u"Work", 0x112233));
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik\\Colors\\Categories");
    DWORD value = 0;
    EXPECT_EQ(settings.QueryValue(u"Work", &value), 0);
    EXPECT_EQ(value, 0x112233U);
    EXPECT_TRUE(setCategoryColor(u"Work", 0));
    EXPECT_LT(settings.QueryValue(u"Work", &value), 0);
    EXPECT_TRUE(setCategoryColor(u"Work", 0));
    EXPECT_FALSE(setCategoryColor(u"", 5));
    EXPECT_FALSE(setCategoryColor(u"a=b", 5));
    EXPECT_FALSE(setCategoryColor(nullptr, 5));
    EXPECT_EQ(categoryColor(nullptr), 0U);
    settings.SetValue(u"Foreign", 0x1000000U);
    EXPECT_EQ(categoryColor(u"Foreign"), 0U) << "no colour has more than three bytes";
}

TEST_F(CategoryEdit, ColoursSurviveAndAreLoadedAnewAfterAChange)
{
    addCategoryRecord(u"Work", 1);
    CCategoryColor::InitCategoryColors();
    setCategoryColor(u"Work", 0x112233);
    CCategoryColor::InitCategoryColors();
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Work"), 0x112233U);
    device.reopen();
    EXPECT_EQ(categoryColor(u"Work"), 0x112233U);
}

TEST_F(CategoryEdit, AnIconIsACopyOfAPictureInTheFolder)
{
    EXPECT_FALSE(setCategoryIcon(u"Work", u"pick.bmp"));
    setSetting(u"IconPath", u"\\Icons");
    file("pick.bmp", "new");
    file("Work.bmp", "old");
    SetFileAttributesW(u"\\Icons\\Work.bmp", FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(setCategoryIcon(u"Work", u"pick.bmp"));
    EXPECT_EQ(contentOf("Work.bmp"), "new");
    EXPECT_EQ(contentOf("pick.bmp"), "new");
    EXPECT_TRUE(setCategoryIcon(u"Work", u"work.bmp"));
    EXPECT_EQ(contentOf("Work.bmp"), "new");
    EXPECT_FALSE(setCategoryIcon(u"Work", u"missing.bmp"));
    EXPECT_EQ(contentOf("Work.bmp"), "new");
    EXPECT_TRUE(setCategoryIcon(u"Work", u""));
    EXPECT_EQ(contentOf("Work.bmp"), "(none)");
    EXPECT_TRUE(setCategoryIcon(u"Work", nullptr));
}

TEST_F(CategoryEdit, IconsStayInTheirFolder)
{
    setSetting(u"IconPath", u"\\Icons");
    file("pick.bmp", "new");
    EXPECT_FALSE(setCategoryIcon(u"a\\b", u"pick.bmp"));
    EXPECT_FALSE(setCategoryIcon(u"Work", u"..\\pick.bmp"));
}

// --- Which are offered -------------------------------------------------------------------------------------------

TEST_F(CategoryEdit, HiddenCategoriesAreMarkedInEveryRecord)
{
    addCategoryRecord(u"Work", 1);
    addCategoryRecord({.name = u"Home", .id = 2, .shown = false});
    addCategoryRecord({.name = u"Gone", .id = 3, .active = 0});
    EXPECT_TRUE(setHiddenCategories({u"Work", u"Nobody"}));
    EXPECT_EQ(propertyOf(u"Work", 0x3004000b), 0);
    EXPECT_EQ(propertyOf(u"Home", 0x3004000b), 1);
    EXPECT_EQ(propertyOf(u"Gone", 0x3004000b), std::nullopt);
}

TEST_F(CategoryEdit, WithNothingHiddenThePropertyGoes)
{
    addCategoryRecord({.name = u"Work", .id = 1, .shown = true});
    addCategoryRecord({.name = u"Home", .id = 2, .shown = false});
    addCategoryRecord({.name = u"Gone", .id = 3, .active = 0, .shown = false});
    EXPECT_TRUE(setHiddenCategories({}));
    for (const WCHAR *name : {u"Work", u"Home", u"Gone"})
    {
        EXPECT_EQ(propertyOf(name, 0x3004000b), std::nullopt);
    }
}

TEST_F(CategoryEdit, ASynchroniserCanForbidTheProperty)
{
    addCategoryRecord({.name = u"Work", .id = 1, .shown = false});
    setSetting(u"IntellisyncCompat", DWORD{1});
    EXPECT_TRUE(setHiddenCategories({u"Work"}));
    EXPECT_EQ(propertyOf(u"Work", 0x3004000b), std::nullopt);
    setSetting(u"IntellisyncCompat", DWORD{0});
    EXPECT_TRUE(setHiddenCategories({u"Work"}));
    EXPECT_EQ(propertyOf(u"Work", 0x3004000b), 0);
}
} // namespace
} // namespace zb::test
