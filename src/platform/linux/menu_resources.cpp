// Menus from resources.
#include "platform/kernel.h"
#include "platform/menu.h"
#include "platform/menu_template.h"
#include "platform/resources.h"

namespace
{
using zb::MenuTemplateEntry;
using Entries = std::vector<MenuTemplateEntry>;

constexpr int deepestTemplate = 16;
constexpr WORD popupFlag = MF_POPUP;

class Reader
{
  public:
    Reader(const void *data, std::size_t size)
        : m_bytes(static_cast<const BYTE *>(data)), m_size(data == nullptr ? 0 : size)
    {
    }
    bool menu(Entries &entries, int level)
    {
        WORD count = 0;
        if (level > deepestTemplate || !word(count))
        {
            return false;
        }
        for (WORD i = 0; i < count; ++i)
        {
            if (!entry(entries.emplace_back(), level))
            {
                return false;
            }
        }
        return true;
    }
    bool isAtEnd() const
    {
        return m_at == m_size;
    }

  private:
    bool word(WORD &value)
    {
        if (m_size - m_at < 2)
        {
            return false;
        }
        value = static_cast<WORD>(m_bytes[m_at] | m_bytes[m_at + 1] << 8U);
        m_at += 2;
        return true;
    }
    bool entry(MenuTemplateEntry &entry, int level)
    {
        WORD length = 0;
        if (!word(entry.flags) || !word(entry.id) || !word(entry.textNumber) || !word(length) ||
            (m_size - m_at) / 2 < length)
        {
            return false;
        }
        for (WORD i = 0; i < length; ++i)
        {
            WORD character = 0;
            word(character);
            entry.text.push_back(static_cast<WCHAR>(character));
        }
        return (entry.flags & popupFlag) == 0 || menu(entry.popup, level + 1);
    }

    const BYTE *m_bytes;
    std::size_t m_size;
    std::size_t m_at = 0;
};

std::u16string textOf(HINSTANCE instance, const MenuTemplateEntry &entry)
{
    const WCHAR *words = nullptr;
    const int length =
        entry.textNumber == 0 ? 0 : LoadStringW(instance, entry.textNumber, reinterpret_cast<WCHAR *>(&words), 0);
    return length > 0 ? std::u16string(words, static_cast<std::size_t>(length)) : entry.text;
}

HMENU build(HINSTANCE instance, const Entries &entries)
{
    const HMENU menu = CreatePopupMenu();
    for (const MenuTemplateEntry &entry : entries)
    {
        const UINT_PTR id =
            (entry.flags & popupFlag) != 0 ? reinterpret_cast<UINT_PTR>(build(instance, entry.popup)) : entry.id;
        AppendMenuW(menu, entry.flags, id, textOf(instance, entry).c_str());
    }
    return menu;
}
} // namespace

std::optional<Entries> zb::readMenuTemplate(const void *data, std::size_t size)
{
    Reader reader(data, size);
    Entries entries;
    if (!reader.menu(entries, 1) || !reader.isAtEnd())
    {
        return std::nullopt;
    }
    return entries;
}

HMENU LoadMenuW(HINSTANCE instance, const WCHAR *name)
{
    const HRSRC resource = FindResourceW(instance, name, RT_MENU);
    if (resource == nullptr)
    {
        return nullptr;
    }
    const auto entries =
        zb::readMenuTemplate(LockResource(LoadResource(instance, resource)), SizeofResource(instance, resource));
    if (!entries.has_value())
    {
        constexpr DWORD errorDamaged = 11;
        SetLastError(errorDamaged);
        return nullptr;
    }
    return build(instance, *entries);
}
