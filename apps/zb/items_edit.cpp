// zb edit: an appointment, task or contact that is there; of a series also one day, or one day and all later ones.
#include "common/exit_code.h"
#include "common/open_device.h"
#include "platform/propdb.h"
#include "records/COutlook.h"
#include "zb/bad_usage.h"
#include "zb/item_words.h"
#include "zb/items.h"
#include "zb/json.h"
#include "zb/recorded.h"
#include "zb/terminal.h"

namespace zb::cli
{
using namespace host;

namespace
{
using AppointmentCount = Counted<IAppointment>;

const char *word(int kind)
{
    return kind == olAppointmentItem ? "appointment" : kind == olTaskItem ? "task" : "contact";
}

Counted<IPOutlookItem> countedItem(IPOutlookItem *item)
{
    item->AddRef();
    return Counted<IPOutlookItem>(item);
}

DATE patternEnd(IRecurrencePattern &pattern)
{
    DATE end = PIM_NO_DATE;
    pattern.get_PatternEndDate(&end);
    return end;
}

/// Which one of the days that a pattern with a number of occurrences names `day` is, from 1.
LONG numberOfDay(IRecurrencePattern &pattern, DATE day, LONG occurrences)
{
    LONG low = 1;
    LONG high = occurrences;
    while (low < high)
    {
        const LONG middle = low + (high - low) / 2;
        pattern.put_Occurrences(middle);
        (patternEnd(pattern) < day ? low : high) = patternEnd(pattern) < day ? middle + 1 : middle;
    }
    return low;
}

/// The series from `day` on, not saved; `series` ends the day before, not saved either.
AppointmentCount divided(IAppointment &series, DATE day)
{
    Counted<IPOutlookItem> copy;
    if (FAILED(series.Copy(copy.out())))
    {
        throw BadUsage("the series can't be divided");
    }
    AppointmentCount later = as<IAppointment>(*copy.get(), IID_IAppointment);
    Counted<IRecurrencePattern> pattern;
    later->GetRecurrencePattern(pattern.out());
    LONG occurrences = -1;
    pattern->get_Occurrences(&occurrences);
    const LONG before = occurrences > 0 ? numberOfDay(*pattern.get(), day, occurrences) - 1 : 0;
    pattern->put_PatternStartDate(day);
    if (occurrences > 0)
    {
        pattern->put_Occurrences(occurrences - before);
    }
    Counted<IRecurrencePattern> earlier;
    series.GetRecurrencePattern(earlier.out());
    earlier->put_PatternEndDate(day - 1);
    return later;
}

bool beginsOn(IAppointment &series, DATE day)
{
    Counted<IRecurrencePattern> pattern;
    series.GetRecurrencePattern(pattern.out());
    DATE first = PIM_NO_DATE;
    pattern->get_PatternStartDate(&first);
    return first == day;
}

/// The part of a series that begins on a day becomes a series of its own, which is saved with the changes.
HRESULT saveFollowing(AppointmentCount &series, DATE day, const ItemArguments &arguments, IPOutlookItem **saved)
{
    AppointmentCount later = divided(*series.get(), day);
    HRESULT result = series->Save();
    result = SUCCEEDED(result) ? later->Save() : result;
    // A day that was moved stands elsewhere in the pattern.
    if (SUCCEEDED(result) && !beginsOn(*later.get(), day))
    {
        throw BadUsage("that day was moved; --following wants one that stands where the series has it");
    }
    if (SUCCEEDED(result))
    {
        fillItem(*later.get(), arguments, false);
        result = later->Save();
    }
    later->AddRef();
    *saved = later.get();
    return result;
}

class Edit
{
  public:
    explicit Edit(const ItemArguments &arguments) : m_arguments(arguments)
    {
    }

    /// Throws BadUsage.
    HRESULT run()
    {
        COutlook outlook;
        m_item = itemOf(outlook, m_arguments.id);
        if (m_item->GetItemType() != m_arguments.kind)
        {
            throw BadUsage("item " + std::to_string(m_arguments.id) + " is no " + word(m_arguments.kind));
        }
        const std::string &day = m_arguments.occurrence.empty() ? m_arguments.following : m_arguments.occurrence;
        const char *const part = day.empty() ? "" : m_arguments.following.empty() ? "one day of " : "later days of ";
        Recorded recorded(std::string("edit ") + part + word(m_arguments.kind) + " " + quoted(titleOf(*m_item.get())));
        BulkWrite bulk;
        return committed(bulk, day.empty() ? save() : saveDay(day));
    }
    IPOutlookItem &item() const
    {
        return *m_item.get();
    }

  private:
    HRESULT save()
    {
        fillItem(*m_item.get(), m_arguments, false);
        return m_item->Save();
    }
    HRESULT saveDay(const std::string &text)
    {
        AppointmentCount series = as<IAppointment>(*m_item.get(), IID_IAppointment);
        VARIANT_BOOL recurring = VARIANT_FALSE;
        series->get_IsRecurring(&recurring);
        if (recurring == VARIANT_FALSE)
        {
            throw BadUsage("the appointment does not repeat");
        }
        const bool one = !m_arguments.occurrence.empty();
        const DATE day = momentOption(text, one ? "--occurrence" : "--following").date;
        const AppointmentCount occurrence = occurrenceOf(*series.get(), day);
        if (one)
        {
            if (m_arguments.changesRepetition())
            {
                throw BadUsage("one day of a series can't repeat");
            }
            m_item = countedItem(occurrence.get());
            return save();
        }
        if (beginsOn(*series.get(), day))
        {
            return save();
        }
        return saveFollowing(series, day, m_arguments, m_item.out());
    }

    const ItemArguments &m_arguments;
    Counted<IPOutlookItem> m_item;
};

bool saysNothing(const ItemArguments &a)
{
    bool texts = a.subject || a.location || a.notes;
    for (const std::optional<std::string> &text : a.contact)
    {
        texts = texts || text;
    }
    const bool dates = !a.start.empty() || !a.end.empty() || !a.due.empty() || a.minutes || a.allDay ||
                       !a.birthday.empty() || !a.anniversary.empty();
    const bool choices = !a.categories.empty() || a.busy || a.isPrivate || a.reminder || a.importance;
    const bool cleared =
        a.noReminder || a.noCategory || a.noStart || a.noDue || a.noBirthday || a.noAnniversary;
    return !texts && !dates && !choices && !cleared && !a.changesRepetition();
}
} // namespace

int runEdit(const ItemArguments &arguments)
{
    if (saysNothing(arguments))
    {
        throw BadUsage("nothing is to be changed; \"zb edit --help\" tells what can be");
    }
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    Edit edit(arguments);
    if (const int code = exitCodeOf(edit.run()); code != exitOk)
    {
        return code;
    }
    LONG oid = 0;
    edit.item().get_Oid(&oid);
    Output output;
    output.line(arguments.json ? text(Json{{"version", jsonVersion},
                                           {"kind", kindWord(edit.item())},
                                           {"id", oid},
                                           {"title", titleOf(edit.item())}})
                               : std::to_string(oid));
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
