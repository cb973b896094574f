// The categories and colours that the items of an import name.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/category_book.h"
#include "interchange/import_report.h"
#include "interchange/named_line.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zb::interchange
{
/// Adds the names of a CATEGORIES line that are not among them yet.
void readCategories(const PropertyLine &line, std::vector<NamedLine> &names);

/// One thread at a time; wants a device open. Works inside the transaction of its file, but for the colours, which are
/// settings. Everything may throw StoreError.
class ItemCategories
{
  public:
    explicit ItemCategories(ImportReport &report);

    /// The bit set of the names, empty for none; categories that the device lacks are made. What can't be a category is
    /// told once a line.
    std::vector<BYTE> bitsOf(const std::vector<NamedLine> &names);
    /// The same for an event, whose COLOR is noted for its first category.
    std::vector<BYTE> bitsOf(const CalendarComponent &event);
    /// Once the transaction is through: gives categories that have no colour the first one that was noted for them.
    void saveColors();

  private:
    void noteColor(const CalendarComponent &event, const std::vector<NamedLine> &names);

    ImportReport &m_report;
    std::optional<CategoryBook> m_book; // read for the first item that has categories
    std::map<std::u16string, COLORREF> m_colors;
    std::size_t m_lastEvent = 0; // line of the event that was asked for last, and what it has
    std::vector<BYTE> m_lastBits;
};
} // namespace zb::interchange
