// The categories of the open device by name; those that an import names and the device lacks are made.
#pragma once

#include "platform/types.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zb::interchange
{
/// One thread at a time; wants a device open.
class CategoryBook
{
  public:
    CategoryBook();
    /// Forgets what the device knows of categories by heart when some were made.
    ~CategoryBook();
    CategoryBook(const CategoryBook &) = delete;
    CategoryBook &operator=(const CategoryBook &) = delete;

    /// Nothing for a name that no category can have, and once the device or this import has too many. Throws
    /// StoreError.
    std::optional<SHORT> find(const std::u16string &name);
    std::size_t added() const
    {
        return m_added;
    }

  private:
    std::map<std::u16string, std::optional<SHORT>> m_ids;
    std::size_t m_added = 0;
};

/// The bit set that a record holds; empty for no category.
std::vector<BYTE> categoryBits(const std::vector<SHORT> &ids);
} // namespace zb::interchange
