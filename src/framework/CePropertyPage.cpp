#include "framework/CePropertyPage.h"

CePropertyPage::CePropertyPage(const WCHAR *pszTemplate, const WCHAR *pszTitle, HINSTANCE hInstance)
    : m_pszTitle(pszTitle), m_hInstance(hInstance)
{
    m_pszTemplate = pszTemplate;
}

CePropertyPage::~CePropertyPage() = default;

PROPSHEETPAGEW CePropertyPage::Record()
{
    PROPSHEETPAGEW record{};
    record.dwSize = sizeof record;
    record.dwFlags = m_pszTitle != nullptr ? PSP_USETITLE : PSP_DEFAULT;
    record.hInstance = m_hInstance;
    record.pszTemplate = m_pszTemplate;
    record.pszTitle = m_pszTitle;
    record.pfnDlgProc = PageProc;
    record.lParam = reinterpret_cast<LPARAM>(this);
    return record;
}

LONG_PTR CePropertyPage::PageProc(HWND hDlg, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    // A dialog finds its object in the parameter; that of a page is the sheet's record of it.
    auto *pSelf = uMsg != WM_INITDIALOG
                      ? nullptr
                      : reinterpret_cast<CePropertyPage *>(reinterpret_cast<const PROPSHEETPAGEW *>(lParam)->lParam);
    return DlgProc(hDlg, uMsg, wParam,
                   pSelf == nullptr ? lParam : reinterpret_cast<LPARAM>(static_cast<CeBaseDialog *>(pSelf)));
}

HWND CePropertyPage::GetSheet() const
{
    return m_hWnd == nullptr ? nullptr : GetParent(m_hWnd);
}

void CePropertyPage::SetModified(bool bChanged)
{
    if (m_hWnd != nullptr)
    {
        SendMessageW(GetSheet(), bChanged ? PSM_CHANGED : PSM_UNCHANGED, reinterpret_cast<WPARAM>(m_hWnd), 0);
    }
}

LRESULT CePropertyPage::OnInitDialog(HWND, LPARAM)
{
    // The sheet places its pages.
    return 1;
}

LRESULT CePropertyPage::OnNotify(WPARAM wParam, LPARAM lParam, bool &handled)
{
    const auto &told = *reinterpret_cast<const NMHDR *>(lParam);
    if (told.hwndFrom != GetSheet())
    {
        return CeBaseDialog::OnNotify(wParam, lParam, handled);
    }
    handled = true;
    switch (told.code)
    {
    case PSN_SETACTIVE:
        return OnSetActive() ? 0 : -1;
    case PSN_KILLACTIVE:
        return OnKillActive() ? FALSE : TRUE;
    case PSN_APPLY:
        return OnApply() ? PSNRET_NOERROR : PSNRET_INVALID;
    case PSN_QUERYCANCEL:
        return OnQueryCancel() ? FALSE : TRUE;
    case PSN_RESET:
        OnReset();
        return 0;
    default:
        return CeBaseDialog::OnNotify(wParam, lParam, handled);
    }
}

LRESULT CePropertyPage::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    if (uMsg == PSM_QUERYSIBLINGS)
    {
        handled = true;
        return OnQuerySiblings(wParam, lParam);
    }
    return CeBaseDialog::OnMessage(uMsg, wParam, lParam, handled);
}

void CePropertyPage::OnOK()
{
    SendMessageW(GetSheet(), PSM_PRESSBUTTON, PSBTN_OK, 0);
}

void CePropertyPage::OnCancel()
{
    SendMessageW(GetSheet(), PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
}

bool CePropertyPage::OnSetActive()
{
    return true;
}

bool CePropertyPage::OnKillActive()
{
    return true;
}

bool CePropertyPage::OnApply()
{
    return true;
}

bool CePropertyPage::OnQueryCancel()
{
    return true;
}

void CePropertyPage::OnReset()
{
}

LRESULT CePropertyPage::OnQuerySiblings(WPARAM, LPARAM)
{
    return 0;
}
