// Cards of vCard files as contacts: where each property goes, and what is told of what has no place.
#include "apps/CalendarText.h"
#include "interchange/card_reader.h"
#include "interchange/card_values.h"
#include "interchange/contact_card.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace zb::interchange;
using zb::test::describe;
using zb::test::utf8;
using zb::test::withCrLf;

using Words = std::vector<std::string>;

Card cardOf(const std::string &lines, const std::string &version = "3.0")
{
    const std::string bytes = withCrLf("BEGIN:VCARD\nVERSION:" + version + "\n" + lines + "END:VCARD\n");
    const auto source = openMemory(bytes);
    CardReader reader(*source);
    Card card;
    EXPECT_TRUE(reader.next(card));
    return card;
}

ContactReading readingOf(const std::string &lines, const std::string &version = "3.0")
{
    ContactReading reading = readContact(cardOf(lines, version));
    reading.photo = nullptr; // its card is gone
    return reading;
}

zb::ContactItem itemOf(const std::string &lines, const std::string &version = "3.0")
{
    return readingOf(lines, version).item;
}

Words findingsOf(const std::string &lines, const std::string &version = "3.0")
{
    Words texts;
    for (const Finding &finding : readingOf(lines, version).findings)
    {
        texts.push_back(std::to_string(finding.line) + ": " + finding.text);
    }
    return texts;
}

Words lostOf(const std::string &lines, const std::string &version = "3.0")
{
    return readingOf(lines, version).lost;
}

std::string lines(const std::u16string &text)
{
    std::string plain = utf8(text);
    for (std::size_t at = plain.find("\r\n"); at != std::string::npos; at = plain.find("\r\n"))
    {
        plain.replace(at, 2, "|");
    }
    return plain;
}

/// "first/middle/last/title/suffix".
std::string nameOf(const zb::ContactItem &item)
{
    return utf8(item.firstName) + "/" + utf8(item.middleName) + "/" + utf8(item.lastName) + "/" + utf8(item.title) +
           "/" + utf8(item.suffix);
}

std::string addressOf(const zb::PostalAddress &address)
{
    return lines(address.street) + "/" + utf8(address.city) + "/" + utf8(address.state) + "/" +
           utf8(address.postalCode) + "/" + utf8(address.country);
}

TEST(ContactCard, NamesComeInFiveParts)
{
    EXPECT_EQ(nameOf(itemOf("N:Stevenson;John;Philip,Paul;Dr.;Jr.,M.D.\n")),
              "John/Philip Paul/Stevenson/Dr./Jr., M.D.");
    EXPECT_EQ(nameOf(itemOf("N:Doe;John;Richter\\, James;Mr.;Sr.\n")), "John/Richter, James/Doe/Mr./Sr.");
    EXPECT_EQ(nameOf(itemOf("N:Doe, Jr.;John\n", "2.1")), "John//Doe, Jr.//");
    EXPECT_EQ(nameOf(itemOf("N:a\\;b;c\n")), "c//a;b//");
    EXPECT_EQ(nameOf(itemOf("N:\\\\srv\\new\\;x;A\n", "2.1")), "A//\\\\srv\\new;x//") << "2.1 knows no \\n";
    EXPECT_EQ(utf8(fileAsOf(itemOf("N:Berg;Anna;;;\nORG:Havel GmbH\n"))), "Berg, Anna");
}

TEST(ContactCard, TheWholeNameServesWhereTheParsAreMissing)
{
    EXPECT_EQ(nameOf(itemOf("FN:Frank Dawson\n")), "Frank//Dawson//");
    EXPECT_EQ(nameOf(itemOf("FN:Anna Maria von Berg\nN:;;;;\n")), "Anna/Maria von/Berg//");
    EXPECT_EQ(nameOf(itemOf("FN:Berg, Anna Maria\n")), "Anna Maria//Berg//");
    EXPECT_EQ(nameOf(itemOf("FN:Anna\n")), "Anna////");
    EXPECT_EQ(nameOf(itemOf("FN:山田太郎\n")), "山田太郎////");
}

