// Properties of a record of the device's database of categories; one record is one category.
//
// The database is shared by all kinds of items and by other programs. The device keeps the three counters of use; the
// engine reads them and never writes them in a record that exists.
#pragma once

#include "platform/pim.h"
#include "platform/propdb.h"

// | property | meaning | when it is missing |
// |---|---|---|
// | 0x4001 string | name | the record is bad, and is deleted where it is met |
// | 0x4002 short | id, the bit in the items' blobs | 0 |
// | 0x4003 long | active; 0: deleted, but items still use it | 1 |
// | 0x4006 short | uses, affiliation 1 | 0 |
// | 0x4005 short | uses, affiliation 2 | 0 |
// | 0x4004 short | uses by contacts, affiliation 4 | 0 |
// | 0x3004 Boolean | offered in the choosers | yes |
inline constexpr CEPROPID CATEGORY_NAME = zb::categoryName;
inline constexpr CEPROPID CATEGORY_ID = zb::categoryId;
inline constexpr CEPROPID CATEGORY_ACTIVE = MakePropId(0x4003, CEVT_I4);
/// The same flag as a new category gets it. Kept: it is written as a short and read as a long, so to readers a new
/// category has no flag, which means active as well.
inline constexpr CEPROPID CATEGORY_ACTIVE_NEW = MakePropId(0x4003, CEVT_I2);
inline constexpr CEPROPID CATEGORY_REFS_A = MakePropId(0x4006, CEVT_I2);
inline constexpr CEPROPID CATEGORY_REFS_B = MakePropId(0x4005, CEVT_I2);
inline constexpr CEPROPID CATEGORY_REFS_CONTACTS = MakePropId(0x4004, CEVT_I2);
inline constexpr CEPROPID CATEGORY_SHOWN = MakePropId(0x3004, CEVT_BOOL);

/// What a record is read into; one that needs more is left out of every list.
inline constexpr DWORD CATEGORY_READ_BYTES = 2048;
/// Characters of the longest name that fits there behind the seven property values.
inline constexpr std::size_t CATEGORY_NAME_LENGTH = (CATEGORY_READ_BYTES - 7 * sizeof(CEPROPVAL)) / sizeof(WCHAR) - 1;

/// Affiliations, as a mask.
inline constexpr ULONG CATEGORY_USED_A = 1;
inline constexpr ULONG CATEGORY_USED_B = 2;
inline constexpr ULONG CATEGORY_USED_BY_CONTACTS = 4;
