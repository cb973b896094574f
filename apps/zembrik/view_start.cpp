// The view "start": the date, and how much the device holds; two panes with a bar between them.
#include "common/texts.h"
#include "framework/CeSplitFrame.h"
#include "framework/HIDPI.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "records/CeDbEnum.h"
#include "zembrik/change_watch.h"
#include "zembrik/day_watch.h"
#include "zembrik/markup_pane.h"
#include "zembrik/numbers.h"
#include "zembrik/remembered.h"
#include "zembrik/view.h"

namespace zb::screens
{
namespace
{
using host::text;

constexpr UINT commandRefresh = firstViewCommand;
constexpr const WCHAR *splitSetting = u"StartSplit"; // in parts of the length
constexpr DWORD wholeLength = 10'000;
constexpr int leastPane = 32; // at 96 dots an inch
constexpr int barStep = 16;

std::u16string dateText(const SYSTEMTIME &date, DWORD flags, const WCHAR *form)
{
    std::array<WCHAR, 100> words{};
    GetDateFormatW(LOCALE_USER_DEFAULT, flags, &date, form, words.data(), static_cast<int>(words.size()));
    return words.data();
}

/// The locale's long form without the weekday and what parts it from the rest.
std::u16string longFormWithoutWeekday()
{
    std::array<WCHAR, 100> words{};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SLONGDATE, words.data(), static_cast<int>(words.size()));
    std::u16string form = words.data();
    if (const std::size_t weekday = form.find(u"dddd"); weekday != std::u16string::npos)
    {
        form.erase(weekday, 4);
    }
    constexpr const WCHAR *between = u" ,\u060C\u3001";
    form.erase(0, form.find_first_not_of(between));
    form.erase(form.find_last_not_of(between) + 1);
    return form;
}

std::u16string dateMarkup()
{
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=13 COLOR=#1F4E8C><B>" + dateText(now, 0, u"dddd") +
           u"</B></FONT><BR><FONT SIZE=3>" + dateText(now, 0, longFormWithoutWeekday().c_str());
}

DWORD recordsOf(std::u16string_view database)
{
    CeDbEnum walk;
    CEDBASEINFO info{};
    for (bool more = walk.First() && walk.Next(); more; more = walk.Next())
    {
        if (walk.GetInfo(info) && database == info.szDbaseName)
        {
            return info.dwNumRecords;
        }
    }
    return 0;
}

std::u16string countMarkup()
{
    std::u16string markup = u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=3>";
    constexpr std::pair<UINT, std::u16string_view> rows[] = {{textAppointments, appointmentsDatabase},
                                                             {textTasks, tasksDatabase},
                                                             {textContacts, contactsDatabase}};
    for (const auto &[label, database] : rows)
    {
        markup += text(label) + u"<P ALIGN=RIGHT><B>" + toUtf16(std::to_string(recordsOf(database))) + u"</B></P><BR>";
    }
    return markup;
}

/// To the nearest.
DWORD rounded(DWORD dividend, DWORD divisor)
{
    return (dividend + divisor / 2) / divisor;
}

/// The window of the view with what lies in it.
class StartPanes final : public CeSplitFrame
{
  public:
    explicit StartPanes(bool sideBySide) : CeSplitFrame(sideBySide), m_sideBySide(sideBySide)
    {
    }
    ~StartPanes() override
    {
        DestroyWindow(m_hWnd);
    }

    bool open(HWND parent, const RECT &area, DWORD split)
    {
        const auto changed = [this](const auto &) { refresh(); };
        if (!Create(parent, area) || !date.createIn(m_hWnd) || !counts.createIn(m_hWnd) ||
            !m_days.open([this](int) { refresh(); }) ||
            !m_changes.open({appointmentsDatabase, tasksDatabase, contactsDatabase}, changed))
        {
            return false;
        }
        const int least = HIDPI_SCALEX(leastPane);
        SetBarMins(least, least);
        SetPanes(date, counts);
        setSplit(split);
        refresh();
        return true;
    }

    /// Reads everything anew: on another day and after changes, too.
    void refresh()
    {
        date.setMarkup(dateMarkup());
        counts.setMarkup(countMarkup());
    }

