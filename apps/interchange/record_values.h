// Values of records, compared with what an import would write.
#pragma once

#include "platform/pim.h"
#include "platform/propdb.h"

#include <cstddef>
#include <functional>
#include <string>

namespace zb::interchange
{
/// Null when the record has no such value.
const CEPROPVAL *valueOf(const CEPROPVAL *values, WORD count, CEPROPID id);
/// Whether a record with these values says just what `properties` would write into it.
bool saysAlready(const CEPROPVAL *stored, WORD count, const RecordProperties &properties);
/// Bytes of the block in which a loader reads so many properties of the record.
std::size_t readSize(const RecordProperties &properties, WORD loaderProperties);
/// The record of that interchange id, 0 for none; by a handle that was opened in the order of these.
CEOID findIdentity(HANDLE database, const std::u16string &identity);
/// Cuts the text until `size` is no more than the limit, or nothing of it is left; whether it was cut.
bool cutToSize(std::u16string &text, std::size_t limit, const std::function<std::size_t()> &size);
/// Takes `count` characters off the end, more where that would halve a surrogate pair.
void dropFromEnd(std::u16string &text, std::size_t count);
} // namespace zb::interchange
