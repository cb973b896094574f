// zb import: results, exit codes, JSON, several files, odd and huge files.
#include "apps/ZbFixture.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>

#include <sys/stat.h>

namespace
{
using Json = nlohmann::json;
using zb::test::calendarOf;
using zb::test::eventOf;
using zb::test::manyEvents;
using zb::test::plainEvent;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

const std::string badEvent = eventOf("UID:bad\nDTSTART:20260302T100000Z\nDTEND:20260302T090000Z\n");

class ZbImportTest : public zb::test::ZbTest
{
};

TEST_F(ZbImportTest, SaysWhatItTookAndNothingElse)
{
    const std::string one = file("one.ics", manyEvents(3));
    const ProgramResult first = zb({"import", one});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(first.out, one + ": 3 new, 0 changed, 0 unchanged, 0 left out\n");
    EXPECT_EQ(first.err, "");
    const ProgramResult second = zb({"import", one});
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_EQ(second.out, one + ": 0 new, 0 changed, 3 unchanged, 0 left out\n");
    EXPECT_EQ(storedCount(), 3);
}

TEST_F(ZbImportTest, WhatCouldNotBeTakenIsExitOneWithFileAndLine)
{
    const std::string mixed = file("mixed.ics", calendarOf(plainEvent(1) + badEvent));
    const ProgramResult result = zb({"import", mixed});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, mixed + ": 1 new, 0 changed, 0 unchanged, 1 left out\n");
    EXPECT_EQ(result.err, "zb: " + mixed + ":16: an event was left out: it ends before it starts\n");
}

TEST_F(ZbImportTest, WhatIsLeftOutOnPurposeIsExitZero)
{
    const ProgramResult result =
        import(eventOf("UID:c\nDTSTART:20260302\nSTATUS:CANCELLED\n") +
               eventOf("UID:r\nDTSTART:20260302\nRRULE:FREQ=DAILY\n") + "BEGIN:VJOURNAL\nEND:VJOURNAL\n");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err.find("repeating"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("1 cancelled event was left out"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("1 journal entry was left out"), std::string::npos) << result.err;
}

TEST_F(ZbImportTest, FilesThatAreNoCalendarsAreExitFourAndOthersStand)
{
    const std::string good = file("good.ics", manyEvents(2));
    const std::string text = file("text.ics", "Dear diary\n");
    const std::string empty = file("empty.ics", "");
    const std::string whole = manyEvents(5);
    const std::string torn = file("torn.ics", whole.substr(0, whole.size() / 2));
    const std::string missing = (folder() / "missing.ics").string();
    const ProgramResult result = zb({"import", text, good, empty, torn, missing, folder().string()});
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_EQ(result.out, good + ": 2 new, 0 changed, 0 unchanged, 0 left out\n");
    for (const std::string &message :
         {text + ":1: is no iCalendar or vCard file: it begins with neither BEGIN:VCALENDAR nor BEGIN:VCARD",
          empty + ": is no iCalendar or vCard file: it is empty", torn + ":",
          missing + ": can't be opened: No such file or directory", folder().string() + ": is a folder"})
    {
        EXPECT_NE(result.err.find("zb: " + message), std::string::npos) << message << "\n" << result.err;
    }
    EXPECT_NE(result.err.find("is cut off: it ends inside"), std::string::npos);
    EXPECT_EQ(storedCount(), 2);
}

TEST_F(ZbImportTest, AnUnreadableFileWeighsMoreThanAnIncompleteOne)
{
    const std::string mixed = file("mixed.ics", calendarOf(badEvent));
    EXPECT_EQ(zb({"import", mixed, (folder() / "missing.ics").string()}).exitCode, 4);
    EXPECT_EQ(zb({"import", (folder() / "missing.ics").string(), mixed}).exitCode, 4);
}

TEST_F(ZbImportTest, JsonTellsTheSame)
{
    const std::string mixed =
        file("mixed.ics", calendarOf(plainEvent(1) + badEvent + "BEGIN:VJOURNAL\nEND:VJOURNAL\n"));
    const std::string text = file("text.ics", "Dear diary\n");
    const ProgramResult result = zb({"import", "--json", mixed, text});
    EXPECT_EQ(result.exitCode, 4);
    const Json told = Json::parse(result.out);
    EXPECT_EQ(told["version"], 1);
    EXPECT_EQ(told["dryRun"], false);
    ASSERT_EQ(told["files"].size(), 2U);
    const Json &first = told["files"][0];
    EXPECT_EQ(first["file"], mixed);
    EXPECT_EQ(first["events"], 2);
    EXPECT_EQ(first["new"], 1);
    EXPECT_EQ(first["changed"], 0);
    EXPECT_EQ(first["unchanged"], 0);
    EXPECT_EQ(first["leftOut"]["refused"], 1);
    EXPECT_EQ(first["otherComponents"]["VJOURNAL"], 1);
    EXPECT_EQ(first["remarks"][0]["line"], 16);
    EXPECT_EQ(told["files"][1]["failure"]["kind"], "notCalendar");
    EXPECT_EQ(told["files"][1]["failure"]["line"], 1);
}

TEST_F(ZbImportTest, ADryRunWritesNothing)
{
    const std::string one = file("one.ics", manyEvents(3));
    const ProgramResult result = zb({"import", "--dry-run", one});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, one + ": 3 new, 0 changed, 0 unchanged, 0 left out (nothing written)\n");
    EXPECT_EQ(storedCount(), 0);
}

