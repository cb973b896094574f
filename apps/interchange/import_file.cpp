#include "interchange/import_file.h"

#include "interchange/calendar_text.h"
#include "interchange/card.h"
#include "interchange/contact_import.h"
#include "interchange/content_lines.h"
#include "interchange/import_frame.h"

namespace zb::interchange
{
namespace
{
/// Whether the first line that is not blank begins a card.
bool beginsWithCard(ByteSource &bytes)
{
    constexpr std::size_t longestLine = 256;
    TextSource text(bytes);
    ContentLines lines(text, longestLine);
    ContentLine line;
    const bool found = lines.next(line);
    bytes.rewind();
    const std::size_t colon = line.text.find(':');
    return found && colon != std::string::npos &&
           upperCase(trimmed(std::string_view(line.text).substr(0, colon))) == "BEGIN" &&
           upperCase(trimmed(std::string_view(line.text).substr(colon + 1))) == "VCARD";
}

/// The calendar import knows calendars alone.
void nameBothKinds(ImportReport &report)
{
    if (report.failure && report.failure->fault == FileFault::NotCalendar)
    {
        const bool empty = report.failure->line == 0;
        report.failure->text = std::string("is no iCalendar or vCard file: ") +
                               (empty ? "it is empty" : "it begins with neither BEGIN:VCALENDAR nor BEGIN:VCARD");
    }
}
} // namespace

ImportReport importFile(const std::filesystem::path &file, const ImportOptions &options)
{
    const std::string name = file == "-" ? "standard input" : file.string();
    return reportOf(name,
                    [&](ImportReport &report)
                    {
                        const std::unique_ptr<ByteSource> bytes = openFile(file);
                        report = beginsWithCard(*bytes) ? importContacts(*bytes, name, options)
                                                        : importCalendar(*bytes, name, options);
                        nameBothKinds(report);
                    });
}
} // namespace zb::interchange
