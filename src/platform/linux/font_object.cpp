#include "platform/linux/font_object.h"

#include "platform/device.h"
#include "platform/kernel.h"
#include "platform/linux/font_table.h"

namespace zb::internal
{
std::shared_ptr<FontFace> FontObject::face() const
{
    const std::uint64_t generation = deviceGeneration();
    const std::lock_guard guard(m_mutex);
    if (m_face == nullptr || m_generation != generation)
    {
        m_face = sharedFace(FontCatalog::current(), keyOf(m_description));
        m_generation = generation;
    }
    return m_face;
}

const std::shared_ptr<FontObject> &stockFont()
{
    // Never destroyed, like the rest of the stock.
    static const auto *font = []
    {
        LOGFONTW description{};
        description.lfHeight = -12;
        description.lfWeight = FW_NORMAL;
        auto made = std::make_shared<FontObject>(description);
        insertObject(made, true);
        return new std::shared_ptr<FontObject>(std::move(made));
    }();
    return *font;
}
} // namespace zb::internal

using namespace zb::internal;

HFONT CreateFontIndirectW(const LOGFONTW *description)
{
    if (description == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    LOGFONTW own = *description;
    own.lfFaceName[LF_FACESIZE - 1] = 0;
    return insertObject(std::make_shared<FontObject>(own));
}