    bool isBusy() const
    {
        return m_changes.isPending();
    }

    bool isSideBySide() const
    {
        return m_sideBySide;
    }
    void setSplit(DWORD split)
    {
        m_split = split;
        SetSplitter(placeOf(split));
    }
    /// Where the bar lies, in parts of the length. What was set last unless somebody has moved the bar since: on a small
    /// screen the place alone would tell it less well from time to time, and the bar would creep.
    DWORD split() const
    {
        const int place = GetSplitter();
        return length() == 0 || place == placeOf(m_split) ? m_split
                                                          : rounded(static_cast<DWORD>(place) * wholeLength, length());
    }
    /// By a step to the end or, below 0, to the beginning.
    void moveBar(int step)
    {
        const int least = HIDPI_SCALEX(leastPane);
        SetSplitter(std::clamp(GetSplitter() + step, least, std::max(static_cast<int>(length()) - 2 * least, least)));
    }

    MarkupPane date;
    MarkupPane counts;

  private:
    DWORD length() const
    {
        RECT client{};
        GetClientRect(m_hWnd, &client);
        return static_cast<DWORD>(m_sideBySide ? client.right : client.bottom);
    }

    int placeOf(DWORD split) const
    {
        return static_cast<int>(rounded(length() * split, wholeLength));
    }

    bool m_sideBySide;
    DWORD m_split = 0;
    DayWatch m_days;
    ChangeWatch m_changes;
};

class StartView final : public View
{
  public:
    bool create(HWND frame, const RECT &area) override
    {
        m_frame = frame;
        return build(area, rememberedNumber(splitSetting).value_or(wholeLength / 3));
    }

    HWND window() const override
    {
        return m_panes->GetHwnd();
    }

    /// Side by side on a wide screen, else one above the other.
    void place(const RECT &area) override
    {
        const DWORD split = m_panes->split();
        if (isWide(area) == m_panes->isSideBySide() || !build(area, split))
        {
            View::place(area);
            m_panes->setSplit(split);
        }
    }

    void takeFocus() override
    {
        SetFocus(m_panes->counts);
    }

    WORD commands() const override
    {
        return startMenu;
    }

    bool command(UINT id) override
    {
        if (id == commandRefresh)
        {
            m_panes->refresh();
        }
        return id == commandRefresh;
    }

    /// Tab goes from pane to pane; Ctrl and an arrow moves the bar.
    bool key(const MSG &message) override
    {
        if (message.wParam == VK_TAB)
        {
            SetFocus(GetFocus() == m_panes->counts ? m_panes->date : m_panes->counts);
            return true;
        }
        const bool back = message.wParam == VK_UP || message.wParam == VK_LEFT;
        const bool on = message.wParam == VK_DOWN || message.wParam == VK_RIGHT;
        if (GetKeyState(VK_CONTROL) < 0 && (back || on))
        {
            m_panes->moveBar(HIDPI_SCALEX(on ? barStep : -barStep));
            return true;
        }
        return false;
    }

    bool isBusy() const override
    {
        return m_panes->isBusy();
    }

    void remember() override
    {
        rememberNumber(splitSetting, m_panes->split());
    }

  private:
    static bool isWide(const RECT &area)
    {
        return area.right - area.left > area.bottom - area.top;
    }

    bool build(const RECT &area, DWORD split)
    {
        auto fresh = std::make_unique<StartPanes>(isWide(area));
        if (!fresh->open(m_frame, area, std::min(split, wholeLength)))
        {
            return false;
        }
        const HWND focus = GetFocus();
        const bool hadFocus = m_panes != nullptr && IsChild(m_panes->GetHwnd(), focus) != FALSE;
        const bool onDate = hadFocus && focus == m_panes->date;
        m_panes = std::move(fresh);
        if (hadFocus)
        {
            SetFocus(onDate ? m_panes->date : m_panes->counts);
        }
        return true;
    }

    HWND m_frame = nullptr;
    std::unique_ptr<StartPanes> m_panes;
};

const ViewRegistration registration({"start", textStart, commandStart, [] { return std::unique_ptr<View>(new StartView); }});
} // namespace
} // namespace zb::screens
