// The parser beside a plain one: the rules of the language written down character by character, slow and without any
// of the parser's own code, on very many strings made of the language's pieces.
#include "display/Markup.h"

#include "platform/text.h"

namespace
{
using namespace zb::test;

/// Knows the rules by one string that it cuts up with indices; no colours or fonts are made, only told.
class SlowParser
{
  public:
    explicit SlowParser(std::u16string html) : s(std::move(html))
    {
        resetFont();
        read();
        if (body != RGB(255, 255, 255))
        {
            lines.insert(lines.begin(), "body " + colorText(body));
        }
    }
    std::vector<std::string> lines;

  private:
    WCHAR at(std::size_t i) const
    {
        return i < s.size() ? s[i] : u'\0';
    }

    void read()
    {
        std::size_t i = 0;
        while (i < s.size())
        {
            if (s[i] != u'<')
            {
                i = text(i, u"");
            }
            else if (at(i + 1) == u'<')
            {
                i = text(i, u"");
            }
            else if (at(i + 1) == u'>')
            {
                i = text(i + 1, u"");
            }
            else
            {
                i = tag(i);
            }
        }
    }

    std::size_t text(std::size_t i, std::u16string run)
    {
        while (i < s.size() && !(s[i] == u'<' && at(i + 1) != u'<'))
        {
            run += s[i++];
        }
        if (!run.empty())
        {
            std::string line = "text \"" + utf8(run) + '"' + fontText(font, 11);
            line += fore == 0 ? "" : " fore " + colorText(fore);
            line += back == 0 ? "" : " back " + colorText(back);
            line += alignText(format);
            line += key.empty() ? "" : " key \"" + utf8(key) + '"';
            line += editable ? " editable" : "";
            lines.push_back(line);
            lastFormat = format;
        }
        return i;
    }

    std::size_t tag(std::size_t open)
    {
        std::u16string t;
        bool quoted = false;
        std::size_t i = open + 1;
        for (; i < s.size(); ++i)
        {
            if (!quoted && (s[i] == u'<' || s[i] == u'>'))
            {
                break;
            }
            quoted = quoted != (s[i] == u'"');
            t += s[i];
        }
        if (t.empty() && i == s.size())
        {
            return i;
        }
        return apply(t) ? i + 1 : text(i, u"<" + t);
    }

    bool apply(const std::u16string &t)
    {
        const auto begins = [&](const std::u16string &with) { return t.compare(0, with.size(), with) == 0; };
        if (t == u"BR")
        {
            breakLine(t);
        }
        else if (t == u"/Q" || t == u"/B")
        {
            font.lfWeight = 400;
        }
        else if (t == u"/I")
        {
            font.lfItalic = 0;
        }
        else if (t == u"/U")
        {
            font.lfUnderline = 0;
        }
        else if (t == u"/S")
        {
            font.lfStrikeOut = 0;
        }
        else if (t == u"/BODY")
        {
        }
        else if (t == u"Q")
        {
            font.lfWeight = 800;
        }
        else if (t == u"B")
        {
            font.lfWeight = 700;
        }
        else if (t == u"I")
        {
            font.lfItalic = 1;
        }
        else if (t == u"U")
        {
            font.lfUnderline = 1;
        }
        else if (t == u"S")
        {
            font.lfStrikeOut = 1;
        }
        else if (begins(u"EDITABLE"))
        {
            editable = true;
        }
        else if (begins(u"/EDITABLE"))
        {
            editable = false;
        }
        else if (begins(u"IMG"))
        {
            image(t);
        }
        else if (begins(u"A="))
        {
            key = value(t, 2, false).substr(0, 30);
        }
        else if (t == u"/A")
        {
            key.clear();
        }
        else if (begins(u"P ALIGN="))
        {
            align(t);
        }
        else if (t == u"/P")
        {
            format = 0x810;
        }
        else if (t == u"/FONT")
        {
            resetFont();
            back = body;
        }
        else if (begins(u"FONT"))
        {
            fontTag(t);
        }
        else if (begins(u"BODY"))
        {
            body = t.size() < 6 ? body : color(t.substr(t.size() - 6));
            back = body;
        }
        else
        {
            return false;
        }
        return true;
    }

    void breakLine(const std::u16string &t)
    {
        lines.push_back(t.size() == 2 ? "break" : "break length " + std::to_string(t.size()));
        lines.back() += alignText(lastFormat);
    }

    static std::u16string value(const std::u16string &t, std::size_t from, bool blank)
    {
        std::u16string rest = t.substr(from);
        if (rest.substr(0, 1) == u"\"")
        {
            rest = rest.substr(1);
        }
        if (rest.find(u'"') != std::u16string::npos)
        {
            return rest.substr(0, rest.find(u'"'));
        }
        return blank ? rest.substr(0, rest.find(u' ')) : rest;
    }

