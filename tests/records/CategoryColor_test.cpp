// The colours of categories, and the list of pictures for icons.
#include "records/CCategoryColor.h"
#include "records/CCategoryDisplay.h"

#include "core/CRegistry.h"
#include "platform/pim.h"
#include "records/CategoryEdit.h"
#include "support/CategoryRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace zb::test
{
namespace
{
using Names = std::vector<std::string>;

class CategoryColor : public DeviceTest
{
  protected:
    CategoryColor()
    {
        CCategoryColor::ClearInit();
    }
    ~CategoryColor() override
    {
        CCategoryColor::ClearInit();
    }

    static void addColored(const std::u16string &name, SHORT id, DWORD color)
    {
        addCategoryRecord(name, id);
        CRegistry settings;
        settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik\\Colors\\Categories");
        settings.SetValue(name.c_str(), color);
    }
    static Names loaded()
    {
        CCategoryColor::InitCategoryColors();
        Names names;
        auto &list = CCategoryColor::lCatColors;
        for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
        {
            names.push_back(utf8(list.GetAt(i)->m_szName));
        }
        return names;
    }
    static std::string colorOf(const WCHAR *categories)
    {
        return utf8(CCategoryColor::GetCategoryColorString(categories));
    }
};

TEST_F(CategoryColor, HasTheLowByteRed)
{
    addColored(u"Work", 1, 0x0A0BFF);
    EXPECT_EQ(loaded(), Names{"Work"});
    const CATINFO &info = *CCategoryColor::lCatColors.GetAt(1);
    EXPECT_EQ(info.m_crColor, 0x0A0BFFU);
    EXPECT_EQ(utf8(info.m_szHtmlColor), "#FF0B0A");
    EXPECT_EQ(info.m_dwReserved, 0U);
    EXPECT_EQ(colorOf(u"Work"), "#FF0B0A");
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Work"), 0x0A0BFFU);
}

TEST_F(CategoryColor, IsANumberFrom1To0xFFFFFF)
{
    addColored(u"a", 1, 0);
    addColored(u"b", 2, 1);
    addColored(u"c", 3, 0xFFFFFF);
    addColored(u"d", 4, 0x1000000);
    addColored(u"e", 5, 0xFFFFFFFF);
    addCategoryRecord(u"f", 6);
    EXPECT_EQ(loaded(), (Names{"b", "c"}));
    EXPECT_EQ(colorOf(u"b"), "#010000");
    EXPECT_EQ(colorOf(u"c"), "#FFFFFF");
}

TEST_F(CategoryColor, BelongsToAKnownCategory)
{
    addColored(u"Work", 1, 5);
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik\\Colors\\Categories");
    settings.SetValue(u"Gone", 7U);
    addCategoryRecord({.name = u"", .id = 3});
    addCategoryRecord({.id = 4});
    EXPECT_EQ(loaded(), Names{"Work"});
    EXPECT_EQ(openCategories().walk().size(), 3U); // reading colours repairs nothing
}

TEST_F(CategoryColor, TheFirstByNameThatIsFoundInTheTextWins)
{
    addColored(u"Work", 1, 0x010101);
    addColored(u"Home", 2, 0x020202);
    EXPECT_EQ(loaded(), (Names{"Home", "Work"}));
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Work, Home"), 0x020202U);
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Play, Work"), 0x010101U);
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Play"), 0xFFB43480U);
}

TEST_F(CategoryColor, NamesAreFoundInsideOthersAndInTheirCaseAlone)
{
    addColored(u"work", 1, 0x010101);
    loaded();
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Homework"), 0x010101U);
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Work"), 0xFFB43480U);
}

TEST_F(CategoryColor, AnEmptyTextHasNone)
{
    addColored(u"Work", 1, 0x010101);
    loaded();
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u""), 0xFFB43480U);
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(nullptr), 0xFFB43480U);
    EXPECT_EQ(CCategoryColor::GetCategoryColorString(u""), nullptr);
    EXPECT_EQ(CCategoryColor::GetCategoryColorString(nullptr), nullptr);
}

TEST_F(CategoryColor, NothingHasAColourBeforeTheyAreLoaded)
{
    addColored(u"Work", 1, 0x010101);
    EXPECT_EQ(CCategoryColor::GetCategoryColorString(u"Work"), nullptr);
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Work"), 0xFFB43480U);
}

TEST_F(CategoryColor, AreLoadedOnceUntilTheyAreCleared)
{
    addColored(u"Work", 1, 0x010101);
    loaded();
    EXPECT_TRUE(CCategoryColor::m_bInit);
    addColored(u"Home", 2, 0x020202);
    EXPECT_EQ(loaded(), Names{"Work"});
    CCategoryColor::ClearInit();
    EXPECT_FALSE(CCategoryColor::m_bInit);
    EXPECT_TRUE(CCategoryColor::lCatColors.IsEmpty());
    EXPECT_EQ(loaded(), (Names{"Home", "Work"}));
}

TEST_F(CategoryColor, WithoutTheirKeyNoneAreLoadedAndThatStands)
{
    addCategoryRecord(u"Work", 1);
    EXPECT_EQ(loaded(), Names{});
    EXPECT_TRUE(CCategoryColor::m_bInit);
}

TEST_F(CategoryColor, WithoutDatabaseTheNextCallTriesAgain)
{
    addColored(u"Work", 1, 0x010101);
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, categoriesDatabase, 0, 0, nullptr));
    ASSERT_TRUE(CeDeleteDatabase(oid));
    EXPECT_EQ(loaded(), Names{});
    EXPECT_FALSE(CCategoryColor::m_bInit);
    ASSERT_TRUE(createPimDatabases());
    addCategoryRecord(u"Work", 1);
    EXPECT_EQ(loaded(), Names{"Work"});
}

