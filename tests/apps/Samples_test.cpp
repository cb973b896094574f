// The sample calendars hold what they promise.
#include "apps/ZbFixture.h"

#include <map>
#include <set>

namespace
{
using Json = nlohmann::json;
using zb::test::ProgramResult;

class SamplesTest : public zb::test::ZbTest
{
  protected:
    Json importSample(const std::string &name, int expectedExit) const
    {
        const ProgramResult result =
            zb({"import", "--json", (std::filesystem::path(ZB_SOURCE_DIR) / "data/samples" / name).string()});
        EXPECT_EQ(result.exitCode, expectedExit) << result.err;
        const Json told = Json::parse(result.out);
        return told["files"][0];
    }
    std::set<std::string> datesOf(const std::string &location) const
    {
        std::set<std::string> dates;
        const Json agenda = json({"agenda", "--json", "--from", "2026-01-01", "--to", "2026-12-31"});
        for (const Json &day : agenda["days"])
        {
            for (const Json &row : day["appointments"])
            {
                if (row["location"] == location)
                {
                    dates.insert(day["date"]);
                }
            }
        }
        return dates;
    }
};

TEST_F(SamplesTest, TheHolidaysOf2026StandOnTheirDays)
{
    const Json report = importSample("holidays-2026.ics", 0);
    EXPECT_EQ(report["new"], 40);
    EXPECT_EQ(report["remarks"].size(), 0U);
    // From the calendars of the three governments.
    EXPECT_EQ(datesOf("France"),
              (std::set<std::string>{"2026-01-01", "2026-04-06", "2026-05-01", "2026-05-08", "2026-05-14", "2026-05-25",
                                     "2026-07-14", "2026-08-15", "2026-11-01", "2026-11-11", "2026-12-25"}));
    EXPECT_EQ(datesOf("Deutschland"),
              (std::set<std::string>{"2026-01-01", "2026-04-03", "2026-04-06", "2026-05-01", "2026-05-14", "2026-05-25",
                                     "2026-10-03", "2026-12-25", "2026-12-26"}));
    EXPECT_EQ(
        datesOf("United States"),
        (std::set<std::string>{"2026-01-01", "2026-01-19", "2026-02-16", "2026-05-25", "2026-06-19", "2026-07-03",
                               "2026-07-04", "2026-09-07", "2026-10-12", "2026-11-11", "2026-11-26", "2026-12-25"}));
    EXPECT_EQ(datesOf("Sachsen"), std::set<std::string>{"2026-11-18"});
}

TEST_F(SamplesTest, TheWorkingQuarterComesInWhole)
{
    const Json report = importSample("work-2026q4.ics", 0);
    EXPECT_EQ(report["new"], 181);
    EXPECT_EQ(report["remarks"].size(), 0U);
    EXPECT_EQ(report["repeatingAsFirstDay"], 0);
    const Json week = json({"agenda", "--json", "--from", "2026-11-16", "--to", "2026-11-22"});
    EXPECT_GE(week["appointments"].get<int>(), 15);
}

TEST_F(SamplesTest, WhatComesRoundAgainStandsOnItsDays)
{
    const Json report = importSample("series.ics", 0);
    EXPECT_EQ(report["series"]["records"], 14);
    EXPECT_EQ(report["series"]["unrolled"], 1);
    // On 15 and 28 of each month from September 2026 to December 2027.
    EXPECT_EQ(report["series"]["unrolledAppointments"], 32);
    EXPECT_EQ(report["new"], 14 + 32);
    EXPECT_EQ(report["series"]["changedDays"], 1);
    EXPECT_EQ(report["series"]["cancelledDays"], 1);
    std::map<std::string, std::set<std::string>> dates;
    const Json agenda = json({"agenda", "--json", "--from", "2026-11-16", "--to", "2027-01-03"});
    for (const Json &day : agenda["days"])
    {
        for (const Json &row : day["appointments"])
        {
            dates[row["subject"]].insert(day["date"]);
        }
    }
    using Dates = std::set<std::string>;
    EXPECT_EQ(dates["Choir practice, dress rehearsal"], Dates{"2026-11-20"}) << "moved from the Thursday";
    EXPECT_EQ(dates["Choir practice"], (Dates{"2026-11-26", "2026-12-03", "2026-12-10", "2026-12-17", "2026-12-31"}));
    EXPECT_EQ(dates["House meeting"], (Dates{"2026-11-20", "2026-12-18"}));
    EXPECT_EQ(dates["Close the books of the month"], (Dates{"2026-11-30", "2026-12-31"}));
    EXPECT_EQ(dates["Payroll run"], (Dates{"2026-11-28", "2026-12-15", "2026-12-28"}));
    EXPECT_EQ(dates["Transfer the rent"], (Dates{"2026-12-01", "2027-01-01"}));
    EXPECT_EQ(dates["Book club with Ines and Tom"], (Dates{"2026-11-29", "2026-12-13", "2026-12-27"}));
    EXPECT_EQ(dates["(38 years) Birthday of Tom"], Dates{"2026-11-21"});
    EXPECT_EQ(dates["Stand-up"].count("2026-12-23"), 1U);
    EXPECT_EQ(dates["Stand-up"].count("2026-12-24"), 0U);
    EXPECT_EQ(dates["Swimming"].count("2026-11-19"), 0U);
    EXPECT_EQ(importSample("series.ics", 0)["unchanged"], 46);
}

TEST_F(SamplesTest, TheTasksComeInWithGroupsAndParents)
{
    const Json report = importSample("tasks.ics", 0);
    EXPECT_EQ(report["events"], 0);
    EXPECT_EQ(report["tasks"]["inFile"], 33);
    EXPECT_EQ(report["tasks"]["new"], 32);
    EXPECT_EQ(report["tasks"]["leftOut"]["cancelled"], 1);
    EXPECT_EQ(report["tasks"]["repeatingAsOne"], 1);
    EXPECT_EQ(report["tasks"]["putUnderAnother"], 17);
    EXPECT_EQ(report["newCategories"], 12);
    EXPECT_EQ(report["tasks"]["lostProperties"], Json({{"PERCENT-COMPLETE", 1}}));
    EXPECT_EQ(report["remarks"].size(), 1U) << "the repeating one";
    const Json again = importSample("tasks.ics", 0);
    EXPECT_EQ(again["tasks"]["unchanged"], 32);
    EXPECT_EQ(again["tasks"]["putUnderAnother"], 0);
    EXPECT_EQ(again["newCategories"], 0);
}

TEST_F(SamplesTest, TheContactsComeInWithTheirBirthdays)
{
    const Json contacts = importSample("contacts.vcf", 0)["contacts"];
    EXPECT_EQ(contacts["inFile"], 9);
    EXPECT_EQ(contacts["new"], 9);
    EXPECT_EQ(contacts["pictures"], 1);
    EXPECT_EQ(contacts["newCategories"], 5);
    EXPECT_EQ(contacts["lostProperties"], Json({{"LANG", 1}, {"NICKNAME", 1}}));
    EXPECT_TRUE(std::filesystem::exists(device() / "files/My Documents/Kelvo/ContactPics/Keller, Tom.png"));
    std::set<std::string> names;
    const Json dump = json({"dump", "Contacts Database", "--json"});
    for (const Json &record : dump["records"])
    {
        for (const Json &property : record["properties"])
        {
            if (property["id"] == "0x4013001f")
            {
                names.insert(property["value"]);
            }
        }
    }
    EXPECT_EQ(names, (std::set<std::string>{"Albers, Renate", "Böhm, Grandma Lotte", "Díaz Brandt, Inés", "Keller, Tom",
                                            "Raman, Priya", "Stadtwerke Erlengrund", "Sørensen, Henrike", "山田, 花子",
                                            "Łukasiewicz, Anika"}));
    std::set<std::string> days;
    const Json agenda = json({"agenda", "--json", "--birthdays", "--from", "2026-11-16", "--to", "2026-11-22"});
    for (const Json &day : agenda["days"])
    {
        for (const Json &row : day["appointments"])
        {
            days.insert(day["date"].get<std::string>() + " " + row["subject"].get<std::string>());
        }
    }
    EXPECT_EQ(days,
              (std::set<std::string>{"2026-11-18 (0 years) Henrike Sørensen", "2026-11-19 (41 years) Anika Łukasiewicz",
                                     "2026-11-20 (0 years) Priya Raman", "2026-11-21 (38 years) Tom Keller"}));
    EXPECT_EQ(importSample("contacts.vcf", 0)["contacts"]["unchanged"], 9);
}

TEST_F(SamplesTest, TheAwkwardOneTellsWhatItCouldNotKeep)
{
    const Json report = importSample("awkward.ics", 1);
    EXPECT_EQ(report["events"], 39);
    EXPECT_EQ(report["new"], 31);
    EXPECT_EQ(report["leftOut"]["refused"], 5);
    EXPECT_EQ(report["leftOut"]["cancelled"], 1);
    EXPECT_EQ(report["leftOut"]["olderVersions"], 1);
    EXPECT_EQ(report["repeatingAsFirstDay"], 0);
    EXPECT_EQ(report["series"]["records"], 3);
    EXPECT_EQ(report["series"]["changedDays"], 1);
    EXPECT_EQ(report["tasks"]["new"], 1);
    EXPECT_EQ(report["otherComponents"]["VJOURNAL"], 1);
    EXPECT_EQ(report["remarks"].size(), 6U) << "five refusals and an unknown zone";
    EXPECT_EQ(importSample("awkward.ics", 1)["unchanged"], 31);
}

TEST_F(SamplesTest, AwkwardTimesShowWhereTheyBelong)
{
    importSample("awkward.ics", 1);
    std::map<std::string, Json> rows;
    std::map<std::string, int> days;
    const Json agenda = json({"agenda", "--json", "--from", "2026-10-01", "--to", "2027-03-31"});
    for (const Json &day : agenda["days"])
    {
        for (const Json &row : day["appointments"])
        {
            rows.emplace(row["subject"], row);
            ++days[row["subject"]];
        }
    }
    const auto start = [&](const char *subject) { return rows[subject]["start"].get<std::string>(); };
    EXPECT_EQ(days["A long weekend, three whole days"], 3);
    EXPECT_EQ(days["Five whole days by their duration"], 5);
    EXPECT_EQ(days["A whole day that names no end"], 1);
    EXPECT_EQ(days["A day in Berlin, written in UTC"], 1);
    EXPECT_EQ(start("A day in Berlin, written in UTC"), "2026-11-18T00:00:00");
    EXPECT_EQ(rows["From midnight to midnight and marked as a whole day"]["allDay"], true);
    EXPECT_EQ(start("Morning in Tokyo"), "2026-11-19T01:00:00");
    EXPECT_EQ(start("Afternoon in Los Angeles"), "2026-11-20T01:00:00");
    EXPECT_EQ(start("Half-hour zone: Adelaide"), "2026-11-18T22:30:00");
    EXPECT_EQ(start("Noon on the ship, a zone of its own"), "2026-11-16T16:30:00");
    EXPECT_EQ(start("A zone that nobody knows"), "2026-11-16T12:00:00");
    EXPECT_EQ(days["Until midnight sharp"], 1);
    EXPECT_EQ(days["Past midnight"], 2);
    EXPECT_EQ(days["From Monday morning to Friday evening"], 5);
    EXPECT_EQ(start("Second thought, same event"), "2026-11-20T09:30:00");
    EXPECT_EQ(rows.count("First thought"), 0U);
    EXPECT_EQ(rows.count("Cancelled, nobody comes"), 0U);
    EXPECT_EQ(rows["Night shift of nine hours"]["end"], "2026-10-25T06:00:00");
}
} // namespace