    static COLORREF color(const std::u16string &digits)
    {
        COLORREF result = 0;
        for (unsigned i = 0; i < 3; ++i)
        {
            const std::u16string pair = digits.size() > 2 * i ? digits.substr(2 * i, 2) : u"";
            result |= (static_cast<DWORD>(wcstol(pair.c_str(), nullptr, 16)) & 0xFFU) << (8 * i);
        }
        return result;
    }

    void align(const std::u16string &t)
    {
        const std::u16string v = value(t, 8, false);
        if (v.compare(0, 4, u"LEFT") == 0)
        {
            format = 0x810;
        }
        else if (v.compare(0, 6, u"CENTER") == 0)
        {
            format = 0x811;
        }
        else if (v.compare(0, 5, u"RIGHT") == 0)
        {
            format = 0x812;
        }
        else if (firstUnknown)
        {
            firstUnknown = false;
        }
        else
        {
            breakLine(t);
        }
    }

    void fontTag(const std::u16string &t)
    {
        if (const std::size_t i = t.find(u"SIZE="); i != std::u16string::npos)
        {
            font.lfHeight = _wtol(t.c_str() + i + 5) + 11;
        }
        const std::size_t name = t.find(u"NAME=");
        std::u16string face = name == std::u16string::npos ? u"Tahoma" : value(t, name + 5, true);
        face.resize(31);
        std::copy(face.begin(), face.end(), font.lfFaceName);
        if (const std::size_t i = t.find(u" COLOR=#"); i != std::u16string::npos)
        {
            fore = color(t.substr(i + 8));
        }
        back = t.find(u"BGCOLOR=#") == std::u16string::npos ? body : color(t.substr(t.size() - 6));
    }

    void image(const std::u16string &t)
    {
        const std::size_t i = t.find(u"SRC=");
        if (i == std::u16string::npos)
        {
            return;
        }
        const std::size_t size = t.find(u"SIZE=", i);
        const UINT height = size == std::u16string::npos ? 0 : static_cast<UINT>(_wtol(t.c_str() + size + 5));
        const std::u16string source = value(t, i + 4, true);
        std::string line = "image \"" + utf8(source) + "\" length " + std::to_string(t.size());
        line += height == 0 ? "" : " size " + std::to_string(height);
        lines.push_back(line + alignText(format));
        lastFormat = format;
    }

    void resetFont()
    {
        font = {};
        font.lfHeight = 11;
        font.lfWeight = 400;
        std::copy_n(u"Tahoma", 7, font.lfFaceName);
        fore = 0;
        back = 0;
    }

    std::u16string s;
    LOGFONTW font{};
    COLORREF fore = 0;
    COLORREF back = 0;
    COLORREF body = RGB(255, 255, 255);
    UINT format = 0x810;
    UINT lastFormat = 0x810;
    bool firstUnknown = true;
    bool editable = false;
    std::u16string key;
};

std::u16string randomMarkup(std::mt19937 &random)
{
    static const std::vector<std::u16string> pieces = {u"<",          u"<",          u">",
                                                       u">",          u"\"",         u" ",
                                                       u"=",          u"/",          u"#",
                                                       u"B",          u"I",          u"a",
                                                       u"bc ",        u"<B>",        u"</B>",
                                                       u"<Q>",        u"</Q>",       u"<I>",
                                                       u"</I>",       u"<U>",        u"</U>",
                                                       u"<S>",        u"</S>",       u"<BR>",
                                                       u"<BODY",      u"</BODY>",    u"<EDITABLE>",
                                                       u"</EDITABLE", u"<IMG SRC=",  u"<IMG",
                                                       u" SIZE=",     u"SIZE=-3",    u"SRC=",
                                                       u"<A=",        u"</A>",       u"<P ALIGN=",
                                                       u"LEFT",       u"LEFTINDENT", u"CENTER",
                                                       u"RIGHT",      u"</P>",       u"<FONT",
                                                       u"</FONT>",    u" NAME=",     u" COLOR=#",
                                                       u" BGCOLOR=#", u"12",         u"ab",
                                                       u"0F",         u"123456",     u"abcdefghijklmnopqrstuvwxyz",
                                                       u"<Z>",        u"\n",         u"\u00E9",
                                                       u"<P ALIGN=?>"};
    std::u16string markup;
    for (std::size_t count = random() % 24; count > 0; --count)
    {
        markup += pieces[random() % pieces.size()];
    }
    return markup;
}

TEST(MarkupModel, asTheRulesSayOnAnyText)
{
    const TestDevice device;
    const Scaling scaling;
    std::mt19937 random(8100);
    for (int round = 0; round < 30'000; ++round)
    {
        const std::u16string markup = randomMarkup(random);
        ASSERT_EQ(dumpMarkup(markup), SlowParser(markup).lines) << "round " << round << ": " << utf8(markup);
    }
}
} // namespace
