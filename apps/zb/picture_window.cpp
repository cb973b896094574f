#include "zb/picture_window.h"

#include "display/NM_HTMLVIEW.h"
#include "platform/image.h"
#include "platform/resources.h"
#include "platform/text.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace zb::cli
{
namespace
{
constexpr const WCHAR *className = u"ZbPictures";

bool isNumber(const std::u16string &source)
{
    return !source.empty() && source.size() <= 5 &&
           std::ranges::all_of(source, [](WCHAR ch) { return ch >= u'0' && ch <= u'9'; });
}

HBITMAP loadFile(const std::u16string &name)
{
    const PictureLimits limits;
    std::ifstream file(toUtf8(std::u16string_view(name)), std::ios::binary);
    std::vector<char> bytes;
    for (char byte = 0; bytes.size() <= limits.bytes && file.get(byte);)
    {
        bytes.push_back(byte);
    }
    return bytes.empty() ? nullptr : decodePicture(bytes.data(), bytes.size(), limits, 0, 0);
}
} // namespace

PictureWindow::PictureWindow()
{
    WNDCLASSW type{};
    type.lpfnWndProc = procedure;
    type.lpszClassName = className;
    RegisterClassW(&type);
    m_window = CreateWindowExW(0, className, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, this);
    if (m_window == nullptr)
    {
        throw std::runtime_error("no window for the pictures");
    }
    SetWindowLongW(m_window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

PictureWindow::~PictureWindow()
{
    DestroyWindow(m_window);
    for (const auto &[source, picture] : m_pictures)
    {
        DeleteObject(picture);
    }
}

HBITMAP PictureWindow::find(const std::u16string &source)
{
    const auto found = m_pictures.find(source);
    if (found != m_pictures.end())
    {
        return found->second;
    }
    HBITMAP picture = nullptr;
    if (isNumber(source))
    {
        const int number = std::stoi(toUtf8(std::u16string_view(source)));
        picture = number <= 0xFFFF ? LoadBitmapW(nullptr, MAKEINTRESOURCEW(static_cast<WORD>(number))) : nullptr;
    }
    else
    {
        picture = loadFile(source);
    }
    m_pictures.emplace(source, picture);
    return picture;
}

LRESULT PictureWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *self = reinterpret_cast<PictureWindow *>(GetWindowLongW(window, GWL_USERDATA));
    auto *request = reinterpret_cast<NM_HTMLVIEW *>(lParam);
    if (message != WM_NOTIFY || self == nullptr || request->hdr.code != NM_INLINE_IMAGE)
    {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    const HBITMAP picture = self->find(std::u16string(request->szTarget, request->hdr.idFrom));
    request->dwCookie = reinterpret_cast<DWORD_PTR>(picture);
    return picture != nullptr ? 1 : 0;
}
} // namespace zb::cli
