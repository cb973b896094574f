// The text of an edit control in numbers: changes, what can be taken back, where a caret may stand, and lines. Also
// held against a plain string through thousands of random steps.
#include "platform/linux/edit_boundaries.h"
#include "platform/linux/edit_lines.h"
#include "platform/linux/edit_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace
{
using namespace zb::internal;
using Starts = std::vector<std::size_t>;

EditText textOf(std::u16string_view text)
{
    EditText made;
    made.setText(text);
    return made;
}

void type(EditText &text, std::u16string_view characters)
{
    for (const char16_t one : characters)
    {
        text.replace(text.first(), text.last(), {&one, 1}, EditStep::Typed);
    }
}

void eraseBack(EditText &text)
{
    text.replace(previousCharacter(text.text(), text.caret()), text.caret(), {}, EditStep::ErasedBack);
}

/// Every character is this wide.
constexpr int advance = 10;

std::size_t fit(std::u16string_view text, int width)
{
    return std::min(text.size(), static_cast<std::size_t>(width / advance));
}

Starts startsOf(const EditLines &lines)
{
    Starts starts;
    for (std::size_t line = 0; line < lines.count(); ++line)
    {
        starts.push_back(lines.startOf(line));
    }
    return starts;
}

/// Lines of so many characters; 0 breaks no words.
EditLines linesOf(std::u16string_view text, int characters)
{
    EditLines lines;
    lines.setRules(false, characters * advance, fit);
    lines.layOut(text);
    return lines;
}

/// The starts of lines, told plainly: behind line ends, and by words of the width.
Starts expectedStarts(std::u16string_view text, std::size_t width)
{
    Starts starts{0};
    std::size_t line = 0;
    for (std::size_t at = 0; at < text.size();)
    {
        if (text[at] == u'\r' || text[at] == u'\n')
        {
            at += text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n' ? 2 : 1;
            starts.push_back(line = at);
            continue;
        }
        if (text[at] == u' ' || at < line + width)
        {
            ++at;
            continue;
        }
        std::size_t cut = at;
        while (cut > line && text[cut - 1] != u' ')
        {
            --cut;
        }
        starts.push_back(line = cut > line ? cut : at);
        at = line;
    }
    return starts;
}
} // namespace

TEST(EditText, AReplacementPutsTheCaretBehindIt)
{
    EditText text = textOf(u"abcdef");
    EXPECT_EQ(text.caret(), 0U);
    const TextChange change = text.replace(1, 3, u"XYZ", EditStep::Whole);
    EXPECT_EQ(text.text(), u"aXYZdef");
    EXPECT_EQ(text.caret(), 4U);
    EXPECT_FALSE(text.hasSelection());
    EXPECT_EQ(change.at, 1U);
    EXPECT_EQ(change.removed, 2U);
    EXPECT_EQ(change.inserted, 3U);
    text.replace(5, 99, u"", EditStep::Whole);
    EXPECT_EQ(text.text(), u"aXYZd") << "places behind the end are the end";
}

TEST(EditText, ASelectionHasAnEndThatStays)
{
    EditText text = textOf(u"abcdef");
    text.select(4, 1);
    EXPECT_EQ(text.anchor(), 4U);
    EXPECT_EQ(text.caret(), 1U);
    EXPECT_EQ(text.first(), 1U);
    EXPECT_EQ(text.last(), 4U);
    EXPECT_EQ(text.selected(), u"bcd");
    text.select(3, 100);
    EXPECT_EQ(text.last(), 6U);
}

TEST(EditText, TypedCharactersAreTakenBackWordByWord)
{
    EditText text;
    type(text, u"one two");
    EXPECT_TRUE(text.undo());
    EXPECT_EQ(text.text(), u"one ");
    EXPECT_TRUE(text.undo());
    EXPECT_EQ(text.text(), u"");
    EXPECT_FALSE(text.undo());
    EXPECT_TRUE(text.redo());
    EXPECT_TRUE(text.redo());
    EXPECT_EQ(text.text(), u"one two");
    EXPECT_FALSE(text.redo());
}

