// The lines of the agenda: heads of days, items, and what is said where there is nothing.
#pragma once

#include "common/agenda_rows.h"

#include <string>
#include <vector>

namespace zb::screens
{
struct AgendaLine
{
    enum class Kind
    {
        Earlier, ///< leads to the days before
        Head,
        Item,
        Words, ///< a message
        Later
    };
    Kind kind;
    int day;
    std::size_t row = 0;       ///< of the list, of an item
    bool isLastOfDay = false;
    std::u16string words = {}; ///< of a message

    bool canBeChosen() const
    {
        return kind == Kind::Item || kind == Kind::Earlier || kind == Kind::Later;
    }
};

/// Of the rows of the days from first to last, with a head for today even without any.
std::vector<AgendaLine> agendaLines(const std::vector<host::AgendaRow> &rows, int first, int last, int today);

/// The two cells of a line: markup, empty for none.
std::u16string timeCell(const AgendaLine &line, const std::vector<host::AgendaRow> &rows, int today);
std::u16string textCell(const AgendaLine &line, const std::vector<host::AgendaRow> &rows, int today);
} // namespace zb::screens