TEST_F(ZbImportTest, StandardInputAndPipesAreReadToo)
{
    ProgramOptions input;
    input.input = manyEvents(3);
    EXPECT_EQ(zb({"import", "-"}, input).out, "standard input: 3 new, 0 changed, 0 unchanged, 0 left out\n");
    const std::string pipe = (folder() / "pipe").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << manyEvents(5); });
    EXPECT_EQ(zb({"import", pipe}).out, pipe + ": 2 new, 0 changed, 3 unchanged, 0 left out\n");
    writer.join();
}

TEST_F(ZbImportTest, TheBarShowsOnATerminalOnly)
{
    const std::string many = file("many.ics", manyEvents(2000));
    ProgramOptions terminal;
    terminal.terminalColumns = 80;
    const std::string screen = zb({"import", many}, terminal).out;
    EXPECT_NE(screen.find("Importing many.ics ["), std::string::npos);
    EXPECT_NE(screen.find("2000 new"), std::string::npos);
    EXPECT_LT(screen.rfind("%"), screen.find("2000 new")) << "the bar is gone when the result comes";
    EXPECT_EQ(zb({"import", many}).err, "");
}

TEST_F(ZbImportTest, ALineOfAMillionCharactersIsNoTrouble)
{
    const std::string million(1'000'000, 'x');
    const ProgramResult result =
        import(eventOf("UID:a\nDTSTART:20260302\nSUMMARY:Short\nATTACH:" + million + "\n") +
               eventOf("UID:b\nDTSTART:20260302\nSUMMARY:Long\nDESCRIPTION:" + million + "\n"));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find(":14: the notes of an event was cut to "), std::string::npos) << result.err;
    EXPECT_EQ(storedCount(), 2);
}

TEST_F(ZbImportTest, UnicodeInEveryFormIsTheSame)
{
    const std::string text = calendarOf(eventOf("UID:a\nDTSTART:20260302\nSUMMARY:Grüße\n"));
    std::string utf16 = "\xFF\xFE";
    std::string latin;
    for (const char16_t unit : zb::test::utf16(text))
    {
        utf16 += {static_cast<char>(unit & 0xFFU), static_cast<char>(unit >> 8U)};
        latin += static_cast<char>(unit);
    }
    EXPECT_EQ(zb({"import", file("a.ics", text)}).exitCode, 0);
    EXPECT_NE(zb({"import", file("b.ics", "\xEF\xBB\xBF" + text)}).out.find("1 unchanged"), std::string::npos);
    EXPECT_NE(zb({"import", file("c.ics", utf16)}).out.find("1 unchanged"), std::string::npos);
    const ProgramResult eightBit = zb({"import", file("d.ics", latin)});
    EXPECT_NE(eightBit.out.find("1 unchanged"), std::string::npos);
    EXPECT_NE(eightBit.err.find(":7: the line is no UTF-8 and was taken as Windows-1252"), std::string::npos);
}

