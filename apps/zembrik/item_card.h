// One item with all that it holds, over the list that it was opened from.
//
// The first row leads back; so do Escape, Backspace and Enter. Threads: the main thread.
#pragma once

#include "zembrik/list_pane.h"

#include <functional>
#include <optional>
#include <vector>

namespace zb::screens
{
/// What a card says: a title, a smaller line below it (which may be empty), and rows of markup.
struct CardWords
{
    std::u16string title;
    std::u16string below;
    std::vector<std::u16string> values;

    /// A value under the text of that number, as plain text; none for an empty one.
    void add(UINT label, const std::u16string &value);
    /// Where it holds, the text of that number in the line below the title, behind what stands there.
    void mark(bool holds, UINT words);
};

class ItemCard final : public ListPane
{
  public:
    /// Makes the window, hidden; `closed` is called when the user leaves the card.
    bool createIn(HWND parent, const RECT &area, std::function<void()> closed);
    /// What the item says now; nothing when it is gone.
    using Read = std::function<std::optional<CardWords>()>;
    /// Shows an item that is there.
    void show(Read read);
    /// Reads the item that shows anew, as it may have changed; one that is gone keeps its title and says so.
    void refresh();
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
    void setWords(CardWords words);

    Read m_read;
    CardWords m_words;
    std::u16string m_head;
    std::function<void()> m_closed;
};

/// A value of an item as a row of its card: what it is, small, above it. Both plain text; lines of the value stay
/// lines.
std::u16string valueMarkup(std::u16string_view label, std::u16string_view value);
} // namespace zb::screens
