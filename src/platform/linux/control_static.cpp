// The static control: a text or a picture that takes no input.
#include "platform/image_list.h"
#include "platform/linux/control.h"
#include "platform/resources.h"

namespace zb::internal
{
namespace
{
class Static final : public Control
{
  public:
    using Control::Control;
    ~Static() override
    {
        if (m_isOwn)
        {
            isIcon() ? static_cast<void>(DestroyIcon(m_picture)) : static_cast<void>(DeleteObject(m_picture));
        }
    }

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        switch (message)
        {
        case WM_CREATE:
            loadNamedPicture();
            return 0;
        case WM_PAINT:
            paint([this](HDC context) { draw(context); });
            return 0;
        case WM_GETDLGCODE:
            return DLGC_STATIC;
        case STM_GETIMAGE:
            return reinterpret_cast<LRESULT>(m_picture);
        case STM_SETIMAGE:
            return setPicture(reinterpret_cast<HGDIOBJ>(lParam), (wParam & STM_OWNED) != 0);
        case WM_LBUTTONDOWN:
            if ((style() & SS_NOTIFY) != 0)
            {
                tell(STN_CLICKED);
            }
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            return 0;
        default:
            return takeCommon(message, wParam, lParam);
        }
    }

  private:
    DWORD kind() const
    {
        return style() & SS_TYPEMASK;
    }
    bool isIcon() const
    {
        return kind() == SS_ICON;
    }
    bool isPicture() const
    {
        return isIcon() || kind() == SS_BITMAP;
    }

    /// A title "#number" stands for a picture of the resources.
    void loadNamedPicture()
    {
        const std::u16string title = text();
        if (!isPicture() || title.size() < 2 || title[0] != u'#')
        {
            return;
        }
        unsigned number = 0;
        for (const WCHAR digit : title.substr(1))
        {
            number = digit >= u'0' && digit <= u'9' && number < 0x10000 ? number * 10 + (digit - u'0') : 0x10000;
        }
        if (number < 0x10000)
        {
            const WCHAR *name = MAKEINTRESOURCEW(static_cast<WORD>(number));
            m_picture = isIcon() ? static_cast<HGDIOBJ>(LoadIconW(nullptr, name)) : LoadBitmapW(nullptr, name);
            m_isOwn = m_picture != nullptr;
        }
    }

    LRESULT setPicture(HGDIOBJ picture, bool handedOver)
    {
        const HGDIOBJ former = m_picture;
        m_picture = picture;
        m_isOwn = handedOver;
        refresh();
        return reinterpret_cast<LRESULT>(former);
    }

    void draw(HDC context) const
    {
        prepare(context, WM_CTLCOLORSTATIC, COLOR_WINDOW);
        if (isPicture())
        {
            drawPicture(context);
            return;
        }
        RECT box = client();
        UINT format = kind() == SS_CENTER ? DT_CENTER : kind() == SS_RIGHT ? DT_RIGHT : DT_LEFT;
        format |= kind() == SS_LEFTNOWORDWRAP ? 0 : DT_WORDBREAK;
        format |= (style() & SS_NOPREFIX) != 0 ? DT_NOPREFIX : 0;
        format |= (style() & SS_CENTERIMAGE) != 0 ? DT_SINGLELINE | DT_VCENTER : 0;
        DrawTextW(context, text().c_str(), -1, &box, format | DT_EXPANDTABS);
    }

    void drawPicture(HDC context) const
    {
        if (m_picture == nullptr)
        {
            return;
        }
        if (isIcon())
        {
            DrawIconEx(context, 0, 0, m_picture, 0, 0, 0, nullptr, DI_NORMAL);
            return;
        }
        BITMAP bitmap{};
        GetObjectW(m_picture, sizeof bitmap, &bitmap);
        const RECT box = client();
        const bool centred = (style() & SS_CENTERIMAGE) != 0;
        TransparentImage(context, centred ? (box.right - bitmap.bmWidth) / 2 : 0,
                         centred ? (box.bottom - bitmap.bmHeight) / 2 : 0, bitmap.bmWidth, bitmap.bmHeight, m_picture,
                         0, 0, bitmap.bmWidth, bitmap.bmHeight, RGB(0, 255, 0));
    }

    HGDIOBJ m_picture = nullptr;
    bool m_isOwn = false;
};
} // namespace

void registerStatic()
{
    registerControl<Static>(u"STATIC");
}
} // namespace zb::internal
