// How much text a contact's record may hold.
#pragma once

#include "interchange/appointment_store.h"
#include "platform/pim.h"

#include <cstddef>
#include <vector>

namespace zb::interchange
{
/// Characters of a text of one line. The cache of contacts reads four of them and the categories into 10,240 bytes, and
/// sorts by two joined in 2,048 characters.
inline constexpr std::size_t longestContactLine = 1000;
inline constexpr std::size_t longestStreet = 2000;

/// Cuts lines, streets, and then notes until lists can read the record, and tells what was cut.
std::vector<Shortening> shortenToRecord(ContactItem &item);
} // namespace zb::interchange
