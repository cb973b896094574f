// Views that stay open while the day ends and while another process writes to their device: they must show what a view
// opened afterwards shows. The views run in the test's own process, over a clock that it sets; the device is in Berlin.
#include "apps/ZbProgram.h"
#include "apps/ZembrikViews.h"
#include "platform/screen.h"

#include <set>
#include <tuple>

namespace
{
using zb::screens::View;
using zb::screens::ViewKind;
using zb::screens::viewKinds;
using zb::test::Picture;

class ZembrikWatch : public zb::test::ZembrikViewsTest
{
  protected:
    std::vector<std::unique_ptr<View>> all()
    {
        std::vector<std::unique_ptr<View>> views;
        for (const ViewKind &kind : viewKinds())
        {
            views.push_back(opened(kind));
        }
        return views;
    }

    std::vector<Picture> picturesOf(const std::vector<std::unique_ptr<View>> &views) const
    {
        std::vector<Picture> pictures;
        for (const auto &view : views)
        {
            awaitRest(*view);
            pictures.push_back(shotOf(*view));
        }
        return pictures;
    }

    /// Against views that are opened now; all of them but those named must have changed since `before`.
    void expectFresh(const std::vector<std::unique_ptr<View>> &views, const std::vector<Picture> &before,
                     const std::set<std::string_view> &unchanged)
    {
        const std::vector<Picture> after = picturesOf(views);
        for (std::size_t n = 0; n < views.size(); ++n)
        {
            const ViewKind &kind = viewKinds()[n];
            EXPECT_TRUE(after[n] == shotOf(*opened(kind))) << kind.name << " shows something else when opened now";
            EXPECT_EQ(after[n] == before[n], unchanged.contains(kind.name)) << kind.name;
        }
    }

    void import(const std::string &name, const std::string &text) const
    {
        const std::string file = zb::test::writeFile(m_folder.path() / name, text);
        const auto result = zb::test::runZb({"--device", device.path().string(), "import", file});
        EXPECT_EQ(result.exitCode, 0) << result.err;
    }

    /// A day with an appointment and a task that is due.
    static std::string day(const std::string &date)
    {
        return "BEGIN:VEVENT\r\nUID:e" + date + "\r\nSUMMARY:Swim\r\nDTSTART;TZID=Europe/Berlin:" + date +
               "T100000\r\nDTEND;TZID=Europe/Berlin:" + date + "T110000\r\nEND:VEVENT\r\n" +
               "BEGIN:VTODO\r\nUID:t" + date + "\r\nSUMMARY:Pay\r\nDUE;VALUE=DATE:" + date + "\r\nEND:VTODO\r\n";
    }
    static std::string calendar(const std::string &items)
    {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + items + "END:VCALENDAR\r\n";
    }
    static std::string cards(int first, int last)
    {
        std::string all;
        for (int n = first; n <= last; ++n)
        {
            const std::string name = "Name" + std::to_string(n);
            all += "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + name + "\r\nN:" + name + ";A;;;\r\nFN:" + name +
                   "\r\nEND:VCARD\r\n";
        }
        return all;
    }
};
} // namespace

TEST_F(ZembrikWatch, AtMidnightEveryViewGoesOnToTheNewDay)
{
    // A Friday, one second before midnight in Berlin.
    device.setClock(zb::test::makeFileTime(2026, 11, 20, 22, 59, 59));
    import("in.ics", calendar(day("20261120") + day("20261121")));
    const auto views = all();
    const auto before = picturesOf(views);
    device.setClock(zb::test::makeFileTime(2026, 11, 20, 23, 0, 0));
    zb::skipTime(1000);
    expectFresh(views, before, {"contacts"});
}

