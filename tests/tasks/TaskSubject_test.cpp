// The priority in front of a subject: every form that is one, every form that is none, and what holds for any text.
#include "tasks/TaskSubject.h"

#include "platform/text.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

namespace
{
using zb::test::utf8;

struct Parsed
{
    std::string letter;
    std::string number;
    int days = 0;
    std::string subject;
    bool operator==(const Parsed &) const = default;
};

std::ostream &operator<<(std::ostream &stream, const Parsed &parsed)
{
    return stream << "letter '" << parsed.letter << "' number '" << parsed.number << "' days " << parsed.days
                  << " subject '" << parsed.subject << "'";
}

Parsed parse(const WCHAR *subject)
{
    // Left over from another subject: every call clears them first.
    WCHAR letter[4] = u"XYZ";
    WCHAR number[4] = u"123";
    int days = 99;
    WCHAR *rest = CTask::ParseExtraFromSubjectInt(subject, letter, number, days);
    Parsed parsed{utf8(letter), utf8(number), days, utf8(rest)};
    std::free(rest);
    return parsed;
}

Parsed whole(const char *subject)
{
    return {"", "", 0, subject};
}

TEST(TaskSubject, aLetterAlone)
{
    EXPECT_EQ(parse(u"A: x"), (Parsed{"A", "", 0, "x"}));
    EXPECT_EQ(parse(u"b:x"), (Parsed{"b", "", 0, "x"}));
    EXPECT_EQ(parse(u"\u00c4: x"), (Parsed{"\u00c4", "", 0, "x"}));
}

TEST(TaskSubject, aLetterAndANumber)
{
    EXPECT_EQ(parse(u"A1: x"), (Parsed{"A", "1", 0, "x"}));
    EXPECT_EQ(parse(u"A0: x"), (Parsed{"A", "0", 0, "x"}));
    EXPECT_EQ(parse(u"A12: x"), (Parsed{"A", "12", 0, "x"}));
}

TEST(TaskSubject, aLeadingZeroIsNoPartOfTheNumber)
{
    EXPECT_EQ(parse(u"A05: x"), (Parsed{"A", "5", 0, "x"}));
    EXPECT_EQ(parse(u"B02: x"), (Parsed{"B", "2", 0, "x"}));
    EXPECT_EQ(parse(u"A00: x"), (Parsed{"A", "0", 0, "x"}));
    EXPECT_EQ(parse(u"A50: x"), (Parsed{"A", "50", 0, "x"}));
}

TEST(TaskSubject, daysBehindABar)
{
    EXPECT_EQ(parse(u"A1|7: x"), (Parsed{"A", "1", 7, "x"}));
    EXPECT_EQ(parse(u"A1|7:x"), (Parsed{"A", "1", 7, "x"}));
    EXPECT_EQ(parse(u"A|7: x"), (Parsed{"A", "", 7, "x"}));
    EXPECT_EQ(parse(u"A12|365: x"), (Parsed{"A", "12", 365, "x"}));
    EXPECT_EQ(parse(u"A05|30: x"), (Parsed{"A", "5", 30, "x"}));
    EXPECT_EQ(parse(u"A1|: x"), (Parsed{"A", "1", 0, "x"}));
    EXPECT_EQ(parse(u"A1|x: y"), (Parsed{"A", "1", 0, "y"}));
}

TEST(TaskSubject, daysAlone)
{
    EXPECT_EQ(parse(u"|7: Pay"), (Parsed{"", "", 7, "Pay"}));
    EXPECT_EQ(parse(u"|365:Pay"), (Parsed{"", "", 365, "Pay"}));
    EXPECT_EQ(parse(u"|: Pay"), whole("|: Pay"));
    EXPECT_EQ(parse(u"|x: Pay"), whole("|x: Pay"));
}

TEST(TaskSubject, withABarAnyOtherLengthPassesWithoutOrWithOneDigit)
{
    EXPECT_EQ(parse(u"Call|7: x"), (Parsed{"C", "", 7, "x"}));
    EXPECT_EQ(parse(u"A1234|7: x"), (Parsed{"A", "1", 7, "x"}));
    EXPECT_EQ(parse(u"AB|7: x"), whole("AB|7: x"));
    EXPECT_EQ(parse(u"AB1|7: x"), whole("AB1|7: x"));
    EXPECT_EQ(parse(u"A1B|7: x"), whole("A1B|7: x"));
}

TEST(TaskSubject, theLimitsOfTheLength)
{
    EXPECT_EQ(parse(u"A123: x"), whole("A123: x"));
    EXPECT_EQ(parse(u"A1234: x"), whole("A1234: x"));
    EXPECT_EQ(parse(u"A1|1234: x"), (Parsed{"A", "1", 1234, "x"}));
    EXPECT_EQ(parse(u"A1|12345: x"), whole("A1|12345: x"));
}

TEST(TaskSubject, whatIsNoPriorityStaysWhole)
{
    for (const char *subject : {"AB: x", "12:30 lunch", "1: x", ": x", "", "no colon", "AB1: x", "A1B: x", "Re: x",
                                "Call: x", " A: x", "-1: x", "A1|7 x"})
    {
        EXPECT_EQ(parse(zb::test::utf16(subject).c_str()), whole(subject));
    }
}

TEST(TaskSubject, oneBlankBehindTheColonGoes)
{
    EXPECT_EQ(parse(u"A:  x"), (Parsed{"A", "", 0, " x"}));
    EXPECT_EQ(parse(u"A:\tx"), (Parsed{"A", "", 0, "\tx"}));
    EXPECT_EQ(parse(u"A: "), (Parsed{"A", "", 0, ""}));
    EXPECT_EQ(parse(u"A:"), (Parsed{"A", "", 0, ""}));
}

TEST(TaskSubject, aBarBehindTheColonIsText)
{
    EXPECT_EQ(parse(u"A12: this|that"), (Parsed{"A", "12", 0, "this|that"}));
    EXPECT_EQ(parse(u"AB: this|that"), whole("AB: this|that"));
    EXPECT_EQ(parse(u"Call: this|that"), whole("Call: this|that"));
}

TEST(TaskSubject, onlyTheFirstColonCounts)
{
    EXPECT_EQ(parse(u"A1: at 12:30"), (Parsed{"A", "1", 0, "at 12:30"}));
}

TEST(TaskSubject, noSubjectAtAllIsAnEmptyOne)
{
    EXPECT_EQ(parse(nullptr), whole(""));
}

/// For any text: the result is the whole text, or what stands behind its first colon (less one blank); letter, number
/// and days are told only in the second case, and hold their forms.
TEST(TaskSubject, whatHoldsForAnyText)
{
    const unsigned seed = 20260302;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::u16string alphabet = u"AaZ09 1|:|:é日\u0660-.";
    for (int round = 0; round < 100'000; ++round)
    {
        std::u16string text;
        for (unsigned length = random() % 12; length > 0; --length)
        {
            text += alphabet[random() % alphabet.size()];
        }
        const Parsed parsed = parse(text.c_str());
        const std::size_t colon = text.find(u':');
        SCOPED_TRACE(utf8(text));
        if (parsed.subject == utf8(text))
        {
            ASSERT_EQ(parsed, whole(parsed.subject.c_str()));
            continue;
        }
        ASSERT_NE(colon, std::u16string::npos);
        ASSERT_TRUE(colon >= 1 && colon <= 7);
        const std::u16string rest = text.substr(colon + 1);
        ASSERT_EQ(parsed.subject, utf8(rest.substr(!rest.empty() && rest[0] == u' ' ? 1 : 0)));
        ASSERT_LE(parsed.number.size(), 2U);
        ASSERT_EQ(parsed.number.find_first_not_of("0123456789"), std::string::npos);
        ASSERT_EQ(parsed.letter, text[0] == u'|' ? "" : utf8(text.substr(0, 1)));
        const bool hasBar = text.substr(0, colon).find(u'|') != std::u16string::npos;
        ASSERT_TRUE(hasBar || parsed.days == 0);
    }
}
} // namespace
