#include "platform/dialog_template.h"

#include <algorithm>

namespace zb
{
namespace
{
/// Reads from the front; once something did not fit, all further reads give nothing.
class Reader
{
  public:
    Reader(const BYTE *bytes, std::size_t size) : m_bytes(bytes), m_size(size)
    {
    }
    bool failed() const
    {
        return m_failed;
    }
    WORD word()
    {
        if (!has(2))
        {
            return 0;
        }
        const WORD value = static_cast<WORD>(m_bytes[m_at] | m_bytes[m_at + 1] << 8U);
        m_at += 2;
        return value;
    }
    DWORD doubleWord()
    {
        const DWORD low = word();
        return low | static_cast<DWORD>(word()) << 16U;
    }
    DialogPlace place()
    {
        DialogPlace place{};
        for (SHORT *side : {&place.x, &place.y, &place.width, &place.height})
        {
            *side = static_cast<SHORT>(word());
        }
        return place;
    }
    std::u16string text()
    {
        std::u16string text;
        for (WORD character = word(); character != 0; character = word())
        {
            text += static_cast<WCHAR>(character);
        }
        return text;
    }
    DialogName name()
    {
        const std::size_t start = m_at;
        switch (word())
        {
        case 0:
            return {};
        case 0xFFFF:
            return word();
        default:
            m_at = start;
            return text();
        }
    }
    std::vector<BYTE> extra()
    {
        const WORD length = word();
        // A length of 1 would end inside its own word; the next item is aligned to 4 all the same.
        const std::size_t rest = length > 2 ? length - 2U : 0;
        if (!has(rest))
        {
            return {};
        }
        const BYTE *first = m_bytes + m_at;
        m_at += rest;
        return {first, first + rest};
    }
    void align()
    {
        m_at = (m_at + 3) & ~static_cast<std::size_t>(3);
    }

  private:
    bool has(std::size_t count)
    {
        m_failed = m_failed || m_at > m_size || m_size - m_at < count;
        return !m_failed;
    }

    const BYTE *m_bytes;
    std::size_t m_size;
    std::size_t m_at = 0;
    bool m_failed = false;
};

DialogItem readItem(Reader &reader)
{
    reader.align();
    DialogItem item;
    item.style = reader.doubleWord();
    item.extendedStyle = reader.doubleWord();
    item.place = reader.place();
    item.id = reader.word();
    item.className = reader.name();
    item.title = reader.name();
    item.extra = reader.extra();
    return item;
}
} // namespace

std::optional<DialogTemplate> readDialogTemplate(const BYTE *bytes, std::size_t size)
{
    Reader reader(bytes, size);
    DialogTemplate result;
    result.style = reader.doubleWord();
    result.extendedStyle = reader.doubleWord();
    const WORD count = reader.word();
    result.place = reader.place();
    result.menu = reader.name();
    result.className = reader.name();
    result.title = reader.name();
    if ((result.style & DIALOG_SETFONT) != 0)
    {
        result.fontPoints = reader.word();
        result.fontFace = reader.text();
    }
    for (WORD i = 0; i < count && !reader.failed(); ++i)
    {
        result.items.push_back(readItem(reader));
    }
    return reader.failed() ? std::nullopt : std::optional(std::move(result));
}
} // namespace zb
