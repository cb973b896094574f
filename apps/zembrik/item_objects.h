// Items through the object model, as the screens read and change them. Threads: the main thread.
#pragma once

#include "platform/pim_objects.h"
#include "platform/text.h"
#include "records/COutlook.h"

#include <string>

namespace zb::screens
{
/// The item of that id as the interface of `iid`; empty when there is none, or it is of another kind.
template <typename Item>
Counted<Item> itemOf(COutlook &outlook, CEOID id, const GUID &iid)
{
    Counted<IDispatch> found;
    void *item = nullptr;
    if (outlook.GetItemFromOid(id, found.out()) == S_OK)
    {
        found->QueryInterface(iid, &item);
    }
    return Counted<Item>(static_cast<Item *>(item));
}

/// A text of an item.
template <typename Item>
std::u16string bstrOf(Item &item, HRESULT (Item::*get)(BSTR *))
{
    BSTR value = nullptr;
    (item.*get)(&value);
    std::u16string words = value == nullptr ? u"" : value;
    SysFreeString(value);
    return words;
}

/// A date of the locale's, short or long, without the time of day.
std::u16string dateWords(DATE date, bool longForm);
std::u16string decimal(LONG number);
} // namespace zb::screens
