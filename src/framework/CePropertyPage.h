// A page of a property sheet as an object: a dialog whose notifications come to virtual operations.
//
// The object must outlive the sheet that it was added to (CePropertySheet.h). Its window is made when the page is shown
// first; until then m_hWnd is null, and it is null again when the sheet is gone. Threads, errors: as CeBaseDialog.
#pragma once

#include "framework/CeBaseDialog.h"
#include "platform/property_sheet.h"

class ZBTOOLS_API CePropertyPage : public CeBaseDialog
{
  public:
    /// The title is that of the tab; without one it is the template's. Both texts must live as long as the object.
    explicit CePropertyPage(const WCHAR *pszTemplate, const WCHAR *pszTitle = nullptr, HINSTANCE hInstance = nullptr);
    ~CePropertyPage() override;

    /// The sheet's window; null while the page has none.
    HWND GetSheet() const;
    /// Tells the sheet that something was changed here.
    void SetModified(bool bChanged = true);

    LRESULT OnInitDialog(HWND hFocus, LPARAM lParam) override;
    LRESULT OnNotify(WPARAM wParam, LPARAM lParam, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;
    /// OK and Cancel are the sheet's.
    void OnOK() override;
    void OnCancel() override;

    /// About to be shown; false passes the page over.
    virtual bool OnSetActive();
    /// About to be left, for another page or by OK; false stays.
    virtual bool OnKillActive();
    /// The place to take over what was entered; false keeps the sheet and comes back to this page.
    virtual bool OnApply();
    /// False keeps the sheet.
    virtual bool OnQueryCancel();
    /// The sheet is being cancelled.
    virtual void OnReset();
    /// What the sheet asks all its pages (PSM_QUERYSIBLINGS); anything but 0 ends the asking.
    virtual LRESULT OnQuerySiblings(WPARAM wParam, LPARAM lParam);

    /// The record that the sheet is given; good as long as the object.
    PROPSHEETPAGEW Record();

  private:
    static LONG_PTR PageProc(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM lParam);

    const WCHAR *m_pszTitle;
    HINSTANCE m_hInstance;
};
