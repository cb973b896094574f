// Categories and colours of imported events.
#include "apps/ZbFixture.h"
#include "interchange/color_names.h"

namespace
{
using Json = nlohmann::json;
using Names = std::vector<std::string>;
using zb::interchange::colorOf;
using zb::test::calendarOf;
using zb::test::eventOf;

class EventCategoriesTest : public zb::test::ZbTest
{
  protected:
    Json importJson(const std::string &components, const std::vector<std::string> &options = {}) const
    {
        std::vector<std::string> words = {"import", "--json", file("events.ics", calendarOf(components))};
        words.insert(words.end(), options.begin(), options.end());
        return json(words)["files"][0];
    }
    /// Categories of the appointment on 3 March 2026.
    Names categories() const
    {
        const Json agenda = json({"agenda", "--json", "--from", "2026-03-03", "--to", "2026-03-03"});
        return agenda["days"].empty() ? Names()
                                      : agenda["days"][0]["appointments"][0]["categories"].get<Names>();
    }
    std::string color(const std::string &category) const
    {
        const Json list = json({"categories", "--json"});
        for (const Json &entry : list["categories"])
        {
            if (entry["name"] == category)
            {
                return entry["color"].is_null() ? "none" : entry["color"].get<std::string>();
            }
        }
        return "no such category";
    }
    static std::string event(const std::string &lines)
    {
        return eventOf("UID:one@test\nDTSTART:20260303T100000Z\nDURATION:PT1H\nSUMMARY:x\n" + lines);
    }
};

TEST_F(EventCategoriesTest, AreMadeAndSet)
{
    const Json report = importJson(event("CATEGORIES:Work,Tea\\, coffee\nCATEGORIES:Home,Work\n"));
    EXPECT_EQ(report["new"], 1);
    EXPECT_EQ(report["newCategories"], 2) << "a name with a comma is none";
    EXPECT_EQ(report["remarks"].size(), 1U);
    EXPECT_EQ(categories(), (Names{"Work", "Home"}));
}

TEST_F(EventCategoriesTest, AnotherImportChangesNothing)
{
    importJson(event("CATEGORIES:Work,Home\n"));
    const Json again = importJson(event("CATEGORIES:Work,Home\n"));
    EXPECT_EQ(again["unchanged"], 1);
    EXPECT_EQ(again["newCategories"], 0);
}

TEST_F(EventCategoriesTest, WhatTheRecordHasStays)
{
    importJson(event("CATEGORIES:Work,Home\n"));
    EXPECT_EQ(importJson(event("CATEGORIES:Garden\n"))["changed"], 1);
    EXPECT_EQ(categories(), (Names{"Work", "Home", "Garden"}));
    EXPECT_EQ(importJson(event("CATEGORIES:Home\n"))["unchanged"], 1);
    EXPECT_EQ(importJson(event(""))["unchanged"], 1);
    EXPECT_EQ(categories(), (Names{"Work", "Home", "Garden"}));
}

TEST_F(EventCategoriesTest, OfASeriesAndOfItsUnrolledDays)
{
    importJson(event("CATEGORIES:Work\nRRULE:FREQ=DAILY;COUNT=3\n"));
    EXPECT_EQ(categories(), Names{"Work"});
    const Json report = importJson(eventOf("UID:two@test\nDTSTART:20260310T100000Z\nDURATION:PT1H\nSUMMARY:y\n"
                                           "CATEGORIES:Home,a\\;b\nRRULE:FREQ=MONTHLY;BYMONTHDAY=10,11,12;COUNT=6\n"));
    EXPECT_EQ(report["series"]["unrolledAppointments"], 6);
    std::size_t told = 0;
    for (const Json &remark : report["remarks"])
    {
        told += remark["text"].get<std::string>().find("category") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(told, 1U) << "once, not for each day";
    const Json agenda = json({"agenda", "--json", "--from", "2026-04-10", "--to", "2026-04-12"});
    ASSERT_EQ(agenda["days"].size(), 3U);
    for (const Json &day : agenda["days"])
    {
        EXPECT_EQ(day["appointments"][0]["categories"], Json({"Home"}));
    }
}

TEST_F(EventCategoriesTest, ADryRunMakesNeitherCategoriesNorColours)
{
    zb({"init"});
    const Json report = importJson(event("CATEGORIES:Work\nCOLOR:red\n"), {"--dry-run"});
    EXPECT_EQ(report["newCategories"], 1);
    EXPECT_EQ(json({"categories", "--json"})["categories"].size(), 0U);
    EXPECT_FALSE(std::filesystem::exists(device() / "files/My Documents/Kelvo/Settings.txt"));
}

TEST_F(EventCategoriesTest, AColourGoesToTheFirstCategoryUnlessItHasOne)
{
    importJson(event("CATEGORIES:Work,Home\nCOLOR:turquoise\n"));
    EXPECT_EQ(color("Work"), "#40E0D0");
    EXPECT_EQ(color("Home"), "none");
    importJson(event("CATEGORIES:Work\nCOLOR:red\n"));
    EXPECT_EQ(color("Work"), "#40E0D0");
}

TEST_F(EventCategoriesTest, AColourThatCantBeKeptIsTold)
{
    const Json without = importJson(event("COLOR:red\n"));
    EXPECT_EQ(without["lostColors"], 1);
    const Json unknown = importJson(event("CATEGORIES:Work\nCOLOR:rainbow\n"));
    ASSERT_EQ(unknown["remarks"].size(), 1U);
    EXPECT_NE(unknown["remarks"][0]["text"].get<std::string>().find("rainbow"), std::string::npos);
    EXPECT_EQ(color("Work"), "none");
}

TEST(ColourNames, AreThoseOfCss)
{
    EXPECT_EQ(colorOf("red"), 0x0000FFU);
    EXPECT_EQ(colorOf(" RebeccaPurple "), std::nullopt) << "level 4";
    EXPECT_EQ(colorOf("AliceBlue"), 0xFFF8F0U);
    EXPECT_EQ(colorOf("yellowgreen"), 0x32CD9AU);
    EXPECT_EQ(colorOf("lightgoldenrodyellow"), 0xD2FAFAU);
    EXPECT_EQ(colorOf("#40e0D0"), 0xD0E040U);
    EXPECT_EQ(colorOf("black"), 0x010101U) << "0 is no colour";
    for (const char *const wrong : {"", "#12345", "#12345g", "#1234567", "re", "redd", "#"})
    {
        EXPECT_EQ(colorOf(wrong), std::nullopt) << wrong;
    }
}
} // namespace
