// Dialog templates: every field at its place, and any bytes.
#include "platform/dialog_template.h"

#include "support/TestDevice.h"

namespace
{
using namespace zb;
using zb::test::utf8;

/// Bytes of a template, put together by hand.
class Bytes
{
  public:
    Bytes &word(unsigned value)
    {
        bytes.push_back(static_cast<BYTE>(value));
        bytes.push_back(static_cast<BYTE>(value >> 8U));
        return *this;
    }
    Bytes &doubleWord(unsigned value)
    {
        return word(value & 0xFFFFU).word(value >> 16U);
    }
    Bytes &words(std::initializer_list<unsigned> values)
    {
        for (const unsigned value : values)
        {
            word(value);
        }
        return *this;
    }
    Bytes &text(std::u16string_view value)
    {
        for (const WCHAR ch : value)
        {
            word(ch);
        }
        return word(0);
    }
    Bytes &align()
    {
        while (bytes.size() % 4 != 0)
        {
            bytes.push_back(0xEE);
        }
        return *this;
    }
    std::optional<DialogTemplate> read() const
    {
        return readDialogTemplate(bytes.data(), bytes.size());
    }
    std::vector<BYTE> bytes;
};

Bytes plainDialog(unsigned items, unsigned style = 0)
{
    return Bytes().doubleWord(style).doubleWord(0).words({items, 0, 0, 100, 50, 0, 0, 0});
}

/// Style, extended style, place and id.
Bytes &item(Bytes &bytes, unsigned id)
{
    return bytes.align().doubleWord(1).doubleWord(2).words({3, 4, 5, 6, id});
}

std::string nameText(const DialogName &name)
{
    if (const auto *number = std::get_if<WORD>(&name))
    {
        return "#" + std::to_string(*number);
    }
    const auto *text = std::get_if<std::u16string>(&name);
    return text == nullptr ? "none" : "'" + utf8(*text) + "'";
}

TEST(DialogTemplate, theDialogItself)
{
    Bytes bytes;
    bytes.doubleWord(0x90C80001).doubleWord(0x00010203).words({0, 0xFFFE, 2, 300, 400});
    bytes.words({0xFFFF, 77}).text(u"CLASS").text(u"Title");
    const auto dialog = bytes.read();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->style, 0x90C80001U);
    EXPECT_EQ(dialog->extendedStyle, 0x00010203U);
    EXPECT_EQ(dialog->place.x, -2);
    EXPECT_EQ(dialog->place.y, 2);
    EXPECT_EQ(dialog->place.width, 300);
    EXPECT_EQ(dialog->place.height, 400);
    EXPECT_EQ(nameText(dialog->menu), "#77");
    EXPECT_EQ(nameText(dialog->className), "'CLASS'");
    EXPECT_EQ(nameText(dialog->title), "'Title'");
    EXPECT_EQ(dialog->fontPoints, 0);
    EXPECT_TRUE(dialog->items.empty());
}

TEST(DialogTemplate, namesMayBeMissing)
{
    const auto dialog = plainDialog(0).read();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(nameText(dialog->menu), "none");
    EXPECT_EQ(nameText(dialog->className), "none");
    EXPECT_EQ(nameText(dialog->title), "none");
}

TEST(DialogTemplate, theFontStandsThereWithItsStyleAlone)
{
    const auto with = plainDialog(0, 0x40).word(8).text(u"Tahoma").read();
    ASSERT_TRUE(with);
    EXPECT_EQ(with->fontPoints, 8);
    EXPECT_EQ(utf8(with->fontFace), "Tahoma");
    EXPECT_FALSE(plainDialog(0, 0x40).read());
    EXPECT_FALSE(plainDialog(0, 0x40).word(8).read());
}

