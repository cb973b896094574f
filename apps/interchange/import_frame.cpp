#include "interchange/import_frame.h"

namespace zb::interchange
{
ImportReport reportOf(const std::string &name, const std::function<void(ImportReport &)> &import)
{
    ImportReport report;
    report.file = name;
    try
    {
        import(report);
    }
    catch (const CalendarFileError &error)
    {
        report = {};
        report.file = name;
        report.failure = FileFailure{error.fault(), error.line(), error.what()};
    }
    return report;
}

void tellAlike(ImportReport &report, std::size_t count, std::size_t first, const std::string &one,
               const std::string &many)
{
    if (count != 0)
    {
        report.find(first, count == 1 ? one : std::to_string(count) + many);
    }
}

void tellEncoding(ImportReport &report, const EncodingNotes &notes)
{
    tellAlike(report, notes.windows1252Lines, notes.windows1252First,
              "the line is no UTF-8 and was taken as Windows-1252",
              " lines from here on are no UTF-8 and were taken as Windows-1252");
    tellAlike(report, notes.zeroLines, notes.zeroFirst, "the line holds zero bytes, which were dropped",
              " lines from here on hold zero bytes, which were dropped");
}

void tellStrayLines(ImportReport &report, std::size_t count, std::size_t first)
{
    tellAlike(report, count, first, "the line belongs to nothing and was passed over",
              " lines from here on belong to nothing and were passed over");
}
} // namespace zb::interchange