TEST(ContactCard, AWholeNameThatSaysMoreThanItsPartsIsToldToBeLost)
{
    EXPECT_EQ(lostOf("N:Doe;John;;Mr.;III\nFN:Mr. JOHN Doe III\n"), Words());
    EXPECT_EQ(lostOf("N:Doe;John\nFN:Doe, John (Acme)\nORG:Acme\n"), Words());
    EXPECT_EQ(lostOf("N:山田;太郎\nFN:山田太郎\n"), Words());
    EXPECT_EQ(lostOf("N:Doe;John\nFN:Johnny from the bakery\n"), Words{"FN"});
}

TEST(ContactCard, CompaniesAreFiledUnderTheirName)
{
    const zb::ContactItem plain = itemOf("FN:Stadtwerke Erlengrund\nORG:Stadtwerke Erlengrund\nN:;;;;\n");
    EXPECT_EQ(nameOf(plain), "////");
    EXPECT_EQ(utf8(plain.company), "Stadtwerke Erlengrund");
    EXPECT_EQ(utf8(fileAsOf(plain)), "Stadtwerke Erlengrund");
    EXPECT_EQ(utf8(itemOf("FN:Acme\nKIND:org\n", "4.0").company), "Acme");
    EXPECT_EQ(utf8(itemOf("FN:Acme\nKIND:organization\n", "4.0").company), "Acme");
    EXPECT_EQ(utf8(fileAsOf(itemOf("N:Berg;Anna\nORG:Acme\nX-ABShowAs:COMPANY\n"))), "Acme");
    EXPECT_EQ(utf8(fileAsOf(itemOf("N:Berg;Anna\nX-EVOLUTION-FILE-AS:Anna Berg\n"))), "Anna Berg");
}

TEST(ContactCard, CompanyDepartmentTitleAndOffice)
{
    const zb::ContactItem item =
        itemOf("N:x\nORG:Havel\\; Spree GmbH;Lab;Room 2\nTITLE:Head\\, acting\nX-OFFICE:3.14\n");
    EXPECT_EQ(utf8(item.company), "Havel; Spree GmbH");
    EXPECT_EQ(utf8(item.department), "Lab, Room 2");
    EXPECT_EQ(utf8(item.jobTitle), "Head, acting");
    EXPECT_EQ(utf8(item.office), "3.14");
    const zb::ContactItem third = itemOf("N:x\nORG:IBM;Accounting;Dungeon\nX-EVOLUTION-FILE-AS:x\n");
    EXPECT_EQ(utf8(third.department), "Accounting");
    EXPECT_EQ(utf8(third.office), "Dungeon");
    EXPECT_EQ(utf8(itemOf("N:x\nROLE:Cook\n").jobTitle), "Cook");
    EXPECT_EQ(lostOf("N:x\nROLE:Cook\nTITLE:Chef\n"), Words{"ROLE"});
    EXPECT_EQ(lostOf("N:x\nROLE:Cook\nTITLE:Cook\n"), Words());
    EXPECT_EQ(findingsOf("N:x\nORG:A\nORG:B\nORG:A\n"),
              Words{"5: the company \"B\" was left out: a contact has no place for more"});
}

TEST(ContactCard, EveryKindOfNumberHasItsField)
{
    const std::vector<std::pair<const char *, std::u16string zb::ContactItem::*>> cases = {
        {"TEL;WORK;VOICE", &zb::ContactItem::businessPhone},
        {"TEL;TYPE=WORK", &zb::ContactItem::businessPhone},
        {"TEL;TYPE=main", &zb::ContactItem::businessPhone},
        {"TEL;TYPE=HOME,VOICE", &zb::ContactItem::homePhone},
        {"TEL;CELL", &zb::ContactItem::mobilePhone},
        {"TEL;TYPE=iPhone,CELL,VOICE", &zb::ContactItem::mobilePhone},
        {"TEL;TYPE=WORK;TYPE=CELL", &zb::ContactItem::mobilePhone},
        {"TEL;WORK;FAX", &zb::ContactItem::businessFax},
        {"TEL;TYPE=FAX", &zb::ContactItem::businessFax},
        {"TEL;HOME;FAX", &zb::ContactItem::homeFax},
        {"TEL;TYPE=PAGER", &zb::ContactItem::pager},
        {"TEL;CAR;VOICE", &zb::ContactItem::carPhone},
        {"TEL;TYPE=X-EVOLUTION-RADIO", &zb::ContactItem::radioPhone},
        {"X-MS-TEL;VOICE;RADIO", &zb::ContactItem::radioPhone},
        {"TEL;TYPE=X-EVOLUTION-ASSISTANT", &zb::ContactItem::assistantPhone},
        {"X-MS-TEL;VOICE;ASSISTANT", &zb::ContactItem::assistantPhone},
        {"X-ASSISTANT-PHONE", &zb::ContactItem::assistantPhone},
    };
    for (const auto &[head, field] : cases)
    {
        const ContactReading reading = readingOf(std::string("N:x\n") + head + ":+49 30 1\n");
        EXPECT_EQ(utf8(reading.item.*field), "+49 30 1") << head;
        EXPECT_TRUE(reading.findings.empty() && reading.lost.empty()) << head;
        EXPECT_EQ(zb::encodeContact(reading.item).count(), zb::encodeContact(zb::ContactItem{}).count()) << head;
    }
}

