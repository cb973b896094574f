// A picture of marked-up cells, one row under the other: what `zb agenda` and `zb shot` draw.
#pragma once

#include "display/CHTMLParser.h"
#include "platform/gdi.h"
#include "zb/picture_window.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zb::cli
{
/// Colours are of COLORREF. Lengths are pixels of 96 dots an inch.
struct SheetRow
{
    std::u16string text;                ///< markup, in the column that takes the width that is left
    std::u16string side;                ///< markup of the column in front of it, set to the right
    std::optional<COLORREF> strip;      ///< between the two
    COLORREF back = RGB(255, 255, 255);
    bool spread = false;                ///< the text takes the whole width
    bool ruled = false;                 ///< a fine line stands below it
    int padding = 5;                    ///< above and below
};

class CellSheet
{
  public:
    /// `width` in pixels of the screen of the open device.
    explicit CellSheet(int width);

    void add(SheetRow row);
    /// Draws all rows and writes them as PNG. False, with last error set, when that fails: 8 for a picture too high.
    bool write(const std::filesystem::path &file) const;

  private:
    /// A row with its text parsed, and where it lies.
    struct Placed
    {
        const SheetRow *row;
        std::unique_ptr<CHTMLParser> text;
        int top;
        int height;
    };

    std::unique_ptr<CHTMLParser> parsed(const SheetRow &row, const std::u16string &markup) const;
    int sideWidth(HDC context) const;
    std::vector<Placed> place(HDC context, int textLeft) const;
    void draw(HDC context, const Placed &placed, int side, int textLeft) const;

    int m_width;
    PictureWindow m_pictures;
    std::vector<SheetRow> m_rows;
};
} // namespace zb::cli
