#include "framework/CeBaseDialog.h"

#include "framework/CeGetAppWindow.h"
#include "framework/FailedMessage.h"
#include "platform/dialog.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "platform/shell.h"

#include <vector>

CeSet<HWND> CeBaseDialog::m_setModeless;

namespace
{
/// Called inside a catch block.
void ReportFailure(HWND hDlg, UINT uMsg)
{
    zb::rethrowThreadExit();
    const FailedMessage failed(hDlg, uMsg);
    if (failed.IsToBeTold())
    {
        MessageBoxW(nullptr, u"Window message terminated abnormally by an exception", u"Fatal", MB_ICONERROR);
    }
}

/// The bytes of a dialog template; null without it.
const void *LoadTemplate(const WCHAR *pszTemplate, HINSTANCE hInstance)
{
    const HRSRC found = FindResourceW(hInstance, pszTemplate, RT_DIALOG);
    const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(hInstance, found);
    return loaded == nullptr ? nullptr : LockResource(loaded);
}

HWND TopLevelOf(HWND hWnd)
{
    while (hWnd != nullptr && (GetWindowLongW(hWnd, GWL_STYLE) & static_cast<LONG_PTR>(WS_CHILD)) != 0)
    {
        hWnd = GetParent(hWnd);
    }
    return hWnd;
}
} // namespace

CeBaseDialog::CeBaseDialog(UINT nSHInitFlags) : m_nSHInitFlags(nSHInitFlags)
{
}

CeBaseDialog::~CeBaseDialog()
{
    if (m_hWnd != nullptr && IsWindow(m_hWnd) != FALSE)
    {
        // Its procedure finds no object any more; the window itself is its maker's.
        Forget(m_hWnd);
    }
}

bool CeBaseDialog::Create(const WCHAR *pszTemplate, HWND hParent, HINSTANCE hInstance)
{
    m_pszTemplate = pszTemplate;
    m_bModal = false;
    const void *bytes = LoadTemplate(pszTemplate, hInstance);
    const HWND hDlg = bytes == nullptr ? nullptr
                                       : CreateDialogIndirectParamW(hInstance, bytes, hParent, DlgProc,
                                                                    reinterpret_cast<LPARAM>(this));
    if (hDlg == nullptr || hDlg != m_hWnd)
    {
        return false;
    }
    m_setModeless.Add(hDlg);
    return true;
}

LONG_PTR CeBaseDialog::DoModal(const WCHAR *pszTemplate, HWND hParent, HINSTANCE hInstance)
{
    m_pszTemplate = pszTemplate;
    m_bModal = true;
    const void *bytes = LoadTemplate(pszTemplate, hInstance);
    const HWND parent = TopLevelOf(hParent != nullptr ? hParent : CeGetAppWindow());
    return bytes == nullptr
               ? -1
               : DialogBoxIndirectParamW(hInstance, bytes, parent, DlgProc, reinterpret_cast<LPARAM>(this));
}

bool CeBaseDialog::IsDialogMsg(MSG *pMsg)
{
    std::vector<HWND> dialogs;
    m_setModeless.ForEach([&dialogs](HWND hDlg) { dialogs.push_back(hDlg); });
    for (const HWND hDlg : dialogs)
    {
        if (IsDialogMessageW(hDlg, pMsg) != FALSE)
        {
            return true;
        }
    }
    return false;
}

LRESULT CeBaseDialog::Default()
{
    // The dialog's own default follows when the procedure says that nothing was done.
    return 0;
}

LRESULT CeBaseDialog::ProcessMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    handled = false;
    switch (uMsg)
    {
    case WM_NOTIFY:
        return m_bInInit ? 0 : CeMsgWnd::ProcessMessage(uMsg, wParam, lParam, handled);
    case WM_INITDIALOG:
        handled = true;
        return Init(reinterpret_cast<HWND>(wParam), lParam);
    case WM_COMMAND:
        return Command(wParam, lParam, handled);
    case WM_CTLCOLORSTATIC:
        return OnCtlColorStatic(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam), handled);
    default:
        return CeMsgWnd::ProcessMessage(uMsg, wParam, lParam, handled);
    }
}