TEST(ContactCard, LabelsOfGroupsTellKindsToo)
{
    const auto item = [](const char *label)
    { return itemOf(std::string("N:x\ni1.TEL:1\ni1.X-ABLabel:") + label + "\ni2.X-ABLabel:Other\n"); };
    EXPECT_EQ(utf8(item("_$!<Mobile>!$_").mobilePhone), "1");
    EXPECT_EQ(utf8(item("_$!<Work>!$_").businessPhone), "1");
    EXPECT_EQ(utf8(item("_$!<HomeFAX>!$_").homeFax), "1");
    EXPECT_EQ(utf8(item("_$!<WorkFAX>!$_").businessFax), "1");
    EXPECT_EQ(utf8(item("_$!<Pager>!$_").pager), "1");
    EXPECT_EQ(utf8(item("Car").carPhone), "1");
}

TEST(ContactCard, SecondNumbersAndPreferredOnes)
{
    const zb::ContactItem item = itemOf("N:x\nTEL;WORK:1\nTEL;WORK;PREF:2\nTEL;HOME:3\nTEL;HOME:4\nTEL;WORK;PREF:2\n");
    EXPECT_EQ(utf8(item.businessPhone), "2");
    EXPECT_EQ(utf8(item.business2Phone), "1");
    EXPECT_EQ(utf8(item.homePhone), "3");
    EXPECT_EQ(utf8(item.home2Phone), "4");
    EXPECT_EQ(item.preferredNumber, zb::contactBusinessPhone);
    const zb::ContactItem ranked = itemOf(
        "N:x\nTEL;TYPE=home;PREF=2:1\nTEL;TYPE=home:2\nTEL;TYPE=\"home,voice\";PREF=1:3\nTEL;TYPE=cell:4\n", "4.0");
    EXPECT_EQ(utf8(ranked.homePhone), "3");
    EXPECT_EQ(utf8(ranked.home2Phone), "1");
    EXPECT_EQ(ranked.preferredNumber, zb::contactHomePhone);
    EXPECT_FALSE(itemOf("N:x\nTEL;HOME:1\n").preferredNumber);
}

TEST(ContactCard, NumbersWithoutRoomGoElsewhereOrAreToldToBeLost)
{
    const std::string text = "N:x\nTEL;CELL:1\nTEL;CELL:2\nTEL:3\nTEL;VOICE:3\nTEL;CELL:1\n";
    const zb::ContactItem item = itemOf(text);
    EXPECT_EQ(utf8(item.mobilePhone), "1");
    EXPECT_EQ(utf8(item.carPhone), "2");
    EXPECT_EQ(utf8(item.homePhone), "3");
    EXPECT_EQ(findingsOf(text), (Words{"5: the number \"2\" (CELL) came in as car number",
                                       "6: the number \"3\" came in as home number"}));
    EXPECT_EQ(utf8(itemOf("ORG:Acme\nTEL:3\n").businessPhone), "3");
    std::string many = "N:x\n";
    for (int n = 1; n <= 9; ++n)
    {
        many += "TEL;FAX:" + std::to_string(n) + "\n";
    }
    const Words findings = findingsOf(many);
    EXPECT_EQ(std::count_if(findings.begin(), findings.end(),
                            [](const std::string &text) { return text.find("left out") != std::string::npos; }),
              3)
        << "two faxes, car, radio and two others";
}

