// Cards of vCard files as they are read: folds, encodings, parameters, groups, cards inside cards, damage.
#include "apps/CalendarText.h"
#include "apps/FileReading.h"
#include "interchange/card_reader.h"
#include "interchange/text_charsets.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace
{
using namespace zb::interchange;
using zb::test::withCrLf;

struct Cards
{
    std::vector<Card> cards;
    CardNotes notes;
};

Cards cardsOf(std::string_view bytes)
{
    const auto source = openMemory(bytes);
    CardReader reader(*source);
    Cards found;
    Card card;
    while (reader.next(card))
    {
        found.cards.push_back(card);
    }
    found.notes = reader.notes();
    return found;
}

std::string card(const std::string &lines, const std::string &version = "3.0")
{
    return withCrLf("BEGIN:VCARD\nVERSION:" + version + "\n" + lines + "END:VCARD\n");
}

/// The one property behind VERSION.
CardProperty only(const std::string &lines, const std::string &version = "3.0")
{
    const Cards found = cardsOf(card(lines, version));
    EXPECT_EQ(found.cards.size(), 1U);
    EXPECT_EQ(found.cards[0].properties.size(), 2U) << lines;
    return found.cards[0].properties.back();
}

using Words = std::vector<std::string>;

TEST(CardReader, ReadsCardsOneAfterTheOther)
{
    const Cards found = cardsOf(card("FN:Anna\nTEL:1\n") + "\r\n" + card("FN:Bert\n", "2.1") + card("FN:Cem\n", "4.0"));
    ASSERT_EQ(found.cards.size(), 3U);
    EXPECT_EQ(found.cards[0].version, "3.0");
    EXPECT_EQ(found.cards[0].line, 1U);
    EXPECT_EQ(found.cards[0].properties.size(), 3U);
    EXPECT_EQ(found.cards[0].properties[2].name, "TEL");
    EXPECT_EQ(found.cards[0].properties[2].line, 4U);
    EXPECT_EQ(found.cards[1].line, 7U);
    EXPECT_TRUE(found.cards[1].isVersion21());
    EXPECT_EQ(found.cards[2].find("FN")->value, "Cem");
    EXPECT_EQ(found.cards[2].find("TEL"), nullptr);
    EXPECT_FALSE(found.cards[2].unended);
}

TEST(CardReader, NamesAreKnownInAnyLetterCaseAndWithAnyLineEnd)
{
    for (const char *const end : {"\n", "\r\n", "\r"})
    {
        std::string text;
        for (const char *const line : {"begin:vCard", "version:3.0", "fn:Anna", "end:VCARD"})
        {
            text += line + std::string(end);
        }
        const Cards found = cardsOf(text);
        ASSERT_EQ(found.cards.size(), 1U) << end;
        EXPECT_EQ(found.cards[0].find("FN")->value, "Anna");
    }
}

TEST(CardReader, AFoldIsOneBlankExceptInTwoDotOne)
{
    EXPECT_EQ(only("NOTE:one\n  two\n\tthree\n").value, "one twothree");
    EXPECT_EQ(only("NOTE:one\n  two\n\tthree\n", "4.0").value, "one twothree");
    EXPECT_EQ(only("NOTE:one\n two\n", "2.1").value, "one two");
}

TEST(CardReader, ParametersAreReadInAllThreeStyles)
{
    for (const char *const line : {"TEL;WORK;VOICE;PREF:1\n", "TEL;TYPE=work,voice,pref:1\n",
                                   "TEL;TYPE=\"work,voice\";type=PREF:1\n", "tel ; Type = WORK ; VOICE;PREF :1\n"})
    {
        EXPECT_EQ(only(line).types, (Words{"WORK", "VOICE", "PREF"})) << line;
        EXPECT_EQ(only(line).value, "1") << line;
    }
    const CardProperty email = only("EMAIL;PREF=1;X-A=\"x:y;z,1\",two;ALTID=:a:b;c\n");
    EXPECT_EQ(email.parameter("PREF"), "1");
    ASSERT_EQ(email.parameters.size(), 3U);
    EXPECT_EQ(email.parameters[1].values, (Words{"x:y;z,1", "two"}));
    EXPECT_EQ(email.parameter("ALTID"), "");
    EXPECT_EQ(email.parameter("NONE"), "");
    EXPECT_EQ(email.value, "a:b;c");
}

TEST(CardReader, BareParametersAreKnownByWhatTheySay)
{
    const CardProperty photo = only("PHOTO;JPEG;INLINE;BASE64:QUJD\n", "2.1");
    EXPECT_EQ(photo.types, Words{"JPEG"});
    EXPECT_EQ(photo.parameter("VALUE"), "INLINE");
    EXPECT_EQ(photo.parameter("ENCODING"), "BASE64");
}

TEST(CardReader, CaretsAndBackslashesHideCharactersOfParameters)
{
    EXPECT_EQ(only("ADR;LABEL=\"1 Main^nSt ^'x^' ^^ ^z\":;;\n", "4.0").parameter("LABEL"), "1 Main\nSt \"x\" ^ ^z");
    EXPECT_EQ(only("TEL;X-A=a\\;b;HOME:1\n", "2.1").parameter("X-A"), "a;b");
    EXPECT_EQ(only("TEL;X-A=\"open;HOME:1\n").types, Words{"HOME"}) << "a quote that is never closed";
}

TEST(CardReader, GroupsStandInFrontOfNames)
{
    const CardProperty number = only("item1.TEL:1\n");
    EXPECT_EQ(number.group, "item1");
    EXPECT_EQ(number.name, "TEL");
    EXPECT_EQ(only("a.b.TEL:1\n").group, "a.b");
    EXPECT_EQ(only("TEL:1\n").group, "");
}

TEST(CardReader, EscapesStayForWhoKnowsTheValue)
{
    EXPECT_EQ(only("N:a\\;b;c\\,d;e\\\\n\n").value, "a\\;b;c\\,d;e\\\\n");
}

TEST(CardReader, QuotedPrintableGoesOnBehindSoftLineBreaks)
{
    EXPECT_EQ(only("NOTE;ENCODING=QUOTED-PRINTABLE:Gr=C3=BC=\n=C3=9Fe, a=3Db=\n c=0D=0A=\n=\nend\n", "2.1").value,
              "Grüße, a=b c\r\nend");
    EXPECT_EQ(only("NOTE;QUOTED-PRINTABLE:one= \ntwo=2\n", "2.1").value, "onetwo=2") << "a bad code stays";
    EXPECT_EQ(only("NOTE;ENCODING=QUOTED-PRINTABLE:one=\n two\n").value, "onetwo") << "folded too, from 3.0 on";
    EXPECT_EQ(only("NOTE:one=\n two\n").value, "one=two") << "no soft line break in a plain text";
    EXPECT_EQ(only("ORG;ENCODING=QUOTED-PRINTABLE:one=\n\n", "2.1").value, "one") << "a soft break before nothing";
    EXPECT_EQ(only("NOTE;ENCODING=QUOTED-PRINTABLE:one=\n", "2.1").value, "one=") << "the END is no part of it";
}

TEST(CardReader, ASemicolonThatIsCodedIsNoSeparatorBesideOpenOnes)
{
    EXPECT_EQ(only("N;ENCODING=QUOTED-PRINTABLE:a=3Bb;c\n", "2.1").value, "a\\;b;c");
    EXPECT_EQ(only("N;ENCODING=QUOTED-PRINTABLE:a=5C=3Bb;c\n", "2.1").value, "a\\;b;c");
    EXPECT_EQ(only("N;ENCODING=QUOTED-PRINTABLE:a=3Bb\n", "2.1").value, "a;b") << "all of them are coded";
}

TEST(CardReader, CharacterSetsAreTurnedIntoUtf8)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"FN;CHARSET=ISO-8859-1:M\xFCller\n", "Müller"},
        {"FN;CHARSET=\"windows-1250\":\xA3\xF3\x64\x9F\n", "Łódź"},
        {"FN;CHARSET=Shift_JIS:\x8E\x52\x93\x63\n", "山田"},
        {"FN;CHARSET=SHIFT-JIS;ENCODING=QUOTED-PRINTABLE:=8E=52=93=63\n", "山田"},
        {"FN;CHARSET=GBK:\xC4\xA3\n", "模"}, // would be well-formed UTF-8 too
        {"FN;CHARSET=EUC-KR:\xB1\xE8\n", "김"},
        {"FN;CHARSET=BIG5:\xA4\xFD\n", "王"},
        {"FN;CHARSET=KOI8-R:\xEF\xCC\xD8\xC7\xC1\n", "Ольга"},
        {"FN;CHARSET=ISO-2022-JP:\x1B$B;3\x1B(B\n", "山"},
        {"FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=E5=B1=B1\n", "山"},
        {"FN;ENCODING=QUOTED-PRINTABLE:M=FCller\n", "Müller"},
        {"FN;CHARSET=UTF-8:Müller\n", "Müller"},
        {"FN:M\xFCller\n", "Müller"},
        {"FN;ENCODING=B;CHARSET=UTF-8:TcO8bGxlcg==\n", "Müller"},
    };
    for (const auto &[line, expected] : cases)
    {
        EXPECT_EQ(only(line, "2.1").value, expected) << line;
    }
    EXPECT_EQ(cardsOf(card("FN:M\xFCller\n")).notes.encoding.windows1252First, 3U);
}

