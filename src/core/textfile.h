// Whole text files of the device, read and written in one go.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <optional>
#include <string>

namespace zb
{
/// The file's text: UTF-16 by its mark (either byte order), UTF-8 by its mark, else the device's code page. Nothing
/// when it can't be read or is larger than 64 MiB.
ZBTOOLS_API std::optional<std::u16string> readTextFile(const std::u16string &path);

/// Writes UTF-16 with its mark, making the folder when it is missing. The file appears whole; false leaves the old one.
ZBTOOLS_API bool writeTextFile(const std::u16string &path, const std::u16string &text);

/// Makes the folder that `path` lies in, with all that lead to it.
ZBTOOLS_API void createFolderOf(const std::u16string &path);
} // namespace zb