/// Where so many numbers of a kind go, in the order of the numbers; "-" for one that is left out.
std::string placesOf(const std::string &kind, int count, const std::string &who = "N:x\n")
{
    using Field = std::pair<const char *, std::u16string zb::ContactItem::*>;
    static const std::vector<Field> fields{
        {"business", &zb::ContactItem::businessPhone},  {"business2", &zb::ContactItem::business2Phone},
        {"businessFax", &zb::ContactItem::businessFax}, {"home", &zb::ContactItem::homePhone},
        {"home2", &zb::ContactItem::home2Phone},        {"homeFax", &zb::ContactItem::homeFax},
        {"mobile", &zb::ContactItem::mobilePhone},      {"car", &zb::ContactItem::carPhone},
        {"radio", &zb::ContactItem::radioPhone},        {"pager", &zb::ContactItem::pager},
        {"assistant", &zb::ContactItem::assistantPhone}};
    std::string text = who;
    for (int n = 1; n <= count; ++n)
    {
        text += "TEL" + kind + ":" + std::to_string(n) + "\n";
    }
    const zb::ContactItem item = itemOf(text);
    std::string places;
    for (int n = 1; n <= count; ++n)
    {
        const auto found =
            std::find_if(fields.begin(), fields.end(),
                         [&](const Field &field) { return utf8(item.*field.second) == std::to_string(n); });
        places += std::string(n == 1 ? "" : " ") + (found != fields.end() ? found->first : "-");
    }
    return places;
}

TEST(ContactCard, NumbersOfAKindTakeTheirOwnFieldsAndThenTheNearest)
{
    EXPECT_EQ(placesOf(";CELL", 8), "mobile car home2 business2 home business radio -");
    EXPECT_EQ(placesOf(";WORK", 7), "business business2 home2 home car radio -");
    EXPECT_EQ(placesOf(";HOME", 7), "home home2 business2 business car radio -");
    EXPECT_EQ(placesOf("", 8), "home home2 business business2 mobile car radio -");
    EXPECT_EQ(placesOf("", 8, "ORG:Acme\n"), "business business2 home home2 mobile car radio -");
    EXPECT_EQ(placesOf(";PAGER", 6), "pager car radio home2 business2 -");
    EXPECT_EQ(placesOf(";CAR", 5), "car radio home2 business2 -");
    EXPECT_EQ(placesOf(";X-RADIO", 5), "radio car home2 business2 -");
    EXPECT_EQ(placesOf(";X-ASSISTANT", 6), "assistant home2 home car radio -");
    EXPECT_EQ(placesOf(";WORK;FAX", 3), "businessFax homeFax -");
    EXPECT_EQ(placesOf(";HOME;FAX", 3), "homeFax businessFax -");
    EXPECT_EQ(placesOf(";FAX", 7), "businessFax homeFax car radio home2 business2 -");
}

TEST(ContactCard, LinksOfNumbersAndMailAddressesAreTexts)
{
    EXPECT_EQ(utf8(itemOf("N:x\nTEL;VALUE=uri;TYPE=work:tel:+1-555-555-5555;ext=5555\n", "4.0").businessPhone),
              "+1-555-555-5555 ext. 5555");
    EXPECT_EQ(utf8(itemOf("N:x\nTEL;TYPE=home:tel:+33-01-23-45-67\n", "4.0").homePhone), "+33-01-23-45-67");
    EXPECT_EQ(utf8(itemOf("N:x\nEMAIL:mailto:a@b.example\n", "4.0").email1), "a@b.example");
}

TEST(ContactCard, ThreeMailAddressesAndOneWebPage)
{
    const std::string text = "N:x\nEMAIL:a@x\nEMAIL;INTERNET;PREF:b@x\nEMAIL:a@x\nEMAIL:c@x\nEMAIL:d@x\n"
                             "URL:www.x.example\nURL:http\\://www.x.example/\nURL:http://y.example\n";
    const zb::ContactItem item = itemOf(text);
    EXPECT_EQ(utf8(item.email1) + utf8(item.email2) + utf8(item.email3), "b@xa@xc@x");
    EXPECT_EQ(utf8(item.webPage), "www.x.example");
    EXPECT_EQ(findingsOf(text),
              (Words{"8: the mail address \"d@x\" was left out: a contact has no place for more",
                     "11: the web page \"http://y.example\" was left out: a contact has no place for more"}));
}

