// Messages as dialogs on the screen: a picture, the text, and one to three buttons below it.
//
// The dialog is as wide as its text needs, up to what is easily read or the screen holds, and as high as that text then
// is; on a screen that is too small for all of it the text is cut, never the buttons.
#include "platform/linux/message_dialog.h"

#include "platform/controls.h"
#include "platform/dialog.h"
#include "platform/image_list.h"
#include "platform/kernel.h"
#include "platform/linux/control.h"
#include "platform/linux/device_state.h"
#include "platform/resources.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace zb::internal
{
namespace
{
constexpr UINT firstWord = 60000; ///< words of the buttons in the texts: this and the button's id
constexpr int textId = 1000;
constexpr int pictureId = 1001;

int dots(int pixels)
{
    return (pixels * currentScreen().dotsPerInch + 48) / 96;
}

std::vector<int> buttonsOf(UINT flags)
{
    switch (flags & MB_TYPEMASK)
    {
    case MB_OKCANCEL:
        return {IDOK, IDCANCEL};
    case MB_ABORTRETRYIGNORE:
        return {IDABORT, IDRETRY, IDIGNORE};
    case MB_YESNOCANCEL:
        return {IDYES, IDNO, IDCANCEL};
    case MB_YESNO:
        return {IDYES, IDNO};
    case MB_RETRYCANCEL:
        return {IDRETRY, IDCANCEL};
    default:
        return {IDOK};
    }
}

/// The number of the picture; 0 for none.
WORD pictureOf(UINT flags)
{
    switch (flags & MB_ICONMASK)
    {
    case MB_ICONERROR:
        return 510;
    case MB_ICONQUESTION:
        return 511;
    case MB_ICONWARNING:
        return 512;
    case MB_ICONINFORMATION:
        return 513;
    default:
        return 0;
    }
}

/// The system's own resources, whatever module the host has set for itself.
class SystemResources
{
  public:
    SystemResources() : m_module(LoadLibraryW(u"ZBResources.dll"))
    {
    }
    ~SystemResources()
    {
        FreeLibrary(m_module);
    }
    SystemResources(const SystemResources &) = delete;
    SystemResources &operator=(const SystemResources &) = delete;

    std::u16string text(UINT number) const
    {
        std::array<WCHAR, 100> words{};
        LoadStringW(m_module, number, words.data(), static_cast<int>(words.size()));
        return words.data();
    }
    HBITMAP picture(WORD number) const
    {
        return number == 0 ? nullptr : LoadBitmapW(m_module, MAKEINTRESOURCEW(number));
    }

  private:
    HINSTANCE m_module;
};

class MessageDialog
{
  public:
    MessageDialog(std::u16string_view text, std::u16string_view caption, UINT flags)
        : m_text(text), m_caption(caption), m_flags(flags), m_buttons(buttonsOf(flags)), m_words(),
          m_picture(m_resources.picture(pictureOf(flags)))
    {
        for (const int button : m_buttons)
        {
            m_words.push_back(m_resources.text(firstWord + static_cast<UINT>(button)));
        }
    }
    ~MessageDialog()
    {
        DeleteObject(m_picture);
    }
    MessageDialog(const MessageDialog &) = delete;
    MessageDialog &operator=(const MessageDialog &) = delete;

    int run(HWND owner)
    {
        // No items: they are made when their sizes are known. Without a caption there is no bar for it.
        const DWORD style = WS_POPUP | (m_caption.empty() ? WS_BORDER : WS_CAPTION);
        const DWORD exStyle = (m_flags & MB_TOPMOST) != 0 ? WS_EX_TOPMOST : 0;
        const std::array<DWORD, 7> bytes = {style, exStyle, 0, 0, 0, 0, 0};
        const LONG_PTR result =
            DialogBoxIndirectParamW(nullptr, bytes.data(), owner, procedure, reinterpret_cast<LPARAM>(this));
        return result < 0 ? 0 : static_cast<int>(result);
    }

  private:
    static LONG_PTR procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
    {
        switch (message)
        {
        case WM_INITDIALOG:
            SetWindowLongW(dialog, DWL_USER, lParam);
            reinterpret_cast<MessageDialog *>(lParam)->build(dialog);
            return 0;
        case WM_COMMAND:
            reinterpret_cast<MessageDialog *>(GetWindowLongW(dialog, DWL_USER))->answer(dialog, LOWORD(wParam));
            return 1;
        default:
            return 0;
        }
    }

    bool has(int button) const
    {
        return std::ranges::find(m_buttons, button) != m_buttons.end();
    }

    void answer(HWND dialog, int command) const
    {
        // Escape and the close button: only where nothing is decided by them.
        const int button = command == IDCANCEL && !has(IDCANCEL) && m_buttons.size() == 1 ? IDOK : command;
        if (has(button))
        {
            EndDialog(dialog, button);
        }
    }

    void measure()
    {
        const HDC context = CreateCompatibleDC(nullptr);
        const HGDIOBJ former = SelectObject(context, systemFont());
        TEXTMETRICW metrics{};
        GetTextMetricsW(context, &metrics);
        m_buttonHeight = std::max(dots(26), static_cast<int>(metrics.tmHeight) + dots(10));
        for (const std::u16string &words : m_words)
        {
            RECT box{};
            DrawTextW(context, words.c_str(), -1, &box, DT_SINGLELINE | DT_CALCRECT);
            m_buttonWidth = std::max({m_buttonWidth, static_cast<int>(box.right) + dots(20), dots(60)});
        }
        BITMAP bitmap{};
        if (m_picture != nullptr && GetObjectW(m_picture, sizeof bitmap, &bitmap) != 0)
        {
            m_pictureSize = {bitmap.bmWidth, bitmap.bmHeight};
        }
        const int beside = m_pictureSize.cx == 0 ? 0 : m_pictureSize.cx + m_gap;
        const int room = std::min(GetSystemMetrics(SM_CXSCREEN) - 2 * GetSystemMetrics(SM_CXDLGFRAME), dots(320)) -
                         2 * m_margin - beside;
        RECT box{0, 0, std::max(room, 1), 0};
        DrawTextW(context, m_text.c_str(), -1, &box, DT_WORDBREAK | DT_NOPREFIX | DT_CALCRECT);
        m_textSize = {std::min<int>(box.right, std::max(room, 1)), box.bottom};
        SelectObject(context, former);
        DeleteDC(context);
    }

    int buttonsWidth() const
    {
        const auto count = static_cast<int>(m_buttons.size());
        return count * m_buttonWidth + (count - 1) * m_gap;
    }

    void build(HWND dialog)
    {
        m_margin = dots(10);
        m_gap = dots(8);
        measure();
        SetWindowTextW(dialog, m_caption.c_str());
        RECT frame{};
        const auto style = static_cast<DWORD>(GetWindowLongW(dialog, GWL_STYLE));
        AdjustWindowRectEx(&frame, style, FALSE, 0);
        const int most = GetSystemMetrics(SM_CYSCREEN) - (frame.bottom - frame.top) - 3 * m_margin - m_buttonHeight;
        const int beside = m_pictureSize.cx == 0 ? 0 : m_pictureSize.cx + m_gap;
        const int upper = std::max(std::min<int>(std::max(m_textSize.cy, m_pictureSize.cy), most), 0);
        const int width =
            std::max(beside + static_cast<int>(m_textSize.cx), std::max(buttonsWidth(), dots(140))) + 2 * m_margin;
        const int height = upper + m_buttonHeight + 3 * m_margin;
        place(dialog, frame, width, height);
        makeUpper(dialog, beside, upper, width);
        makeButtons(dialog, (width - buttonsWidth()) / 2, upper + 2 * m_margin);
    }

    static void place(HWND dialog, RECT frame, int width, int height)
    {
        const int wide = width + frame.right - frame.left;
        const int high = height + frame.bottom - frame.top;
        SetWindowPos(dialog, nullptr, std::max((GetSystemMetrics(SM_CXSCREEN) - wide) / 2, 0),
                     std::max((GetSystemMetrics(SM_CYSCREEN) - high) / 2, 0), wide, high,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }

    static HWND make(HWND dialog, const WCHAR *type, const std::u16string &text, DWORD style, RECT at, int id)
    {
        return CreateWindowExW(0, type, text.c_str(), style | WS_CHILD | WS_VISIBLE, at.left, at.top,
                               at.right - at.left, at.bottom - at.top, dialog,
                               reinterpret_cast<void *>(static_cast<LONG_PTR>(id)), nullptr, nullptr);
    }

    void makeUpper(HWND dialog, int beside, int height, int width) const
    {
        if (m_picture != nullptr)
        {
            const RECT at{m_margin, m_margin, m_margin + m_pictureSize.cx,
                          m_margin + std::min<int>(height, m_pictureSize.cy)};
            const HWND picture = make(dialog, u"STATIC", u"", SS_BITMAP, at, pictureId);
            SendMessageW(picture, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(m_picture));
        }
        // Fewer lines than the picture is high stand in its middle.
        const int top = m_margin + std::max<int>((height - m_textSize.cy) / 2, 0);
        make(dialog, u"STATIC", m_text, SS_NOPREFIX, {m_margin + beside, top, width - m_margin, m_margin + height},
             textId);
    }

    void makeButtons(HWND dialog, int left, int top) const
    {
        const std::size_t chosen = std::min<std::size_t>((m_flags & MB_DEFMASK) >> 8U, m_buttons.size() - 1);
        for (std::size_t i = 0; i < m_buttons.size(); ++i)
        {
            const DWORD style = WS_TABSTOP | (i == 0 ? WS_GROUP : 0) | (i == chosen ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON);
            const HWND button = make(dialog, u"BUTTON", m_words[i], style,
                                     {left, top, left + m_buttonWidth, top + m_buttonHeight}, m_buttons[i]);
            if (i == chosen)
            {
                SendMessageW(dialog, DM_SETDEFID, static_cast<WPARAM>(m_buttons[i]), 0);
                SetFocus(button);
            }
            left += m_buttonWidth + m_gap;
        }
    }

    std::u16string m_text;
    std::u16string m_caption;
    UINT m_flags;
    std::vector<int> m_buttons;
    SystemResources m_resources;
    std::vector<std::u16string> m_words;
    HBITMAP m_picture;
    int m_margin = 0;
    int m_gap = 0;
    int m_buttonWidth = 0;
    int m_buttonHeight = 0;
    SIZE m_pictureSize{0, 0};
    SIZE m_textSize{0, 0};
};
} // namespace

int runMessageDialog(HWND owner, std::u16string_view text, std::u16string_view caption, UINT flags)
{
    return MessageDialog(text, caption, flags).run(owner);
}
} // namespace zb::internal
