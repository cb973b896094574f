#include "framework/CePropertySheet.h"

#include "framework/CeGetAppWindow.h"

#include <utility>

namespace
{
/// Sheets of this thread whose window is just being made: the platform's callback has no word for its object.
CePropertySheet *&BeingMade()
{
    thread_local CePropertySheet *pSheet = nullptr;
    return pSheet;
}
} // namespace

CePropertySheet::CePropertySheet() = default;
CePropertySheet::~CePropertySheet() = default;

void CePropertySheet::SetTitle(const WCHAR *pszTitle)
{
    m_title = pszTitle == nullptr ? u"" : pszTitle;
    if (m_hWnd != nullptr)
    {
        SetWindowTextW(m_hWnd, m_title.c_str());
    }
}

void CePropertySheet::AddPage(CePropertyPage *pPage)
{
    m_pages.push_back(pPage);
}

void CePropertySheet::RemoveAllPages()
{
    m_pages.clear();
}

int CePropertySheet::SheetProc(HWND hSheet, UINT uMsg, LPARAM)
{
    CePropertySheet *pSheet = uMsg == PSCB_INITIALIZED ? std::exchange(BeingMade(), nullptr) : nullptr;
    if (pSheet != nullptr)
    {
        pSheet->Subclass(hSheet);
    }
    return 0;
}

LONG_PTR CePropertySheet::DoModal(HWND hParent, UINT nStartPage)
{
    std::vector<PROPSHEETPAGEW> records;
    for (CePropertyPage *pPage : m_pages)
    {
        records.push_back(pPage->Record());
    }
    PROPSHEETHEADERW header{};
    header.dwSize = sizeof header;
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_USECALLBACK;
    header.hwndParent = hParent != nullptr ? hParent : CeGetAppWindow();
    header.pszCaption = m_title.c_str();
    header.nPages = static_cast<UINT>(records.size());
    header.nStartPage = nStartPage;
    header.ppsp = records.data();
    header.pfnCallback = SheetProc;
    m_bEnded = false;
    CePropertySheet *const pFormer = std::exchange(BeingMade(), this);
    const LONG_PTR result = PropertySheetW(&header);
    BeingMade() = pFormer;
    if (result < 0)
    {
        m_nResult = 2;
        return -1;
    }
    if (!m_bEnded)
    {
        m_nResult = result == 1 ? 1 : 2;
    }
    return m_nResult;
}

void CePropertySheet::EndSheet(LONG nResult)
{
    if (m_hWnd != nullptr)
    {
        m_bEnded = true;
        m_nResult = nResult;
        EndDialog(m_hWnd, nResult == 1 ? 1 : 0);
    }
}

LRESULT CePropertySheet::QuerySiblings(WPARAM wParam, LPARAM lParam)
{
    return m_hWnd == nullptr ? 0 : SendMessageW(m_hWnd, PSM_QUERYSIBLINGS, wParam, lParam);
}

bool CePropertySheet::SetActivePage(UINT nPage)
{
    return m_hWnd != nullptr && SendMessageW(m_hWnd, PSM_SETCURSEL, nPage, 0) != FALSE;
}

LRESULT CePropertySheet::OnSheetApply()
{
    return 1;
}

LRESULT CePropertySheet::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    if (uMsg != PSM_APPLY)
    {
        return CeWnd::OnMessage(uMsg, wParam, lParam, handled);
    }
    // The pages first: what is saved then is what they have taken over.
    handled = true;
    return Default() != 0 && OnSheetApply() != 0 ? TRUE : FALSE;
}
