// zembrik's calendar views as children of a test, over events that it imports. The clock stands at Friday, 20 November
// 2026, 10:00 in Berlin; the screen has 240 by 320 pixels of 96 dots an inch unless a test says otherwise.
#pragma once

#include "apps/ZembrikScreens.h"

#include <fstream>
#include <nlohmann/json.hpp>

namespace zb::test
{
class ZembrikCalendarTest : public ZembrikTest
{
  protected:
    using Words = std::vector<std::string>;

    ProgramResult zb(Words words) const
    {
        words.insert(words.begin(), {"--device", device().string()});
        ProgramOptions options;
        options.environment["ZB_NOW"] = now;
        const ProgramResult result = runZb(words, options);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result;
    }
    /// "SUBJECT FROM TO" and more lines of the event, times as 20261120T100000 of Berlin.
    static std::string event(const std::string &subject, const std::string &from, const std::string &to,
                             const std::string &more = {})
    {
        const std::string kind = from.size() == 8 ? ";VALUE=DATE:" : ";TZID=Europe/Berlin:";
        return "BEGIN:VEVENT\r\nUID:" + subject + "\r\nSUMMARY:" + subject + "\r\nDTSTART" + kind + from + "\r\nDTEND" +
               kind + to + "\r\n" + more + "END:VEVENT\r\n";
    }
    static std::string today(const std::string &subject, const std::string &from, const std::string &to,
                             const std::string &more = {})
    {
        return event(subject, "20261120T" + from + "00", "20261120T" + to + "00", more);
    }
    void import(const std::string &items) const
    {
        // A file of its own brings the category, so that it is there whatever the items name.
        std::ofstream(file("category.ics")) << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n"
                                            << event("Old", "20200101T080000", "20200101T090000", "CATEGORIES:Red\r\n")
                                            << "END:VCALENDAR\r\n";
        std::ofstream(file("in.ics")) << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" << items << "END:VCALENDAR\r\n";
        zb({"import", file("category.ics").string()});
        zb({"categories", "color", "Red", "#E04040"});
        zb({"import", file("in.ics").string()});
    }
    /// Beginning where the run before has ended.
    Picture further(const std::string &view, const std::string &lines, Words words = {"--size", "240x320"}) const
    {
        words.push_back(view);
        const ProgramResult result = play(lines + "\nshot @/out.png\n", words);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return drawn("out.png");
    }
    /// Beginning at today.
    Picture after(const std::string &view, const std::string &lines, Words words = {"--size", "240x320"}) const
    {
        return further(view, "key T\n" + lines, std::move(words));
    }
    /// Start of the appointment of that name, as zb tells it; empty when it is not in these days.
    std::string startOf(const std::string &subject, const std::string &from = "2026-11-16",
                        const std::string &to = "2026-11-22") const
    {
        const auto told =
            nlohmann::json::parse(zb({"agenda", "--from", from, "--to", to, "--json"}).out, nullptr, false);
        for (const auto &day : told["days"])
        {
            for (const auto &item : day["appointments"])
            {
                if (item["subject"] == subject)
                {
                    return item["start"].get<std::string>().substr(0, 16);
                }
            }
        }
        return {};
    }
};
} // namespace zb::test
