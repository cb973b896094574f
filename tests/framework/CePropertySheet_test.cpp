// Property sheets as objects: what their pages hear, when a sheet applies, how it ends.
#include "framework/CePropertySheet.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "support/LoopScript.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;

/// A dialog with buttons of the ids 1, 2 and 11.
const WCHAR *const buttons = MAKEINTRESOURCEW(7);

class Page : public CePropertyPage
{
  public:
    Page(std::string name, std::string &log, HINSTANCE module)
        : CePropertyPage(buttons, u"Title", module), m_name(std::move(name)), m_log(log)
    {
    }
    bool OnSetActive() override
    {
        return hear("+", passesOver);
    }
    bool OnKillActive() override
    {
        return hear("-", stays);
    }
    bool OnApply() override
    {
        return hear("!", refuses);
    }
    bool OnQueryCancel() override
    {
        return hear("?", keeps);
    }
    void OnReset() override
    {
        m_log += m_name + "0 ";
    }
    LRESULT OnQuerySiblings(WPARAM wParam, LPARAM lParam) override
    {
        m_log += m_name + "q ";
        return static_cast<LRESULT>(wParam) + lParam == 9 ? 4 : 0;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM, bool &) override
    {
        m_log += m_name + "c" + std::to_string(LOWORD(wParam)) + " ";
        return 0;
    }
    bool passesOver = false;
    bool stays = false;
    bool refuses = false;
    bool keeps = false;

  private:
    bool hear(const char *what, bool no)
    {
        m_log += m_name + what + " ";
        return !no;
    }
    std::string m_name;
    std::string &m_log;
};

class Sheet : public CePropertySheet
{
  public:
    explicit Sheet(std::string &log) : m_log(log)
    {
    }
    LRESULT OnSheetApply() override
    {
        m_log += "save ";
        return saves ? 1 : 0;
    }
    bool saves = true;

  private:
    std::string &m_log;
};

class CePropertySheets : public ::testing::Test
{
  protected:
    CePropertySheets()
    {
        sheet.SetTitle(u"Item");
        sheet.AddPage(&one);
        sheet.AddPage(&two);
    }
    ~CePropertySheets() override
    {
        FreeLibrary(module);
    }
    LONG_PTR run(std::vector<LoopScript::Step> steps, UINT start = 0)
    {
        const LoopScript script(std::move(steps));
        const LONG_PTR result = sheet.DoModal(owner.window, start);
        EXPECT_TRUE(script.isDone());
        EXPECT_EQ(sheet.GetHwnd(), nullptr);
        EXPECT_EQ(one.GetHwnd(), nullptr);
        return result;
    }
    LoopScript::Step expectHeard(std::string expected)
    {
        return [this, expected] { EXPECT_EQ(std::exchange(log, {}), expected); };
    }

    TestDevice device;
    HMODULE module = LoadLibraryW(u"ZBTestModule");
    std::string log;
    ScreenWindow owner{RGB(1, 2, 3), WS_POPUP | WS_VISIBLE, 0, 0, 240, 320};
    Page one{"A", log, module};
    Page two{"B", log, module};
    Sheet sheet{log};
};
} // namespace

TEST_F(CePropertySheets, OkAppliesThePagesAndThenSaves)
{
    EXPECT_EQ(run({expectHeard("B+ "), [this] { EXPECT_EQ(one.GetHwnd(), nullptr); },
                   [this] { EXPECT_EQ(two.GetSheet(), sheet.GetHwnd()); },
                   [this] { EXPECT_TRUE(sheet.SetActivePage(0)); }, expectHeard("B- A+ "), key(VK_F1)},
                  1),
              1);
    EXPECT_EQ(log, "A- A! B! save ");
    EXPECT_EQ(sheet.m_nResult, 1);
}

TEST_F(CePropertySheets, CancelSavesNothing)
{
    EXPECT_EQ(run({expectHeard("A+ "), [this] { one.SetModified(); }, [this] { one.keeps = true; }, key(VK_ESCAPE),
                   expectHeard("A? "), [this] { one.keeps = false; }, key(VK_ESCAPE)}),
              2);
    EXPECT_EQ(log, "A? A0 ");
    EXPECT_EQ(sheet.m_nResult, 2);
}

TEST_F(CePropertySheets, APageOrTheSheetMayRefuse)
{
    EXPECT_EQ(run({expectHeard("A+ "), [this] { one.stays = true; }, [this] { EXPECT_FALSE(sheet.SetActivePage(1)); },
                   expectHeard("A- "), [this] { one.stays = false; }, [this] { one.refuses = true; }, key(VK_F1),
                   expectHeard("A- A! A+ "), [this] { one.refuses = false; }, [this] { sheet.saves = false; },
                   key(VK_F1), expectHeard("A- A! save A+ "), [this] { sheet.saves = true; }, key(VK_F1)}),
              1);
    EXPECT_EQ(log, "A- A! save ");
}

TEST_F(CePropertySheets, ButtonsAndQuestionsOfPages)
{
    EXPECT_EQ(run({[this] { SendMessageW(GetDlgItem(one, 11), 0x00F5, 0, 0); }, expectHeard("A+ Ac11 "),
                   [this] { EXPECT_EQ(sheet.QuerySiblings(4, 4), 0); }, expectHeard("Aq "),
                   [this] { EXPECT_EQ(sheet.QuerySiblings(4, 5), 4); }, expectHeard("Aq "),
                   [this] { SendMessageW(GetDlgItem(one, IDOK), 0x00F5, 0, 0); }}),
              1)
        << "OK on a page is the sheet's";
    EXPECT_EQ(log, "A- A! save ");
}

TEST_F(CePropertySheets, APageThatPassesItselfOver)
{
    two.passesOver = true;
    EXPECT_EQ(run({[this] { EXPECT_TRUE(sheet.SetActivePage(1)); }, expectHeard("A+ A- B+ A+ "), key(VK_ESCAPE)}), 2);
}

TEST_F(CePropertySheets, EndingItAtOnceAsksNobody)
{
    EXPECT_EQ(run({expectHeard("A+ "), [this] { sheet.EndSheet(1); }}), 1);
    EXPECT_EQ(log, "");
}

TEST_F(CePropertySheets, WithoutAPageThatCanBeMade)
{
    Sheet none(log);
    EXPECT_EQ(none.DoModal(owner.window), -1);
    CePropertyPage missing(MAKEINTRESOURCEW(999), u"", module);
    none.AddPage(&missing);
    EXPECT_EQ(none.DoModal(owner.window), -1);
    EXPECT_EQ(none.m_nResult, 2);
    EXPECT_TRUE(IsWindowEnabled(owner.window));
}
