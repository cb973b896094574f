// What the tests of the item objects share: an application, items, dates, texts.
#pragma once

#include "platform/clock.h"
#include "platform/pim_objects.h"
#include "platform/text.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zb::test
{
/// A date by its parts, calculated by seconds since 1899-12-30.
inline DATE date(int year, int month, int day, int hour = 0, int minute = 0)
{
    const LONGLONG ticks = ticksOf(makeFileTime(year, month, day, hour, minute));
    const LONGLONG days = ticks / ticksPerDay - daysFrom1601ToVariantZero;
    return static_cast<double>(days) + static_cast<double>(ticks % ticksPerDay / ticksPerSecond) / 86400.0;
}

/// "2026-03-04 10:00", to the nearest minute; "none" for no date.
inline std::string text(DATE date)
{
    if (date == PIM_NO_DATE)
    {
        return "none";
    }
    SYSTEMTIME fields{};
    VariantTimeToSystemTime(date, &fields);
    return describe(fields).substr(0, 16);
}

/// A BSTR for the length of a call.
class Text
{
  public:
    explicit Text(const WCHAR *text) : m_text(SysAllocString(text))
    {
    }
    explicit Text(const std::u16string &text) : Text(text.c_str())
    {
    }
    ~Text()
    {
        SysFreeString(m_text);
    }
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;
    operator BSTR() const
    {
        return m_text;
    }

  private:
    BSTR m_text;
};

template <typename Item, typename Base>
std::string textOf(const Counted<Item> &item, HRESULT (Base::*getter)(BSTR *))
{
    BSTR text = nullptr;
    EXPECT_EQ((item.get()->*getter)(&text), S_OK);
    std::string result = utf8(text);
    SysFreeString(text);
    return result;
}

template <typename Value, typename Item, typename Base>
Value valueOf(const Counted<Item> &item, HRESULT (Base::*getter)(Value *))
{
    Value value{};
    EXPECT_EQ((item.get()->*getter)(&value), S_OK);
    return value;
}

template <typename Item, typename Base>
std::string dateOf(const Counted<Item> &item, HRESULT (Base::*getter)(DATE *))
{
    return text(valueOf<DATE>(item, getter));
}

inline Counted<IPOutlookApp> application()
{
    registerObjectModel();
    Counted<IPOutlookApp> made;
    EXPECT_EQ(CoCreateInstance(CLSID_Application, nullptr, CLSCTX_INPROC_SERVER, IID_IPOutlookApp,
                               reinterpret_cast<void **>(made.out())),
              S_OK);
    EXPECT_EQ(made->Logon(nullptr), S_OK);
    return made;
}

template <typename Item>
const GUID &interfaceOf();
template <>
inline const GUID &interfaceOf<IAppointment>()
{
    return IID_IAppointment;
}
template <>
inline const GUID &interfaceOf<ITask>()
{
    return IID_ITask;
}
template <>
inline const GUID &interfaceOf<IContact>()
{
    return IID_IContact;
}
template <typename Item>
constexpr int kindOf = std::is_same_v<Item, IAppointment> ? olAppointmentItem
                       : std::is_same_v<Item, ITask>      ? olTaskItem
                                                          : olContactItem;

template <typename Item>
Counted<Item> as(IDispatch *item)
{
    Counted<Item> found;
    EXPECT_EQ(item->QueryInterface(interfaceOf<Item>(), reinterpret_cast<void **>(found.out())), S_OK);
    return found;
}

template <typename Item>
Counted<Item> newItem(const Counted<IPOutlookApp> &application)
{
    Counted<IDispatch> made;
    EXPECT_EQ(application->CreateItem(kindOf<Item>, made.out()), S_OK);
    return as<Item>(made.get());
}

template <typename Item>
Counted<Item> itemOf(const Counted<IPOutlookApp> &application, LONG oid)
{
    Counted<IDispatch> found;
    EXPECT_EQ(application->GetItemFromOid(oid, found.out()), S_OK);
    return found ? as<Item>(found.get()) : Counted<Item>();
}

template <typename Item>
LONG oidOf(const Counted<Item> &item)
{
    return valueOf<LONG>(item, &IPOutlookItem::get_Oid);
}

/// A device in Berlin at 2026-03-02 09:00 UTC, with an application.
class PimObjectsTest : public DeviceTest
{
  protected:
    Counted<IPOutlookApp> app = application();

    /// Saved; the device and all objects are made anew, so that the disk speaks.
    template <typename Item>
    Counted<Item> reread(LONG oid)
    {
        app.reset();
        device.reopen();
        app = application();
        return itemOf<Item>(app, oid);
    }
};
} // namespace zb::test
