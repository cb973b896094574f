// Image lists: soft pictures of one size each.
#include "platform/image_list.h"

#include "platform/kernel.h"
#include "platform/linux/drag_image.h"
#include "platform/linux/icons.h"
#include "platform/linux/pictures.h"
#include "platform/resources.h"

#include <vector>

using namespace zb::internal;

namespace
{
class ImageList final : public HandleObject
{
  public:
    ImageList(int width, int height, UINT flags)
        : HandleObject(HandleKind::ImageList), m_width(width), m_height(height), m_masked((flags & ILC_MASK) != 0)
    {
    }
    int width() const
    {
        return m_width;
    }
    int height() const
    {
        return m_height;
    }
    /// Whether masks and key colours count.
    bool isMasked() const
    {
        return m_masked;
    }
    std::vector<std::shared_ptr<const Surface>> pictures;

  private:
    int m_width;
    int m_height;
    bool m_masked;
};

std::shared_ptr<ImageList> listOf(HIMAGELIST list)
{
    return findAs<ImageList>(list, HandleKind::ImageList);
}

int refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return -1;
}

bool isIndex(const ImageList &list, int index)
{
    return index >= 0 && static_cast<std::size_t>(index) < list.pictures.size();
}

/// Adds all pictures of a strip or none.
int addStrip(ImageList &list, const Surface &strip, const Surface *mask, std::optional<std::uint32_t> key)
{
    const int count = strip.width() / list.width();
    const bool maskFits = mask == nullptr || (mask->width() >= strip.width() && mask->height() >= list.height());
    if (count == 0 || strip.height() < list.height() || !maskFits)
    {
        return refuse();
    }
    std::vector<std::shared_ptr<const Surface>> made;
    for (int i = 0; i < count; ++i)
    {
        const int left = i * list.width();
        auto picture = softCopy(strip, {left, 0, left + list.width(), list.height()}, list.isMasked() ? mask : nullptr,
                                list.isMasked() ? key : std::nullopt);
        if (picture == nullptr)
        {
            return -1;
        }
        made.push_back(std::move(picture));
    }
    const int first = static_cast<int>(list.pictures.size());
    list.pictures.insert(list.pictures.end(), made.begin(), made.end());
    return first;
}

/// The key colour as pixels have it.
std::optional<std::uint32_t> keyOf(const Surface &strip, COLORREF key)
{
    if (key == CLR_NONE)
    {
        return std::nullopt;
    }
    return (key == CLR_DEFAULT ? strip.row(0)[0] : pixelOfColor(plainColor(key))) & colorBits;
}

/// An icon in the list's size; see-through at first, so nothing of it is lost.
std::shared_ptr<const Surface> iconPicture(const ImageList &list, const Surface &icon)
{
    auto picture = Surface::create(list.width(), list.height(), Surface::Kind::Soft);
    if (picture == nullptr)
    {
        return nullptr;
    }
    PixelReading reading;
    reading.soft = true;
    ScaledPicture scaled(icon, {0, icon.width(), list.width(), false}, {0, icon.height(), list.height(), false},
                         reading, picture->bounds());
    for (int y = 0; y < list.height(); ++y)
    {
        const std::uint32_t *row = scaled.row(y);
        std::transform(row, row + list.width(), picture->row(y), softPixel);
    }
    return picture;
}
} // namespace

HIMAGELIST zb::internal::listOfOne(HIMAGELIST list, int index)
{
    const auto found = listOf(list);
    if (found == nullptr)
    {
        return nullptr;
    }
    if (!isIndex(*found, index))
    {
        refuse();
        return nullptr;
    }
    auto made = std::make_shared<ImageList>(found->width(), found->height(), ILC_COLOR32 | ILC_MASK);
    made->pictures.push_back(found->pictures[static_cast<std::size_t>(index)]);
    return static_cast<HIMAGELIST>(insertHandle(std::move(made)));
}

HIMAGELIST ImageList_Create(int width, int height, UINT flags, int initial, int grow)
{
    if (width < 1 || height < 1 || width > longestSide || height > longestSide || initial < 0 || grow < 0)
    {
        refuse();
        return nullptr;
    }
    return static_cast<HIMAGELIST>(insertHandle(std::make_shared<ImageList>(width, height, flags)));
}

