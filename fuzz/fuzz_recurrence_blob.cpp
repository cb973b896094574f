// Any bytes as the recurrence blob of an appointment: read or refused, never followed outside.
#include "calendar/CRecurrenceReader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    CRecurrenceReader reader;
    DATACALENDARDB row;
    std::vector<DWORD> deleted;
    const int result = reader.Read(data, static_cast<DWORD>(size), 1, row, deleted, false);
    const bool known = row.m_wFrequency >= 0x200A && row.m_wFrequency <= 0x200D;
    const bool bounded = row.m_lstExceptions.size() <= row.m_lstModified.size() && deleted.size() <= size / 4;
    if ((result == CRecurrenceReader::FAILURE) == known || !bounded)
    {
        std::abort();
    }
    return 0;
}
