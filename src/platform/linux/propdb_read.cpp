// CeSeekDatabase and CeReadRecordProps.
#include "platform/kernel.h"
#include "platform/linux/propdb_block.h"
#include "platform/linux/propdb_handle.h"
#include "platform/linux/store_fault.h"

#include <cstdlib>

namespace zb::internal
{
namespace
{
CEOID seek(DatabaseHandle &handle, DWORD type, DWORD_PTR value)
{
    // Counts come widened from 32 bits, with or without their sign.
    const auto records = static_cast<std::int64_t>(static_cast<std::int32_t>(value));
    const auto *property = reinterpret_cast<const CEPROPVAL *>(value);
    if (type >= CEDB_SEEK_VALUESMALLER && property == nullptr)
    {
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
    switch (type)
    {
    case CEDB_SEEK_CEOID:
        return handle.seekId(static_cast<CEOID>(value));
    case CEDB_SEEK_BEGINNING:
        return handle.seekBeginning(static_cast<std::uint32_t>(value));
    case CEDB_SEEK_END:
        return handle.seekEnd(static_cast<std::uint64_t>(std::llabs(records)));
    case CEDB_SEEK_CURRENT:
        return handle.seekCurrent(records);
    case CEDB_SEEK_VALUESMALLER:
        return handle.seekSmaller(*property);
    case CEDB_SEEK_VALUEFIRSTEQUAL:
        return handle.seekEqual(*property);
    case CEDB_SEEK_VALUEGREATER:
        return handle.seekGreater(*property);
    case CEDB_SEEK_VALUENEXTEQUAL:
        return handle.seekNextEqual(*property);
    default:
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
}

/// A caller's read: what it asked for and where it wants it.
class Reader
{
  public:
    Reader(DatabaseHandle &handle, WORD *count, const CEPROPID *ids, BYTE **buffer, DWORD *size)
        : m_handle(handle), m_all(ids == nullptr), m_ids(ids, ids == nullptr ? 0 : *count), m_count(count),
          m_buffer(buffer), m_size(size)
    {
    }

    CEOID read(bool grow)
    {
        BytesView data;
        CEOID oid = m_handle.currentRecord(data);
        if (oid == 0)
        {
            throw StoreFault(ERROR_SEEK);
        }
        if (take(RecordView(data), false, grow) == PropertyBlock::Outcome::NeedsRest)
        {
            BytesView rest;
            oid = m_handle.wholeRecord(data, rest);
            if (oid == 0)
            {
                throw StoreFault(ERROR_SEEK);
            }
            take(RecordView(data, rest), true, grow);
        }
        return oid;
    }

  private:
    PropertyBlock::Outcome take(const RecordView &record, bool hasRest, bool grow)
    {
        PropertyBlock block(record, m_ids, m_all, hasRest, m_handle.places());
        const std::size_t capacity = *m_buffer == nullptr ? 0 : (grow ? LocalSize(*m_buffer) : *m_size);
        PropertyBlock::Outcome outcome = PropertyBlock::Outcome::TooSmall;
        if (*m_buffer != nullptr)
        {
            outcome = block.fill(*m_buffer, capacity);
        }
        if (outcome == PropertyBlock::Outcome::TooSmall)
        {
            const std::size_t needed = block.neededSize();
            if (!grow)
            {
                *m_size = static_cast<DWORD>(needed);
                throw StoreFault(ERROR_INSUFFICIENT_BUFFER);
            }
            growBuffer(needed);
            outcome = block.fill(*m_buffer, needed);
        }
        if (outcome == PropertyBlock::Outcome::Done)
        {
            *m_count = static_cast<WORD>(block.count());
            *m_size = grow ? static_cast<DWORD>(LocalSize(*m_buffer)) : *m_size;
        }
        return outcome;
    }

    void growBuffer(std::size_t needed)
    {
        const std::size_t bytes = std::max<std::size_t>(needed, 1);
        void *block = *m_buffer == nullptr ? LocalAlloc(LMEM_FIXED, bytes) : LocalReAlloc(*m_buffer, bytes, LMEM_FIXED);
        if (block == nullptr)
        {
            throw StoreFault(ERROR_NOT_ENOUGH_MEMORY);
        }
        *m_buffer = static_cast<BYTE *>(block);
    }

    DatabaseHandle &m_handle;
    bool m_all;
    std::span<const CEPROPID> m_ids;
    WORD *m_count;
    BYTE **m_buffer;
    DWORD *m_size;
};
} // namespace
} // namespace zb::internal

using namespace zb::internal;

CEOID CeSeekDatabase(HANDLE database, DWORD type, DWORD_PTR value, DWORD *index)
{
    zb::stoppingPoint();
    const std::shared_ptr<DatabaseHandle> handle = databaseOf(database);
    if (handle == nullptr)
    {
        return 0;
    }
    return storeCall<CEOID>(0,
                            [&]() -> CEOID
                            {
                                const CEOID found = seek(*handle, type, value);
                                if (found == 0)
                                {
                                    SetLastError(ERROR_SEEK);
                                }
                                else if (index != nullptr)
                                {
                                    *index = handle->index();
                                }
                                return found;
                            });
}

CEOID CeReadRecordProps(HANDLE database, DWORD flags, WORD *count, const CEPROPID *ids, BYTE **buffer, DWORD *size)
{
    zb::stoppingPoint();
    const std::shared_ptr<DatabaseHandle> handle = databaseOf(database);
    if (handle == nullptr)
    {
        return 0;
    }
    if (count == nullptr || buffer == nullptr || size == nullptr || (flags & ~CEDB_ALLOWREALLOC) != 0 ||
        (*count == 0 && ids != nullptr))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return storeCall<CEOID>(0,
                            [&]
                            {
                                Reader reader(*handle, count, ids, buffer, size);
                                const CEOID oid = reader.read((flags & CEDB_ALLOWREALLOC) != 0);
                                if (handle->movesOn())
                                {
                                    handle->seekCurrent(1);
                                }
                                return oid;
                            });
}