TEST(EditText, MovingTheCaretBeginsAStep)
{
    EditText text;
    type(text, u"ab");
    text.select(1, 1);
    text.select(2, 2);
    type(text, u"cd");
    text.undo();
    EXPECT_EQ(text.text(), u"ab");
}

TEST(EditText, ErasedCharactersComeBackTogether)
{
    EditText text = textOf(u"abcdef");
    text.select(4, 4);
    eraseBack(text);
    eraseBack(text);
    EXPECT_EQ(text.text(), u"abef");
    for (int i = 0; i < 2; ++i)
    {
        text.replace(2, 3, {}, EditStep::ErasedForward);
    }
    EXPECT_EQ(text.text(), u"ab");
    text.undo();
    EXPECT_EQ(text.text(), u"abef");
    EXPECT_EQ(text.caret(), 2U) << "what was erased forward stood behind the caret";
    text.undo();
    EXPECT_EQ(text.text(), u"abcdef");
    EXPECT_EQ(text.caret(), 4U);
}

TEST(EditText, ASelectionThatWasReplacedIsSelectedAgain)
{
    EditText text = textOf(u"abcdef");
    text.select(1, 4);
    text.replace(1, 4, u"X", EditStep::Whole);
    text.undo();
    EXPECT_EQ(text.text(), u"abcdef");
    EXPECT_EQ(text.selected(), u"bcd");
}

TEST(EditText, AChangeAfterTakingBackEndsWhatCouldComeAgain)
{
    EditText text;
    type(text, u"a");
    text.undo();
    EXPECT_TRUE(text.canRedo());
    type(text, u"b");
    EXPECT_FALSE(text.canRedo());
    text.undo();
    EXPECT_EQ(text.text(), u"");
    text.setText(u"new");
    EXPECT_FALSE(text.canUndo());
    EXPECT_FALSE(text.canRedo());
}

TEST(EditText, OldStepsAreForgottenAndTheLastIsKept)
{
    EditText text;
    const std::u16string large(EditText::mostUndoCharacters / 2, u'x');
    for (int i = 0; i < 3; ++i)
    {
        text.replace(0, 0, large, EditStep::Whole);
    }
    EXPECT_TRUE(text.undo());
    EXPECT_TRUE(text.undo());
    EXPECT_FALSE(text.undo());
    EXPECT_EQ(text.length(), large.size());
    const std::u16string huge(EditText::mostUndoCharacters * 2, u'y');
    text.setText(u"");
    text.replace(0, 0, huge, EditStep::Whole);
    EXPECT_TRUE(text.undo());
    EXPECT_EQ(text.length(), 0U);
}

TEST(EditText, RandomStepsAgainstAPlainString)
{
    for (unsigned seed = 1; seed <= 20; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        EditText text;
        std::u16string model;
        std::vector<std::u16string> history{model}; // states at whole steps
        std::size_t now = 0;
        for (int step = 0; step < 2000; ++step)
        {
            const unsigned action = random() % 10;
            if (action < 6)
            {
                const std::size_t a = random() % (model.size() + 1);
                const std::size_t b = random() % (model.size() + 1);
                std::size_t first = std::min(a, b);
                std::size_t last = std::max(a, b);
                last = std::min(last, first + 20);
                const std::u16string fresh(random() % 12, static_cast<char16_t>(u'a' + random() % 26));
                text.select(a, b);
                text.replace(first, last, fresh, EditStep::Whole);
                const bool same = first == last && fresh.empty();
                model.replace(first, last - first, fresh);
                ASSERT_EQ(text.caret(), first + fresh.size());
                if (!same)
                {
                    history.resize(++now);
                    history.push_back(model);
                }
            }
            else if (action < 9)
            {
                ASSERT_EQ(text.undo().has_value(), now > 0);
                now -= now > 0 ? 1 : 0;
                model = history[now];
            }
            else
            {
                ASSERT_EQ(text.redo().has_value(), now + 1 < history.size());
                now += now + 1 < history.size() ? 1 : 0;
                model = history[now];
            }
            ASSERT_EQ(text.text(), model) << step;
            ASSERT_LE(text.last(), model.size());
        }
    }
}

