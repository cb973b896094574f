// Properties of records as people and programs read them.
#pragma once

#include "platform/propdb.h"
#include "zb/json.h"

#include <string>

namespace zb::cli
{
/// "FILETIME", "I4" ...; "type 77" for one that is not known.
std::string typeName(WORD type);
/// What the property is called in the device's own databases ("subject"); empty when it is not known.
std::string propertyName(CEPROPID id);
/// "0x420d0040".
std::string propertyId(CEPROPID id);

/// One line; long texts and blobs are cut and say so.
std::string valueText(const CEPROPVAL &value);
/// Whole: numbers, strings, UTC times, blobs as {"length": 3, "hex": "0aff00"}; null for a type that is not known.
Json valueJson(const CEPROPVAL &value);

/// UTC time; empty when it is beyond the year 9999.
std::string fileTimeText(const FILETIME &time);
} // namespace zb::cli
