// The least that drawing text can cost: glyphs rendered once by FreeType, kept by number, blended onto 32-bit pixels;
// the advances summed up for measuring. And the same behind HarfBuzz, for scripts that need it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace zb::bench
{
/// 32-bit pixels, row by row.
struct Canvas
{
    int width;
    int height;
    std::vector<std::uint32_t> pixels;
    Canvas(int columns, int rows)
        : width(columns), height(rows), pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows))
    {
    }
};

class BareGlyphs
{
  public:
    BareGlyphs(const std::filesystem::path &file, int pixelsPerEm);
    ~BareGlyphs();
    BareGlyphs(const BareGlyphs &) = delete;
    BareGlyphs &operator=(const BareGlyphs &) = delete;

    /// Latin-1 text on two lines: measured from the left to where the width ends, broken behind the last blank before
    /// that, drawn black.
    void cell(Canvas &canvas, std::u16string_view text);
    /// Right-to-left text, shaped once and broken likewise.
    void shapedCell(Canvas &canvas, std::u16string_view text);

  private:
    struct State;
    std::unique_ptr<State> m_state;
};
} // namespace zb::bench