TEST(CardReader, WhatIsNoTextOfItsCharacterSetIsNoted)
{
    const Cards bad = cardsOf(card("FN:x\nNOTE;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:a=80b\n", "2.1"));
    EXPECT_EQ(bad.cards[0].find("NOTE")->value, "a\uFFFDb");
    EXPECT_EQ(bad.notes.badTexts, 1U);
    EXPECT_EQ(bad.notes.badTextFirst, 4U);
    const Cards unknown = cardsOf(card("FN;CHARSET=KLINGON:M\xFCller\n", "2.1"));
    EXPECT_EQ(unknown.cards[0].find("FN")->value, "Müller");
    EXPECT_EQ(unknown.notes.unknownCharset, "KLINGON");
    EXPECT_EQ(unknown.notes.unknownCharsetFirst, 3U);
}

TEST(CardReader, AFileInUtf16IsTextWhateverItsLinesNameAsCharacterSet)
{
    std::string bytes = "\xFF\xFE";
    for (const char ch : card("FN;CHARSET=ISO-8859-1:x\xFCy\n", "2.1"))
    {
        bytes += std::string{ch, '\0'};
    }
    EXPECT_EQ(cardsOf(bytes).cards[0].find("FN")->value, "xüy");
    EXPECT_EQ(cardsOf("\xEF\xBB\xBF" + card("FN;CHARSET=ISO-8859-1:xüy\n", "2.1")).cards[0].find("FN")->value, "xüy");
}

