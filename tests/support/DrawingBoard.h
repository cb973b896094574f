// A bitmap to draw on, with a context of its own, and its pixels to look at.
#pragma once

#include "platform/gdi.h"
#include "platform/image.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace zb::test
{
/// Like the screen (or black and white), `ground` all over at first.
class DrawingBoard
{
  public:
    DrawingBoard(int width, int height, COLORREF ground = RGB(255, 255, 255), bool monochrome = false)
        : m_width(width), m_height(height), m_context(CreateCompatibleDC(nullptr)),
          m_bitmap(CreateBitmap(width, height, 1, monochrome ? 1 : 32, nullptr)),
          m_former(SelectObject(m_context, m_bitmap))
    {
        EXPECT_NE(m_former, nullptr);
        clear(ground);
    }
    ~DrawingBoard()
    {
        SelectObject(m_context, m_former);
        DeleteDC(m_context);
        DeleteObject(m_bitmap);
    }
    DrawingBoard(const DrawingBoard &) = delete;
    DrawingBoard &operator=(const DrawingBoard &) = delete;

    HDC context() const
    {
        return m_context;
    }
    HBITMAP bitmap() const
    {
        return m_bitmap;
    }
    int width() const
    {
        return m_width;
    }
    int height() const
    {
        return m_height;
    }
    void clear(COLORREF ground)
    {
        const RECT all{0, 0, m_width, m_height};
        HBRUSH brush = CreateSolidBrush(ground);
        EXPECT_TRUE(FillRect(m_context, &all, brush));
        DeleteObject(brush);
    }
    std::vector<std::uint32_t> pixels() const
    {
        return pixelsOf(m_bitmap);
    }
    /// 0x00RRGGBB.
    std::uint32_t at(int x, int y) const
    {
        return pixels().at(static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
                           static_cast<std::size_t>(x));
    }
    /// A line of text for each row: '.' white, '#' black, 'r' 'g' 'b' the pure colours, '?' any other.
    std::string picture() const
    {
        std::string text;
        int column = 0;
        for (const std::uint32_t pixel : pixels())
        {
            text += letterOf(pixel);
            if (++column == m_width)
            {
                text += '\n';
                column = 0;
            }
        }
        return text;
    }

  private:
    static char letterOf(std::uint32_t pixel)
    {
        switch (pixel)
        {
        case 0xFFFFFF:
            return '.';
        case 0x000000:
            return '#';
        case 0xFF0000:
            return 'r';
        case 0x00FF00:
            return 'g';
        case 0x0000FF:
            return 'b';
        default:
            return '?';
        }
    }

    int m_width;
    int m_height;
    HDC m_context;
    HBITMAP m_bitmap;
    HGDIOBJ m_former;
};
} // namespace zb::test
