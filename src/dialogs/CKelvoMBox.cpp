#include "dialogs/CKelvoMBox.h"

#include "core/CRegistry.h"
#include "platform/controls.h"
#include "platform/dialog.h"
#include "platform/resources.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace
{
constexpr const WCHAR *ignoreKey = u"Software\\Kelvo\\Zembrik\\Ignore";
constexpr WORD dialogNumber = 103;
constexpr int textId = 1000;
constexpr int firstButtonId = 1001;
constexpr int checkId = 1004;
constexpr UINT dontAskText = 42483;

constexpr DWORD answerAsk = 10;
constexpr DWORD answerNo = 11;
constexpr DWORD answerYes = 12;

constexpr int yesButton = 0;
constexpr int noButton = 2;

std::u16string TextOf(DWORD number)
{
    std::array<WCHAR, 250> text{};
    LoadStringW(nullptr, number, text.data(), static_cast<int>(text.size()));
    return text.data();
}

DWORD KeptAnswer(const WCHAR *pszKey)
{
    DWORD answer = answerAsk;
    if (pszKey == nullptr || GetFromRegistry(HKEY_CURRENT_USER, ignoreKey, pszKey, &answer) != 0)
    {
        return answerAsk;
    }
    return answer >= answerAsk && answer <= answerYes ? answer : answerAsk;
}

void KeepAnswer(const WCHAR *pszKey, int button, bool bNoStaysQuestion)
{
    if (button == yesButton)
    {
        SetToRegistry(HKEY_CURRENT_USER, ignoreKey, pszKey, answerYes);
    }
    else if (button == noButton)
    {
        SetToRegistry(HKEY_CURRENT_USER, ignoreKey, pszKey, bNoStaysQuestion ? answerAsk : answerNo);
    }
}

std::u16string Words(const WCHAR *text)
{
    return text == nullptr ? std::u16string() : std::u16string(text);
}

/// A control's place in its dialog.
RECT PlaceIn(HWND hDlg, HWND hControl)
{
    RECT place{};
    GetWindowRect(hControl, &place);
    MapWindowPoints(nullptr, hDlg, reinterpret_cast<POINT *>(&place), 2);
    return place;
}
} // namespace

CKelvoMBoxDialog::CKelvoMBoxDialog(std::u16string text, std::u16string title, std::array<std::u16string, 3> buttons,
                                   bool bCheck)
    : m_text(std::move(text)), m_title(std::move(title)), m_buttons(std::move(buttons)), m_bCheck(bCheck)
{
}

CKelvoMBoxDialog::~CKelvoMBoxDialog() = default;

LONG_PTR CKelvoMBoxDialog::Run(HWND hOwner)
{
    return DoModal(MAKEINTRESOURCEW(dialogNumber), hOwner);
}

LRESULT CKelvoMBoxDialog::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    SetWindowTextW(m_hWnd, m_title.c_str());
    SetDlgItemTextW(m_hWnd, textId, m_text.c_str());
    SetDlgItemTextW(m_hWnd, checkId, TextOf(dontAskText).c_str());
    ShowWindow(GetDlgItem(m_hWnd, checkId), m_bCheck ? SW_SHOW : SW_HIDE);
    for (int n = 0; n < 3; ++n)
    {
        const HWND button = GetDlgItem(m_hWnd, firstButtonId + n);
        SetWindowTextW(button, m_buttons[static_cast<std::size_t>(n)].c_str());
        ShowWindow(button, m_buttons[static_cast<std::size_t>(n)].empty() ? SW_HIDE : SW_SHOW);
    }
    FitToText();
    return CeBaseDialog::OnInitDialog(hFocus, lParam);
}

int CKelvoMBoxDialog::ButtonWidth(HDC hdc, HWND hButton) const
{
    RECT least{0, 0, 44, 0};
    MapDialogRect(m_hWnd, &least);
    const std::u16string text = static_cast<const WCHAR *>(CeBaseWnd(hButton).CopyWindowText());
    SIZE size{};
    GetTextExtentPoint32W(hdc, text.c_str(), static_cast<int>(text.size()), &size);
    return std::max<int>(least.right, size.cx + size.cy);
}

int CKelvoMBoxDialog::PlaceButtons(int nTop, int nWidth)
{
    std::vector<HWND> buttons;
    std::vector<int> widths;
    const HDC hdc = GetDC(m_hWnd);
    const HGDIOBJ former = SelectObject(hdc, reinterpret_cast<HFONT>(SendMessageW(m_hWnd, WM_GETFONT, 0, 0)));
    for (int n = 0; n < 3; ++n)
    {
        if (!m_buttons[static_cast<std::size_t>(n)].empty())
        {
            buttons.push_back(GetDlgItem(m_hWnd, firstButtonId + n));
            widths.push_back(ButtonWidth(hdc, buttons.back()));
        }
    }
    SelectObject(hdc, former);
    ReleaseDC(m_hWnd, hdc);
    RECT gap{0, 0, 3, 14};
    MapDialogRect(m_hWnd, &gap);
    const int count = static_cast<int>(widths.size());
    const int gaps = gap.right * std::max(count - 1, 0);
    const int tooMuch = std::accumulate(widths.begin(), widths.end(), 0) + gaps - nWidth;
    for (int &width : widths)
    {
        width -= tooMuch > 0 ? (tooMuch + count - 1) / count : 0; // narrow screens: all of them fit, none is cut
    }
    const int all = std::accumulate(widths.begin(), widths.end(), 0) + gaps;
    int left = std::max((nWidth - all) / 2, 0);
    for (std::size_t n = 0; n < buttons.size(); ++n)
    {
        MoveWindow(buttons[n], left, nTop, widths[n], gap.bottom, FALSE);
        left += widths[n] + gap.right;
    }
    return gap.bottom;
}

