// A property sheet as an object: pages behind tabs that fill the screen until OK or Cancel (platform/property_sheet.h).
//
// The editors of items are such sheets: they add their pages, run DoModal and save in OnSheetApply. Pages stay their
// owner's and must outlive the sheet. Threads: the main thread.
#pragma once

#include "framework/CePropertyPage.h"
#include "framework/CeWnd.h"

#include <string>
#include <vector>

class ZBTOOLS_API CePropertySheet : public CeWnd
{
  public:
    CePropertySheet();
    ~CePropertySheet() override;

    void SetTitle(const WCHAR *pszTitle);
    /// Pages stand in the order in which they are added; before DoModal alone.
    void AddPage(CePropertyPage *pPage);
    void RemoveAllPages();
    /// Opens at a page, the first when there is no such one. 1 after OK, 2 after Cancel, also kept in m_nResult; -1
    /// when no page can be made. Without a parent it is the application's window.
    LONG_PTR DoModal(HWND hParent = nullptr, UINT nStartPage = 0);
    /// Ends the sheet at once, as if by OK (1) or Cancel (2), without asking or telling any page.
    void EndSheet(LONG nResult);
    /// Asks all pages that have been shown (PSM_QUERYSIBLINGS), until one answers with something else than 0.
    LRESULT QuerySiblings(WPARAM wParam = 0, LPARAM lParam = 0);
    bool SetActivePage(UINT nPage);

    /// All pages have applied what was entered: the time to save. 0 keeps the sheet.
    virtual LRESULT OnSheetApply();

    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

    LONG m_nResult = 2;

  private:
    static int SheetProc(HWND hSheet, UINT uMsg, LPARAM lParam);

    std::u16string m_title;
    std::vector<CePropertyPage *> m_pages;
    bool m_bEnded = false;
};
