// A dialog that is an object: made from a template of a module's resources, modal or not, with the operations of
// CeMsgWnd and a few of its own.
//
// The object must outlive its dialog. What an operation throws is told to the user, and the dialog goes on. Threads: the
// main thread; the set of modeless dialogs is not locked.
#pragma once

#include "core/CeSet.h"
#include "framework/CeWnd.h"

class ZBTOOLS_API CeBaseDialog : public CeWnd
{
  public:
    /// With flags of SHInitDialog the shell places the dialog; without, a modal one is centred.
    explicit CeBaseDialog(UINT nSHInitFlags = 0);
    ~CeBaseDialog() override;

    /// A modeless dialog; its messages are to be offered to IsDialogMsg. False without the template.
    bool Create(const WCHAR *pszTemplate, HWND hParent, HINSTANCE hInstance = nullptr);
    /// What EndDialog was given; -1 when it can't be made. A null parent is the application's window; a child is taken
    /// for the window of the screen that it lies in.
    LONG_PTR DoModal(const WCHAR *pszTemplate, HWND hParent = nullptr, HINSTANCE hInstance = nullptr);
    /// Offers a message to all modeless dialogs; true when one took it.
    static bool IsDialogMsg(MSG *pMsg);

    LRESULT Default() override;
    LRESULT ProcessMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;
    /// Nonzero: the focus goes to the first control.
    virtual LRESULT OnInitDialog(HWND hFocus, LPARAM lParam);
    virtual void OnOK();
    virtual void OnCancel();
    /// The brush of a control's background; only when `handled` is set.
    virtual LRESULT OnCtlColorStatic(HDC hdc, HWND hControl, bool &handled);

  protected:
    const WCHAR *m_pszTemplate = nullptr;
    bool m_bModal = false;
    /// While it is being initialised: no WM_COMMAND and WM_NOTIFY reach the dialog.
    bool m_bInInit = false;
    UINT m_nSHInitFlags;

    /// The dialog procedure; lParam of WM_INITDIALOG is the object.
    static LONG_PTR DlgProc(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM lParam);

  private:
    LRESULT Init(HWND hFocus, LPARAM lParam);
    LRESULT Command(WPARAM wParam, LPARAM lParam, bool &handled);
    LONG_PTR Dispatch(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM lParam);
    void Forget(HWND hDlg);

    static CeSet<HWND> m_setModeless;
};
