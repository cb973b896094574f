// One item with all that it holds, over the list that it was opened from.
//
// The first row leads back; so do Escape, Backspace and Enter. Threads: the main thread.
#pragma once

#include "zembrik/list_pane.h"

#include <functional>
#include <vector>

namespace zb::screens
{
class ItemCard final : public ListPane
{
  public:
    /// Makes the window, hidden; `closed` is called when the user leaves the card.
    bool createIn(HWND parent, const RECT &area, std::function<void()> closed);
    /// Shows the card: a title, a smaller line below it (which may be empty), and a row for each of its values.
    void show(const std::u16string &title, const std::u16string &below, std::vector<std::u16string> values);
    bool isShown() const;
    /// Takes the card away; the caller gives the focus elsewhere.
    void hide();
    /// A key on its way to the card; true takes it away.
    bool key(const MSG &message);

  protected:
    std::optional<ListRow> row(int index) override;
    std::u16string emptyMarkup() override;
    void tapped(int index, int x) override;

  private:
    std::u16string m_head;
    std::vector<std::u16string> m_values;
    std::function<void()> m_closed;
};

/// A value of an item as a row of its card: what it is, small, above it. Both plain text; lines of the value stay
/// lines.
std::u16string valueMarkup(std::u16string_view label, std::u16string_view value);
} // namespace zb::screens
