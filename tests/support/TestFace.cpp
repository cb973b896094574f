#include "support/TestFace.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <stdexcept>

namespace zb::test
{
namespace
{
constexpr int unitsPerEm = 1000;
constexpr int ascent = 800;
constexpr int sideBearing = 100;
constexpr int boldExtra = 100;

/// Big-endian, as all of the format.
class Bytes
{
  public:
    Bytes &u8(unsigned value)
    {
        m_data.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    Bytes &u16(unsigned value)
    {
        return u8(value >> 8U).u8(value & 0xFFU);
    }
    Bytes &i16(int value)
    {
        return u16(static_cast<unsigned>(value) & 0xFFFFU);
    }
    Bytes &u32(std::uint32_t value)
    {
        return u16(value >> 16U).u16(value & 0xFFFFU);
    }
    Bytes &zeros(std::size_t count)
    {
        m_data.insert(m_data.end(), count, 0);
        return *this;
    }
    Bytes &append(const Bytes &other)
    {
        m_data.insert(m_data.end(), other.m_data.begin(), other.m_data.end());
        return *this;
    }
    Bytes &align4()
    {
        return zeros((4 - m_data.size() % 4) % 4);
    }
    void patch32(std::size_t at, std::uint32_t value)
    {
        for (int byte = 0; byte < 4; ++byte)
        {
            m_data[at + static_cast<std::size_t>(byte)] = static_cast<std::uint8_t>(value >> (24 - 8 * byte));
        }
    }
    std::size_t size() const
    {
        return m_data.size();
    }
    const std::vector<std::uint8_t> &data() const
    {
        return m_data;
    }
    /// Sum of the big-endian words, as the directory and head table want it.
    std::uint32_t checksum() const
    {
        std::uint32_t sum = 0;
        for (std::size_t at = 0; at < m_data.size(); ++at)
        {
            sum += static_cast<std::uint32_t>(m_data[at]) << (24 - 8 * (at % 4));
        }
        return sum;
    }

  private:
    std::vector<std::uint8_t> m_data;
};

struct Glyph
{
    int advance;
    int top;
    int bottom;
    bool empty() const
    {
        return top == bottom;
    }
    int right() const
    {
        return advance - sideBearing;
    }
};

/// One glyph a character, in order of characters, behind .notdef; so each range is one segment of the maps.
std::vector<Glyph> glyphsOf(const TestFaceDescription &description)
{
    const int extra = description.bold ? boldExtra : 0;
    std::vector<Glyph> glyphs = {{600 + extra, 800, 0}};
    for (const TestGlyphs &range : description.glyphs)
    {
        const int advance = range.advance == 0 ? 0 : range.advance + extra;
        glyphs.insert(glyphs.end(), range.last - range.first + 1, Glyph{advance, range.top, range.bottom});
    }
    return glyphs;
}

Bytes headTable(const TestFaceDescription &description)
{
    Bytes table;
    table.u32(0x00010000).u32(0x00010000).u32(0).u32(0x5F0F3CF5).u16(0x0003).u16(unitsPerEm);
    table.zeros(16); // made and changed at no time, so that the same face is the same bytes
    table.i16(0).i16(-description.descent).i16(unitsPerEm).i16(ascent);
    table.u16((description.bold ? 1U : 0U) | (description.italic ? 2U : 0U)).u16(6).i16(2);
    return table.i16(1).i16(0); // long offsets in loca
}

Bytes hheaTable(const TestFaceDescription &description, const std::vector<Glyph> &glyphs)
{
    Bytes table;
    table.u32(0x00010000).i16(ascent).i16(-description.descent).i16(0).u16(1000).i16(0).i16(0).i16(900);
    table.i16(1).i16(0).i16(0).zeros(8).i16(0);
    return table.u16(static_cast<unsigned>(glyphs.size()));
}

Bytes maxpTable(const std::vector<Glyph> &glyphs)
{
    Bytes table;
    table.u32(0x00010000).u16(static_cast<unsigned>(glyphs.size())).u16(4).u16(1).u16(0).u16(0);
    // Room for instructions although there are none: faces without any are hinted by rules that would move the boxes.
    return table.u16(1).u16(0).u16(0).u16(1).u16(0).u16(16).u16(16).u16(0).u16(0);
}

Bytes os2Table(const TestFaceDescription &description)
{
    const unsigned style = (description.bold ? 0x20U : 0U) | (description.italic ? 0x01U : 0U);
    Bytes table;
    table.u16(3).i16(500).u16(description.bold ? 700 : 400).u16(5).u16(0);
    table.i16(650).i16(600).i16(0).i16(75).i16(650).i16(600).i16(0).i16(350);
    table.i16(100).i16(300).i16(0); // strike-out: thickness, top
    table.zeros(10).zeros(16).u32(0x54455354);
    table.u16(style == 0 ? 0x40U : style).u16(0x20).u16(0xFFFF);
    table.i16(ascent).i16(-description.descent).i16(0).u16(ascent);
    table.u16(static_cast<unsigned>(description.descent));
    return table.zeros(8).i16(500).i16(700).u16(0).u16(0x20).u16(1);
}

Bytes hmtxTable(const std::vector<Glyph> &glyphs)
{
    Bytes table;
    for (const Glyph &glyph : glyphs)
    {
        table.u16(static_cast<unsigned>(glyph.advance)).i16(glyph.empty() ? 0 : sideBearing);
    }
    return table;
}

void appendBox(Bytes &table, const Glyph &glyph)
{
    table.i16(1).i16(sideBearing).i16(glyph.bottom).i16(glyph.right()).i16(glyph.top);
    table.u16(3).u16(0); // the contour's last point; no instructions
    for (int point = 0; point < 4; ++point)
    {
        table.u8(0x01); // on the curve, words for both steps
    }
    const int width = glyph.right() - sideBearing;
    table.i16(sideBearing).i16(0).i16(width).i16(0);
    table.i16(glyph.bottom).i16(glyph.top - glyph.bottom).i16(0).i16(glyph.bottom - glyph.top);
    table.align4();
}

void makeOutlines(const std::vector<Glyph> &glyphs, Bytes &glyf, Bytes &loca)
{
    for (const Glyph &glyph : glyphs)
    {
        loca.u32(static_cast<std::uint32_t>(glyf.size()));
        if (!glyph.empty())
        {
            appendBox(glyf, glyph);
        }
    }
    loca.u32(static_cast<std::uint32_t>(glyf.size()));
}

struct Segment
{
    char32_t first;
    char32_t last;
    unsigned glyph;
};

std::vector<Segment> segmentsOf(const TestFaceDescription &description)
{
    std::vector<Segment> segments;
    unsigned glyph = 1;
    for (const TestGlyphs &range : description.glyphs)
    {
        segments.push_back({range.first, range.last, glyph});
        glyph += static_cast<unsigned>(range.last - range.first + 1);
    }
    return segments;
}

/// The map of 16-bit characters, with the closing segment that it must have.
Bytes cmapFormat4(std::vector<Segment> segments)
{
    segments.erase(std::remove_if(segments.begin(), segments.end(), [](const Segment &s) { return s.last > 0xFFFE; }),
                   segments.end());
    segments.push_back({0xFFFF, 0xFFFF, 0});
    const auto count = static_cast<unsigned>(segments.size());
    unsigned power = 1;
    unsigned log = 0;
    for (; power * 2 <= count; power *= 2, ++log)
    {
    }
    Bytes table;
    table.u16(4).u16(16 + 8 * count).u16(0).u16(2 * count);
    table.u16(2 * power).u16(log).u16(2 * (count - power));
    for (const Segment &segment : segments)
    {
        table.u16(static_cast<unsigned>(segment.last));
    }
    table.u16(0);
    for (const Segment &segment : segments)
    {
        table.u16(static_cast<unsigned>(segment.first));
    }
    for (const Segment &segment : segments)
    {
        table.u16(segment.first == 0xFFFF ? 1U : (segment.glyph - segment.first) & 0xFFFFU);
    }
    return table.zeros(2 * std::size_t{count});
}

Bytes cmapFormat12(const std::vector<Segment> &segments)
{
    const auto count = static_cast<std::uint32_t>(segments.size());
    Bytes table;
    table.u16(12).u16(0).u32(16 + 12 * count).u32(0).u32(count);
    for (const Segment &segment : segments)
    {
        table.u32(segment.first).u32(segment.last).u32(segment.glyph);
    }
    return table;
}

Bytes cmapTable(const TestFaceDescription &description)
{
    const Bytes narrow = cmapFormat4(segmentsOf(description));
    const Bytes wide = cmapFormat12(segmentsOf(description));
    constexpr std::uint32_t begin = 4 + 2 * 8;
    Bytes table;
    table.u16(0).u16(2);
    table.u16(3).u16(1).u32(begin);
    table.u16(3).u16(10).u32(static_cast<std::uint32_t>(begin + narrow.size()));
    return table.append(narrow).append(wide);
}

Bytes nameTable(const TestFaceDescription &description)
{
    const std::string style =
        description.bold ? (description.italic ? "Bold Italic" : "Bold") : (description.italic ? "Italic" : "Regular");
    const std::map<unsigned, std::string> names = {
        {1, description.family}, {2, style}, {4, description.family + " " + style}, {6, "Test-" + style}};
    Bytes table;
    Bytes texts;
    const auto count = static_cast<unsigned>(names.size());
    table.u16(0).u16(count).u16(6 + 12 * count);
    for (const auto &[id, text] : names)
    {
        table.u16(3).u16(1).u16(0x409).u16(id).u16(static_cast<unsigned>(2 * text.size()));
        table.u16(static_cast<unsigned>(texts.size()));
        for (const char c : text)
        {
            texts.u16(static_cast<unsigned char>(c));
        }
    }
    return table.append(texts);
}

Bytes postTable()
{
    Bytes table;
    return table.u32(0x00030000).u32(0).i16(-100).i16(100).u32(0).zeros(16);
}

/// The tables behind their directory, which is sorted by tag; the head table gets the sum of all.
std::vector<std::uint8_t> assemble(const std::map<std::string, Bytes> &tables)
{
    const auto count = static_cast<unsigned>(tables.size());
    Bytes file;
    Bytes bodies;
    file.u32(0x00010000).u16(count).u16(128).u16(3).u16(16 * count - 128);
    std::size_t headAt = 0;
    for (const auto &[tag, body] : tables)
    {
        const std::size_t at = 12 + std::size_t{16} * count + bodies.size();
        headAt = tag == "head" ? at : headAt;
        for (const char c : tag)
        {
            file.u8(static_cast<unsigned char>(c));
        }
        file.u32(body.checksum()).u32(static_cast<std::uint32_t>(at)).u32(static_cast<std::uint32_t>(body.size()));
        bodies.append(body).align4();
    }
    file.append(bodies);
    file.patch32(headAt + 8, 0xB1B0AFBAU - file.checksum());
    return file.data();
}
} // namespace

std::vector<TestGlyphs> testSansGlyphs()
{
    return {{0x20, 0x20, 500, 0},         {0x21, 0x56, 500, 700},       {0x57, 0x57, 1000, 700},
            {0x58, 0x60, 500, 700},       {0x61, 0x66, 500, 500},       {0x67, 0x67, 500, 500, -200},
            {0x68, 0x69, 500, 500},       {0x6A, 0x6A, 500, 500, -200}, {0x6B, 0x6C, 500, 500},
            {0x6D, 0x6D, 1000, 500},      {0x6E, 0x6F, 500, 500},       {0x70, 0x71, 500, 500, -200},
            {0x72, 0x78, 500, 500},       {0x79, 0x79, 500, 500, -200}, {0x7A, 0x7A, 500, 500},
            {0x7B, 0x7E, 500, 700},       {0xA0, 0xA0, 500, 0},         {0xA1, 0xAC, 500, 700},
            {0xAE, 0x17F, 500, 700},      {0x300, 0x36F, 0, 0},         {0x370, 0x3FF, 500, 700},
            {0x400, 0x482, 500, 700},     {0x48A, 0x4FF, 500, 700},     {0x5D0, 0x5D0, 500, 300},
            {0x5D1, 0x5D1, 500, 400},     {0x5D2, 0x5D2, 500, 500},     {0x5D3, 0x5EA, 500, 700},
            {0x2010, 0x2027, 500, 700},   {0x3041, 0x30FF, 1000, 700},  {0x4E00, 0x4EFF, 1000, 700},
            {0x1F600, 0x1F600, 1000, 700}};
}

std::vector<TestGlyphs> testFallbackGlyphs()
{
    return {{0x20, 0x20, 500, 0}, {0x600, 0x6FF, 400, 600}, {0xE00, 0xE7F, 500, 600}, {0x2600, 0x26FF, 1000, 600}};
}

std::vector<std::uint8_t> makeTestFace(const TestFaceDescription &description)
{
    const std::vector<Glyph> glyphs = glyphsOf(description);
    std::map<std::string, Bytes> tables;
    makeOutlines(glyphs, tables["glyf"], tables["loca"]);
    tables["OS/2"] = os2Table(description);
    tables["cmap"] = cmapTable(description);
    // Pushes a number and drops it: says that this face has instructions of its own.
    tables["fpgm"].u8(0xB0).u8(0).u8(0x21);
    tables["head"] = headTable(description);
    tables["hhea"] = hheaTable(description, glyphs);
    tables["hmtx"] = hmtxTable(glyphs);
    tables["maxp"] = maxpTable(glyphs);
    tables["name"] = nameTable(description);
    tables["post"] = postTable();
    return assemble(tables);
}

std::filesystem::path writeTestFace(const std::filesystem::path &folder, const TestFaceDescription &description)
{
    const std::string style = std::string(description.bold ? "Bold" : "") + (description.italic ? "Italic" : "");
    const std::filesystem::path path = folder / (description.family + (style.empty() ? "" : "-" + style) + ".ttf");
    const std::vector<std::uint8_t> bytes = makeTestFace(description);
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush())
    {
        throw std::runtime_error("can't write " + path.string());
    }
    return path;
}

FontOptions testFonts(const std::filesystem::path &folder)
{
    FontOptions options;
    options.files.push_back(writeTestFace(folder, {"Test Sans", false, false, testSansGlyphs()}));
    options.files.push_back(writeTestFace(folder, {"Test Sans", true, false, testSansGlyphs()}));
    options.files.push_back(writeTestFace(folder, {"Test Fallback", false, false, testFallbackGlyphs()}));
    return options;
}
} // namespace zb::test
