// Content lines of outbox files.
#pragma once

#include "platform/text.h"
#include "platform/types.h"

#include <string>

namespace zb::internal
{
class OutboxLines
{
  public:
    /// UTF-8, folded here.
    void add(const std::string &line);
    /// NAME:value, escaped; nothing for an empty value.
    void addText(const std::string &name, const std::u16string &value);
    /// CATEGORIES of names with ", " between; nothing for none.
    void addCategories(const std::u16string &names);
    const std::string &text() const
    {
        return m_text;
    }

  private:
    std::string m_text;
};

/// Backslash, comma, semicolon and line ends escaped.
std::string escapedText(const std::u16string &value);
/// 20260304T100000 of ticks, as they are.
std::string momentText(LONGLONG ticks);
/// 20260304.
std::string dayText(LONGLONG ticks);
/// Now, UTC, with Z.
std::string nowText();
} // namespace zb::internal
