// Parsed markup in a form to compare with, and a window that has pictures.
#pragma once

#include "display/CHTMLParser.h"
#include "display/NM_HTMLVIEW.h"
#include "support/MessageWindow.h"
#include "support/Scaling.h"

#include <map>
#include <string>
#include <vector>

namespace zb::test
{
inline LOGFONTW describeFont(HFONT font)
{
    LOGFONTW description{};
    GetObjectW(font, sizeof description, &description);
    return description;
}

inline std::string colorText(COLORREF color)
{
    char text[16];
    std::snprintf(text, sizeof text, "#%02X%02X%02X", GetRValue(color), GetGValue(color), GetBValue(color));
    return text;
}

inline std::string alignText(UINT format)
{
    static const std::map<UINT, std::string> words = {{0x810, ""}, {0x811, " center"}, {0x812, " right"}};
    const auto found = words.find(format);
    return found == words.end() ? " format " + std::to_string(format) : found->second;
}

inline std::string fontText(const LOGFONTW &font, LONG plainHeight)
{
    std::string text;
    text += font.lfHeight == plainHeight ? "" : " height " + std::to_string(font.lfHeight);
    text += font.lfWeight == 400 ? "" : " weight " + std::to_string(font.lfWeight);
    text += font.lfItalic == 0 ? "" : " italic";
    text += font.lfUnderline == 0 ? "" : " underline";
    text += font.lfStrikeOut == 0 ? "" : " strike";
    text += std::u16string_view(font.lfFaceName) == u"Tahoma" ? "" : " face \"" + utf8(font.lfFaceName) + '"';
    return text;
}

/// The current token in one line: its kind and text, and what differs from plain black text on black.
inline std::string dumpToken(CHTMLParser &parser)
{
    int length = 0;
    const std::u16string text = parser.GetCurrToken(&length);
    const std::string lengthText = " length " + std::to_string(length);
    if (parser.GetCurrTokenType() == TOKEN_TAG)
    {
        return (text == u"BR" ? "break" : "tag \"" + utf8(text) + '"') + (length == 2 ? "" : lengthText) +
               alignText(parser.GetCurrTextAlign());
    }
    if (parser.GetCurrTokenType() == TOKEN_IMAGE)
    {
        UINT height = 0;
        const HBITMAP bitmap = parser.GetCurrTokenBitmap(&height);
        return "image \"" + utf8(text) + '"' + lengthText + (height == 0 ? "" : " size " + std::to_string(height)) +
               (bitmap == nullptr ? "" : " bitmap") + alignText(parser.GetCurrTextAlign());
    }
    std::string line = "text \"" + utf8(text) + '"';
    line += length == static_cast<int>(text.size()) ? "" : lengthText;
    line += fontText(describeFont(parser.GetCurrFont()), 11 * g_HIDPI_ZBFontScale);
    line += parser.GetForeColor() == 0 ? "" : " fore " + colorText(parser.GetForeColor());
    line += parser.GetBackColor(false) == 0 ? "" : " back " + colorText(parser.GetBackColor(false));
    line += alignText(parser.GetCurrTextAlign());
    const std::u16string key = parser.GetCurrHREF();
    line += key.empty() ? "" : " key \"" + utf8(key) + '"';
    line += parser.GetCurrentTokenEditable() ? " editable" : "";
    return line;
}

/// All tokens; "body" and its colour first when that is not white.
inline std::vector<std::string> dumpTokens(CHTMLParser &parser)
{
    std::vector<std::string> lines;
    if (parser.GetBackColor(true) != RGB(255, 255, 255))
    {
        lines.push_back("body " + colorText(parser.GetBackColor(true)));
    }
    for (parser.FirstToken(); parser.EndOfTokens() == FALSE; parser.NextToken())
    {
        lines.push_back(dumpToken(parser));
    }
    return lines;
}

inline std::vector<std::string> dumpMarkup(const std::u16string &markup, HWND window = nullptr)
{
    CHTMLParser parser;
    parser.SetHTML(markup.c_str());
    parser.ParseHTML(window);
    return dumpTokens(parser);
}

/// A window that answers for the sources it has a bitmap of, and remembers what it was asked.
class PictureWindow
{
  public:
    struct Request
    {
        std::u16string source;
        UINT_PTR length;
        HWND from;
        UINT code;
        WPARAM wParam;
        bool operator==(const Request &) const = default;
    };

    PictureWindow()
        : m_procedure(
              [this](HWND window, UINT message, WPARAM wParam, LPARAM lParam)
              {
                  return message == WM_NOTIFY ? answer(wParam, *reinterpret_cast<NM_HTMLVIEW *>(lParam))
                                              : DefWindowProcW(window, message, wParam, lParam);
              }),
          m_window(m_class.make(&m_procedure))
    {
    }
    ~PictureWindow()
    {
        DestroyWindow(m_window);
        for (const auto &[source, bitmap] : m_bitmaps)
        {
            DeleteObject(bitmap);
        }
    }
    PictureWindow(const PictureWindow &) = delete;
    PictureWindow &operator=(const PictureWindow &) = delete;

    HWND handle() const
    {
        return m_window;
    }
    /// All of one colour.
    HBITMAP addBitmap(const std::u16string &source, int width, int height, COLORREF color = RGB(0, 0, 255))
    {
        const DWORD pixel = DWORD{GetRValue(color)} << 16U | DWORD{GetGValue(color)} << 8U | GetBValue(color);
        const std::vector<DWORD> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), pixel);
        return m_bitmaps[source] = CreateBitmap(width, height, 1, 32, pixels.data());
    }
    const std::vector<Request> &requests() const
    {
        return m_requests;
    }
    /// What else happens at a request.
    std::function<void()> onRequest;

  private:
    LRESULT answer(WPARAM wParam, NM_HTMLVIEW &record)
    {
        m_requests.push_back({record.szTarget, record.hdr.idFrom, record.hdr.hwndFrom, record.hdr.code, wParam});
        if (onRequest)
        {
            onRequest();
        }
        const auto found = m_bitmaps.find(record.szTarget);
        if (found == m_bitmaps.end())
        {
            record.dwCookie = 1; // not looked at, since the answer is 0
            return 0;
        }
        record.dwCookie = reinterpret_cast<DWORD_PTR>(found->second);
        return 1;
    }

    MessageWindowClass m_class{u"PictureWindow"};
    Procedure m_procedure;
    HWND m_window;
    std::map<std::u16string, HBITMAP> m_bitmaps;
    std::vector<Request> m_requests;
};
} // namespace zb::test