TEST(CardReader, FilesPutOneBehindTheOtherKeepTheirMarks)
{
    const std::string mark = "\xEF\xBB\xBF";
    EXPECT_EQ(cardsOf(mark + card("FN:A\n") + mark + card("FN:B\n")).cards.size(), 2U);
}

TEST(CardReader, PicturesComeInBothSpellingsOfBase64AndInAllLayouts)
{
    for (const char *const lines :
         {"PHOTO;ENCODING=b;TYPE=JPEG:QUJDREVGR0g=\n", "PHOTO;ENCODING=BASE64;JPEG:QUJD\n REVGR0g=\n",
          "PHOTO;BASE64:\n    QUJDREVG\n    R0g=\n\n", "PHOTO;ENCODING=BASE64:QUJD\nREVG\nR0g=\n\n"})
    {
        for (const char *const version : {"2.1", "3.0"})
        {
            const CardProperty photo = only(lines, version);
            EXPECT_TRUE(photo.isBinary) << lines;
            EXPECT_EQ(photo.value, "QUJDREVGR0g=") << lines;
            EXPECT_EQ(fromBase64(photo.value), "ABCDEFGH") << lines;
        }
    }
    const CardProperty link = only("PHOTO:data:image/jpeg;base64,QUJD\n", "4.0");
    EXPECT_FALSE(link.isBinary);
    EXPECT_EQ(link.value, "data:image/jpeg;base64,QUJD");
    const Cards found = cardsOf(card("PHOTO;BASE64:QUJD\nREVG\n\nTEL:1\n", "2.1"));
    EXPECT_EQ(found.cards[0].find("TEL")->value, "1");
}