TEST_F(ZembrikWatch, AClockThatIsSetFurtherIsSeenWithinAMinute)
{
    device.setClock(zb::test::makeFileTime(2026, 11, 20, 9, 0, 0));
    const auto views = all();
    const auto before = picturesOf(views);
    device.setClock(zb::test::makeFileTime(2026, 11, 24, 9, 0, 0));
    zb::skipTime(60'000);
    for (std::size_t n = 0; n < views.size(); ++n)
    {
        const std::string_view name = viewKinds()[n].name;
        const bool dated = name == "start" || name == "month";
        EXPECT_TRUE(!dated || shotOf(*views[n]) == shotOf(*opened(viewKinds()[n]))) << name;
        EXPECT_TRUE(!dated || shotOf(*views[n]) != before[n]) << name;
    }
}

TEST_F(ZembrikWatch, APullThatAChangeInterruptsMovesNothing)
{
    device.setClock(zb::test::makeFileTime(2026, 11, 20, 9, 0, 0));
    const std::string night = "BEGIN:VEVENT\r\nUID:n\r\nSUMMARY:Night\r\nDTSTART;TZID=Europe/Berlin:20261120T220000\r\n"
                              "DTEND;TZID=Europe/Berlin:20261121T020000\r\nEND:VEVENT\r\n";
    import("in.ics", calendar(day("20261120") + night));
    const auto told = [this]
    {
        return zb::test::runZb({"--device", device.path().string(), "agenda", "--from", "2026-11-20", "--to",
                                "2026-11-20", "--json"})
            .out;
    };
    const std::string before = told();
    const auto view = opened(*zb::screens::findViewKind("day"));
    ShowWindow(view->window(), SW_SHOW);
    view->takeFocus();
    constexpr int strip = 35; // behind the column of the hours
    // What the grid moves lies two hours below the bar; then what is carried, at the end of the day.
    for (const auto &[key, y, other] : {std::tuple{VK_ESCAPE, 24 + 4 * 20 + 5, "20261121"},
                                        std::tuple{VK_END, 320 - 35, "20261122"}})
    {
        zb::keyDown(key);
        const Picture still = screen();
        zb::penDown(strip, y);
        zb::penMove(strip, y - 25);
        zb::penMove(strip, y - 45);
        const Picture pulled = screen();
        EXPECT_TRUE(pulled != still) << "it goes along";
        import("more.ics", calendar(day(other)));
        for (int tries = 0; tries < 300 && screen() == pulled; ++tries)
        {
            Sleep(10);
            awaitRest(*view);
        }
        EXPECT_TRUE(screen() != pulled) << "the day was filled anew";
        zb::penUp(strip, y - 45);
        awaitRest(*view);
        EXPECT_EQ(told(), before);
    }
}

TEST_F(ZembrikWatch, AnOpenCardFollowsItsItem)
{
    device.setClock(zb::test::makeFileTime(2026, 11, 20, 9, 0, 0));
    import("in.ics", calendar(day("20261120")));
    import("in.vcf", cards(1, 1));
    const auto cardOf = [this](const char *kind)
    {
        auto view = opened(*zb::screens::findViewKind(kind));
        MSG key{};
        key.message = WM_KEYDOWN;
        for (const WPARAM pressed : {VK_DOWN, VK_RETURN})
        {
            key.wParam = pressed;
            view->key(key);
        }
        return view;
    };
    for (const char *kind : {"agenda", "tasks", "contacts"})
    {
        const auto view = cardOf(kind);
        const Picture before = shotOf(*view);
        EXPECT_TRUE(shotOf(*opened(*zb::screens::findViewKind(kind))) != before) << kind << ": no card is open";
        std::string items = calendar(day("20261120"));
        items.replace(items.find("Swim"), 4, std::string("Rows of ") + kind);
        items.replace(items.find("Pay"), 3, std::string("Pay for ") + kind);
        std::string people = cards(1, 1);
        people.replace(people.find("FN:"), 3, "ORG:" + std::string(kind) + "\r\nFN:");
        import("changed.ics", items);
        import("changed.vcf", people);
        for (int tries = 0; tries < 300 && shotOf(*view) == before; ++tries)
        {
            Sleep(10);
            awaitRest(*view);
        }
        EXPECT_TRUE(shotOf(*view) != before) << kind;
        EXPECT_TRUE(shotOf(*view) == shotOf(*cardOf(kind))) << kind;
    }
}

TEST_F(ZembrikWatch, WhatAnotherProcessWritesShowsInAllOpenViews)
{
    device.setClock(zb::test::makeFileTime(2026, 11, 20, 9, 0, 0));
    const auto views = all();
    auto before = picturesOf(views);
    const auto awaitChange = [&](std::string_view unchanged)
    {
        // Another process's changes are looked for several times a second.
        for (std::size_t n = 0; n < views.size(); ++n)
        {
            const int most = viewKinds()[n].name == unchanged ? 0 : 300;
            for (int tries = 0; tries < most && shotOf(*views[n]) == before[n]; ++tries)
            {
                Sleep(10);
                awaitRest(*views[n]);
            }
        }
    };
    import("in.ics", calendar(day("20261120")));
    import("few.vcf", cards(100, 101));
    awaitChange("start");
    expectFresh(views, before, {"start"}); // the test's faces draw all digits alike
    before = picturesOf(views);
    // So much at once that it is not told record by record.
    std::string many = day("20261121") + day("20261122");
    for (int n = 10; n < 90; ++n)
    {
        many += "BEGIN:VTODO\r\nUID:" + std::to_string(n) + "\r\nSUMMARY:A" + std::to_string(n) +
                "\r\nDUE;VALUE=DATE:20261120\r\nEND:VTODO\r\n";
    }
    import("many.ics", calendar(many));
    import("many.vcf", cards(10, 99));
    awaitChange("day");
    expectFresh(views, before, {"day"});
}