BOOL ImageList_Destroy(HIMAGELIST list)
{
    return removeHandle(list, HandleKind::ImageList) != nullptr ? TRUE : FALSE;
}

int ImageList_Add(HIMAGELIST list, HBITMAP bitmap, HBITMAP mask)
{
    const auto found = listOf(list);
    const auto strip = found == nullptr ? nullptr : bitmapOf(bitmap);
    const auto cover = strip == nullptr || mask == nullptr ? nullptr : bitmapOf(mask);
    if (strip == nullptr || (mask != nullptr && cover == nullptr))
    {
        return -1;
    }
    return addStrip(*found, *strip->surface(), cover == nullptr ? nullptr : cover->surface().get(), std::nullopt);
}

int ImageList_AddMasked(HIMAGELIST list, HBITMAP bitmap, COLORREF key)
{
    const auto found = listOf(list);
    const auto strip = found == nullptr ? nullptr : bitmapOf(bitmap);
    return strip == nullptr ? -1 : addStrip(*found, *strip->surface(), nullptr, keyOf(*strip->surface(), key));
}

int ImageList_ReplaceIcon(HIMAGELIST list, int index, HICON icon)
{
    const auto found = listOf(list);
    const auto drawn = found == nullptr ? nullptr : iconOf(icon);
    if (drawn == nullptr)
    {
        return -1;
    }
    if (index != -1 && !isIndex(*found, index))
    {
        return refuse();
    }
    auto picture = iconPicture(*found, drawn->picture());
    if (picture == nullptr)
    {
        return -1;
    }
    if (index == -1)
    {
        found->pictures.push_back(std::move(picture));
        return static_cast<int>(found->pictures.size()) - 1;
    }
    found->pictures[static_cast<std::size_t>(index)] = std::move(picture);
    return index;
}

BOOL ImageList_Remove(HIMAGELIST list, int index)
{
    const auto found = listOf(list);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (index == -1)
    {
        found->pictures.clear();
        return TRUE;
    }
    if (!isIndex(*found, index))
    {
        refuse();
        return FALSE;
    }
    found->pictures.erase(found->pictures.begin() + index);
    return TRUE;
}

int ImageList_GetImageCount(HIMAGELIST list)
{
    const auto found = listOf(list);
    return found == nullptr ? -1 : static_cast<int>(found->pictures.size());
}

BOOL ImageList_GetIconSize(HIMAGELIST list, int *width, int *height)
{
    const auto found = listOf(list);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (width == nullptr || height == nullptr)
    {
        refuse();
        return FALSE;
    }
    *width = found->width();
    *height = found->height();
    return TRUE;
}

BOOL ImageList_Draw(HIMAGELIST list, int index, HDC context, int x, int y, UINT style)
{
    const auto found = listOf(list);
    const auto target = found == nullptr ? nullptr : contextOf(context);
    if (target == nullptr)
    {
        return FALSE;
    }
    if (!isIndex(*found, index) || style > ILD_TRANSPARENT)
    {
        refuse();
        return FALSE;
    }
    PixelReading reading;
    reading.soft = true;
    return drawBlended(*target, {x, y, found->width(), found->height()},
                       *found->pictures[static_cast<std::size_t>(index)], {0, 0, found->width(), found->height()},
                       reading)
               ? TRUE
               : FALSE;
}

HIMAGELIST ImageList_LoadImage(HINSTANCE module, const WCHAR *name, int width, int grow, COLORREF key, UINT type, UINT)
{
    if (type != IMAGE_BITMAP || width < 0)
    {
        refuse();
        return nullptr;
    }
    HBITMAP bitmap = LoadBitmapW(module, name);
    const auto strip = bitmap == nullptr ? nullptr : bitmapOf(bitmap);
    if (strip == nullptr)
    {
        return nullptr;
    }
    const Surface &surface = *strip->surface();
    HIMAGELIST list =
        ImageList_Create(width == 0 ? surface.height() : width, surface.height(), ILC_COLOR32 | ILC_MASK, 0, grow);
    if (list != nullptr && ImageList_AddMasked(list, bitmap, key) < 0)
    {
        ImageList_Destroy(list);
        list = nullptr;
    }
    DeleteObject(bitmap);
    return list;
}
