// What tests of text share: a device with the faces of TestFace.h alone, fonts that end themselves, measuring.
#pragma once

#include "platform/gdi.h"
#include "support/DrawingBoard.h"
#include "support/TestDevice.h"
#include "support/TestFace.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zb::test
{
/// A description with hard edges, so that every pixel is black or white.
inline LOGFONTW plainFont(LONG height, std::u16string_view family = u"Test Sans")
{
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = FW_NORMAL;
    font.lfQuality = NONANTIALIASED_QUALITY;
    family.copy(font.lfFaceName, LF_FACESIZE - 1);
    return font;
}

/// A font, selected into a context as long as this lives.
class SelectedFont
{
  public:
    SelectedFont(HDC context, const LOGFONTW &description)
        : m_context(context), m_font(CreateFontIndirectW(&description)), m_former(SelectObject(context, m_font))
    {
        EXPECT_NE(m_former, nullptr);
    }
    ~SelectedFont()
    {
        SelectObject(m_context, m_former);
        DeleteObject(m_font);
    }
    SelectedFont(const SelectedFont &) = delete;
    SelectedFont &operator=(const SelectedFont &) = delete;
    HFONT handle() const
    {
        return m_font;
    }

  private:
    HDC m_context;
    HFONT m_font;
    HGDIOBJ m_former;
};

inline SIZE sizeOf(HDC context, std::u16string_view text)
{
    SIZE size{-1, -1};
    EXPECT_TRUE(GetTextExtentPoint32W(context, text.data(), static_cast<int>(text.size()), &size));
    return size;
}

inline int widthOf(HDC context, std::u16string_view text)
{
    return sizeOf(context, text).cx;
}

inline std::vector<int> extentsOf(HDC context, std::u16string_view text)
{
    std::vector<int> extents(text.size(), -1);
    SIZE size{};
    EXPECT_TRUE(
        GetTextExtentExPointW(context, text.data(), static_cast<int>(text.size()), 0, nullptr, extents.data(), &size));
    return extents;
}

inline int fitOf(HDC context, std::u16string_view text, int maximum)
{
    int fit = -1;
    SIZE size{};
    EXPECT_TRUE(
        GetTextExtentExPointW(context, text.data(), static_cast<int>(text.size()), maximum, &fit, nullptr, &size));
    return fit;
}

inline TEXTMETRICW metricsOf(HDC context)
{
    TEXTMETRICW metrics{};
    EXPECT_TRUE(GetTextMetricsW(context, &metrics));
    return metrics;
}

inline bool textOut(HDC context, int x, int y, std::u16string_view text, UINT options = 0, const RECT *box = nullptr,
                    const int *advances = nullptr)
{
    return ExtTextOutW(context, x, y, options, box, text.data(), static_cast<UINT>(text.size()), advances) != 0;
}

/// The smallest rectangle around all that differs from the ground; empty (all 0) when nothing does.
inline RECT inkOf(const DrawingBoard &board, std::uint32_t ground = 0xFFFFFF)
{
    RECT ink{INT_MAX, INT_MAX, 0, 0};
    const std::vector<std::uint32_t> pixels = board.pixels();
    for (int y = 0; y < board.height(); ++y)
    {
        for (int x = 0; x < board.width(); ++x)
        {
            if (pixels[static_cast<std::size_t>(y * board.width() + x)] != ground)
            {
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                       std::max(ink.bottom, y + 1)};
            }
        }
    }
    return ink.right == 0 ? RECT{} : ink;
}

/// A device whose faces are those of TestFace.h. Their files stay for as long as the device does.
class TextTest : public ::testing::Test
{
  protected:
    static DeviceOptions optionsWith(FontOptions fonts)
    {
        DeviceOptions options;
        options.fonts = std::move(fonts);
        return options;
    }

    TemporaryFolder faces;
    TestDevice device{optionsWith(testFonts(faces.path()))};
};

/// A device with the faces of the host; skips where there is no DejaVu.
class HostTextTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(dejaVu))
        {
            GTEST_SKIP() << "no DejaVu Sans here";
        }
    }
    static constexpr const char *dejaVu = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    static DeviceOptions dejaVuAlone()
    {
        DeviceOptions options;
        options.fonts.files = {dejaVu};
        return options;
    }
};
} // namespace zb::test
