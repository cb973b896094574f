// What the handle of a font stands for: its description, and the face that this comes to on the open device.
#pragma once

#include "platform/linux/font_face.h"
#include "platform/linux/gdi_objects.h"

#include <cstdint>
#include <memory>
#include <mutex>

namespace zb::internal
{
class FontObject final : public GdiObject
{
  public:
    explicit FontObject(const LOGFONTW &description) : GdiObject(HandleKind::Font), m_description(description)
    {
    }
    const LOGFONTW &description() const
    {
        return m_description;
    }
    /// The face, shared with all fonts of equal description; found at the first call, and again when another device is
    /// open. Any thread; never null.
    std::shared_ptr<FontFace> face() const;

  private:
    LOGFONTW m_description;
    mutable std::mutex m_mutex;
    mutable std::shared_ptr<FontFace> m_face;
    mutable std::uint64_t m_generation = 0;
};

/// What a new context has selected, and SYSTEM_FONT; made once and kept.
const std::shared_ptr<FontObject> &stockFont();
} // namespace zb::internal