TEST(DialogTemplate, itemsBeginAtMultiplesOfFour)
{
    Bytes bytes = plainDialog(3);
    item(bytes, 1001).words({0xFFFF, 128}).text(u"OK").word(0);
    item(bytes, 0xFFFF).words({0xFFFF, 130}).words({0xFFFF, 55}).word(0);
    item(bytes, 1003).text(u"ZBOTHER").word(0).word(0);
    const auto dialog = bytes.read();
    ASSERT_TRUE(dialog);
    ASSERT_EQ(dialog->items.size(), 3U);
    const DialogItem &first = dialog->items[0];
    EXPECT_EQ(first.style, 1U);
    EXPECT_EQ(first.extendedStyle, 2U);
    EXPECT_EQ(first.place.x, 3);
    EXPECT_EQ(first.place.y, 4);
    EXPECT_EQ(first.place.width, 5);
    EXPECT_EQ(first.place.height, 6);
    EXPECT_EQ(first.id, 1001);
    EXPECT_EQ(nameText(first.className), "#128");
    EXPECT_EQ(nameText(first.title), "'OK'");
    EXPECT_EQ(dialog->items[1].id, 0xFFFF);
    EXPECT_EQ(nameText(dialog->items[1].className), "#130");
    EXPECT_EQ(nameText(dialog->items[1].title), "#55");
    EXPECT_EQ(dialog->items[2].id, 1003);
    EXPECT_EQ(nameText(dialog->items[2].className), "'ZBOTHER'");
    EXPECT_EQ(nameText(dialog->items[2].title), "none");
}

TEST(DialogTemplate, extraDataCountsItsOwnWord)
{
    Bytes bytes = plainDialog(3);
    item(bytes, 1).words({0xFFFF, 128, 0});
    bytes.words({6, 0x2211, 0x4433});
    item(bytes, 2).words({0xFFFF, 128, 0});
    bytes.word(0);
    item(bytes, 3).words({0xFFFF, 128, 0});
    bytes.word(2);
    const auto dialog = bytes.read();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->items[0].extra, (std::vector<BYTE>{0x11, 0x22, 0x33, 0x44}));
    EXPECT_TRUE(dialog->items[1].extra.empty());
    EXPECT_EQ(dialog->items[1].id, 2);
    EXPECT_TRUE(dialog->items[2].extra.empty());
    EXPECT_EQ(dialog->items[2].id, 3);
}

TEST(DialogTemplate, extraDataThatEndsTooEarlyIsRefused)
{
    Bytes bytes = plainDialog(1);
    item(bytes, 1).words({0xFFFF, 128, 0, 6, 0x2211});
    EXPECT_FALSE(bytes.read());
    bytes.word(0x4433);
    EXPECT_TRUE(bytes.read());
}

TEST(DialogTemplate, everyCutIsRefused)
{
    Bytes bytes;
    bytes.doubleWord(0x40).doubleWord(0).words({2, 0, 0, 9, 9}).words({0xFFFF, 3}).text(u"C").text(u"T");
    bytes.word(8).text(u"Face");
    item(bytes, 1).words({0xFFFF, 128}).text(u"Text").words({4, 1});
    item(bytes, 2).text(u"Cl").words({0xFFFF, 9}).word(0);
    ASSERT_TRUE(bytes.read());
    for (std::size_t size = 0; size < bytes.bytes.size(); ++size)
    {
        EXPECT_FALSE(readDialogTemplate(bytes.bytes.data(), size)) << size;
    }
}

TEST(DialogTemplate, moreItemsThanThereAreBytesForAreRefusedAtOnce)
{
    EXPECT_FALSE(plainDialog(0xFFFF).read());
}

TEST(DialogTemplate, anyBytesEndWell)
{
    std::mt19937 random(93);
    for (int round = 0; round < 20'000; ++round)
    {
        std::vector<BYTE> bytes(random() % 120);
        std::generate(bytes.begin(), bytes.end(),
                      [&] { return static_cast<BYTE>(random() % 3 == 0 ? random() : random() % 4); });
        const auto dialog = readDialogTemplate(bytes.data(), bytes.size());
        ASSERT_TRUE(!dialog || dialog->items.size() * 24 <= bytes.size());
    }
}
} // namespace
