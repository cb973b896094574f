// The menus of the screens, as the resources have them and as views set their states.
#include "apps/ZembrikViews.h"
#include "common/texts.h"
#include "core/CRegistry.h"
#include "platform/menu.h"
#include "platform/resources.h"
#include "tasks/CTasksThread.h"

#include <set>

namespace
{
using zb::screens::ViewKind;
using zb::screens::viewKinds;

struct Entry
{
    UINT id;
    std::u16string words;
    UINT type;
    UINT state;
};

/// All of a menu and of the pop-ups in it, but separators.
std::vector<Entry> entriesOf(HMENU menu)
{
    std::vector<Entry> all;
    for (int place = 0; place < GetMenuItemCount(menu); ++place)
    {
        WCHAR words[200] = {};
        MENUITEMINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_TYPE;
        info.dwTypeData = words;
        info.cch = 200;
        EXPECT_TRUE(GetMenuItemInfoW(menu, static_cast<UINT>(place), TRUE, &info));
        if (info.hSubMenu != nullptr)
        {
            EXPECT_STRNE(zb::test::utf8(words).c_str(), "");
            const std::vector<Entry> inner = entriesOf(info.hSubMenu);
            all.insert(all.end(), inner.begin(), inner.end());
        }
        else if ((info.fType & MFT_SEPARATOR) == 0)
        {
            all.push_back({info.wID, words, info.fType, info.fState});
        }
    }
    return all;
}

class ZembrikMenus : public zb::test::ZembrikViewsTest
{
  protected:
    static HMENU menuOf(WORD number)
    {
        const HMENU menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(number));
        EXPECT_NE(menu, nullptr) << number;
        return menu;
    }
};
} // namespace

TEST_F(ZembrikMenus, EachViewHasItsEntryInTheOrderOfTheKinds)
{
    const HMENU menu = menuOf(60100);
    const std::vector<Entry> views = entriesOf(GetSubMenu(menu, 0));
    ASSERT_EQ(views.size(), viewKinds().size());
    for (std::size_t n = 0; n < views.size(); ++n)
    {
        EXPECT_EQ(views[n].id, viewKinds()[n].command) << viewKinds()[n].name;
        EXPECT_EQ(views[n].words, zb::host::text(viewKinds()[n].title)) << viewKinds()[n].name;
    }
    DestroyMenu(menu);
}

TEST_F(ZembrikMenus, CommandsOfViewsHaveWordsAndNumbersOfTheirOwn)
{
    for (const ViewKind &kind : viewKinds())
    {
        const HMENU menu = menuOf(kind.make()->commands());
        std::set<UINT> ids;
        for (const Entry &entry : entriesOf(menu))
        {
            EXPECT_FALSE(entry.words.empty()) << kind.name << ' ' << entry.id;
            EXPECT_GE(entry.id, zb::screens::firstViewCommand);
            EXPECT_LE(entry.id, zb::screens::lastViewCommand);
            EXPECT_TRUE(ids.insert(entry.id).second) << kind.name << ' ' << entry.id;
        }
        EXPECT_FALSE(ids.empty()) << kind.name;
        DestroyMenu(menu);
    }
}

TEST_F(ZembrikMenus, AChoiceHasADotAndWhatMakesNoSenseIsGray)
{
    constexpr UINT firstGrouping = 1010;
    constexpr UINT lastGrouping = 1018;
    constexpr UINT expandAll = 1004;
    for (const DWORD grouping : {0U, 3U, 8U})
    {
        CRegistry settings;
        settings.OpenKey(HKEY_CURRENT_USER, CTasksThread::DEFAULT_SETTINGS_KEY);
        settings.SetValue(u"GroupBy", grouping);
        const auto view = opened(*zb::screens::findViewKind("tasks"));
        const HMENU menu = menuOf(view->commands());
        view->showStates(menu);
        for (const Entry &entry : entriesOf(menu))
        {
            if (entry.id >= firstGrouping && entry.id <= lastGrouping)
            {
                const bool chosen = entry.id == firstGrouping + grouping;
                EXPECT_EQ((entry.state & MFS_CHECKED) != 0, chosen) << entry.id;
                EXPECT_EQ((entry.type & MFT_RADIOCHECK) != 0, chosen) << entry.id;
            }
            EXPECT_TRUE(entry.id != expandAll || ((entry.state & MFS_GRAYED) == 0) == (grouping != 0));
        }
        DestroyMenu(menu);
    }
}

TEST_F(ZembrikMenus, TextsTakeTheirValuesByNumber)
{
    EXPECT_EQ(zb::host::text(60410, {u"2", u"3"}), u"day 2 of 3");
    EXPECT_EQ(zb::host::text(60421, {u"%2 and %1", u"b%"}), u"%2 and %1 and b%") << "values are left as they are";
    EXPECT_EQ(zb::host::text(60410, {u"2"}), u"day 2 of %2");
    EXPECT_EQ(zb::host::text(60400), u"all day");
    EXPECT_EQ(zb::host::text(65535), u"");
}
