// Why a calendar file could not be taken at all.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace zb::interchange
{
enum class FileFault
{
    Unreadable,  ///< no such file, a folder, no permission, an error while reading
    NotCalendar, ///< readable, but no iCalendar
    Torn         ///< begins as a calendar and ends inside it
};

/// what() is one sentence part without the file's name ("ends inside the event that begins at line 12"); line() is
/// where it was found, 0 when no line is to blame.
class CalendarFileError : public std::runtime_error
{
  public:
    CalendarFileError(FileFault fault, std::size_t line, const std::string &message)
        : std::runtime_error(message), m_fault(fault), m_line(line)
    {
    }
    FileFault fault() const
    {
        return m_fault;
    }
    std::size_t line() const
    {
        return m_line;
    }

  private:
    FileFault m_fault;
    std::size_t m_line;
};
} // namespace zb::interchange
