// Bytes of a file that may be damaged, read from front to back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zb::internal
{
/// Reads forward inside its bytes; once it was asked for more than there is, it gives zeros and isGood() is false.
class ByteReader
{
  public:
    ByteReader(const unsigned char *data, std::size_t size) : m_data(data), m_size(size)
    {
    }
    bool isGood() const
    {
        return m_good;
    }
    std::size_t left() const
    {
        return m_size - m_at;
    }
    std::size_t at() const
    {
        return m_at;
    }
    void skip(std::size_t count)
    {
        m_good = m_good && count <= left();
        m_at = m_good ? m_at + count : m_size;
    }
    std::uint32_t byte()
    {
        if (left() == 0)
        {
            m_good = false;
            return 0;
        }
        return m_data[m_at++];
    }
    std::uint32_t little(int bytes)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
        {
            value |= byte() << static_cast<unsigned>(8 * i);
        }
        return value;
    }
    std::uint32_t big(int bytes)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
        {
            value = value << 8U | byte();
        }
        return value;
    }
    /// What comes next; null when so much is not left.
    const unsigned char *peek(std::size_t count) const
    {
        return m_good && count <= left() ? m_data + m_at : nullptr;
    }
    /// Moves to behind the next byte of this value; not good when there is none.
    void skipBehind(unsigned char value)
    {
        const void *found = left() == 0 ? nullptr : std::memchr(m_data + m_at, value, left());
        if (found == nullptr)
        {
            m_good = false;
            m_at = m_size;
            return;
        }
        m_at = static_cast<std::size_t>(static_cast<const unsigned char *>(found) - m_data) + 1;
    }

  private:
    const unsigned char *m_data;
    std::size_t m_size;
    std::size_t m_at = 0;
    bool m_good = true;
};
} // namespace zb::internal
