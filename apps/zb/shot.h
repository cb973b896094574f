// What zb's pictures have in common.
#pragma once

#include "zb/cell_sheet.h"
#include "zb/commands.h"

#include "platform/device.h"

namespace zb::cli
{
/// The screen that a picture is drawn for.
ScreenOptions screenFor(const PictureArguments &picture);
/// Writes it, or says why not; the exit code.
int savePicture(const CellSheet &sheet, const std::filesystem::path &file);
} // namespace zb::cli
