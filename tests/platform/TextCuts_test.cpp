// A line that is broken off a text, and what is left behind it, are measured and painted as if the text had never been
// seen: whatever was laid out before, and in whatever order.
#include "support/TextStage.h"

#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

struct Part
{
    std::u16string text;
    int maximum = 0;
};

struct Looks
{
    std::vector<int> extents;
    int width = 0;
    int fit = 0;
    std::vector<std::uint32_t> pixels;
    bool operator==(const Looks &other) const = default;
};

/// Words of one script, or of many.
class TextMaker
{
  public:
    std::u16string make()
    {
        // Half of the texts are of letters and blanks alone, a few of these with marks.
        const std::size_t kind = m_random() % 8;
        const std::size_t only = kind < 4 ? kind : plainAlphabets;
        std::u16string text;
        for (auto words = 1 + m_random() % 9; words > 0; --words)
        {
            for (auto letters = m_random() % 7; letters > 0; --letters)
            {
                text += pick(only < plainAlphabets ? only : oneOf());
            }
            // What is drawn as a blank, and isn't one, as well.
            text.append(m_random() % 3, m_random() % 6 == 0 ? u'\t' : u' ');
        }
        return text.empty() ? u"\u0628 \u0628" : text;
    }

    std::mt19937 &random()
    {
        return m_random;
    }

  private:
    static constexpr std::size_t plainAlphabets = 4;

    /// Seldom another one than before, so that words are longer than a letter.
    std::size_t oneOf()
    {
        m_former = m_random() % 3 == 0 ? m_random() % alphabets().size() : m_former;
        return m_former;
    }

    static const std::vector<std::vector<std::u16string>> &alphabets()
    {
        static const std::vector<std::vector<std::u16string>> all = {
            {u"\u0627", u"\u0628", u"\u062A", u"\u0633", u"\u0639", u"\u0644", u"\u0645", u"\u0646", u"\u0648"},
            {u"\u05D0", u"\u05D1", u"\u05D2", u"\u05E9"},
            {u"\u0628", u"\u0644", u"\u0627", u"\u0633\u064E", u"\u0628\u0651"},
            {u"\u0E01", u"\u0E02", u"\u0E33", u"\u0E34", u"\u0E40"},
            {u"a", u"b", u"f", u"i", u"W"},
            {u"1", u"2", u"\u0661", u"\u0662"},
            {u".", u",", u"(", u")", u":", u"-", u"\u061F", u"\u060C"},
            {u"\u0640", u"\u064E", u"\u0301", u"\u200D", u"\u200C", u"\u200F", u"\u202E", u"\u00AD"},
            {u"\t", u"\n", u"\u2028", u"\u00A0", u"\u3042", u"\u4E00"},
            {u"\U0001F600", u"\U0001D538", std::u16string(1, char16_t{0xD83D}), u"\u2600"},
            {u"\u0915", u"\u093F", u"\u094D", u"\u0937"},
        };
        return all;
    }

    std::u16string pick(std::size_t alphabet)
    {
        const std::vector<std::u16string> &letters = alphabets()[alphabet];
        return letters[m_random() % letters.size()];
    }

    std::mt19937 m_random{77};
    std::size_t m_former = 4;
};

/// Parts of one text, in the order in which lines are broken off it: the whole, its beginning, the rest, its middle.
/// Three cuts of four are at a blank if there is one.
std::vector<Part> partsOf(const std::u16string &whole, std::mt19937 &random)
{
    const auto cut = [&](std::size_t length, std::u16string_view text)
    {
        const std::size_t at = random() % (length + 1);
        const std::size_t blank = text.substr(0, at).find_last_of(u' ');
        return random() % 4 != 0 && blank != std::u16string_view::npos ? blank + random() % 2 : at;
    };
    const auto room = [&] { return static_cast<int>(random() % 200); };
    const std::size_t first = cut(whole.size(), whole);
    const std::u16string rest = whole.substr(first);
    const std::size_t second = cut(rest.size(), rest);
    return {{whole, room()},
            {whole.substr(0, first), room()},
            {rest, room()},
            {rest.substr(0, second), room()},
            {rest.substr(second), room()}};
}

Looks looksOf(DrawingBoard &board, const Part &part)
{
    Looks looks;
    looks.width = widthOf(board.context(), part.text);
    looks.fit = fitOf(board.context(), part.text, part.maximum);
    looks.extents = extentsOf(board.context(), part.text);
    board.clear(RGB(255, 255, 255));
    textOut(board.context(), 3, 2, part.text);
    looks.pixels = board.pixels();
    return looks;
}

