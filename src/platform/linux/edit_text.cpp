#include "platform/linux/edit_text.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
bool isBlank(WCHAR character)
{
    return character == u' ' || character == u'\t' || character == u'\r' || character == u'\n';
}

/// A word that is begun is a new step, so that taking back goes word by word.
bool beginsWord(std::u16string_view before, std::u16string_view typed)
{
    return !before.empty() && !typed.empty() && isBlank(before.back()) && !isBlank(typed.front());
}
} // namespace

void EditText::setText(std::u16string_view text)
{
    m_text = text;
    m_anchor = 0;
    m_caret = 0;
    emptyUndo();
}

void EditText::select(std::size_t anchor, std::size_t caret)
{
    m_anchor = std::min(anchor, m_text.size());
    m_caret = std::min(caret, m_text.size());
    m_joins = false;
}

void EditText::put(std::size_t at, std::size_t count, std::u16string_view text)
{
    m_text.replace(at, count, text);
}

TextChange EditText::replace(std::size_t from, std::size_t to, std::u16string_view text, EditStep step)
{
    to = std::min(to, m_text.size());
    from = std::min(from, to);
    if (from == to && text.empty())
    {
        m_anchor = m_caret = from;
        return {from, 0, 0};
    }
    const std::u16string_view removed = std::u16string_view(m_text).substr(from, to - from);
    if (!joinLast(from, removed, text, step))
    {
        remember(from, removed, text, step);
    }
    m_joins = step != EditStep::Whole;
    const TextChange change{from, to - from, text.size()};
    put(from, to - from, text);
    m_anchor = m_caret = from + text.size();
    return change;
}

bool EditText::joinLast(std::size_t at, std::u16string_view removed, std::u16string_view inserted, EditStep kind)
{
    if (!m_joins || m_done == 0 || m_done != m_steps.size() || m_steps.back().kind != kind)
    {
        return false;
    }
    Step &last = m_steps.back();
    switch (kind)
    {
    case EditStep::Typed:
        if (!removed.empty() || at != last.at + last.inserted.size() || beginsWord(last.inserted, inserted))
        {
            return false;
        }
        last.inserted += inserted;
        break;
    case EditStep::ErasedBack:
        if (at + removed.size() != last.at || !inserted.empty())
        {
            return false;
        }
        last.removed.insert(0, removed);
        last.at = at;
        break;
    case EditStep::ErasedForward:
        if (at != last.at || !inserted.empty())
        {
            return false;
        }
        last.removed += removed;
        break;
    case EditStep::Whole:
        return false;
    }
    m_kept += removed.size() + inserted.size();
    forgetOldest();
    return true;
}

void EditText::remember(std::size_t at, std::u16string_view removed, std::u16string_view inserted, EditStep kind)
{
    while (m_steps.size() > m_done)
    {
        m_kept -= m_steps.back().removed.size() + m_steps.back().inserted.size();
        m_steps.pop_back();
    }
    m_steps.push_back({at, std::u16string(removed), std::u16string(inserted), kind});
    m_done = m_steps.size();
    m_kept += removed.size() + inserted.size();
    forgetOldest();
}

void EditText::forgetOldest()
{
    auto first = m_steps.begin();
    for (; m_kept > mostUndoCharacters && m_steps.end() - first > 1; ++first)
    {
        m_kept -= first->removed.size() + first->inserted.size();
    }
    m_done -= static_cast<std::size_t>(first - m_steps.begin());
    m_steps.erase(m_steps.begin(), first);
}

std::optional<TextChange> EditText::undo()
{
    if (m_done == 0)
    {
        return std::nullopt;
    }
    const Step &step = m_steps[--m_done];
    put(step.at, step.inserted.size(), step.removed);
    const std::size_t end = step.at + step.removed.size();
    m_caret = step.kind == EditStep::ErasedForward ? step.at : end;
    m_anchor = step.kind == EditStep::Whole || step.kind == EditStep::Typed ? step.at : m_caret;
    m_joins = false;
    return TextChange{step.at, step.inserted.size(), step.removed.size()};
}

std::optional<TextChange> EditText::redo()
{
    if (!canRedo())
    {
        return std::nullopt;
    }
    const Step &step = m_steps[m_done++];
    put(step.at, step.removed.size(), step.inserted);
    m_anchor = m_caret = step.at + step.inserted.size();
    m_joins = false;
    return TextChange{step.at, step.removed.size(), step.inserted.size()};
}

void EditText::emptyUndo()
{
    m_steps.clear();
    m_done = 0;
    m_kept = 0;
    m_joins = false;
}
} // namespace zb::internal
