// All records of a database of the open device, read through the platform's own calls.
#pragma once

#include "platform/pim.h"
#include "platform/propdb.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
struct StoredRecord
{
    CEOID id = 0;
    std::map<CEPROPID, std::string> values; ///< texts as UTF-8, blobs as bytes, times as describe() gives them

    bool has(CEPROPID property) const
    {
        return values.count(property) != 0;
    }
    std::string value(CEPROPID property) const
    {
        const auto found = values.find(property);
        return found == values.end() ? "(missing)" : found->second;
    }
};

/// In the order in which the records lie.
std::vector<StoredRecord> storedRecords(const WCHAR *database = appointmentsDatabase);
/// The one record with this subject; an empty record when there is none or several.
StoredRecord recordWithSubject(const std::string &subject);
} // namespace zb::test
