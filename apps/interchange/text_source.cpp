#include "interchange/text_source.h"

#include "interchange/calendar_file_error.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zb::interchange
{
namespace
{
constexpr std::size_t pieceSize = 64 * 1024;

[[noreturn]] void unreadable(const std::string &reason)
{
    throw CalendarFileError(FileFault::Unreadable, 0, reason);
}

class FileBytes : public ByteSource
{
  public:
    explicit FileBytes(int descriptor) : m_descriptor(descriptor)
    {
    }
    ~FileBytes() override
    {
        ::close(m_descriptor);
    }
    FileBytes(const FileBytes &) = delete;
    FileBytes &operator=(const FileBytes &) = delete;

    std::size_t read(char *target, std::size_t size) override
    {
        for (;;)
        {
            const ssize_t done = ::read(m_descriptor, target, size);
            if (done >= 0)
            {
                return static_cast<std::size_t>(done);
            }
            if (errno != EINTR)
            {
                unreadable(std::string("can't be read: ") + std::strerror(errno));
            }
        }
    }

    void rewind() override
    {
        if (::lseek(m_descriptor, 0, SEEK_SET) != 0)
        {
            unreadable(std::string("can't be read: ") + std::strerror(errno));
        }
    }

    std::uint64_t size() const override
    {
        struct stat status = {};
        return ::fstat(m_descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
    }

  private:
    int m_descriptor;
};

class MemoryBytes : public ByteSource
{
  public:
    explicit MemoryBytes(std::string_view bytes) : m_bytes(bytes)
    {
    }

    std::size_t read(char *target, std::size_t size) override
    {
        const std::size_t done = m_bytes.copy(target, size, m_at);
        m_at += done;
        return done;
    }
    void rewind() override
    {
        m_at = 0;
    }
    std::uint64_t size() const override
    {
        return m_bytes.size();
    }

  private:
    std::string_view m_bytes;
    std::size_t m_at = 0;
};

void writeAll(int target, const char *bytes, std::size_t size)
{
    while (size > 0)
    {
        const ssize_t done = ::write(target, bytes, size);
        if (done < 0 && errno != EINTR)
        {
            unreadable(std::string("can't be kept for reading: ") + std::strerror(errno));
        }
        if (done > 0)
        {
            bytes += done;
            size -= static_cast<std::size_t>(done);
        }
    }
}

/// A pipe read to its end into a temporary file without a name.
std::unique_ptr<ByteSource> spool(std::unique_ptr<FileBytes> pipe)
{
    std::string name = (std::filesystem::temp_directory_path() / "zb-XXXXXX").string();
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
    {
        unreadable(std::string("can't be kept for reading: ") + std::strerror(errno));
    }
    ::unlink(name.c_str());
    auto kept = std::make_unique<FileBytes>(descriptor);
    std::string buffer(pieceSize, '\0');
    while (const std::size_t length = pipe->read(buffer.data(), buffer.size()))
    {
        writeAll(descriptor, buffer.data(), length);
    }
    kept->rewind();
    return kept;
}
} // namespace

std::unique_ptr<ByteSource> openFile(const std::filesystem::path &file)
{
    const int descriptor = file == "-" ? ::dup(STDIN_FILENO) : ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
    {
        unreadable(std::string("can't be opened: ") + std::strerror(errno));
    }
    auto bytes = std::make_unique<FileBytes>(descriptor);
    struct stat status = {};
    ::fstat(descriptor, &status);
    if (S_ISDIR(status.st_mode))
    {
        unreadable("is a folder");
    }
    if (!S_ISREG(status.st_mode))
    {
        return spool(std::move(bytes));
    }
    bytes->rewind();
    return bytes;
}

std::unique_ptr<ByteSource> openMemory(std::string_view bytes)
{
    return std::make_unique<MemoryBytes>(bytes);
}

TextSource::TextSource(ByteSource &bytes) : m_bytes(bytes), m_buffer(pieceSize, '\0')
{
}

void TextSource::rewind()
{
    m_bytes.rewind();
    m_position = 0;
    m_form = Form::Unknown;
    m_oddByte = -1;
    m_highHalf = 0;
}

std::size_t TextSource::fill()
{
    const std::size_t length = m_bytes.read(m_buffer.data(), m_buffer.size());
    m_position += length;
    return length;
}

std::string_view TextSource::next()
{
    std::size_t length = fill();
    std::size_t skip = 0;
    if (m_form == Form::Unknown)
    {
        // A short first read must not hide the mark.
        while (length > 0 && length < 4)
        {
            const std::size_t more = m_bytes.read(m_buffer.data() + length, m_buffer.size() - length);
            if (more == 0)
            {
                break;
            }
            length += more;
            m_position += more;
        }
        skip = detectForm(length);
    }
    if (m_form == Form::Bytes)
    {
        return length == skip && length > 0 ? next() : std::string_view(m_buffer.data() + skip, length - skip);
    }
    m_decoded.clear();
    if (length == 0)
    {
        if (m_oddByte >= 0 || m_highHalf != 0)
        {
            m_oddByte = -1;
            m_highHalf = 0;
            append(U'\uFFFD');
        }
        return m_decoded;
    }
    decode(std::string_view(m_buffer.data() + skip, length - skip));
    return m_decoded.empty() ? next() : std::string_view(m_decoded);
}

std::size_t TextSource::detectForm(std::size_t length)
{
    const std::string_view head(m_buffer.data(), length);
    m_form = Form::Bytes;
    m_marked = head.substr(0, 3) == "\xEF\xBB\xBF";
    if (m_marked)
    {
        return 3;
    }
    if (head.substr(0, 2) == "\xFF\xFE" || head.substr(0, 2) == "\xFE\xFF")
    {
        m_form = head[0] == '\xFF' ? Form::Utf16Little : Form::Utf16Big;
        return 2;
    }
    // UTF-16 without a mark: every calendar begins with a letter of ASCII, so one half of the unit is zero.
    if (length >= 4 && (head[0] == '\0') != (head[1] == '\0') && (head[0] == '\0') == (head[2] == '\0'))
    {
        m_form = head[1] == '\0' ? Form::Utf16Little : Form::Utf16Big;
    }
    return 0;
}

void TextSource::decode(std::string_view bytes)
{
    for (const char byte : bytes)
    {
        const int value = static_cast<unsigned char>(byte);
        if (m_oddByte < 0)
        {
            m_oddByte = value;
            continue;
        }
        unit(static_cast<char16_t>(m_form == Form::Utf16Little ? m_oddByte | value << 8 : m_oddByte << 8 | value));
        m_oddByte = -1;
    }
}

void TextSource::unit(char16_t value)
{
    const bool high = value >= 0xD800 && value < 0xDC00;
    const bool low = value >= 0xDC00 && value < 0xE000;
    if (low && m_highHalf != 0)
    {
        append(0x10000U + ((m_highHalf - 0xD800U) << 10U) + (value - 0xDC00U));
        m_highHalf = 0;
        return;
    }
    if (m_highHalf != 0)
    {
        append(U'\uFFFD');
        m_highHalf = 0;
    }
    if (high)
    {
        m_highHalf = value;
        return;
    }
    append(low ? U'\uFFFD' : static_cast<char32_t>(value));
}

void TextSource::append(char32_t character)
{
    const auto byte = [this](char32_t value) { m_decoded.push_back(static_cast<char>(value)); };
    if (character < 0x80)
    {
        byte(character);
    }
    else if (character < 0x800)
    {
        byte(0xC0U | character >> 6U);
        byte(0x80U | (character & 0x3FU));
    }
    else if (character < 0x10000)
    {
        byte(0xE0U | character >> 12U);
        byte(0x80U | (character >> 6U & 0x3FU));
        byte(0x80U | (character & 0x3FU));
    }
    else
    {
        byte(0xF0U | character >> 18U);
        byte(0x80U | (character >> 12U & 0x3FU));
        byte(0x80U | (character >> 6U & 0x3FU));
        byte(0x80U | (character & 0x3FU));
    }
}
} // namespace zb::interchange