TEST(ContactCard, ThreeAddressesInFiveFields)
{
    const zb::ContactItem item = itemOf("N:x\nADR;WORK:;Room 3;Hauptstr. 1;Berlin;BE;10115;Germany\n"
                                        "ADR;HOME:Box 7;Rear house;Nebenweg 2\\nleft;Potsdam;;14467;\n"
                                        "ADR;POSTAL:;;Somewhere 3;;;;\n");
    EXPECT_EQ(addressOf(item.business), "Hauptstr. 1/Berlin/BE/10115/Germany");
    EXPECT_EQ(utf8(item.office), "Room 3");
    EXPECT_EQ(addressOf(item.home), "Rear house|Nebenweg 2|left|Box 7/Potsdam//14467/");
    EXPECT_EQ(addressOf(item.other), "Somewhere 3////");
    EXPECT_EQ(addressOf(itemOf("N:x\na.ADR:;;Way 1;;;;\na.X-ABLabel:_$!<Home>!$_\n").home), "Way 1////");
    EXPECT_EQ(addressOf(itemOf("N:x\nADR;TYPE=home:;;1 Main St, Apt 4;X;;;\n").home), "1 Main St, Apt 4/X///");
}

TEST(ContactCard, FurtherAddressesOfAKind)
{
    const std::string text =
        "N:x\nADR;HOME:;;One;;;;\nADR;HOME;PREF:;;Two;;;;\nADR;HOME:;;Three;;;;\nADR;HOME:;;Two;;;;\n";
    EXPECT_EQ(addressOf(itemOf(text).home), "Two////");
    EXPECT_EQ(addressOf(itemOf(text).other), "One////");
    EXPECT_EQ(findingsOf(text), (Words{"4: the second address of a kind came in as other address",
                                       "6: the address \"Three\" was left out: a contact has no place for more"}));
}

TEST(ContactCard, AddressesAsTextsCountWhereThereIsNoOtherForm)
{
    EXPECT_EQ(addressOf(itemOf("N:x\nLABEL;HOME:Way 1\\nTown\n").home), "Way 1|Town////");
    EXPECT_EQ(addressOf(itemOf("N:x\nLABEL;HOME:Way 1\nADR;HOME:;;Road 2;;;;\n").home), "Road 2////");
    EXPECT_EQ(addressOf(itemOf("N:x\nADR;TYPE=home;LABEL=\"Way 1^nTown\":;;;;;;\n", "4.0").home), "Way 1|Town////");
}

std::string dateOf(const std::string &value)
{
    const std::optional<CardDate> date = readCardDate(value, {});
    return date ? describe(date->day).substr(0, 10) + (date->hasYear ? "" : " yearless") +
                      (date->hasTime ? " timed" : "")
                : "none";
}

TEST(ContactCard, DatesAreReadInAllTheirForms)
{
    EXPECT_EQ(dateOf("1980-03-22"), "1980-03-22");
    EXPECT_EQ(dateOf("19800322"), "1980-03-22");
    EXPECT_EQ(dateOf(" 1980-3-2 "), "1980-03-02");
    EXPECT_EQ(dateOf("1980-03-22T00:00:00Z"), "1980-03-22");
    EXPECT_EQ(dateOf("1980-03-22T00:00:00+01:00"), "1980-03-22");
    EXPECT_EQ(dateOf("19531015T231000Z"), "1953-10-15 timed");
    EXPECT_EQ(dateOf("1953-10-15 07:00"), "1953-10-15 timed");
    EXPECT_EQ(dateOf("--0412"), "2996-04-12 yearless");
    EXPECT_EQ(dateOf("--04-12"), "2996-04-12 yearless");
    EXPECT_EQ(dateOf("--0229"), "2996-02-29 yearless");
    for (const char *const text : {"", "1980", "1980-03", "---12", "--04", "circa 1800", "1981-02-29", "19801322",
                                   "1980-03-22x", "80-03-22", "1980-03-32", "1500-01-01", "1980322", "--"})
    {
        EXPECT_EQ(dateOf(text), "none") << text;
    }
    EXPECT_FALSE(readCardDate("1604-04-12", "1604")->hasYear);
}

