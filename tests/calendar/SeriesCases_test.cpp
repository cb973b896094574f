// Series as a user sees them: each file of tests/data/recurrence is one test, a series with its changes in a record of
// a real database, a range, and the rows that the loader must show. SeriesCase.h tells what can stand in a file.
#include "calendar/SeriesCase.h"
#include "support/CaseFiles.h"

namespace
{
using namespace zb;
using namespace zb::test;
namespace fs = std::filesystem;

const fs::path casesFolder = fs::path(ZB_SOURCE_DIR) / "tests/data/recurrence";

std::string shown(const DATACALENDAR &row)
{
    SYSTEMTIME start{};
    VariantTimeToSystemTime(row.m_dtStart, &start);
    char text[64];
    std::snprintf(text, sizeof(text), "%s %02u:%02u %d", dayText(row.m_nDay).c_str(), unsigned{start.wHour},
                  unsigned{start.wMinute}, row.m_nDuration);
    std::string result = text;
    const std::string subject = utf8(row.m_bstrSubject);
    const std::string place = utf8(row.m_bstrLocation);
    result += subject == "Series" ? "" : " " + subject;
    result += place.empty() ? "" : " @" + place;
    result += row.m_nBusyStatus == 0 ? "" : " busy " + std::to_string(row.m_nBusyStatus);
    // Only where it may differ from the series.
    result += row.m_bException != 0 && row.m_bAllDay != 0 ? " all-day" : "";
    result += row.m_bHasNotes != 0 ? " notes" : "";
    result += row.m_bException != 0 ? " changed" : "";
    return result;
}

class SeriesCases : public ::testing::TestWithParam<std::string>
{
};

TEST_P(SeriesCases, ShowTheRowsOfTheFile)
{
    const SeriesCase read = readSeriesCase(casesFolder / (GetParam() + ".case"));
    ASSERT_FALSE(read.expected.empty());
    DeviceOptions options;
    options.timeZone = read.deviceZone;
    TestDevice device(options);
    for (const SeriesRecord &record : read.records)
    {
        ASSERT_NE(addRecord(record.record(read.deviceZone)), 0U);
    }
    TestLoader loader;
    loader.setFilter(read.filter);
    loader.SetNoHeaderDates(false);
    loader.setRange(read.rangeFirst[0], read.rangeFirst[1], read.rangeFirst[2], read.rangeDays);
    loader.load();
    std::vector<std::string> rows;
    for (int n = 0; n < loader.rowCount(); ++n)
    {
        rows.push_back(shown(*loader.row(n)));
    }
    const std::vector<std::string> expected =
        read.expected == std::vector<std::string>{"nothing"} ? std::vector<std::string>{} : read.expected;
    EXPECT_EQ(rows, expected);
}

INSTANTIATE_TEST_SUITE_P(Files, SeriesCases, ::testing::ValuesIn(caseNames(casesFolder)), caseTestName);
} // namespace
