// Time zones as the definitions that calendar files carry.
#pragma once

#include "platform/types.h"

#include <string>
#include <vector>

namespace zb::interchange
{
/// VTIMEZONE of a zone of the system's tzdata; empty for a name that is none.
std::string systemZoneText(const std::string &name);
/// VTIMEZONE by the rules of a record, under a name of one's own.
std::string ruleZoneText(const std::string &id, const TIME_ZONE_INFORMATION &rules);
/// The rules in the 48 bytes of a record's zone; `zone` stays for another size.
bool decodeZone(const std::vector<BYTE> &bytes, TIME_ZONE_INFORMATION &zone);
} // namespace zb::interchange