LRESULT CeBaseDialog::Init(HWND hFocus, LPARAM lParam)
{
    const HWND hDlg = m_hWnd;
    // The dialog may end in here, and with it this object.
    const auto end = [this, hDlg]
    {
        if (IsObjectOf(this, hDlg))
        {
            m_bInInit = false;
        }
    };
    m_bInInit = true;
    try
    {
        const LRESULT result = OnInitDialog(hFocus, lParam);
        end();
        return result;
    }
    catch (...)
    {
        end();
        throw;
    }
}

LRESULT CeBaseDialog::Command(WPARAM wParam, LPARAM lParam, bool &handled)
{
    constexpr WORD nextControl = 0xFFFF;
    const int id = LOWORD(wParam);
    if (id == IDOK || id == IDCANCEL)
    {
        handled = true;
        id == IDOK ? OnOK() : OnCancel();
        return 0;
    }
    if (HIWORD(wParam) == nextControl)
    {
        // An input panel's key for the next field.
        handled = true;
        const HWND next = GetWindow(GetDlgItem(m_hWnd, id), GW_HWNDNEXT);
        SendMessageW(m_hWnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(next), TRUE);
        return 0;
    }
    return m_bInInit ? 0 : OnCommand(wParam, lParam, handled);
}

LRESULT CeBaseDialog::OnInitDialog(HWND, LPARAM)
{
    if (m_nSHInitFlags != 0)
    {
        SHINITDLGINFO info{SHIDIM_FLAGS, m_hWnd, m_nSHInitFlags};
        SHInitDialog(&info);
    }
    else if (m_bModal)
    {
        CenterWindow();
    }
    return 1;
}

void CeBaseDialog::OnOK()
{
    EndDialog(m_hWnd, IDOK);
}

void CeBaseDialog::OnCancel()
{
    EndDialog(m_hWnd, IDCANCEL);
}

LRESULT CeBaseDialog::OnCtlColorStatic(HDC, HWND, bool &)
{
    return 0;
}

void CeBaseDialog::Forget(HWND hDlg)
{
    m_setModeless.Remove(hDlg);
    SetWindowLongW(hDlg, GWL_USERDATA, 0);
    m_hWnd = nullptr;
}

LONG_PTR CeBaseDialog::DlgProc(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    if (uMsg == WM_INITDIALOG)
    {
        auto *self = reinterpret_cast<CeBaseDialog *>(lParam);
        SetWindowLongW(hDlg, GWL_USERDATA, lParam);
        try
        {
            self->OnFirstMessage(hDlg);
        }
        catch (...)
        {
            ReportFailure(hDlg, uMsg);
        }
        self->m_hWnd = hDlg;
    }
    auto *self = reinterpret_cast<CeBaseDialog *>(GetWindowLongW(hDlg, GWL_USERDATA));
    return self == nullptr ? 0 : self->Dispatch(hDlg, uMsg, wParam, lParam);
}

LONG_PTR CeBaseDialog::Dispatch(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    bool handled = false;
    LRESULT result = 0;
    try
    {
        m_hMsgWnd = hDlg;
        m_uMsg = uMsg;
        m_wParam = wParam;
        m_lParam = lParam;
        result = ProcessMessage(uMsg, wParam, lParam, handled);
    }
    catch (...)
    {
        ReportFailure(hDlg, uMsg);
    }
    if (uMsg == WM_DESTROY && GetWindowLongW(hDlg, GWL_USERDATA) != 0)
    {
        try
        {
            Forget(hDlg);
            OnFinalMessage(hDlg);
        }
        catch (...)
        {
            ReportFailure(hDlg, uMsg);
        }
        return 0;
    }
    if (uMsg == WM_INITDIALOG || uMsg == WM_CTLCOLORSTATIC)
    {
        return handled ? result : 0;
    }
    if (handled)
    {
        SetWindowLongW(hDlg, DWL_MSGRESULT, result);
    }
    return handled ? 1 : 0;
}