/// The template's width, or what a narrower screen has.
int CKelvoMBoxDialog::ClientWidth() const
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    RECT window{};
    GetWindowRect(m_hWnd, &window);
    const int frame = window.right - window.left - client.right;
    return std::min<int>(client.right, GetSystemMetrics(SM_CXSCREEN) - frame);
}

/// The text gets the height that it needs at the dialog's width; what stands below it moves down, and the dialog ends
/// below the buttons.
void CKelvoMBoxDialog::FitToText()
{
    const int width = ClientWidth();
    const HWND text = GetDlgItem(m_hWnd, textId);
    RECT place = PlaceIn(m_hWnd, text);
    place.right = std::min<LONG>(place.right, width - place.left);
    RECT needed{0, 0, place.right - place.left, 0};
    const HDC hdc = GetDC(text);
    const HGDIOBJ former = SelectObject(hdc, reinterpret_cast<HFONT>(SendMessageW(m_hWnd, WM_GETFONT, 0, 0)));
    DrawTextW(hdc, m_text.c_str(), -1, &needed, DT_WORDBREAK | DT_NOPREFIX | DT_CALCRECT);
    SelectObject(hdc, former);
    ReleaseDC(text, hdc);
    const int margin = place.top;
    place.bottom = place.top + needed.bottom;
    MoveWindow(text, place.left, place.top, place.right - place.left, needed.bottom, FALSE);
    int top = place.bottom + margin;
    if (m_bCheck)
    {
        const HWND check = GetDlgItem(m_hWnd, checkId);
        const RECT box = PlaceIn(m_hWnd, check);
        MoveWindow(check, box.left, top, std::min<LONG>(box.right, width - box.left) - box.left, box.bottom - box.top,
                   FALSE);
        top += box.bottom - box.top + margin;
    }
    RECT client{0, 0, width, top + PlaceButtons(top, width) + margin};
    AdjustWindowRectEx(&client, static_cast<DWORD>(GetWindowLongW(m_hWnd, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongW(m_hWnd, GWL_EXSTYLE)));
    SetWindowPos(m_hWnd, nullptr, 0, 0, client.right - client.left, client.bottom - client.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CKelvoMBoxDialog::OnCommand(WPARAM wParam, LPARAM, bool &handled)
{
    const int button = LOWORD(wParam) - firstButtonId;
    if (button >= 0 && button < 3 && HIWORD(wParam) == BN_CLICKED)
    {
        handled = true;
        EndWith(button);
    }
    return 0;
}

void CKelvoMBoxDialog::OnOK()
{
    EndWith(0);
}

void CKelvoMBoxDialog::OnCancel()
{
    const auto last =
        std::find_if(m_buttons.rbegin(), m_buttons.rend(), [](const auto &text) { return !text.empty(); });
    EndWith(last == m_buttons.rend() ? noButton : static_cast<int>(m_buttons.rend() - last) - 1);
}

void CKelvoMBoxDialog::EndWith(int nButton)
{
    m_bChecked = m_bCheck && IsDlgButtonChecked(m_hWnd, checkId) != 0;
    EndDialog(m_hWnd, nButton);
}

int CKelvoMBox::MessageBoxW(const WCHAR *pszKey, const WCHAR *pszTitle, DWORD nText, DWORD nButton1, DWORD nButton2,
                            DWORD, HWND hOwner, bool bNoStaysQuestion)
{
    const DWORD kept = KeptAnswer(pszKey);
    if (kept != answerAsk)
    {
        return kept == answerYes ? 1 : 0;
    }
    int check = 0;
    const int button = MakeKelvoMBox(hOwner, TextOf(nText).c_str(), pszTitle, TextOf(nButton1).c_str(), nullptr,
                                     TextOf(nButton2).c_str(), pszKey != nullptr ? &check : nullptr);
    if (check != 0)
    {
        KeepAnswer(pszKey, button, bNoStaysQuestion);
    }
    return button == yesButton ? 1 : 0;
}

int CKelvoMBox::MakeKelvoMBox(HWND hOwner, const WCHAR *pszText, const WCHAR *pszTitle, const WCHAR *pszButton1,
                              const WCHAR *pszButton2, const WCHAR *pszButton3, int *pnCheck)
{
    CKelvoMBoxDialog dialog(Words(pszText), Words(pszTitle), {Words(pszButton1), Words(pszButton2), Words(pszButton3)},
                            pnCheck != nullptr);
    const auto button = static_cast<int>(dialog.Run(hOwner));
    if (pnCheck != nullptr)
    {
        *pnCheck = dialog.IsChecked() ? 1 : 0;
    }
    // A dialog that can't be made answers like its last button: nothing is done unasked.
    return button < 0 ? noButton : button;
}