TEST_F(CategoryColor, ATextOfAnotherLengthIsNoColour)
{
    addColored(u"Work", 1, 0x010101);
    loaded();
    auto *torn = new CATINFO(*CCategoryColor::lCatColors.GetAt(1));
    torn->m_szHtmlColor[6] = 0;
    torn->m_crColor = 0x020202;
    CCategoryColor::lCatColors.InsertAt(1, torn);
    EXPECT_EQ(CCategoryColor::GetCategoryColorCR(u"Work"), 0x010101U);
    EXPECT_EQ(colorOf(u"Work"), "#010101");
}

TEST_F(CategoryColor, GoByNameHoweverTheRecordsLie)
{
    layCategoriesById();
    addColored(u"Zoo", 1, 0x010101);
    addColored(u"Home", 2, 0x020202);
    EXPECT_EQ(loaded(), (Names{"Home", "Zoo"}));
}

TEST_F(CategoryColor, FollowsTheOpenDevice)
{
    addColored(u"Work", 1, 0x010101);
    loaded();
    openCategories().add(categoryValues({.name = u"Home", .id = 2}));
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik\\Colors\\Categories");
    settings.SetValue(u"Home", 0x020202U);
    settings.FlushKey();
    device.reopen();
    EXPECT_EQ(CCategoryColor::GetCategoryColorString(u"Work"), nullptr);
    EXPECT_EQ(loaded(), (Names{"Home", "Work"}));
}

TEST_F(CategoryColor, AVeryLongNameIsCutToItsPlace)
{
    const std::u16string name(1100, u'n');
    addCategoryRecord(name, 1);
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik\\Colors\\Categories");
    settings.SetValue(name.c_str(), 0x010101U);
    EXPECT_EQ(loaded(), Names{std::string(1023, 'n')});
}

// --- Pictures for icons ------------------------------------------------------------------------------------------

class CategoryPictures : public DeviceTest
{
  protected:
    CategoryPictures()
    {
        std::filesystem::create_directories(device.files() / "Icons");
    }
    void file(const std::string &name, std::size_t size = 10) const
    {
        std::ofstream out(device.files() / "Icons" / name, std::ios::binary);
        out << std::string(size, 'x');
    }
    static Names names(CCategoryDisplay &display)
    {
        Names all;
        auto &list = display.GetList();
        for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
        {
            all.push_back(utf8(list.GetAt(i)));
        }
        return all;
    }
};

TEST_F(CategoryPictures, AreTheBitmapsOfTheFolderInOrder)
{
    for (const char *name : {"zoo.bmp", "Apple.BMP", "mail.bmp", "photo.png", "bmp"})
    {
        file(name);
    }
    std::filesystem::create_directories(device.files() / "Icons" / "folder.bmp");
    CCategoryDisplay display(u"\\Icons");
    EXPECT_EQ(names(display), Names{});
    EXPECT_EQ(display.LoadCategoryIcons(), 3);
    EXPECT_EQ(names(display), (Names{"Apple.BMP", "mail.bmp", "zoo.bmp"}));
    EXPECT_EQ(display.LoadCategoryIcons(), 3);
    display.UnInit();
    EXPECT_EQ(names(display), Names{});
    EXPECT_TRUE(display.Init());
    EXPECT_EQ(names(display).size(), 3U);
}

TEST_F(CategoryPictures, MayBeOfSeveralTypes)
{
    file("b.bmp");
    file("a.png");
    file("c.gif");
    CCategoryDisplay display(u"\\Icons", u".bmp.png");
    display.LoadCategoryIcons();
    EXPECT_EQ(names(display), (Names{"a.png", "b.bmp"}));
    display.SetGraphicTypes(u"gif");
    display.LoadCategoryIcons();
    EXPECT_EQ(names(display), Names{"c.gif"});
    display.SetGraphicTypes(nullptr);
    display.LoadCategoryIcons();
    EXPECT_EQ(names(display), Names{"b.bmp"});
}

TEST_F(CategoryPictures, AreBelow256000Bytes)
{
    file("fits.bmp", 255999);
    file("large.bmp", 256000);
    CCategoryDisplay display(u"\\Icons");
    display.LoadCategoryIcons();
    EXPECT_EQ(names(display), Names{"fits.bmp"});
}

TEST_F(CategoryPictures, SizesAreTheLowWordLessTheHighOne)
{
    file("a.bmp");
    file("b.bmp");
    // Sparse: 4 GiB exactly is 0 less 1, which is very large; 4 GiB and 100 bytes are 100 less 1.
    std::filesystem::resize_file(device.files() / "Icons" / "a.bmp", 0x100000000);
    std::filesystem::resize_file(device.files() / "Icons" / "b.bmp", 0x100000064);
    CCategoryDisplay display(u"\\Icons");
    display.LoadCategoryIcons();
    EXPECT_EQ(names(display), Names{"b.bmp"});
}

TEST_F(CategoryPictures, AFolderThatIsNotThereHasNone)
{
    CCategoryDisplay missing(u"\\Nowhere");
    EXPECT_FALSE(missing.Init());
    CCategoryDisplay none(nullptr);
    EXPECT_EQ(none.LoadCategoryIcons(), 0);
}
} // namespace
} // namespace zb::test
