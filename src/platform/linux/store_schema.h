// The tables of the store, its versions, and how each connection is set up. docs/formats/store.md tells it to others.
#pragma once

#include "platform/linux/store_connection.h"

namespace zb::internal
{
/// "ZBST", in the header of every store.
inline constexpr std::int64_t storeApplicationId = 0x5A425354;
inline constexpr std::int64_t storeSchemaVersion = 1;
inline constexpr std::int64_t storePageSize = 8192;

/// Journal, syncs, waiting times and mapping; to be called once for each connection.
void configureConnection(Connection &connection);
/// Puts tables and marks into a new, empty file.
void makeSchema(Connection &connection);
/// Brings an older store up to storeSchemaVersion in one transaction.
void migrateSchema(Connection &connection, std::int64_t from);
/// False when a table is missing or the counters can't be right.
bool hasSchema(Connection &connection);
} // namespace zb::internal
