#include "zembrik/item_card.h"

#include "common/markup_text.h"
#include "common/texts.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/list_texts.h"
#include "zembrik/paint.h"

namespace zb::screens
{
using host::text;

bool ItemCard::createIn(HWND parent, const RECT &area, std::function<void()> closed)
{
    m_closed = std::move(closed);
    if (!ListPane::createIn(parent, area))
    {
        return false;
    }
    hide();
    return true;
}

void CardWords::add(UINT label, const std::u16string &value)
{
    if (!value.empty())
    {
        values.push_back(valueMarkup(text(label), value));
    }
}

void CardWords::mark(bool holds, UINT words)
{
    below += holds ? (below.empty() ? u"" : u" · ") + text(words) : std::u16string();
}

void ItemCard::setWords(CardWords words)
{
    m_words = std::move(words);
    m_head = u"<FONT SIZE=1 COLOR=#1F4E8C>‹ " + host::plainMarkup(text(textBack)) +
             u"</FONT><BR><FONT SIZE=4 COLOR=#16202B><B>" + host::plainMarkup(m_words.title) + u"</B></FONT>";
    m_head += m_words.below.empty()
                  ? u""
                  : u"<BR><FONT SIZE=1 COLOR=#5C6875>" + host::plainMarkup(m_words.below) + u"</FONT>";
    setRows(static_cast<int>(m_words.values.size()) + 1);
}

void ItemCard::show(Read read)
{
    if (std::optional<CardWords> words = read())
    {
        m_read = std::move(read);
        setWords(std::move(*words));
        setCurrent(0);
        SetWindowPos(m_hWnd, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
        takeFocus();
    }
}

void ItemCard::refresh()
{
    if (isShown())
    {
        setWords(m_read().value_or(CardWords{m_words.title, text(textGone), {}}));
    }
}

bool ItemCard::isShown() const
{
    // By itself: its view may be hidden.
    return m_hWnd != nullptr && (GetWindowLongW(m_hWnd, GWL_STYLE) & WS_VISIBLE) != 0;
}

void ItemCard::hide()
{
    ShowWindow(m_hWnd, SW_HIDE);
}

bool ItemCard::key(const MSG &message)
{
    const bool back =
        message.wParam == VK_ESCAPE || message.wParam == VK_BACK || (message.wParam == VK_RETURN && current() == 0);
    if (back)
    {
        m_closed();
    }
    return back;
}

std::optional<ListRow> ItemCard::row(int index)
{
    if (index == 0)
    {
        return ListRow{m_head, headerColor};
    }
    return ListRow{m_words.values.at(static_cast<std::size_t>(index) - 1)};
}

std::u16string ItemCard::emptyMarkup()
{
    return {};
}

void ItemCard::tapped(int index, int)
{
    if (index == 0)
    {
        m_closed();
    }
}

std::u16string valueMarkup(std::u16string_view label, std::u16string_view value)
{
    std::u16string markup =
        u"<FONT SIZE=0 COLOR=#5C6875>" + host::plainMarkup(label) + u"</FONT><BR><FONT SIZE=2 COLOR=#16202B>";
    bool first = true;
    while (!value.empty())
    {
        const std::size_t end = std::min(value.find(u'\n'), value.size());
        std::u16string_view line = value.substr(0, end);
        line.remove_suffix(line.ends_with(u'\r') ? 1 : 0);
        // A line without anything would have no height.
        markup += (first ? u"" : u"<BR>") + (line.empty() ? u" " : host::plainMarkup(line));
        value.remove_prefix(std::min(end + 1, value.size()));
        first = false;
    }
    return markup + u"</FONT>";
}
} // namespace zb::screens
