// Texts of calendar files as records keep them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zb::interchange
{
/// A TEXT value without its escapes. A backslash in front of anything else stands for itself, as careless writers of
/// paths mean it.
std::u16string unescaped(std::string_view raw);
/// Without the blanks and tabs around it.
std::string_view trimmed(std::string_view text);
/// A value in a message: so many bytes at most, without control characters.
std::string shown(std::string_view raw, std::size_t longest = 40);
/// Without blanks and line ends around it.
std::u16string trimmed(std::u16string text);
/// Rows and dialogs show subject and place on one line.
std::u16string oneLine(const std::u16string &text);
/// Text of several lines, each ended as the device's edit controls end them.
std::u16string manyLines(const std::u16string &text);
/// The parts of a list at its commas, escapes left as they are. They point into the text.
std::vector<std::string_view> listParts(std::string_view raw);
/// The identity that a UID gives, at most 255 characters; empty for an empty one.
std::u16string identityOf(std::string_view rawUid);
} // namespace zb::interchange