/// A file of `megabytes` in few events, most of it in what nobody reads.
void writeHuge(const std::string &path, int megabytes)
{
    std::ofstream stream(path, std::ios::binary);
    stream << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    const std::string line = "\r\n " + std::string(70, 'A');
    std::string attachment;
    while (attachment.size() < 1024 * 1024)
    {
        attachment += line;
    }
    for (int n = 0; n < megabytes; ++n)
    {
        stream << "BEGIN:VEVENT\r\nUID:" << n << "\r\nDTSTART:20260302T100000Z\r\nATTACH;ENCODING=BASE64:" << attachment
               << "\r\nSUMMARY:Event\r\nEND:VEVENT\r\n";
    }
    stream << "END:VCALENDAR\r\n";
}

TEST_F(ZbImportTest, AHugeFileTakesLittleMemory)
{
    // ZB_TEST_HUGE=1 takes the full 100 MB; the ordinary run a fifth of it.
    const bool full = std::getenv("ZB_TEST_HUGE") != nullptr;
    const int megabytes = full ? 100 : 20;
    const std::string huge = (folder() / "huge.ics").string();
    writeHuge(huge, megabytes);
    const ProgramResult result = zb({"import", huge});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(storedCount(), megabytes);
    if (!isSanitized)
    {
        EXPECT_LT(result.peakKilobytes, 40'000);
    }
}

TEST_F(ZbImportTest, AHugeFileTornAtItsEndLeavesNothing)
{
    const std::string huge = (folder() / "huge.ics").string();
    writeHuge(huge, 5);
    std::filesystem::resize_file(huge, std::filesystem::file_size(huge) - 15);
    EXPECT_EQ(zb({"import", huge}).exitCode, 4);
    EXPECT_EQ(storedCount(), 0);
}

TEST_F(ZbImportTest, NamesOfFilesMayHoldAnyBytes)
{
    const std::string odd = file("odd\xFF name.ics", manyEvents(1));
    EXPECT_EQ(zb({"import", odd}).exitCode, 0);
    EXPECT_EQ(Json::parse(zb({"import", "--json", odd}).out)["files"][0]["unchanged"], 1);
}

TEST_F(ZbImportTest, AKilledImportTakesAllOrNothing)
{
    constexpr int events = 1000;
    constexpr int kills = 60;
    constexpr unsigned seed = 815;
    const std::string base = file("base.ics", calendarOf(plainEvent(100'000)));
    const std::string many = file("many.ics", manyEvents(events));
    ASSERT_EQ(zb({"import", base}).exitCode, 0);
    const double whole = [&]
    {
        const std::string other = (folder() / "other").string();
        return zb::test::runZb({"--device", other, "import", many}).seconds;
    }();
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> moment(0, whole * 1.1);
    int taken = 0;
    for (int n = 0; n < kills; ++n)
    {
        ProgramOptions kill;
        kill.killAfterSeconds = moment(random);
        zb({"import", many}, kill);
        const int stored = storedCount();
        ASSERT_TRUE(stored == 1 || stored == 1 + events) << stored << " after kill " << n << ", seed " << seed;
        if (stored == 1 + events)
        {
            ++taken;
            std::filesystem::remove_all(device());
            ASSERT_EQ(zb({"import", base}).exitCode, 0);
        }
    }
    RecordProperty("takenBeforeTheKill", taken);
}
} // namespace