TEST(EditBoundaries, ACharacterIsWhatAReaderTakesForOne)
{
    // a, e with a combining acute, a face of two units, CR LF, b
    const std::u16string_view text = u"ae\u0301\U0001F600\r\nb";
    const Starts places{0, 1, 3, 5, 7, 8};
    for (std::size_t i = 0; i + 1 < places.size(); ++i)
    {
        EXPECT_EQ(nextCharacter(text, places[i]), places[i + 1]);
        EXPECT_EQ(previousCharacter(text, places[i + 1]), places[i]);
    }
    EXPECT_EQ(characterStart(text, 2), 1U);
    EXPECT_EQ(characterStart(text, 4), 3U);
    EXPECT_EQ(characterStart(text, 6), 5U);
    EXPECT_EQ(characterStart(text, 5), 5U);
    EXPECT_EQ(nextCharacter(text, 8), 8U);
    EXPECT_EQ(previousCharacter(text, 0), 0U);
    EXPECT_EQ(characterStart(text, 99), 8U);
}

TEST(EditBoundaries, AFamilyOfFacesIsOneCharacter)
{
    const std::u16string_view text = u"x\U0001F468\u200D\U0001F469\u200D\U0001F467y";
    EXPECT_EQ(nextCharacter(text, 1), 9U);
    EXPECT_EQ(previousCharacter(text, 9), 1U);
}

TEST(EditBoundaries, WordsAreFoundBothWays)
{
    const std::u16string_view text = u"one  two, three\r\nfour";
    const Starts forward{0, 5, 8, 10, 15, 17, 21};
    for (std::size_t i = 0; i + 1 < forward.size(); ++i)
    {
        EXPECT_EQ(nextWord(text, forward[i]), forward[i + 1]);
    }
    for (std::size_t i = forward.size() - 1; i > 0; --i)
    {
        EXPECT_EQ(previousWord(text, forward[i]), forward[i - 1]);
    }
    EXPECT_EQ(nextWord(text, 1), 5U);
    EXPECT_EQ(previousWord(text, 7), 5U);
}

TEST(EditBoundaries, TheWordAroundAPlace)
{
    const std::u16string_view text = u"one  two, three\r\n\r\nx";
    EXPECT_EQ(wordAround(text, 1), (TextRange{0, 3}));
    EXPECT_EQ(wordAround(text, 0), (TextRange{0, 3}));
    EXPECT_EQ(wordAround(text, 8), (TextRange{8, 9})) << "the comma";
    EXPECT_EQ(wordAround(text, 15), (TextRange{10, 15})) << "at the end of a line, the word before";
    EXPECT_EQ(wordAround(text, 17), (TextRange{17, 17})) << "an empty line";
    EXPECT_EQ(wordAround(u"", 0), (TextRange{0, 0}));
}

TEST(EditBoundaries, StrangeTextsNeverStall)
{
    const std::u16string marks(100000, u'\u0301');
    std::size_t at = 0;
    for (int steps = 0; at < marks.size() && steps < 100000; ++steps)
    {
        const std::size_t next = nextCharacter(marks, at);
        ASSERT_GT(next, at);
        at = next;
    }
    EXPECT_EQ(at, marks.size());
    for (int steps = 0; at > 0 && steps < 100000; ++steps)
    {
        const std::size_t before = previousCharacter(marks, at);
        ASSERT_LT(before, at);
        at = before;
    }
    EXPECT_EQ(at, 0U);
    const std::u16string halves(1000, char16_t{0xDC00});
    EXPECT_GT(nextCharacter(halves, 500), 500U);
    EXPECT_LT(previousCharacter(halves, 500), 500U);
}

