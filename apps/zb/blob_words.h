// What the blobs of items mean, in words: patterns of series, zones of records, notes.
#pragma once

#include "platform/propdb.h"

#include <string>
#include <vector>

namespace zb::cli
{
/// Lines for property 0x4015: the rule, its first and last date, the times, then each date without an occurrence and
/// each changed occurrence. One line that says so for what is no pattern.
std::vector<std::string> recurrenceWords(const CEBLOB &blob);
/// Lines for property 0x0001: the offset from UTC and when it changes.
std::vector<std::string> zoneWords(const CEBLOB &blob);
/// The lines of a text for property 0x0017; none for drawings and other kinds of notes.
std::vector<std::string> notesWords(const CEBLOB &blob);
/// Lines for whatever a property holds; none for those that speak for themselves.
std::vector<std::string> blobWords(const CEPROPVAL &value);
} // namespace zb::cli
