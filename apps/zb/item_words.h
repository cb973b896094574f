// What the commands on items share: moments as written, refused values in words, texts.
#pragma once

#include "platform/pim_objects.h"
#include "platform/propdb.h"
#include "records/COutlook.h"

#include <optional>
#include <string>

namespace zb::cli
{
/// A text of the object model for the length of a call.
class ItemText
{
  public:
    explicit ItemText(const std::string &utf8);
    ~ItemText();
    ItemText(const ItemText &) = delete;
    ItemText &operator=(const ItemText &) = delete;
    operator BSTR() const
    {
        return m_text;
    }

  private:
    BSTR m_text;
};

/// 1900-01-01. No list shows times of day or series before it.
inline constexpr DATE firstListedDay = 2.0;

struct Moment
{
    DATE date = 0.0;
    bool hasTime = false;
};
/// A day (see days.h), or one with a blank or "T" and a time behind it: "2026-03-04 10:30", "tomorrow 9:00".
std::optional<Moment> momentFromText(const std::string &text, int today);
/// Minutes after midnight of "9:30"; nothing for a text that is no time.
std::optional<int> minuteFromText(const std::string &text);
/// Throws BadUsage for a text that is none, and for a time of day before 1900, which lists don't show.
Moment momentOption(const std::string &text, const char *option);
/// A day alone; throws BadUsage for anything else, one with a time included.
DATE dayOption(const std::string &text, const char *option);
/// Without the blanks at its ends.
std::string trimmed(const std::string &text);
/// Nothing but blanks.
bool isBlank(const std::string &text);

/// Throws BadUsage when the device has no such item.
Counted<IPOutlookItem> itemOf(COutlook &outlook, CEOID id);
/// The appointment of a series on a day; throws BadUsage when there is none.
Counted<IAppointment> occurrenceOf(IAppointment &series, DATE day);
/// The item by another of its interfaces; empty when it is of another kind.
template <typename Item>
Counted<Item> as(IDispatch &item, const GUID &id)
{
    void *found = nullptr;
    item.QueryInterface(id, &found);
    return Counted<Item>(static_cast<Item *>(found));
}

/// The subject, or the name that it is filed under.
std::string titleOf(IPOutlookItem &item);
/// "appointment", "contact" or "task".
const char *kindWord(IPOutlookItem &item);
/// What became of a save inside a bulk write, which is committed unless the save has failed.
HRESULT committed(BulkWrite &bulk, HRESULT saved);
/// 0, or the exit code of a call that failed; the reason is printed.
int exitCodeOf(HRESULT result);
/// "2026-03-04T10:00", or the day alone; empty for no date.
std::string isoText(DATE date, bool withTime);
} // namespace zb::cli