TEST(ContactCard, BirthdaysAndAnniversaries)
{
    const auto anniversary = [](const std::string &text)
    {
        const zb::ContactItem item = itemOf("N:x\n" + text);
        return item.anniversary ? describe(*item.anniversary) : "none";
    };
    EXPECT_EQ(describe(*itemOf("N:x\nBDAY:1980-03-22\n").birthday), "1980-03-22 00:00:00");
    for (const char *const head : {"ANNIVERSARY", "X-ANNIVERSARY", "X-EVOLUTION-ANNIVERSARY", "X-MS-ANNIVERSARY",
                                   "X-KADDRESSBOOK-X-Anniversary"})
    {
        EXPECT_EQ(anniversary(std::string(head) + ":20140816\n"), "2014-08-16 00:00:00") << head;
    }
    EXPECT_EQ(anniversary("item1.X-ABDATE:1975-03-01\nitem1.X-ABLabel:_$!<Anniversary>!$_\n"), "1975-03-01 00:00:00");
    EXPECT_EQ(anniversary("X-ANDROID-CUSTOM:vnd.android.cursor.item/contact_event;1999-05-17;1;;;\n"),
              "1999-05-17 00:00:00");
    EXPECT_EQ(findingsOf("N:x\nBDAY:--0412\n"), Words{"4: the birthday has no year and came in with the year 2996"});
    EXPECT_EQ(findingsOf("N:x\nBDAY;X-APPLE-OMIT-YEAR=1604:1604-04-12\n"),
              Words{"4: the birthday has no year and came in with the year 2996"});
    EXPECT_EQ(findingsOf("N:x\nBDAY;VALUE=text:circa 1800\n"),
              Words{"4: the birthday \"circa 1800\" is no day of a year and was left out"});
    EXPECT_EQ(findingsOf("N:x\ni.X-ABDATE:2020-01-01\ni.X-ABLabel:First day\n"),
              Words{"4: the date \"FIRST DAY 2020-01-01\" was left out: a contact has no place for more"});
    EXPECT_EQ(lostOf("N:x\nBDAY:19531015T231000Z\n"), Words{"time of day of BDAY"});
    EXPECT_EQ(findingsOf("N:x\nANNIVERSARY:20140816\nX-ANNIVERSARY:2014-08-16\n"), Words());
}

TEST(ContactCard, TheNearestPeople)
{
    for (const char *const text :
         {"X-SPOUSE:Kim\n", "X-EVOLUTION-SPOUSE:Kim\n", "X-MS-SPOUSE;N:Kim\n", "RELATED;TYPE=spouse;VALUE=text:Kim\n",
          "X-KADDRESSBOOK-X-SpousesName:Kim\n", "i.X-ABRELATEDNAMES:Kim\ni.X-ABLabel:_$!<Spouse>!$_\n",
          "X-ANDROID-CUSTOM:vnd.android.cursor.item/relation;Kim;14;;\n"})
    {
        EXPECT_EQ(utf8(itemOf(std::string("N:x\n") + text).spouse), "Kim") << text;
    }
    EXPECT_EQ(utf8(itemOf("N:x\nX-MS-CHILD:Ada\nX-MS-CHILD:Bo\nRELATED;TYPE=child:Cy\ni.X-ABRELATEDNAMES:Di\n"
                          "i.X-ABLabel:_$!<Daughter>!$_\n")
                       .children),
              "Ada, Bo, Cy, Di");
    for (const char *const text : {"X-ASSISTANT:Red\n", "X-EVOLUTION-ASSISTANT:Red\n", "X-MS-ASSISTANT:Red\n",
                                   "RELATED;TYPE=agent:Red\n", "X-KADDRESSBOOK-X-AssistantsName:Red\n"})
    {
        EXPECT_EQ(utf8(itemOf(std::string("N:x\n") + text).assistant), "Red") << text;
    }
    const auto android = [](const std::string &number)
    {
        const zb::ContactItem item =
            itemOf("N:x\nX-ANDROID-CUSTOM:vnd.android.cursor.item/relation;Kim;" + number + ";;\n");
        return utf8(item.spouse) + "/" + utf8(item.children) + "/" + utf8(item.assistant);
    };
    EXPECT_EQ(android("4") + android("10") + android("14"), "Kim//Kim//Kim//") << "partners of all kinds";
    EXPECT_EQ(android("3"), "/Kim/");
    EXPECT_EQ(android("1"), "//Kim");
    EXPECT_EQ(android("2"), "//");
    EXPECT_EQ(lostOf("N:x\nRELATED;TYPE=spouse:urn:uuid:1\n"), Words{"RELATED"});
    EXPECT_EQ(lostOf("N:x\nRELATED;TYPE=friend:Al\n"), Words{"RELATED"});
    EXPECT_EQ(lostOf("N:x\ni.X-ABRELATEDNAMES:Al\ni.X-ABLabel:_$!<Friend>!$_\n"), Words{"X-ABRELATEDNAMES"});
    EXPECT_EQ(findingsOf("N:x\nX-SPOUSE:Kim\nX-MS-SPOUSE:Lee\n"),
              Words{"5: the X-MS-SPOUSE \"Lee\" was left out: a contact has no place for more"});
}