TEST(CardReader, ACardInsideACardIsItsAgent)
{
    const std::string inner = "BEGIN:VCARD\nVERSION:2.1\nFN:Inner\nTEL;WORK:2\nEND:VCARD\n";
    const Cards old = cardsOf(card("FN:Outer\nAGENT:\n" + inner + "TEL:1\n", "2.1"));
    ASSERT_EQ(old.cards.size(), 1U);
    ASSERT_EQ(old.cards[0].agents.size(), 1U);
    EXPECT_EQ(old.cards[0].agents[0].find("FN")->value, "Inner");
    EXPECT_EQ(old.cards[0].find("TEL")->value, "1");
    EXPECT_EQ(old.cards[0].find("FN")->value, "Outer");
    const Cards text =
        cardsOf(card("FN:Outer\nAGENT:BEGIN:VCARD\\nFN:Inner\\, A.\\nTEL\\;TYPE=WORK:2\\nEND:VCARD\\n\nTEL:1\n"));
    ASSERT_EQ(text.cards[0].agents.size(), 1U);
    EXPECT_EQ(text.cards[0].agents[0].find("FN")->value, "Inner, A.");
    EXPECT_EQ(text.cards[0].agents[0].find("TEL")->types, Words{"WORK"});
    EXPECT_EQ(text.cards[0].agents[0].line, 4U);
    EXPECT_TRUE(cardsOf(card("AGENT;VALUE=uri:mailto:x@y\n")).cards[0].agents.empty());
}

TEST(CardReader, CardsInsideCardsEndSomewhere)
{
    std::string deep;
    for (int n = 0; n < 50; ++n)
    {
        deep += "BEGIN:VCARD\nVERSION:2.1\nAGENT:\n";
    }
    for (int n = 0; n < 50; ++n)
    {
        deep += "END:VCARD\n";
    }
    const Cards found = cardsOf(withCrLf(deep) + card("FN:next\n"));
    ASSERT_EQ(found.cards.size(), 2U);
    EXPECT_EQ(found.cards[1].find("FN")->value, "next");
}

TEST(CardReader, ACardWithoutEndCostsNothingBehindIt)
{
    const Cards found = cardsOf(withCrLf("BEGIN:VCARD\nVERSION:2.1\nFN:One\n") + card("FN:Two\n"));
    ASSERT_EQ(found.cards.size(), 2U);
    EXPECT_TRUE(found.cards[0].unended);
    EXPECT_EQ(found.cards[0].find("FN")->value, "One");
    EXPECT_FALSE(found.cards[1].unended);
    EXPECT_EQ(found.cards[1].line, 4U);
}

TEST(CardReader, LinesThatBelongToNothingAreNoted)
{
    const Cards found = cardsOf(card("FN:One\nno colon here\n") + "stray:1\r\nanother\r\n" + card("FN:Two\n"));
    EXPECT_EQ(found.cards.size(), 2U);
    EXPECT_EQ(found.notes.strayLines, 3U);
    EXPECT_EQ(found.notes.strayFirst, 4U);
    const Cards other = cardsOf(card("BEGIN:VTODO\nSUMMARY:x\nEND:VTODO\nFN:One\n"));
    EXPECT_EQ(other.cards[0].otherComponents, 1U);
    EXPECT_EQ(other.cards[0].find("FN")->value, "One");
    EXPECT_EQ(other.cards[0].find("SUMMARY"), nullptr);
}

