#include "contacts/ContactReader.h"

#include "platform/kernel.h"

namespace zb
{
ContactReader::ContactReader(DWORD size) : m_size(size)
{
}

ContactReader::~ContactReader()
{
    if (!m_taken)
    {
        LocalFree(m_buffer);
    }
}

const CeDbRecord *ContactReader::read(CeDb &database, WORD count, const CEPROPID *ids)
{
    if (m_buffer == nullptr)
    {
        m_buffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, m_size));
    }
    if (m_buffer != nullptr)
    {
        m_taken = true;
        if (database.ReadRec(m_record, m_buffer, m_size, count, ids))
        {
            return &m_record;
        }
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        {
            return nullptr;
        }
    }
    return database.ReadRec(m_large, count, ids) ? &m_large : nullptr;
}
} // namespace zb
