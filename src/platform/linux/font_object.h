// What the handle of a font stands for.
#pragma once

#include "platform/linux/gdi_objects.h"

#include <memory>

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

  private:
    LOGFONTW m_description;
};

/// What a new context has selected, and SYSTEM_FONT; made once and kept.
const std::shared_ptr<FontObject> &stockFont();
} // namespace zb::internal