TEST(EditLines, LineEndsAreOfThreeKinds)
{
    const std::u16string_view text = u"a\r\nb\nc\rd\r\n";
    const EditLines lines = linesOf(text, 0);
    EXPECT_EQ(startsOf(lines), (Starts{0, 3, 5, 7, 10}));
    const Starts ends{1, 4, 6, 8, 10};
    for (std::size_t line = 0; line < ends.size(); ++line)
    {
        EXPECT_EQ(lines.endOf(text, line), ends[line]);
        EXPECT_FALSE(lines.isBroken(text, line));
    }
    EXPECT_EQ(lines.lineOf(2), 0U);
    EXPECT_EQ(lines.lineOf(3), 1U);
    EXPECT_EQ(lines.lineOf(10), 4U);
}

TEST(EditLines, OneLineHoldsEverything)
{
    EditLines lines;
    lines.setRules(true, 0, fit);
    lines.layOut(u"a\r\nb");
    EXPECT_EQ(startsOf(lines), Starts{0});
    EXPECT_EQ(lines.endOf(u"a\r\nb", 0), 4U);
}

TEST(EditLines, WordsThatDoNotFitGoDownAndBlanksHangOver)
{
    const std::u16string_view text = u"aaa bbb   ccccccccc d";
    const EditLines lines = linesOf(text, 5);
    EXPECT_EQ(startsOf(lines), (Starts{0, 4, 10, 15, 20}));
    EXPECT_TRUE(lines.isBroken(text, 1));
    EXPECT_EQ(lines.endOf(text, 1), 10U);
    EXPECT_EQ(startsOf(linesOf(u"aaaaa    ", 5)), Starts{0}) << "blanks alone begin no line";
    EXPECT_EQ(startsOf(linesOf(u"\u4E00\u4E01\u4E02\u4E03", 3)), (Starts{0, 3})) << "between ideographs";
    EXPECT_EQ(startsOf(linesOf(u"ab", 0)), Starts{0});
    EditLines narrow;
    narrow.setRules(false, 1, fit);
    narrow.layOut(u"abc");
    EXPECT_EQ(startsOf(narrow), (Starts{0, 1, 2})) << "never without a character";
}

TEST(EditLines, FollowingChangesEqualsLayingOutAnew)
{
    constexpr std::u16string_view pieces[] = {u"a",  u"b",      u" ",      u"  ", u"word", u"\r\n", u"\r",
                                              u"\n", u"longerword", u" x y ", u"",   u"\n\r", u"ab cd ef gh ij"};
    for (unsigned seed = 1; seed <= 40; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const int width = static_cast<int>(random() % 9); // 0: no breaks
        std::u16string text;
        EditLines lines = linesOf(text, width);
        for (int step = 0; step < 400; ++step)
        {
            const std::size_t at = random() % (text.size() + 1);
            const std::size_t removed = random() % 3 == 0 ? std::min<std::size_t>(random() % 9, text.size() - at) : 0;
            const std::u16string_view fresh = pieces[random() % std::size(pieces)];
            text.replace(at, removed, fresh);
            lines.follow(text, {at, removed, fresh.size()});
            ASSERT_EQ(startsOf(lines), startsOf(linesOf(text, width))) << step;
            ASSERT_EQ(startsOf(lines),
                      expectedStarts(text, width == 0 ? text.size() + 1 : static_cast<std::size_t>(width)))
                << step;
        }
    }
}

TEST(EditLines, AKeyMeasuresOnlyTheLinesAroundIt)
{
    std::size_t measured = 0;
    const auto counting = [&measured](std::u16string_view text, int width)
    {
        measured += text.size();
        return fit(text, width);
    };
    std::u16string text;
    while (text.size() < 1000000)
    {
        text += u"some words ";
    }
    EditLines lines;
    lines.setRules(false, 40 * advance, counting);
    lines.layOut(text);
    EXPECT_LT(measured, text.size() * 6) << "each character a few times";
    measured = 0;
    text.insert(500000, 1, u'x');
    lines.follow(text, {500000, 0, 1});
    EXPECT_LT(measured, 100000U) << "one paragraph, however long";
}
