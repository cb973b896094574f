#include "zembrik/calendar_view.h"

#include "common/days.h"
#include "core/CRegistry.h"
#include "zembrik/calendar_card.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/menu_states.h"
#include "zembrik/numbers.h"
#include "zembrik/remembered.h"

#include <algorithm>
#include <array>
#include <optional>

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr const WCHAR *daySetting = u"CalendarDay";
constexpr const WCHAR *daySetOnSetting = u"CalendarDaySetOn";
/// Asks whether to leave out the wait for a hold.
constexpr UINT skipsHold = static_cast<UINT>(-50);

/// In the order of the menu.
constexpr std::array<DWORD, 5> statusChoices = {statusFilterAll, statusFilterBusy, statusFilterFree,
                                                statusFilterTentative, statusFilterOutOfOffice};

/// The day that all calendar views show; each takes it over from the one before.
std::optional<int> &sharedDay()
{
    static std::optional<int> day;
    return day;
}

/// Where it was left, as long as it is still the same today.
int startingDay()
{
    const int now = today();
    if (!sharedDay())
    {
        const bool stillToday = rememberedNumber(daySetOnSetting) == static_cast<DWORD>(now);
        const int left = static_cast<int>(rememberedNumber(daySetting).value_or(static_cast<DWORD>(now)));
        sharedDay() = stillToday ? std::clamp(left, 0, lastListedDay) : now;
    }
    return *sharedDay();
}

CalendarSettings storedSettings()
{
    return CalendarSettings::read(CCalendarThread::DEFAULT_SETTINGS_KEY);
}
} // namespace

CalendarView::CalendarView(DWORD CalendarSettings::*showTasks, const WCHAR *showTasksName)
    : m_list(showTasks, {[this]
                         {
                             fill();
                             refreshWords();
                             m_card.refresh();
                         },
                         [this](int former) { dayChanged(former); }}),
      m_showTasks(showTasks), m_showTasksName(showTasksName)
{
}

CalendarView::~CalendarView()
{
    if (m_hWnd != nullptr)
    {
        DestroyWindow(m_hWnd);
    }
}

bool CalendarView::create(HWND frame, const RECT &area)
{
    m_frame = frame;
    m_day = startingDay();
    const auto leafed = [this](int direction) { direction == 0 ? goTo(today()) : leaf(direction); };
    RECT inside{0, 0, area.right - area.left, area.bottom - area.top};
    if (!Create(frame, area, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN) || !m_bar.createIn(m_hWnd, leafed) ||
        !grid().InitWindow(m_hWnd, inside, isOnDemand()) || !m_card.createIn(m_hWnd, inside, [this] { closeCard(); }) ||
        !m_list.open())
    {
        return false;
    }
    grid().SetFontQuality(ANTIALIASED_QUALITY);
    grid().SetShowFocus(true);
    grid().setLeaf([this](int direction) { leaf(direction); });
    prepare();
    layout();
    goTo(m_day);
    return true;
}

void CalendarView::layout()
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    const int top = LeafBar::height();
    MoveWindow(m_bar, 0, 0, client.right, top, TRUE);
    MoveWindow(grid(), 0, top, client.right, std::max<int>(client.bottom - top, 0), TRUE);
    MoveWindow(m_card, 0, 0, client.right, client.bottom, TRUE);
}

void CalendarView::takeFocus()
{
    if (m_card.isShown())
    {
        m_card.takeFocus();
    }
    else
    {
        SetFocus(grid());
    }
}

// --- The day

void CalendarView::setDay(int day)
{
    m_day = std::clamp(day, 0, lastListedDay);
    sharedDay() = m_day;
}

void CalendarView::loadAround(const DaySpan &days)
{
    m_list.load(days.first - margin(), days.last + margin());
}

/// What is at hand shows at once; what the next leaves will need is loaded before they come.
void CalendarView::goTo(int day)
{
    setDay(day);
    const DaySpan days = visible();
    const int near = margin() / 3;
    if (!m_list.holds(days.first - near) || !m_list.holds(days.last + near))
    {
        loadAround(days);
    }
    fill();
    refreshWords();
}

void CalendarView::dayChanged(int former)
{
    if (m_day == former)
    {
        setDay(today());
    }
    fill();
    refreshWords();
}

void CalendarView::refreshWords()
{
    m_bar.setWords(words());
}

void CalendarView::remember()
{
    rememberNumber(daySetting, static_cast<DWORD>(m_day));
    rememberNumber(daySetOnSetting, static_cast<DWORD>(today()));
}

// --- The card

