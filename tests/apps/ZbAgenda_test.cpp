// zb agenda: which days, which rows, in which words, on which terminals.
#include "apps/ZbFixture.h"

#include <algorithm>
#include <ctime>
#include <fstream>

namespace
{
using Json = nlohmann::json;
using zb::test::eventOf;
using zb::test::plainEvent;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

class ZbAgendaTest : public zb::test::ZbTest
{
  protected:
    /// "subject start end", for every row of every day, "date:" in front of each day.
    std::vector<std::string> rows(const std::vector<std::string> &arguments, const ProgramOptions &options = {}) const
    {
        std::vector<std::string> words = {"agenda", "--json"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<std::string> lines;
        const Json agenda = json(words, options);
        for (const Json &day : agenda["days"])
        {
            lines.push_back(day["date"].get<std::string>() + ":");
            for (const Json &row : day["appointments"])
            {
                lines.push_back(row["subject"].get<std::string>() + " " + row["start"].get<std::string>() + " " +
                                row["end"].get<std::string>());
            }
        }
        return lines;
    }
    static std::string event(const std::string &subject, const std::string &lines)
    {
        return eventOf("UID:" + subject + "\nSUMMARY:" + subject + "\n" + lines);
    }
};

using Rows = std::vector<std::string>;

TEST_F(ZbAgendaTest, DaysComeInOrderWholeDaysFirstThenByStart)
{
    import(event("Late", "DTSTART:20260303T160000Z\nDURATION:PT1H\n") +
           event("Early", "DTSTART;TZID=America/New_York:20260303T020000\nDURATION:PT30M\n") +
           event("Whole", "DTSTART;VALUE=DATE:20260303\n") + event("Before", "DTSTART:20260302T110000Z\n"));
    EXPECT_EQ(rows({"--from", "2026-03-02", "--to", "2026-03-03"}),
              (Rows{"2026-03-02:", "Before 2026-03-02T12:00:00 2026-03-02T12:00:00",
                    "2026-03-03:", "Whole 2026-03-03 2026-03-03", "Early 2026-03-03T08:00:00 2026-03-03T08:30:00",
                    "Late 2026-03-03T17:00:00 2026-03-03T18:00:00"}));
}

TEST_F(ZbAgendaTest, TheTextIsLegible)
{
    import(
        event("Whole", "DTSTART;VALUE=DATE:20260303\nDTEND;VALUE=DATE:20260305\n") +
        event("Talk", "DTSTART:20260303T083000Z\nDURATION:PT1H\nLOCATION:Room 7\nSTATUS:TENTATIVE\nCLASS:PRIVATE\n") +
        event("Moment", "DTSTART:20260303T110000Z\n"));
    const ProgramResult result = zb({"agenda", "--from", "2026-03-03", "--to", "2026-03-04"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "3/3/26 – 3/4/26: 3 appointments\n"
                          "\n"
                          "Tuesday, March 3, 2026\n"
                          "  all day             Whole · (day 1 of 2)\n"
                          "  9:30 AM – 10:30 AM  Talk · Room 7 (tentative, private)\n"
                          "  12:00 PM            Moment\n"
                          "\n"
                          "Wednesday, March 4, 2026\n"
                          "  all day             Whole · (day 2 of 2)\n");
}

TEST_F(ZbAgendaTest, DatesAndTimesAreThoseOfTheLocale)
{
    import(event("Talk", "DTSTART:20260303T133000Z\nDURATION:PT1H\n"));
    ProgramOptions german;
    german.environment["LC_ALL"] = "de_DE.UTF-8";
    const std::string text = zb({"agenda", "--from", "2026-03-03", "--to", "2026-03-03"}, german).out;
    EXPECT_NE(text.find("Dienstag, 3. März 2026"), std::string::npos) << text;
    EXPECT_NE(text.find("14:30 – 15:30"), std::string::npos) << text;
    ProgramOptions tokyo;
    tokyo.environment["TZ"] = "Asia/Tokyo";
    EXPECT_EQ(rows({"--from", "2026-03-03", "--to", "2026-03-03"}, tokyo),
              (Rows{"2026-03-03:", "Talk 2026-03-03T22:30:00 2026-03-03T23:30:00"}));
}

TEST_F(ZbAgendaTest, AnEventOverMidnightStandsOnBothDays)
{
    import(event("Night", "DTSTART:20260303T210000Z\nDTEND:20260304T010000Z\n") +
           event("ToMidnight", "DTSTART:20260303T210000Z\nDTEND:20260303T230000Z\n") +
           event("Long", "DTSTART:20260303T070000Z\nDTEND:20260305T160000Z\n"));
    const std::string text = zb({"agenda", "--from", "2026-03-03", "--to", "2026-03-05"}).out;
    EXPECT_NE(text.find("3 appointments"), std::string::npos);
    EXPECT_NE(text.find("  from 10:00 PM        Night\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  until 2:00 AM        Night\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  10:00 PM – 12:00 AM  ToMidnight\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  from 8:00 AM         Long\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  all day long         Long\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  until 5:00 PM        Long\n"), std::string::npos) << text;
    EXPECT_EQ(rows({"--from", "2026-03-04", "--to", "2026-03-04"}).size(), 3U);
}

TEST_F(ZbAgendaTest, AnEndBehindAChangeOfDaylightTimeIsThatOfTheClock)
{
    import(event("Autumn", "DTSTART:20261024T200000Z\nDTEND:20261025T050000Z\n") +
           event("Spring", "DTSTART:20260328T210000Z\nDTEND:20260329T040000Z\n") +
           event("ToMidnight", "DTSTART:20261025T000000Z\nDTEND:20261025T230000Z\n"));
    EXPECT_EQ(rows({"--from", "2026-10-24", "--to", "2026-10-26"}),
              (Rows{"2026-10-24:", "Autumn 2026-10-24T22:00:00 2026-10-25T06:00:00",
                    "2026-10-25:", "Autumn 2026-10-24T22:00:00 2026-10-25T06:00:00",
                    "ToMidnight 2026-10-25T02:00:00 2026-10-26T00:00:00"}));
    EXPECT_EQ(rows({"--from", "2026-03-29", "--to", "2026-03-29"}),
              (Rows{"2026-03-29:", "Spring 2026-03-28T22:00:00 2026-03-29T06:00:00"}));
}

TEST_F(ZbAgendaTest, WithoutDaysItIsTheWeekOfTheLocale)
{
    zb({"init"});
    const std::time_t now = std::time(nullptr);
    ProgramOptions utc;
    utc.environment["TZ"] = "UTC";
    for (const auto &[locale, firstDay] : {std::pair("en_US.UTF-8", 0), std::pair("de_DE.UTF-8", 1)})
    {
        utc.environment["LC_ALL"] = locale;
        const Json agenda = json({"agenda", "--json"}, utc);
        std::tm today{};
        ::gmtime_r(&now, &today);
        const std::time_t start = now - static_cast<std::time_t>((today.tm_wday - firstDay + 7) % 7) * 86400;
        char text[16];
        std::tm day{};
        ::gmtime_r(&start, &day);
        std::strftime(text, sizeof text, "%Y-%m-%d", &day);
        EXPECT_EQ(agenda["from"], text) << locale;
        const std::time_t end = start + 6 * 86400;
        ::gmtime_r(&end, &day);
        std::strftime(text, sizeof text, "%Y-%m-%d", &day);
        EXPECT_EQ(agenda["to"], text) << locale;
        EXPECT_EQ(json({"agenda", "--week", "--json"}, utc)["from"], agenda["from"]);
    }
}

TEST_F(ZbAgendaTest, DaysAreNamedInManyWays)
{
    zb({"init"});
    ProgramOptions utc;
    utc.environment["TZ"] = "UTC";
    const auto range = [&](const std::vector<std::string> &words)
    {
        std::vector<std::string> all = {"agenda", "--json"};
        all.insert(all.end(), words.begin(), words.end());
        const Json agenda = json(all, utc);
        return agenda["from"].get<std::string>() + " " + agenda["to"].get<std::string>();
    };
    const auto day = [](int offset)
    {
        const std::time_t time = std::time(nullptr) + offset * 86400;
        std::tm fields{};
        ::gmtime_r(&time, &fields);
        char text[16];
        std::strftime(text, sizeof text, "%Y-%m-%d", &fields);
        return std::string(text);
    };
    EXPECT_EQ(range({"--from", "2026-12-30"}), "2026-12-30 2027-01-05");
    EXPECT_EQ(range({"--from", "2024-02-29", "--to", "2024-02-29"}), "2024-02-29 2024-02-29");
    EXPECT_EQ(range({"--from", "1601-01-01", "--to", "1601-01-02"}), "1601-01-01 1601-01-02");
    EXPECT_EQ(range({"--from", "2999-12-31"}), "2999-12-31 2999-12-31");
    EXPECT_EQ(range({"--from", "today", "--to", "tomorrow"}), day(0) + " " + day(1));
    EXPECT_EQ(range({"--from", "yesterday", "--to", "+3"}), day(-1) + " " + day(3));
    EXPECT_EQ(range({"--from=-2", "--to", "+0"}), day(-2) + " " + day(0));
    EXPECT_EQ(range({"--to", "+10"}), day(0) + " " + day(10));
}

TEST_F(ZbAgendaTest, WhatIsNoDayIsWrongUsage)
{
    zb({"init"});
    for (const char *const word : {"2026-13-01", "2026-02-30", "26-01-01", "2026/01/01", "soon", "+", "+1x",
                                   "1600-12-31", "3000-01-01", "", "2026-1-1", "+9999999"})
    {
        const ProgramResult result = zb({"agenda", std::string("--from=") + word});
        EXPECT_EQ(result.exitCode, 2) << word;
        EXPECT_EQ(result.out, "") << word;
    }
    EXPECT_EQ(zb({"agenda", "--from", "2026-03-03", "--to", "2026-03-02"}).exitCode, 2);
}

TEST_F(ZbAgendaTest, WithoutAppointmentsItSaysSo)
{
    zb({"init"});
    EXPECT_EQ(zb({"agenda", "--from", "2026-03-03", "--to", "2026-03-04"}).out, "3/3/26 – 3/4/26: no appointments\n");
    EXPECT_EQ(zb({"agenda", "--fullest"}).exitCode, 0);
    const Json agenda = json({"agenda", "--json", "--from", "2026-03-03", "--to", "2026-03-04"});
    EXPECT_EQ(agenda["version"], 1);
    EXPECT_EQ(agenda["zone"], "Europe/Berlin");
    EXPECT_EQ(agenda["appointments"], 0);
    EXPECT_TRUE(agenda["days"].is_array());
}

TEST_F(ZbAgendaTest, JsonTellsAllOfARow)
{
    import(event("Talk", "DTSTART:20260303T083000Z\nDURATION:PT1H\nLOCATION:Room 7\nDESCRIPTION:x\n"
                         "X-MICROSOFT-CDO-BUSYSTATUS:OOF\nCLASS:PRIVATE\nBEGIN:VALARM\nEND:VALARM\n"));
    const Json agenda = json({"agenda", "--json", "--from", "2026-03-03"});
    const Json &row = agenda["days"][0]["appointments"][0];
    EXPECT_GT(row["id"].get<int>(), 0);
    EXPECT_EQ(row["kind"], "appointment");
    EXPECT_EQ(row["location"], "Room 7");
    EXPECT_EQ(row["busy"], "outOfOffice");
    EXPECT_EQ(row["allDay"], false);
    EXPECT_EQ(row["private"], true);
    EXPECT_EQ(row["reminder"], true);
    EXPECT_EQ(row["recurring"], false);
    EXPECT_EQ(row["notes"], true);
}

TEST_F(ZbAgendaTest, TheFullestWeekHasTheMostAppointmentsAndTheEarliestOfEqualsWins)
{
    ProgramOptions german;
    german.environment["LC_ALL"] = "de_DE.UTF-8";
    const auto at = [](int number, const std::string &date)
    { return event("e" + std::to_string(number), "DTSTART:" + date + "T100000Z\nDURATION:PT1H\n"); };
    // Three in the week from Monday 2 March, three in that from 16 March, one event of many days elsewhere.
    import(at(1, "20260302") + at(2, "20260304") + at(3, "20260308") + at(4, "20260316") + at(5, "20260317") +
           at(6, "20260318") + event("long", "DTSTART;VALUE=DATE:20260406\nDTEND;VALUE=DATE:20260420\n") +
           event("far", "DTSTART;VALUE=DATE:45000101\n"));
    Json agenda = json({"agenda", "--json", "--fullest"}, german);
    EXPECT_EQ(agenda["from"], "2026-03-02");
    EXPECT_EQ(agenda["to"], "2026-03-08");
    EXPECT_EQ(agenda["appointments"], 3);
    import(at(7, "20260316"));
    EXPECT_EQ(json({"agenda", "--json", "--fullest-week"}, german)["from"], "2026-03-16");
    // With weeks from Sunday on, 8 March belongs to the next.
    EXPECT_EQ(json({"agenda", "--json", "--fullest"})["from"], "2026-03-15");
}

TEST_F(ZbAgendaTest, ATerminalGetsColoursAndLinesThatFit)
{
    import(event("A subject that is far too long for the line of a small terminal, with more words",
                 "DTSTART:20260303T083000Z\nDURATION:PT1H\nLOCATION:A room with a name\n") +
           event("東京で会議があるので新幹線に乗らなければならない", "DTSTART:20260303T113000Z\nDURATION:PT1H\n"));
    const std::vector<std::string> words = {"agenda", "--from", "2026-03-03"};
    ProgramOptions terminal;
    terminal.terminalColumns = 50;
    const std::string coloured = zb(words, terminal).out;
    EXPECT_NE(coloured.find("\x1b[1mTuesday, March 3, 2026\x1b[0m"), std::string::npos) << coloured;
    terminal.environment["NO_COLOR"] = "1";
    const std::string plain = zb(words, terminal).out;
    EXPECT_EQ(plain.find('\x1b'), std::string::npos);
    EXPECT_NE(plain.find("  9:30 AM – 10:30 AM  A subject that is far too l…\r\n"), std::string::npos) << plain;
    EXPECT_NE(plain.find("\r\n                      A room with a name\r\n"), std::string::npos) << plain;
    // 28 columns hold 13 wide characters and the ellipsis.
    EXPECT_NE(plain.find("東京で会議があるので新幹線…\r\n"), std::string::npos) << plain;
    ProgramOptions dumb;
    dumb.terminalColumns = 50;
    dumb.environment["TERM"] = "dumb";
    EXPECT_EQ(zb(words, dumb).out, plain);
}

TEST_F(ZbAgendaTest, PipesGetWholeLinesWithoutColours)
{
    const std::string subject(300, 'x');
    import(event(subject, "DTSTART:20260303T083000Z\n"));
    const std::string text = zb({"agenda", "--from", "2026-03-03"}).out;
    EXPECT_NE(text.find(subject), std::string::npos);
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

TEST_F(ZbAgendaTest, ASubjectCannotDriveTheTerminal)
{
    import(eventOf("UID:a\nDTSTART:20260303T083000Z\nSUMMARY:\x1b[31mred\x1b]0;title\x07\u202Etxt\n"));
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"agenda", "--from", "2026-03-03"}, {"dump", "Appointments Database"}})
    {
        const std::string text = zb(words).out;
        EXPECT_NE(text.find("red"), std::string::npos);
        EXPECT_EQ(text.find('\x1b'), std::string::npos) << words[0];
        EXPECT_EQ(text.find('\x07'), std::string::npos) << words[0];
        EXPECT_EQ(text.find("\u202E"), std::string::npos) << words[0];
    }
}

TEST_F(ZbAgendaTest, AnEventWithoutSubjectShowsAsSuch)
{
    import(eventOf("UID:a\nDTSTART:20260303T083000Z\nLOCATION:Room 7\n"));
    EXPECT_NE(zb({"agenda", "--from", "2026-03-03"}).out.find("<No Subject> · Room 7"), std::string::npos);
}

TEST_F(ZbAgendaTest, YearsBeyondTheListsAreKeptButNotShown)
{
    import(event("far", "DTSTART:30000101T120000Z\n") + event("farther", "DTSTART;VALUE=DATE:45000101\n") +
           event("last", "DTSTART:29991231T120000Z\n"));
    EXPECT_EQ(storedCount(), 3);
    EXPECT_EQ(rows({"--from", "2999-12-25", "--to", "2999-12-31"}),
              (Rows{"2999-12-31:", "last 2999-12-31T13:00:00 2999-12-31T13:00:00"}));
}

TEST_F(ZbAgendaTest, TenThousandEventsTakeLittleMemory)
{
    ASSERT_EQ(zb({"import", file("many.ics", zb::test::manyEvents(10'000))}).exitCode, 0);
    const ProgramResult result = zb({"agenda", "--from", "2026-03-02", "--to", "2026-03-08"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("2502 appointments"), std::string::npos) << result.out.substr(0, 100);
    if (!isSanitized)
    {
        EXPECT_LT(result.peakKilobytes, 40'000);
    }
}
} // namespace
