#include "interchange/category_book.h"

#include "core/CePtrList.h"
#include "interchange/appointment_store.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "records/CategoryEdit.h"
#include "records/FullCategories.h"

#include <algorithm>

namespace zb::interchange
{
namespace
{
/// Making a category looks at all there are; a file of nothing but new ones must not take for ever.
constexpr std::size_t mostAdded = 500;
constexpr int compareEqual = 2;
} // namespace

CategoryBook::CategoryBook()
{
    CePtrList<CFullCategory *> all(0, CEOWN_DELETE);
    GetFullCategoryInfo(all, true);
    for (int i = 0; i < all.GetCount(); ++i)
    {
        const CFullCategory *each = all.GetAt(i);
        if (each->m_nActive != 0 && each->m_pszName != nullptr)
        {
            m_ids.emplace(each->m_pszName, each->m_nId);
        }
    }
}

CategoryBook::~CategoryBook()
{
    if (m_added != 0)
    {
        ResetFullCategoryList();
    }
}

std::optional<SHORT> CategoryBook::find(const std::u16string &name)
{
    const auto found = m_ids.find(name);
    if (found != m_ids.end())
    {
        return found->second;
    }
    SHORT id = 0;
    const CategoryChange change = m_added < mostAdded ? addCategory(name.c_str(), &id) : CategoryChange::Full;
    std::optional<SHORT> result;
    if (change == CategoryChange::Done)
    {
        ++m_added;
        result = id;
    }
    else if (change == CategoryChange::Failed)
    {
        throw StoreError(GetLastError());
    }
    else if (change == CategoryChange::Exists)
    {
        // The same name to whoever reads it, in other characters.
        const auto same =
            std::find_if(m_ids.begin(), m_ids.end(),
                         [&](const auto &each)
                         {
                             return each.second && CompareStringW(LOCALE_USER_DEFAULT, 0, each.first.c_str(), -1,
                                                                  name.c_str(), -1) == compareEqual;
                         });
        result = same != m_ids.end() ? same->second : std::nullopt;
    }
    if (m_ids.size() < 2 * mostAdded + 8192)
    {
        m_ids.emplace(name, result);
    }
    return result;
}

std::vector<BYTE> categoryBits(const std::vector<SHORT> &ids)
{
    constexpr std::size_t wordBytes = 4;
    std::vector<BYTE> bits;
    for (const SHORT id : ids)
    {
        const auto bit = static_cast<std::size_t>(id);
        const std::size_t size = (bit / 32 + 1) * wordBytes;
        bits.resize(std::max(bits.size(), size));
        bits[bit / 8] = static_cast<BYTE>(bits[bit / 8] | (1U << bit % 8));
    }
    return bits;
}
} // namespace zb::interchange
