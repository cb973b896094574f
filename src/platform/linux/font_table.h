// The faces in use, by what they look like: fonts of equal description share one.
#pragma once

#include "platform/linux/font_face.h"

#include <memory>

namespace zb::internal
{
/// The face of the catalog for the key, made now if there is none. Some that nobody holds any more are kept, since
/// hosts make and delete equal fonts all the time. Threads: any. Never null.
std::shared_ptr<FontFace> sharedFace(const std::shared_ptr<FontCatalog> &catalog, const FontKey &key);

/// How many faces there are, for those who watch memory.
std::size_t sharedFaceCount();

/// As many are kept at most beside those that fonts hold.
inline constexpr std::size_t mostKeptFaces = 32;
} // namespace zb::internal
