// The properties of one record that was read, by their ids.
#pragma once

#include "interchange/record_values.h"
#include "platform/clock.h"
#include "platform/propdb.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::interchange
{
/// Does not own what it looks at.
class RecordView
{
  public:
    RecordView(const CEPROPVAL *values, WORD count) : m_values(values), m_count(count)
    {
    }
    const CEPROPVAL *values() const
    {
        return m_values;
    }
    WORD count() const
    {
        return m_count;
    }
    const CEPROPVAL *find(CEPROPID id) const
    {
        const CEPROPVAL *const value = valueOf(m_values, m_count, id);
        return value == nullptr || (value->wFlags & CEDB_PROPNOTFOUND) != 0 ? nullptr : value;
    }
    bool has(CEPROPID id) const
    {
        return find(id) != nullptr;
    }
    std::u16string text(CEPROPID id) const
    {
        const CEPROPVAL *const value = find(id);
        return value == nullptr || value->val.lpwstr == nullptr ? std::u16string() : value->val.lpwstr;
    }
    std::vector<BYTE> blob(CEPROPID id) const
    {
        const CEPROPVAL *const value = find(id);
        return value == nullptr ? std::vector<BYTE>()
                                : std::vector<BYTE>(value->val.blob.lpb, value->val.blob.lpb + value->val.blob.dwCount);
    }
    LONG number(CEPROPID id, LONG otherwise) const
    {
        const CEPROPVAL *const value = find(id);
        return value == nullptr ? otherwise : value->val.lVal;
    }
    SHORT shortNumber(CEPROPID id, SHORT otherwise) const
    {
        const CEPROPVAL *const value = find(id);
        return value == nullptr ? otherwise : value->val.iVal;
    }
    std::optional<LONGLONG> ticks(CEPROPID id) const
    {
        const CEPROPVAL *const value = find(id);
        return value == nullptr ? std::nullopt : std::optional(ticksOf(value->val.filetime));
    }

  private:
    const CEPROPVAL *m_values;
    WORD m_count;
};
} // namespace zb::interchange