TEST(ContactCard, AnAgentIsTheAssistant)
{
    const std::string agent = "AGENT:BEGIN:VCARD\\nFN:Susan Thomas\\nTEL\\;TYPE=WORK:7\\nEND:VCARD\\n\n";
    const zb::ContactItem item = itemOf("N:x\n" + agent);
    EXPECT_EQ(utf8(item.assistant), "Susan Thomas");
    EXPECT_EQ(utf8(item.assistantPhone), "7");
    EXPECT_EQ(lostOf("N:x\n" + agent), Words{"rest of the AGENT's card"});
    EXPECT_EQ(utf8(itemOf("N:x\nX-ASSISTANT:Red\n" + agent).assistant), "Red");
    const zb::ContactItem own = itemOf("N:x\n" + agent + "X-ASSISTANT-PHONE:8\n");
    EXPECT_EQ(utf8(own.assistantPhone), "8") << "the card's own number goes first";
    EXPECT_EQ(utf8(own.home2Phone), "7");
    EXPECT_EQ(lostOf("N:x\nX-ASSISTANT:Red\n" + agent), Words{"AGENT"});
    EXPECT_EQ(lostOf("N:x\nAGENT;VALUE=uri:CID:x\n"), Words{"AGENT"});
}

TEST(ContactCard, CategoriesNotesAndPhotos)
{
    const ContactReading reading = readingOf("N:x\nCATEGORIES:Work,Choir\\, alto, Work\nCATEGORIES:VIP\n"
                                             "NOTE:First\\nsecond\nNOTE:Third\nNOTE:Third\nNOTE:\n");
    ASSERT_EQ(reading.categories.size(), 3U);
    EXPECT_EQ(utf8(reading.categories[1].name), "Choir, alto");
    EXPECT_EQ(reading.categories[2].line, 5U);
    EXPECT_EQ(lines(reading.item.notes), "First|second||Third");
    std::string many = "N:x\nCATEGORIES:0";
    for (int n = 1; n <= 200; ++n)
    {
        many += "," + std::to_string(n);
    }
    EXPECT_EQ(readingOf(many + "\n").categories.size(), 200U);
    EXPECT_EQ(lostOf(many + "\n"), Words{"further CATEGORIES"});
    EXPECT_EQ(lines(itemOf("N:x\nNOTE;QUOTED-PRINTABLE:a=0D=0Ab=0D=0A\n", "2.1").notes), "a|b");
    const Card card = cardOf("N:x\nPHOTO;ENCODING=b:QUJD\nPHOTO;ENCODING=b:QUJE\n");
    const ContactReading photos = readContact(card);
    ASSERT_NE(photos.photo, nullptr);
    EXPECT_EQ(photos.photo->line, 4U);
    EXPECT_EQ(photos.lost, Words{"second PHOTO"});
}

std::string pictureOf(const std::string &line)
{
    const Card card = cardOf("N:x\n" + line + "\n", "4.0");
    PictureFault fault = PictureFault::None;
    const CardPicture picture = readCardPicture(*card.find("PHOTO"), fault);
    return fault == PictureFault::Link ? "link" : fault == PictureFault::Unknown ? "unknown" : utf8(picture.extension);
}

TEST(ContactCard, PicturesAreKnownByTheirBytes)
{
    EXPECT_EQ(pictureOf("PHOTO;ENCODING=b;TYPE=PNG:/9j/4AAQSkZJRgABAQAAAQABAAD/"), ".jpg");
    EXPECT_EQ(pictureOf("PHOTO:data:image/x;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAAB"), ".png");
    EXPECT_EQ(pictureOf("PHOTO:data:image/gif;base64,R0lGODlhAQABAIAAAAAAAP///yH5"), ".gif");
    EXPECT_EQ(pictureOf("PHOTO;ENCODING=b:Qk1GAAAAAAAAADYAAAAoAAAAAgAAAAIA"), ".bmp");
    EXPECT_EQ(pictureOf("PHOTO;ENCODING=b:QUJDREVGR0hJSktMTU5PUFFSU1RV"), "unknown");
    EXPECT_EQ(pictureOf("PHOTO;ENCODING=b:/9j/"), "unknown") << "torn";
    EXPECT_EQ(pictureOf("PHOTO;VALUE=uri:http://x.example/me.jpg"), "link");
}

