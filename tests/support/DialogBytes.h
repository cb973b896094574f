// The bytes of a dialog template, for tests that make dialogs.
#pragma once

#include "platform/dialog.h"
#include "platform/dialog_template.h"

#include <string_view>
#include <vector>

namespace zb::test
{
class DialogBytes
{
  public:
    /// Places are in dialog units.
    DialogBytes(DWORD style, int x, int y, int width, int height, std::u16string_view title = u"")
    {
        doubleWord(style);
        doubleWord(0);
        word(0); // number of items, counted below
        for (const int side : {x, y, width, height})
        {
            word(static_cast<unsigned>(side));
        }
        word(0);
        word(0);
        text(title);
    }
    DialogBytes &item(WORD className, DWORD style, int x, int y, int width, int height, WORD id,
                      std::u16string_view title = u"")
    {
        begin(style, x, y, width, height, id);
        word(0xFFFF);
        word(className);
        text(title);
        word(0);
        return *this;
    }
    DialogBytes &item(std::u16string_view className, DWORD style, int x, int y, int width, int height, WORD id,
                      std::u16string_view title = u"")
    {
        begin(style, x, y, width, height, id);
        text(className);
        text(title);
        word(0);
        return *this;
    }
    const void *data() const
    {
        return m_bytes.data();
    }

  private:
    static constexpr std::size_t countAt = 8;

    void begin(DWORD style, int x, int y, int width, int height, WORD id)
    {
        while (m_bytes.size() % 4 != 0)
        {
            m_bytes.push_back(0);
        }
        ++m_bytes[countAt];
        doubleWord(style | WS_CHILD | WS_VISIBLE);
        doubleWord(0);
        for (const int side : {x, y, width, height, static_cast<int>(id)})
        {
            word(static_cast<unsigned>(side));
        }
    }
    void word(unsigned value)
    {
        m_bytes.push_back(static_cast<BYTE>(value));
        m_bytes.push_back(static_cast<BYTE>(value >> 8U));
    }
    void doubleWord(DWORD value)
    {
        word(value & 0xFFFFU);
        word(value >> 16U);
    }
    void text(std::u16string_view value)
    {
        for (const WCHAR ch : value)
        {
            word(ch);
        }
        word(0);
    }

    std::vector<BYTE> m_bytes;
};

/// A dialog's procedure for tests: writes down commands, answers them by ending, if told so.
struct DialogHost
{
    std::vector<std::pair<int, int>> commands; ///< id and code
    std::vector<UINT> messages;
    LONG_PTR initAnswer = 1;
    HWND dialog = nullptr;
    HWND firstFocus = nullptr;
    LPARAM parameter = 0;
    bool endsOnCommand = false;
    void (*onInit)(DialogHost &) = nullptr;

    static LONG_PTR procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_INITDIALOG)
        {
            SetWindowLongW(dialog, DWL_USER, lParam);
        }
        auto *host = reinterpret_cast<DialogHost *>(GetWindowLongW(dialog, DWL_USER));
        return host == nullptr ? 0 : host->take(dialog, message, wParam, lParam);
    }

    LONG_PTR take(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        messages.push_back(message);
        switch (message)
        {
        case WM_INITDIALOG:
            dialog = window;
            firstFocus = reinterpret_cast<HWND>(wParam);
            parameter = lParam;
            if (onInit != nullptr)
            {
                onInit(*this);
            }
            return initAnswer;
        case WM_COMMAND:
            commands.emplace_back(LOWORD(wParam), HIWORD(wParam));
            if (endsOnCommand && HIWORD(wParam) == 0)
            {
                EndDialog(window, LOWORD(wParam));
            }
            return 1;
        default:
            return 0;
        }
    }
    /// The ids of the buttons that were clicked, and then nothing.
    std::vector<int> clicked()
    {
        std::vector<int> ids;
        for (const auto &[id, code] : commands)
        {
            if (code == 0)
            {
                ids.push_back(id);
            }
        }
        commands.clear();
        return ids;
    }
};
} // namespace zb::test