TEST(CardReader, WhatIsNoCardIsRefused)
{
    for (const char *const text : {"", "\r\n \r\n", "Dear diary\n", "BEGIN:VCALENDAR\nEND:VCALENDAR\n"})
    {
        const auto error = zb::test::errorOf([text] { cardsOf(text); });
        ASSERT_TRUE(error) << text;
        EXPECT_EQ(error->fault(), FileFault::NotCalendar) << text;
    }
}

TEST(CardReader, AFileTornAnywhereIsRefusedOrWhole)
{
    const std::string whole =
        card("N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller=\n;Anna\nPHOTO;BASE64:QUJD\n REVG\n\nAGENT:\n"
             "BEGIN:VCARD\nFN:Inner\nEND:VCARD\n",
             "2.1") +
        card("item1.TEL;TYPE=\"work,voice\":1\nAGENT:BEGIN:VCARD\\nFN:X\\nEND:VCARD\nNOTE:one\n two\n");
    const std::size_t firstEnd = whole.find("END:VCARD\r\nBEGIN:VCARD\r\nVERSION:3.0") + 9;
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        std::size_t cards = 0;
        const auto error =
            zb::test::errorOf([&] { cards = cardsOf(std::string_view(whole).substr(0, size)).cards.size(); });
        EXPECT_TRUE(!error || *error->what() != 0);
        const bool first = size >= firstEnd && size < firstEnd + 2 + 11;
        const bool both = size >= whole.size() - 2;
        EXPECT_EQ(cards, both ? 2U : first ? 1U : 0U) << size;
        EXPECT_EQ(!error, both || first) << size;
    }
}

TEST(CardReader, RandomDamageEndsInCardsOrInAnError)
{
    const std::string whole =
        card("N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller=\n;Anna\nPHOTO;BASE64:QUJD\n REVG\n\nAGENT:\n"
             "BEGIN:VCARD\nFN:Inner\nEND:VCARD\n",
             "2.1") +
        card("item1.TEL;TYPE=\"work,voice\":1\nAGENT:BEGIN:VCARD\\nFN:X\\nEND:VCARD\nNOTE:one\n two\n") +
        card("BDAY:--0412\nTEL;VALUE=uri:tel:+1-555;ext=2\n", "4.0");
    constexpr unsigned seed = 20261121;
    std::mt19937 random(seed);
    for (int round = 0; round < 3000; ++round)
    {
        const std::string text = zb::test::damaged(whole, random);
        const auto error = zb::test::errorOf(
            [&] { ASSERT_LT(cardsOf(text).cards.size(), 60U) << "seed " << seed << " round " << round; });
        ASSERT_TRUE(!error || *error->what() != 0) << "seed " << seed << " round " << round;
    }
}

std::string randomText(std::mt19937 &random, std::size_t length)
{
    static const std::vector<std::string> pieces = {"a",  "B", "7",  " ",  "\t", "=", ";", ":", ",",
                                                    "\\", "ü", "山", "\"", "😀",  ".", "-", "X"};
    std::string text;
    for (std::size_t n = 0; n < length; ++n)
    {
        text += pieces[random() % pieces.size()];
    }
    return text;
}