void compareCuts(const FontOptions &fonts, std::u16string_view family)
{
    DeviceOptions options;
    options.fonts = fonts;
    TextMaker maker;
    std::vector<std::pair<Part, Looks>> seen;
    {
        TestDevice device(options);
        DrawingBoard board(160, 20);
        const SelectedFont font(board.context(), plainFont(-13, family));
        SetBkMode(board.context(), TRANSPARENT);
        for (int round = 0; round < 120; ++round)
        {
            for (const Part &part : partsOf(maker.make(), maker.random()))
            {
                seen.emplace_back(part, looksOf(board, part));
            }
        }
    }
    // On faces that have seen nothing yet, without any order, so that no part comes shortly behind its whole.
    std::shuffle(seen.begin(), seen.end(), maker.random());
    TestDevice device(options);
    DrawingBoard board(160, 20);
    const SelectedFont font(board.context(), plainFont(-13, family));
    SetBkMode(board.context(), TRANSPARENT);
    for (const auto &[part, warm] : seen)
    {
        const Looks cold = looksOf(board, part);
        std::string codes;
        for (const char16_t unit : part.text)
        {
            codes += std::to_string(static_cast<unsigned>(unit)) + ' ';
        }
        ASSERT_EQ(cold.width, warm.width) << codes;
        ASSERT_EQ(cold.extents, warm.extents) << codes;
        ASSERT_EQ(cold.fit, warm.fit) << codes << " in " << part.maximum;
        ASSERT_TRUE(cold.pixels == warm.pixels) << codes;
    }
}

class TextCuts : public HostTextTest
{
};

TEST_F(TextCuts, partsLookLikeTextsOfTheirOwnInJoinedScripts)
{
    FontOptions fonts;
    fonts.files = {dejaVu};
    compareCuts(fonts, u"DejaVu Sans");
}

TEST_F(TextCuts, whatIsLeftBehindABlankIsAsWideAsItWasInTheWhole)
{
    TestDevice device(dejaVuAlone());
    DrawingBoard board(300, 20);
    const SelectedFont font(board.context(), plainFont(-13, u"DejaVu Sans"));
    const std::u16string whole = u"\u0628\u0633\u0645 \u0644\u0627 \u0639\u0644\u0649 \u0628\u0628\u0628";
    for (std::size_t blank = whole.find(u' '); blank != std::u16string::npos; blank = whole.find(u' ', blank + 1))
    {
        const std::vector<int> extents = extentsOf(board.context(), whole);
        EXPECT_EQ(widthOf(board.context(), whole.substr(0, blank)), extents[blank - 1]);
        EXPECT_EQ(widthOf(board.context(), whole.substr(blank)), extents.back() - extents[blank - 1]);
        EXPECT_EQ(widthOf(board.context(), whole.substr(blank + 1)), extents.back() - extents[blank]);
    }
}

TEST(TextCutsOfFallbacks, partsLookLikeTextsOfTheirOwn)
{
    const TemporaryFolder faces;
    compareCuts(testFonts(faces.path()), u"Test Sans");
}

/// A board with the test face, whose letters are 5 pixels wide with ink from 1 to 4.
class TextCutsOnBoard : public ::testing::Test
{
  protected:
    static DeviceOptions withFonts(const std::filesystem::path &folder)
    {
        DeviceOptions options;
        options.fonts = testFonts(folder);
        return options;
    }
    TextCutsOnBoard()
    {
        SetBkMode(board.context(), TRANSPARENT);
    }

    TemporaryFolder faces;
    TestDevice device{withFonts(faces.path())};
    DrawingBoard board{60, 10};
    SelectedFont font{board.context(), plainFont(10)};
};

/// Blanks at the end of a line go with the line: to the right of words that go to the left.
TEST_F(TextCutsOnBoard, theBlankThatEndsALineStandsToTheRight)
{
    const std::u16string whole = u"\u05D3\u05D4 \u05D5 \u05D6\u05D7";
    ASSERT_EQ(widthOf(board.context(), whole), 35);
    // The two of the first word from 0 on, then the blank.
    textOut(board.context(), 0, 0, whole.substr(0, 3));
    EXPECT_EQ(inkOf(board).left, 1);
    EXPECT_EQ(inkOf(board).right, 9);
    // A blank in front stands to the left.
    board.clear(RGB(255, 255, 255));
    textOut(board.context(), 0, 0, whole.substr(4));
    EXPECT_EQ(inkOf(board).left, 6);
    EXPECT_EQ(inkOf(board).right, 14);
}

/// A tab is drawn as a blank, but where a part begins and ends is seen by the text itself, in which it is none.
TEST_F(TextCutsOnBoard, aTabInFrontOfAPartIsDrawnAsABlank)
{
    const std::u16string whole = u"\t\u05D3 \u05D4 \u05D5";
    ASSERT_EQ(widthOf(board.context(), whole), 30);
    textOut(board.context(), 0, 0, whole.substr(0, 3));
    EXPECT_EQ(inkOf(board).left, 6);
    EXPECT_EQ(inkOf(board).right, 9);
}
} // namespace