TEST(ContactCard, WhatNoRecordHoldsIsNamed)
{
    EXPECT_EQ(
        lostOf("N:x\nNICKNAME:Jo\nX-PHONETIC-FIRST-NAME:a\nIMPP:xmpp:a@b\nGEO:1;2\nTZ:+1\nKEY;ENCODING=b:QUJD\n"
               "X-ICQ:1\nX-ICQ:2\nCLASS:PRIVATE\nSORT-STRING:x\n"),
        (Words{"NICKNAME", "X-PHONETIC-FIRST-NAME", "IMPP", "GEO", "TZ", "KEY", "X-ICQ", "CLASS", "SORT-STRING"}));
    EXPECT_EQ(lostOf("N:x\nNICKNAME:\nCLASS:public\nREV:1\nPRODID:x\nUID:1\nPROFILE:VCARD\n"), Words());
    EXPECT_EQ(lostOf("N:x\ni.TEL;HOME:1\ni.X-ABLabel:Kitchen\n"), Words{"own label (X-ABLABEL)"});
}

TEST(ContactCard, ListsOfOthersAndCardsOfNobody)
{
    EXPECT_TRUE(readingOf("FN:Choir\nKIND:group\n", "4.0").isGroup);
    EXPECT_TRUE(readingOf("FN:Choir\nX-ADDRESSBOOKSERVER-KIND:group\n").isGroup);
    EXPECT_FALSE(readingOf("FN:Choir\nKIND:individual\n", "4.0").isGroup);
    EXPECT_TRUE(readingOf("N:;;;;\nNOTE:hello\n").isEmpty());
    EXPECT_FALSE(readingOf("EMAIL:a@x\n").isEmpty());
}

TEST(ContactCard, WhatIsTooLongIsCutWithAMessage)
{
    const std::string big(5000, 'x');
    const ContactReading reading = readingOf("N:" + big + ";y\nORG:" + big + "\nADR;HOME:;;" + big +
                                             ";;;;\nNOTE:" + std::string(100'000, 'n') + "\n");
    EXPECT_EQ(reading.item.lastName.size(), 1000U);
    EXPECT_EQ(reading.item.company.size(), 1000U);
    EXPECT_EQ(reading.item.home.street.size(), 2000U);
    EXPECT_LT(reading.item.notes.size(), 65'536U);
    EXPECT_GT(reading.item.notes.size(), 40'000U);
    Words cuts;
    for (const Shortening &cut : reading.shortened)
    {
        cuts.push_back(cut.what);
    }
    EXPECT_EQ(cuts, (Words{"last name", "company", "street", "notes"}));
    EXPECT_TRUE(readingOf("N:" + std::string(1000, 'x') + "\n").shortened.empty());
}

TEST(ContactCard, IdentityIsTheUidWhereThereIsOne)
{
    EXPECT_EQ(utf8(identityOf(cardOf("UID:abc@x\n"))), "abc@x");
    EXPECT_EQ(utf8(identityOf(cardOf("UID:urn:uuid:4fbe\n", "4.0"))), "4fbe");
    EXPECT_EQ(utf8(identityOf(cardOf("X-ABUID:1\\:ABPerson\n"))), "1:ABPerson");
    EXPECT_EQ(utf8(identityOf(cardOf("FN:x\n"))), "");
    const auto person = [](const char *text) { return personOf(itemOf(text)); };
    EXPECT_EQ(person("N:Berg;Änne\nORG:X\n"), person("N:BERG;änne\nORG:x\nTEL:1\n"));
    EXPECT_NE(person("N:Berg;Anna\nORG:X\n"), person("N:Berg;Anna\nORG:Y\n"));
    EXPECT_NE(person("EMAIL:a@x\n"), person("EMAIL:b@x\n"));
    EXPECT_NE(person("N:Berg;Anna\n"), person("N:Anna;Berg\n"));
}
} // namespace
