// Find-as-you-type in the flat displays: one letter, more letters, deep.
#include "contacts/ContactListTest.h"

namespace
{
using namespace zb::test;

class ContactSearch : public ContactListTest
{
};

TEST_F(ContactSearch, oneLetterLooksAtWhatTheDisplayIsSortedBy)
{
    addContact(u"Bea", u"Adams");
    addContact(u"Carl", u"Brown");
    zb::ContactItem filed;
    filed.firstName = u"Dora";
    filed.lastName = u"Ender";
    filed.fileAs = u"Boss";
    addContact(filed);
    display(1);
    EXPECT_EQ(search(u"b"), "Brown, Carl");
    display(0);
    EXPECT_EQ(search(u"b"), "Bea Adams");
    display(3);
    EXPECT_EQ(search(u"b"), "Boss; Brown, Carl");
}

TEST_F(ContactSearch, twoLettersLookAtFirstLastAndFileAsName)
{
    addContact(u"Brad", u"Adams");
    addContact(u"Carl", u"Brown");
    zb::ContactItem filed;
    filed.firstName = u"Dora";
    filed.lastName = u"Ender";
    filed.fileAs = u"Brother's wife";
    addContact(filed);
    addContact(u"Emil", u"Fox", u"Bravo");
    display(1);
    EXPECT_EQ(search(u"br"), "Adams, Brad; Brown, Carl; Ender, Dora") << "wherever they stand";
    display(0);
    EXPECT_EQ(search(u"br"), "Brad Adams; Carl Brown; Dora Ender");
    EXPECT_EQ(search(u"bro"), "Carl Brown; Dora Ender");
    EXPECT_EQ(search(u"brx"), "");
    EXPECT_EQ(loader().GetTotalNumRecords(), 0);
}

TEST_F(ContactSearch, leavesCaseAccentsSymbolsKanaAndWidthOutOfAccount)
{
    addContact(u"Émile", u"O'Brien");
    addContact(u"アンナ", u"Ｗｉｄｅ");
    display(1);
    EXPECT_EQ(search(u"EMI"), "O'Brien, Émile");
    EXPECT_EQ(search(u"émi"), "O'Brien, Émile");
    EXPECT_EQ(search(u"o'b"), "O'Brien, Émile");
    EXPECT_EQ(search(u"あん"), "Ｗｉｄｅ, アンナ");
    EXPECT_EQ(search(u"wid"), "Ｗｉｄｅ, アンナ");
}

TEST_F(ContactSearch, aTextLongerThanTheNameIsNoHit)
{
    addContact(u"", u"Ng");
    display(1);
    EXPECT_EQ(search(u"ng"), "Ng");
    EXPECT_EQ(search(u"nga"), "");
}

TEST_F(ContactSearch, aRecordThatIsGoneDoesNotEndIt)
{
    const CEOID gone = addContact(u"", u"Baa");
    addContact(u"", u"Bab");
    load(1);
    removeContact(gone);
    EXPECT_EQ(search(u"ba"), "Bab");
}

TEST_F(ContactSearch, setAndClear)
{
    EXPECT_FALSE(loader().IsCompareString());
    EXPECT_TRUE(loader().SetCompareString(u"x", false));
    EXPECT_TRUE(loader().IsCompareString());
    EXPECT_FALSE(loader().SetCompareString(u"", true));
    EXPECT_FALSE(loader().IsCompareString());
    loader().SetCompareString(u"x", true);
    EXPECT_FALSE(loader().SetCompareString(nullptr, false));
    EXPECT_FALSE(loader().IsCompareString());
    loader().SetCompareString(u"x", true);
    loader().ClearCompareString();
    EXPECT_FALSE(loader().IsCompareString());
    EXPECT_EQ(loader().SetPropIds(true), 17) << "nor is the search deep";
}

TEST_F(ContactSearch, aVeryLongTextIsCut)
{
    addContact(u"", std::u16string(12'000, u'a'));
    display(1);
    EXPECT_NE(search(std::u16string(13'000, u'a')), "");
}

// --- Deep ---------------------------------------------------------------------------------------------------------

TEST_F(ContactSearch, deepLooksIntoEveryTextThatItReads)
{
    zb::ContactItem item;
    item.firstName = u"f01";
    item.lastName = u"f02";
    item.company = u"f03";
    item.fileAs = u"f04";
    item.jobTitle = u"f05";
    item.department = u"f06";
    item.office = u"f07";
    item.assistant = u"f08";
    item.webPage = u"f09";
    item.businessPhone = u"f10";
    item.business2Phone = u"f11";
    item.businessFax = u"f12";
    item.homePhone = u"f13";
    item.home2Phone = u"f14";
    item.homeFax = u"f15";
    item.mobilePhone = u"f16";
    item.carPhone = u"f17";
    item.radioPhone = u"f18";
    item.pager = u"f19";
    item.assistantPhone = u"f20";
    item.email1 = u"f21";
    item.email2 = u"f22";
    item.email3 = u"f23";
    item.business = {u"f24", u"f25", u"f26", u"f27", u"f28"};
    item.other = {u"f29", u"f30", u"f31", u"f32", u"f33"};
    item.home = {u"f34", u"f35", u"f36", u"no1", u"f37"};
    item.notes = u"no2";
    item.spouse = u"no3";
    const CEOID oid = addContact(item);
    zb::RecordProperties icon;
    icon.set(0x2a08001f, std::u16string(u"no4"));
    writeContact(oid, icon);
    addContact(u"Somebody", u"Else");
    display(3);
    for (int i = 1; i <= 37; ++i)
    {
        const std::string text = (i < 10 ? "F0" : "F") + std::to_string(i);
        EXPECT_EQ(search(utf16(text), true), "f04") << text;
    }
    for (const char *text : {"no1", "no2", "no3", "no4"})
    {
        EXPECT_EQ(search(utf16(text), true), "") << "kept: not among what is looked at, " << text;
    }
}

TEST_F(ContactSearch, deepFindsTheTextAnywhereWithoutRegardToCaseButNotToAccents)
{
    zb::ContactItem item;
    item.lastName = u"Berg";
    item.business.city = u"Göteborg";
    addContact(item);
    addContact(u"", u"Dorn");
    display(1);
    EXPECT_EQ(search(u"TEBO", true), "Berg");
    EXPECT_EQ(search(u"gÖT", true), "Berg");
    EXPECT_EQ(search(u"got", true), "");
    EXPECT_EQ(search(u"r", true), "Berg; Dorn") << "one letter too";
    EXPECT_EQ(search(u"ergx", true), "");
}

TEST_F(ContactSearch, deepGoesOnBehindAPartialMatch)
{
    addContact(u"", u"aaab");
    display(1);
    EXPECT_EQ(search(u"aab", true), "aaab");
}

TEST_F(ContactSearch, deepKeepsTheOrderOfTheDisplay)
{
    addContact(u"Zoe", u"Alpha", u"Acme");
    addContact(u"Bob", u"Beta", u"Acme");
    addContact(u"Carl", u"Gamma", u"Other");
    for (const auto &[display, expected] :
         {std::pair(0, "Bob Beta; Zoe Alpha"), {1, "Alpha, Zoe; Beta, Bob"}, {3, "Alpha, Zoe; Beta, Bob"}})
    {
        set(u"CV_DisplayFormat", static_cast<DWORD>(display));
        EXPECT_EQ(search(u"acm", true), expected);
    }
}
} // namespace
