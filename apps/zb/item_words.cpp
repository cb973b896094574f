#include "zb/item_words.h"

#include "common/complain.h"
#include "common/days.h"
#include "common/exit_code.h"
#include "common/visible_text.h"
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "zb/bad_usage.h"
#include "zb/terminal.h"

#include <algorithm>
#include <cstdio>

namespace zb::cli
{
using namespace host;

namespace
{
/// Throws where the text tells a date of the right form that no year has, since it looks right at first sight.
void refuseMissingDate(const std::string &text, const char *option)
{
    const std::string date = text.substr(0, 10);
    const std::string form = "0000-00-00";
    const bool looksRight =
        date.size() == form.size() &&
        std::equal(date.begin(), date.end(), form.begin(),
                   [](char ch, char sample) { return sample == '0' ? ch >= '0' && ch <= '9' : ch == sample; });
    if (looksRight && !dayFromText(date, 0))
    {
        throw BadUsage("there is no day \"" + date + "\" (of " + option + ") in the years from 1601 to 2999");
    }
}

std::string takeText(BSTR text)
{
    std::string taken = text == nullptr ? std::string() : visibleText(std::u16string_view(text, SysStringLen(text)));
    SysFreeString(text);
    return taken;
}

const char *wordsFor(HRESULT result)
{
    switch (result)
    {
    case PIM_E_SERIES:
        return "this can't be done with a day of a series";
    case PIM_E_DATE:
        return "a date is not valid";
    case PIM_E_END_BEFORE_START:
        return "it can't end before it starts";
    case PIM_E_REMINDER:
        return "the time of the reminder is not valid";
    case PIM_E_NO_OCCURRENCE:
        return "the item does not take place on that day";
    case PIM_E_RECURRENCE:
        return "the repetition is not valid, or has no day";
    case PIM_E_SERIES_END:
        return "the repetition ends before it starts";
    case PIM_E_OCCURRENCE_LENGTH:
        return "it lasts longer than the time to its next day";
    case PIM_E_OCCURRENCE_MOVED:
        return "a day can't be moved past the one before or behind it";
    case E_INVALIDARG:
        return "a value is not possible, or the item is too long";
    default:
        return nullptr;
    }
}
} // namespace

ItemText::ItemText(const std::string &utf8) : m_text(SysAllocString(toUtf16(utf8).c_str()))
{
}

ItemText::~ItemText()
{
    SysFreeString(m_text);
}

std::optional<int> minuteFromText(const std::string &text)
{
    int hour = 0;
    int minute = 0;
    int length = 0;
    const bool whole = std::sscanf(text.c_str(), "%2d:%2d%n", &hour, &minute, &length) == 2 &&
                       static_cast<std::size_t>(length) == text.size();
    const bool exists = hour >= 0 && hour < 24 && minute >= 0 && minute < 60;
    return whole && exists ? std::optional(hour * 60 + minute) : std::nullopt;
}

std::optional<Moment> momentFromText(const std::string &text, int today)
{
    std::size_t split = text.find(' ');
    split = split == std::string::npos ? text.find('T') : split;
    const std::optional<int> day = dayFromText(text.substr(0, split), today);
    if (!day || split == std::string::npos)
    {
        return day ? std::optional(Moment{static_cast<DATE>(*day), false}) : std::nullopt;
    }
    const std::optional<int> minute = minuteFromText(text.substr(split + 1));
    return minute ? std::optional(Moment{*day + *minute / 1440.0, true}) : std::nullopt;
}

Moment momentOption(const std::string &text, const char *option)
{
    const std::optional<Moment> moment = momentFromText(text, today());
    if (!moment)
    {
        refuseMissingDate(text, option);
        throw BadUsage("\"" + text + "\" of " + option +
                       " is neither a day (2026-11-21, today, +3) nor a day and a time (2026-11-21 9:30)");
    }
    if (moment->hasTime && moment->date < firstListedDay)
    {
        throw BadUsage("\"" + text + "\" of " + option + " has a time of day, and these begin in 1900");
    }
    return *moment;
}

DATE dayOption(const std::string &text, const char *option)
{
    const std::optional<Moment> moment = momentFromText(text, today());
    if (!moment || moment->hasTime)
    {
        refuseMissingDate(text, option);
        throw BadUsage("\"" + text + "\" of " + option +
                       " is no day: use 2026-11-21, today, tomorrow, yesterday or +3" +
                       (moment ? ", without a time" : ""));
    }
    return moment->date;
}

std::string trimmed(const std::string &text)
{
    constexpr const char *blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isBlank(const std::string &text)
{
    return trimmed(text).empty();
}

Counted<IPOutlookItem> itemOf(COutlook &outlook, CEOID id)
{
    Counted<IDispatch> found;
    if (outlook.GetItemFromOid(id, found.out()) != S_OK)
    {
        throw BadUsage("the device has no item " + std::to_string(id));
    }
    found->AddRef();
    return Counted<IPOutlookItem>(static_cast<IPOutlookItem *>(found.get()));
}

Counted<IAppointment> occurrenceOf(IAppointment &series, DATE day)
{
    Counted<IRecurrencePattern> pattern;
    Counted<IAppointment> occurrence;
    series.GetRecurrencePattern(pattern.out());
    if (!pattern || pattern->GetOccurrence(day, occurrence.out()) != S_OK)
    {
        throw BadUsage("the appointment does not take place on that day");
    }
    return occurrence;
}

std::string titleOf(IPOutlookItem &item)
{
    void *found = nullptr;
    BSTR text = nullptr;
    switch (item.GetItemType())
    {
    case olAppointmentItem:
        item.QueryInterface(IID_IAppointment, &found);
        Counted<IAppointment>(static_cast<IAppointment *>(found))->get_Subject(&text);
        break;
    case olTaskItem:
        item.QueryInterface(IID_ITask, &found);
        Counted<ITask>(static_cast<ITask *>(found))->get_Subject(&text);
        break;
    default:
        item.QueryInterface(IID_IContact, &found);
        Counted<IContact>(static_cast<IContact *>(found))->get_FileAs(&text);
        break;
    }
    return takeText(text);
}

const char *kindWord(IPOutlookItem &item)
{
    const int kind = item.GetItemType();
    return kind == olAppointmentItem ? "appointment" : kind == olTaskItem ? "task" : "contact";
}

HRESULT committed(BulkWrite &bulk, HRESULT saved)
{
    if (FAILED(saved) || bulk.commit())
    {
        return saved;
    }
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(error);
}

int exitCodeOf(HRESULT result)
{
    if (result >= 0)
    {
        return exitOk;
    }
    if (result == HRESULT_FROM_WIN32(ERROR_DISK_FULL))
    {
        complain("nothing was changed, the disk is full");
        return exitDevice;
    }
    if (const char *const words = wordsFor(result))
    {
        complain(words);
        return exitUsage;
    }
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(result));
    complain(std::string("the device can't be read or written (") + code + ")");
    return exitDevice;
}

std::string isoText(DATE date, bool withTime)
{
    SYSTEMTIME fields{};
    if (date == PIM_NO_DATE || !VariantTimeToSystemTime(date, &fields))
    {
        return {};
    }
    char text[40];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u", fields.wYear, fields.wMonth, fields.wDay, fields.wHour,
                  fields.wMinute);
    return withTime ? text : std::string(text, 10);
}
} // namespace zb::cli
