// Reads records of contacts one after the other: through one buffer, and, when a record does not fit there, through a
// block of its own. So no contact is left out for having long texts.
//
// Threads: one at a time. A reader owns all that it reads into.
#pragma once

#include "core/api.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"

namespace zb
{
class ZBTOOLS_API ContactReader
{
  public:
    /// `size` in bytes, for records as they usually are.
    explicit ContactReader(DWORD size);
    ContactReader(const ContactReader &) = delete;
    ContactReader &operator=(const ContactReader &) = delete;
    ~ContactReader();

    /// The properties of the record at the database's position, in the order of the ids; null when it can't be read.
    /// Good until the next call.
    const CeDbRecord *read(CeDb &database, WORD count, const CEPROPID *ids);

  private:
    DWORD m_size;
    BYTE *m_buffer = nullptr;
    bool m_taken = false; ///< m_record owns the buffer since it was read into
    CeDbRecord m_record;
    CeDbRecord m_large;
};
} // namespace zb
