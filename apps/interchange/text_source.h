// A file's text in pieces of bounded size, always as UTF-8-like bytes: byte order marks are taken off and UTF-16 of
// either order is turned into UTF-8. Other bytes pass as they are; whoever reads lines judges them.
//
// A source can be read again from its beginning; what can't be (a pipe) is first copied to a temporary file. One thread
// at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace zb::interchange
{
/// Bytes that can be read from the beginning any number of times.
class ByteSource
{
  public:
    virtual ~ByteSource() = default;
    /// Fills up to `size` bytes and returns how many; 0 at the end. Throws CalendarFileError when reading fails.
    virtual std::size_t read(char *target, std::size_t size) = 0;
    virtual void rewind() = 0;
    /// All bytes from beginning to end.
    virtual std::uint64_t size() const = 0;
};

/// The file, or standard input for "-". Throws CalendarFileError (Unreadable) with the system's reason.
std::unique_ptr<ByteSource> openFile(const std::filesystem::path &file);
/// Bytes that outlive the source.
std::unique_ptr<ByteSource> openMemory(std::string_view bytes);

class TextSource
{
  public:
    explicit TextSource(ByteSource &bytes);

    /// The next piece, never empty before the end; it lives until the next call.
    std::string_view next();
    void rewind();
    /// True when the file itself tells its encoding, by a mark or by being UTF-16; known once the first piece is there.
    bool tellsEncoding() const
    {
        return m_marked || m_form == Form::Utf16Little || m_form == Form::Utf16Big;
    }
    /// Bytes of the file taken so far, and all of them: for progress.
    std::uint64_t position() const
    {
        return m_position;
    }
    std::uint64_t size() const
    {
        return m_bytes.size();
    }

  private:
    enum class Form
    {
        Unknown,
        Bytes,
        Utf16Little,
        Utf16Big
    };

    std::size_t fill();
    std::size_t detectForm(std::size_t length);
    void decode(std::string_view bytes);
    void append(char32_t character);
    void unit(char16_t value);

    ByteSource &m_bytes;
    std::string m_buffer;
    std::string m_decoded;
    std::uint64_t m_position = 0;
    Form m_form = Form::Unknown;
    bool m_marked = false;   ///< begins with the mark of UTF-8
    int m_oddByte = -1;      ///< first half of a unit that the next piece ends
    char16_t m_highHalf = 0; ///< high surrogate that waits for its low one
};
} // namespace zb::interchange
