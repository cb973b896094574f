// What a cell of marked-up text costs: a string of 63 characters parsed, measured and drawn on two lines, as a list
// does when a row comes into sight, beside a new Pango layout of the same text and beside bare glyphs of FreeType,
// which are only measured once and drawn; and the same in Arabic beside HarfBuzz with kept glyphs.
//
// Aims: at most 0.1 of Pango, 1.7 of the bare glyphs, 1.3 of HarfBuzz.
#include "display/DrawHTML.h"
#include "framework/HIDPI.h"
#include "framework/MemoryBitmap.h"
#include "platform/text.h"
#include "support/BareGlyphs.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"
#if defined(ZB_BENCH_PANGO)
#include "support/PangoCell.h"
#endif

#include <random>

namespace
{
constexpr const char *faceFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr int pixelsPerEm = 13;
constexpr int cellWidth = 240;
constexpr int cellHeight = 40;
constexpr std::size_t cellCount = 2'000;
constexpr std::size_t cellLength = 63;

/// Texts of words from a small vocabulary, a few of which come often.
std::vector<std::u16string> cellTexts(char16_t first, unsigned letters, std::size_t wordCount = 2'000)
{
    std::mt19937 random(20'261'121);
    std::vector<std::u16string> words(wordCount);
    for (std::u16string &word : words)
    {
        for (auto length = 2 + random() % 8; length > 0; --length)
        {
            word += static_cast<char16_t>(first + random() % letters);
        }
    }
    std::vector<std::u16string> texts(cellCount);
    for (std::u16string &text : texts)
    {
        while (text.size() < cellLength)
        {
            const std::size_t rank = random() % words.size();
            text += words[rank * (random() % words.size()) / words.size()] + u' ';
        }
        text.resize(cellLength);
        text.back() = text.back() == u' ' ? text.front() : text.back();
    }
    return texts;
}

/// The device, and a bitmap of a cell's size.
class Stage
{
  public:
    Stage() : m_stage(options())
    {
        HIDPI_InitScaling();
    }
    static HDC context()
    {
        static const Stage stage;
        static const zb::MemoryBitmap target(cellWidth, cellHeight);
        return target.context();
    }

  private:
    static zb::DeviceOptions options()
    {
        zb::DeviceOptions options;
        options.fonts.files = {faceFile};
        return options;
    }
    zb::bench::DeviceStage m_stage;
};

/// The markup that a list makes of the text: a font whose em has the 13 pixels of the floors.
std::vector<std::u16string> markupOf(const std::vector<std::u16string> &texts)
{
    std::vector<std::u16string> markup;
    for (const std::u16string &text : texts)
    {
        markup.push_back(u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=4>" + text + u"</FONT></BODY>");
    }
    return markup;
}

void drawCell(HDC context, CHTMLParser &parser, const std::u16string &markup)
{
    parser.SetHTML(markup.c_str());
    parser.ParseHTML(nullptr);
    RECT area = {0, 0, cellWidth, 0};
    MeasureHTML(context, &area, 0, &parser);
    area = {0, 0, cellWidth, cellHeight};
    DrawHTML(context, &area, 0, &parser, nullptr, 0);
}

template <typename Floor>
void compareCells(benchmark::State &state, const std::vector<std::u16string> &texts, Floor floorCell)
{
    const HDC context = Stage::context();
    const auto markup = markupOf(texts);
    CHTMLParser parser;
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds,
        [&]
        {
            for (std::size_t n = 0; n < texts.size(); ++n)
            {
                floorCell(n);
            }
        },
        [&]
        {
            for (const std::u16string &cell : markup)
            {
                drawCell(context, parser, cell);
            }
        });
}

void simpleBesideBareGlyphs(benchmark::State &state)
{
    const auto texts = cellTexts(u'a', 26);
    zb::bench::BareGlyphs bare(faceFile, pixelsPerEm);
    zb::bench::Canvas canvas(cellWidth, cellHeight);
    compareCells(state, texts, [&](std::size_t n) { bare.cell(canvas, texts[n]); });
}

void arabicBesideHarfBuzz(benchmark::State &state)
{
    const auto texts = cellTexts(u'\u0628', 19);
    zb::bench::BareGlyphs bare(faceFile, pixelsPerEm);
    zb::bench::Canvas canvas(cellWidth, cellHeight);
    compareCells(state, texts, [&](std::size_t n) { bare.shapedCell(canvas, texts[n]); });
}

#if defined(ZB_BENCH_PANGO)
void simpleBesidePango(benchmark::State &state)
{
    const auto texts = cellTexts(u'a', 26);
    std::vector<std::string> narrow;
    for (const std::u16string &text : texts)
    {
        narrow.push_back(zb::toUtf8(text));
    }
    zb::bench::PangoCell pango(cellWidth, cellHeight, "DejaVu Sans", pixelsPerEm);
    compareCells(state, texts, [&](std::size_t n) { pango.cell(narrow[n]); });
}
BENCHMARK(simpleBesidePango)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
#endif
BENCHMARK(simpleBesideBareGlyphs)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(arabicBesideHarfBuzz)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// --- Where the time goes -----------------------------------------------------------------------------------------

void parseAlone(benchmark::State &state)
{
    Stage::context();
    const auto markup = markupOf(cellTexts(u'a', 26));
    CHTMLParser parser;
    for ([[maybe_unused]] auto _ : state)
    {
        for (const std::u16string &cell : markup)
        {
            parser.SetHTML(cell.c_str());
            parser.ParseHTML(nullptr);
        }
    }
}
BENCHMARK(parseAlone)->Unit(benchmark::kMillisecond);

void drawAlone(benchmark::State &state)
{
    const HDC context = Stage::context();
    const auto markup = markupOf(cellTexts(u'a', 26));
    std::vector<std::unique_ptr<CHTMLParser>> parsers;
    for (const std::u16string &cell : markup)
    {
        auto &parser = parsers.emplace_back(std::make_unique<CHTMLParser>());
        parser->SetHTML(cell.c_str());
        parser->ParseHTML(nullptr);
    }
    for ([[maybe_unused]] auto _ : state)
    {
        for (const auto &parser : parsers)
        {
            RECT area = {0, 0, cellWidth, cellHeight};
            DrawHTML(context, &area, 0, parser.get(), nullptr, static_cast<DWORD>(state.range(0)));
        }
    }
}
BENCHMARK(drawAlone)->Arg(0)->Arg(DT_CALCRECT)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
