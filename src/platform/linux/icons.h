// Pictures with opacity that are not selected anywhere: icons, and the pictures of image lists.
#pragma once

#include "platform/linux/gdi_objects.h"
#include "platform/linux/stretching.h"

#include <memory>

namespace zb::internal
{
/// A soft copy of a part of a bitmap's surface, `width` by `height` from (left, top). Where the mask (may be null) is
/// white there, and where the bitmap has the key colour (0x00RRGGBB), it lets through. Null with last error 8.
std::shared_ptr<Surface> softCopy(const Surface &bitmap, const Box &part, const Surface *mask,
                                  std::optional<std::uint32_t> key);

class IconObject final : public HandleObject
{
  public:
    explicit IconObject(std::shared_ptr<Surface> picture)
        : HandleObject(HandleKind::Icon), m_picture(std::move(picture))
    {
    }
    /// Soft.
    const Surface &picture() const
    {
        return *m_picture;
    }

  private:
    std::shared_ptr<Surface> m_picture;
};

/// Null with last error 6.
std::shared_ptr<IconObject> iconOf(HICON icon);
} // namespace zb::internal