void CalendarView::openCard(const AgendaRow &row)
{
    // The list may have another row for it by the time that the card is read anew.
    const auto read = [this, known = row]
    {
        const auto rows = m_list.rowsOf(known.day);
        const auto now = std::ranges::find_if(
            rows, [&known](const AgendaRow &each) { return each.id == known.id && each.kind == known.kind; });
        return cardOf(now == rows.end() ? known : *now);
    };
    m_card.show(read);
    if (m_card.isShown())
    {
        ShowWindow(grid(), SW_HIDE);
    }
}

void CalendarView::closeCard()
{
    m_card.hide();
    ShowWindow(grid(), SW_SHOW);
    SetFocus(grid());
}

// --- Commands

WORD CalendarView::commands() const
{
    return calendarMenu;
}

void CalendarView::showStates(HMENU menu) const
{
    const CalendarSettings settings = storedSettings();
    setEnabled(menu, commandOpenItem, hasChosen() && !m_card.isShown());
    setChecked(menu, commandShowTasks, settings.*m_showTasks != 0);
    setChecked(menu, commandShowBirthdays, settings.ReadBirthdays != 0);
    setChecked(menu, commandShowDone, settings.CA_ShowCompletedTasks != 0);
    const auto chosen = std::ranges::find(statusChoices, settings.CAV_StatusFilter) - statusChoices.begin();
    setChosen(menu, commandStatus, statusChoices.size(), static_cast<std::size_t>(chosen));
}

void CalendarView::change(const WCHAR *name, DWORD value)
{
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, CCalendarThread::DEFAULT_SETTINGS_KEY);
    settings.SetValue(name, value);
    m_list.reload();
}

bool CalendarView::command(UINT id)
{
    const CalendarSettings settings = storedSettings();
    const auto flipped = [](DWORD value) -> DWORD { return value == 0 ? 1 : 0; };
    if (id >= commandStatus && id < commandStatus + statusChoices.size())
    {
        change(u"CAV_StatusFilter", statusChoices[id - commandStatus]);
        return true;
    }
    if (m_card.isShown())
    {
        closeCard();
    }
    switch (id)
    {
    case commandToday:
        goTo(today());
        return true;
    case commandBack:
    case commandOn:
        leaf(id == commandOn ? 1 : -1);
        return true;
    case commandOpenItem:
        openChosen();
        return true;
    case commandShowTasks:
        change(m_showTasksName, flipped(settings.*m_showTasks));
        return true;
    case commandShowBirthdays:
        change(u"ReadBirthdays", flipped(settings.ReadBirthdays));
        return true;
    case commandShowDone:
        change(u"CA_ShowCompletedTasks", flipped(settings.CA_ShowCompletedTasks));
        return true;
    default:
        return false;
    }
}

bool CalendarView::key(const MSG &message)
{
    if (m_card.isShown())
    {
        return m_card.key(message);
    }
    const auto key = static_cast<UINT>(message.wParam);
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    if (viewKey(key, control, shift))
    {
        return true;
    }
    if (key == u'T')
    {
        goTo(today());
        return true;
    }
    if (control && (key == VK_LEFT || key == VK_RIGHT))
    {
        leaf(key == VK_RIGHT ? 1 : -1);
        return true;
    }
    if (key == VK_RETURN)
    {
        openChosen();
        return true;
    }
    return false;
}

// --- Messages

/// Bar and grid cover all of it.
LRESULT CalendarView::OnEraseBkgnd(HDC, bool &handled)
{
    handled = true;
    return 1;
}

void CalendarView::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    CeWnd::OnSize(nType, cx, cy, handled);
    if (m_card.GetHwnd() != nullptr && cx > 0 && cy > 0)
    {
        layout();
        fill();
    }
}

LRESULT CalendarView::OnNotify(WPARAM, LPARAM lParam, bool &handled)
{
    const auto &notify = *reinterpret_cast<const tagNM_GRIDVIEW *>(lParam);
    if (notify.hdr.hwndFrom == grid().GetHwnd() && notify.hdr.code == gridTapNotify)
    {
        handled = true;
        POINT point = notify.pt;
        ScreenToClient(grid(), &point);
        tapped(static_cast<USHORT>(notify.nCol), static_cast<USHORT>(notify.nRow), static_cast<DWORD>(notify.dwCookie),
               point);
    }
    return 0;
}

LRESULT CalendarView::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    if (uMsg == skipsHold)
    {
        handled = true;
        return 1;
    }
    return asked(uMsg, wParam, lParam, handled);
}

LRESULT CalendarView::asked(UINT, WPARAM, LPARAM, bool &)
{
    return 0;
}

void switchView(HWND frame, std::string_view name)
{
    if (const ViewKind *kind = findViewKind(name))
    {
        PostMessageW(frame, WM_COMMAND, kind->command, 0);
    }
}
} // namespace zb::screens
