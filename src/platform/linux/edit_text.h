// The text of an edit control in numbers: characters, selection, and what can be taken back.
//
// Places are between characters, from 0 to the length. Knows no fonts and no windows; whoever keeps lines of the text
// is told by each change what it has to lay out anew.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::internal
{
/// `removed` characters at a place went, `inserted` ones came.
struct TextChange
{
    std::size_t at = 0;
    std::size_t removed = 0;
    std::size_t inserted = 0;
};

/// How a change came about: typed and erased characters join with the one before into one step to take back.
enum class EditStep
{
    Whole,
    Typed,
    ErasedBack,
    ErasedForward
};

class ZBPLATFORM_API EditText
{
  public:
    const std::u16string &text() const
    {
        return m_text;
    }
    std::size_t length() const
    {
        return m_text.size();
    }
    /// The end of the selection that stays when the other one moves.
    std::size_t anchor() const
    {
        return m_anchor;
    }
    std::size_t caret() const
    {
        return m_caret;
    }
    std::size_t first() const
    {
        return m_anchor < m_caret ? m_anchor : m_caret;
    }
    std::size_t last() const
    {
        return m_anchor < m_caret ? m_caret : m_anchor;
    }
    bool hasSelection() const
    {
        return m_anchor != m_caret;
    }
    std::u16string_view selected() const
    {
        return std::u16string_view(m_text).substr(first(), last() - first());
    }

    /// Another text altogether: the caret stands at its start and nothing can be taken back.
    void setText(std::u16string_view text);
    /// Places beyond the end are the end. What is typed from here on is a step of its own.
    void select(std::size_t anchor, std::size_t caret);
    /// Puts the text in place of what lies between, with the caret behind it.
    TextChange replace(std::size_t from, std::size_t to, std::u16string_view text, EditStep step);

    bool canUndo() const
    {
        return m_done > 0;
    }
    bool canRedo() const
    {
        return m_done < m_steps.size();
    }
    /// Takes the last step back; what a whole step had removed is selected again. Nothing when there is none.
    std::optional<TextChange> undo();
    std::optional<TextChange> redo();
    void emptyUndo();

    /// So many characters of steps are kept, the last step whatever its size.
    static constexpr std::size_t mostUndoCharacters = std::size_t{1} << 21U;

  private:
    struct Step
    {
        std::size_t at;
        std::u16string removed;
        std::u16string inserted;
        EditStep kind;
    };
    bool joinLast(std::size_t at, std::u16string_view removed, std::u16string_view inserted, EditStep kind);
    void remember(std::size_t at, std::u16string_view removed, std::u16string_view inserted, EditStep kind);
    void forgetOldest();
    void put(std::size_t at, std::size_t count, std::u16string_view text);

    std::u16string m_text;
    std::size_t m_anchor = 0;
    std::size_t m_caret = 0;
    std::vector<Step> m_steps; ///< the first m_done were done, the others taken back
    std::size_t m_done = 0;
    std::size_t m_kept = 0; ///< characters in m_steps
    bool m_joins = false;   ///< the next step may join the last
};
} // namespace zb::internal