TEST(CardReader, LinesFoldedAtRandomComeBackTheSame)
{
    for (unsigned seed = 0; seed < 300; ++seed)
    {
        std::mt19937 random(seed);
        std::string file = "BEGIN:VCARD\r\nVERSION:3.0\r\n";
        std::vector<std::string> values;
        for (int n = 0; n < 8; ++n)
        {
            values.push_back("x" + randomText(random, random() % 200) + "x");
            const std::string line = "X-LINE:" + values.back();
            for (std::size_t at = 0; at < line.size();)
            {
                const std::size_t length =
                    at == 0 ? 7 + random() % 60 : 1 + random() % 40; // any byte, inside characters too
                file += (at == 0 ? "" : random() % 2 == 0 ? "\r\n " : "\r\n\t") + line.substr(at, length);
                at += length;
            }
            file += "\r\n";
        }
        const Cards found = cardsOf(file + "END:VCARD\r\n");
        ASSERT_EQ(found.cards.size(), 1U) << seed;
        ASSERT_EQ(found.cards[0].properties.size(), values.size() + 1) << seed;
        for (std::size_t n = 0; n < values.size(); ++n)
        {
            ASSERT_EQ(found.cards[0].properties[n + 1].value, values[n]) << seed;
        }
    }
}

TEST(CardReader, TextsCodedAndBrokenAtRandomComeBackTheSame)
{
    for (unsigned seed = 0; seed < 300; ++seed)
    {
        std::mt19937 random(seed);
        const std::string text = randomText(random, 1 + random() % 200) + "\r\nx";
        std::string coded;
        for (const char ch : text)
        {
            const bool plain = std::isalnum(static_cast<unsigned char>(ch)) != 0 && random() % 3 != 0;
            char code[4];
            std::snprintf(code, sizeof code, "=%02X", static_cast<unsigned>(static_cast<unsigned char>(ch)));
            coded += (plain ? std::string(1, ch) : code) + std::string(random() % 12 == 0 ? "=\r\n" : "");
        }
        ASSERT_EQ(only("NOTE;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:" + coded + "\n", "2.1").value, text) << seed;
    }
}

TEST(CardReader, ALineOfAnySizeStaysBounded)
{
    const std::string big(CardLines::defaultLimit + 100, 'x');
    const CardProperty note = only("NOTE:" + big + "\n");
    EXPECT_TRUE(note.cut);
    EXPECT_EQ(note.value.size(), CardLines::defaultLimit - 5);
    std::string many;
    for (int n = 0; n < 6000; ++n)
    {
        many += "X-A:1\n";
    }
    const Cards found = cardsOf(card(many));
    EXPECT_TRUE(found.cards[0].oversized);
    EXPECT_EQ(found.cards[0].properties.size(), 5000U);
}

TEST(CardReader, ReadingAgainGivesTheSame)
{
    const std::string bytes = card("FN:A\nNOTE:one\n two\nbad\n", "2.1") + card("FN:B\n");
    const auto source = openMemory(bytes);
    CardReader reader(*source);
    for (int round = 0; round < 2; ++round)
    {
        Card each;
        ASSERT_TRUE(reader.next(each));
        EXPECT_EQ(each.line, 1U);
        EXPECT_EQ(each.find("NOTE")->value, "one two");
        ASSERT_TRUE(reader.next(each));
        EXPECT_FALSE(reader.next(each));
        EXPECT_EQ(reader.notes().strayLines, 1U);
        reader.rewind();
    }
}

TEST(TextCharsets, AreKnownByManyNames)
{
    const std::vector<std::pair<const char *, UINT>> names = {
        {"UTF-8", 65001},    {"utf8", 65001},        {"ISO-8859-1", 28591},  {"iso_8859-2", 28592},
        {"Latin1", 28591},   {"ISO-8859-15", 28605}, {"Windows-1252", 1252}, {"CP1251", 1251},
        {"shift_jis", 932},  {"GB2312", 936},        {"Big5", 950},          {"EUC-JP", 51932},
        {"US-ASCII", 20127}, {"KOI8-U", 21866},      {"gb18030", 54936}};
    for (const auto &[name, number] : names)
    {
        EXPECT_EQ(codePageOf(name), number) << name;
    }
    for (const char *const name : {"", "X", "ISO-8859-99", "windows-1", "cp99999", "cp12522"})
    {
        EXPECT_FALSE(codePageOf(name)) << name;
    }
}
} // namespace
