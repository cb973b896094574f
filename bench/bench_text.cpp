// What a cell of text costs: 63 characters measured, broken into two lines and drawn, as the rows of lists are, beside
// a new Pango layout and beside glyphs of FreeType kept bare; and the same in Arabic beside HarfBuzz with kept glyphs.
//
// Aims, parsing of markup included: 0.1 of Pango, 1.7 of the bare glyphs, 1.3 of HarfBuzz. Nothing is allocated for a
// character.
#include "platform/gdi.h"
#include "platform/text.h"
#include "support/BareGlyphs.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"
#if defined(ZB_BENCH_PANGO)
#include "support/PangoCell.h"
#endif

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <random>

namespace
{
std::atomic<std::size_t> allocations{0};
} // namespace

void *operator new(std::size_t size)
{
    ++allocations;
    if (void *memory = std::malloc(size))
    {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept
{
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace
{
constexpr const char *faceFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr int pixelsPerEm = 13;
constexpr int cellWidth = 240;
constexpr int cellHeight = 40;
constexpr std::size_t cellCount = 2'000;
constexpr std::size_t cellLength = 63;

/// Words as often as they come in a language: few very often, many seldom.
class CellMaker
{
  public:
    CellMaker(char16_t first, unsigned letters, std::size_t words) : m_words(words)
    {
        for (std::u16string &word : m_words)
        {
            for (auto length = 2 + m_random() % 8; length > 0; --length)
            {
                word += static_cast<char16_t>(first + m_random() % letters);
            }
        }
    }
    std::u16string make()
    {
        std::u16string text;
        while (text.size() < cellLength)
        {
            const std::size_t rank = m_random() % m_words.size();
            text += m_words[rank * (m_random() % m_words.size()) / m_words.size()];
            text += u' ';
        }
        text.resize(cellLength);
        text.back() = text.front() == u' ' ? text.back() : text[0];
        return text;
    }
    std::vector<std::u16string> cells()
    {
        std::vector<std::u16string> made(cellCount);
        for (std::u16string &cell : made)
        {
            cell = make();
        }
        return made;
    }

  private:
    std::mt19937 m_random{20'261'121};
    std::vector<std::u16string> m_words;
};

zb::DeviceOptions optionsOfStage()
{
    zb::DeviceOptions options;
    options.fonts.files = {faceFile};
    return options;
}

/// A context with a bitmap of a cell's size and the font of the lists.
class Board
{
  public:
    Board()
    {
        static const zb::bench::DeviceStage stage(optionsOfStage());
        m_context = CreateCompatibleDC(nullptr);
        m_bitmap = CreateBitmap(cellWidth, cellHeight, 1, 32, nullptr);
        SelectObject(m_context, m_bitmap);
        LOGFONTW font{};
        font.lfHeight = -pixelsPerEm;
        SelectObject(m_context, CreateFontIndirectW(&font));
        SetBkMode(m_context, TRANSPARENT);
    }

    /// As the renderer of lists does it: measure all, look for the blank to break behind, measure and draw each part.
    void cell(std::u16string_view text) const
    {
        int y = 0;
        while (!text.empty())
        {
            SIZE size{};
            int count = static_cast<int>(text.size());
            GetTextExtentExPointW(m_context, text.data(), count, 0, nullptr, nullptr, &size);
            if (size.cx > cellWidth)
            {
                GetTextExtentExPointW(m_context, text.data(), count, cellWidth, &count, nullptr, &size);
                const std::size_t blank = text.substr(0, static_cast<std::size_t>(count)).find_last_of(u' ');
                count = blank == std::u16string_view::npos ? count : static_cast<int>(blank) + 1;
                GetTextExtentExPointW(m_context, text.data(), count, 0, nullptr, nullptr, &size);
            }
            const RECT clip{0, y, cellWidth, y + size.cy};
            ExtTextOutW(m_context, 0, y, ETO_CLIPPED, &clip, text.data(), static_cast<UINT>(count), nullptr);
            text.remove_prefix(static_cast<std::size_t>(count));
            y += size.cy;
        }
    }

  private:
    HDC m_context;
    HBITMAP m_bitmap;
};

template <typename Floor>
void compareCells(benchmark::State &state, const std::vector<std::u16string> &cells, Floor floorCell)
{
    const Board board;
    const auto floor = [&]
    {
        for (std::size_t n = 0; n < cells.size(); ++n)
        {
            floorCell(n);
        }
    };
    const auto ours = [&]
    {
        for (const std::u16string &text : cells)
        {
            board.cell(text);
        }
    };
    zb::bench::compareInRounds(state, zb::bench::threadSeconds, floor, ours);
    const std::size_t before = allocations;
    ours();
    state.counters["allocations"] = static_cast<double>(allocations - before) / static_cast<double>(cells.size());
}

void simpleBesideBareGlyphs(benchmark::State &state)
{
    const auto cells = CellMaker(u'a', 26, 2'000).cells();
    zb::bench::BareGlyphs bare(faceFile, pixelsPerEm);
    zb::bench::Canvas canvas(cellWidth, cellHeight);
    compareCells(state, cells, [&](std::size_t n) { bare.cell(canvas, cells[n]); });
}

/// `words` 0: no word comes twice.
void arabicBesideHarfBuzz(benchmark::State &state)
{
    const auto cells = CellMaker(u'\u0628', 19, static_cast<std::size_t>(state.range(0))).cells();
    zb::bench::BareGlyphs bare(faceFile, pixelsPerEm);
    zb::bench::Canvas canvas(cellWidth, cellHeight);
    compareCells(state, cells, [&](std::size_t n) { bare.shapedCell(canvas, cells[n]); });
}

#if defined(ZB_BENCH_PANGO)
void besidePango(benchmark::State &state, const std::vector<std::u16string> &cells)
{
    std::vector<std::string> texts;
    for (const std::u16string &cell : cells)
    {
        texts.push_back(zb::toUtf8(cell));
    }
    zb::bench::PangoCell pango(cellWidth, cellHeight, "DejaVu Sans", pixelsPerEm);
    compareCells(state, cells, [&](std::size_t n) { pango.cell(texts[n]); });
}
void simpleBesidePango(benchmark::State &state)
{
    besidePango(state, CellMaker(u'a', 26, 2'000).cells());
}
void arabicBesidePango(benchmark::State &state)
{
    besidePango(state, CellMaker(u'\u0628', 19, 2'000).cells());
}
BENCHMARK(simpleBesidePango)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(arabicBesidePango)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
#endif

BENCHMARK(simpleBesideBareGlyphs)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(arabicBesideHarfBuzz)
    ->Arg(2'000)
    ->Arg(1'000'000)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
