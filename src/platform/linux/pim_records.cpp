// RecordProperties: the values of a record and the memory that they point into.
#include "platform/pim.h"

#include <deque>

namespace zb
{
struct RecordProperties::State
{
    struct Owned
    {
        std::u16string text;
        std::vector<BYTE> bytes;
    };
    std::vector<CEPROPVAL> values;
    std::deque<Owned> owned; ///< one for each value; a deque, so that they never move

    std::size_t place(CEPROPID id)
    {
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            if (values[i].propid == id)
            {
                values[i].wFlags = 0;
                values[i].val = CEVALUNION{};
                return i;
            }
        }
        CEPROPVAL value{};
        value.propid = id;
        values.push_back(value);
        owned.emplace_back();
        return values.size() - 1;
    }
};

RecordProperties::RecordProperties() : m_state(std::make_unique<State>())
{
}

RecordProperties::~RecordProperties() = default;
RecordProperties::RecordProperties(RecordProperties &&) noexcept = default;
RecordProperties &RecordProperties::operator=(RecordProperties &&) noexcept = default;

void RecordProperties::set(CEPROPID id, SHORT value)
{
    m_state->values[m_state->place(id)].val.iVal = value;
}

void RecordProperties::set(CEPROPID id, LONG value)
{
    m_state->values[m_state->place(id)].val.lVal = value;
}

void RecordProperties::set(CEPROPID id, const FILETIME &value)
{
    m_state->values[m_state->place(id)].val.filetime = value;
}

void RecordProperties::set(CEPROPID id, const std::u16string &value)
{
    const std::size_t at = m_state->place(id);
    m_state->owned[at].text = value;
    m_state->values[at].val.lpwstr = m_state->owned[at].text.data();
}

void RecordProperties::set(CEPROPID id, std::vector<BYTE> value)
{
    const std::size_t at = m_state->place(id);
    std::vector<BYTE> &bytes = m_state->owned[at].bytes;
    bytes = std::move(value);
    m_state->values[at].val.blob = CEBLOB{static_cast<DWORD>(bytes.size()), bytes.data()};
}

void RecordProperties::set(const CEPROPVAL &value)
{
    switch (TypeFromPropID(value.propid))
    {
    case CEVT_LPWSTR:
        set(value.propid, value.val.lpwstr == nullptr ? std::u16string() : std::u16string(value.val.lpwstr));
        break;
    case CEVT_BLOB:
        set(value.propid, std::vector<BYTE>(value.val.blob.lpb, value.val.blob.lpb + value.val.blob.dwCount));
        break;
    default:
        m_state->values[m_state->place(value.propid)].val = value.val;
        break;
    }
}

void RecordProperties::remove(CEPROPID id)
{
    m_state->values[m_state->place(id)].wFlags = CEDB_PROPDELETE;
}

const CEPROPVAL *RecordProperties::values() const
{
    return m_state->values.data();
}

WORD RecordProperties::count() const
{
    return static_cast<WORD>(m_state->values.size());
}
} // namespace zb
