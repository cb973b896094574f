#include "platform/linux/surface.h"

#include "platform/kernel.h"

namespace zb::internal
{
namespace
{
constexpr std::uint64_t mostBytes = 256ULL << 20U;
} // namespace

std::shared_ptr<Surface> Surface::create(int width, int height, Kind kind)
{
    if (width < 1 || height < 1 || width > longestSide || height > longestSide)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const std::uint64_t bytes = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * 4;
    const pixman_format_code_t format = kind == Kind::Soft ? PIXMAN_a8r8g8b8 : PIXMAN_x8r8g8b8;
    pixman_image_t *image = bytes > mostBytes ? nullptr : pixman_image_create_bits(format, width, height, nullptr, 0);
    if (image == nullptr)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return std::shared_ptr<Surface>(new Surface(image, width, height, kind));
}

Surface::Surface(pixman_image_t *image, int width, int height, Kind kind)
    : m_image(image), m_pixels(pixman_image_get_data(image)), m_width(width), m_height(height),
      m_stride(pixman_image_get_stride(image) / 4), m_kind(kind)
{
}

Surface::~Surface()
{
    pixman_image_unref(m_image);
}
} // namespace zb::internal
