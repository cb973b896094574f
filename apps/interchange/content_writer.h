// Content lines of calendars and cards: escaped, folded at 75 bytes, ended by CR LF.
#pragma once

#include "platform/types.h"

#include <string>
#include <string_view>

namespace zb::interchange
{
class ContentWriter
{
  public:
    /// A whole line as UTF-8; control characters are left out.
    void line(std::string_view text);
    /// NAME:value with the value escaped; nothing for an empty one.
    void text(std::string_view name, const std::u16string &value);
    const std::string &written() const
    {
        return m_text;
    }

  private:
    std::string m_text;
};

/// Backslash, comma and semicolon escaped; a line end of whatever kind is "\n".
std::string escapedText(const std::u16string &value);
} // namespace zb::interchange
