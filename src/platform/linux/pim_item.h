// What all item objects do alike: counts, categories, notes, and the frame of a save.
//
// An object holds two states: what the record said when it was read, and what the owner has made of it. A save takes
// the difference into what the record says by then; see pim_merge.h. A copy that was not saved yet holds the record of
// its original too, since that says more than objects speak of (an icon, the minutes of a task's reminder).
#pragma once

#include "platform/kernel.h"
#include "platform/linux/pim_category_names.h"
#include "platform/linux/pim_further_properties.h"
#include "platform/linux/pim_store.h"
#include "platform/pim_objects.h"
#include "platform/text.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace zb::internal
{
inline std::u16string textOf(BSTR text)
{
    return text == nullptr ? std::u16string() : std::u16string(text, SysStringLen(text));
}

inline HRESULT giveText(const std::u16string &text, BSTR *out)
{
    if (out == nullptr)
    {
        return E_POINTER;
    }
    *out = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

/// The one count that there is, for the caller of whoever made the object.
template <typename Object>
Object *given(const Counted<Object> &made)
{
    made->AddRef();
    return made.get();
}

/// A text ends at its first zero, as in records.
inline std::u16string storedText(BSTR text)
{
    const std::u16string whole = textOf(text);
    return whole.substr(0, whole.find(u'\0'));
}

template <typename Value, typename From>
HRESULT give(From value, Value *out)
{
    if (out == nullptr)
    {
        return E_POINTER;
    }
    *out = static_cast<Value>(value);
    return S_OK;
}

inline HRESULT giveFlag(bool value, VARIANT_BOOL *out)
{
    return give(value ? VARIANT_TRUE : VARIANT_FALSE, out);
}

/// Counts, and the interfaces that an object has.
template <typename Interface>
class CountedObject : public Interface
{
  public:
    ULONG AddRef() override
    {
        return ++m_count;
    }
    ULONG Release() override
    {
        const ULONG left = --m_count;
        if (left == 0)
        {
            delete this;
        }
        return left;
    }
    HRESULT QueryInterface(const GUID &interfaceId, void **object) override
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        if (interfaceId == IID_IDispatch)
        {
            *object = static_cast<IDispatch *>(this);
        }
        else if (interfaceId == ownInterface())
        {
            *object = static_cast<Interface *>(this);
        }
        else
        {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

  protected:
    CountedObject() = default;
    CountedObject(const CountedObject &) = delete;
    CountedObject &operator=(const CountedObject &) = delete;
    virtual ~CountedObject() = default;
    /// IID_IDispatch for an object that has no other.
    virtual const GUID &ownInterface() const
    {
        return IID_IDispatch;
    }

  private:
    std::atomic<ULONG> m_count{1};
};

template <typename Interface, typename Values>
class ItemObject : public CountedObject<Interface>
{
  public:
    int GetItemType() override
    {
        return static_cast<int>(kind());
    }
    HRESULT get_Oid(LONG *oid) override
    {
        return give(m_oid, oid);
    }
    HRESULT get_Categories(BSTR *names) override
    {
        return giveText(m_names ? *m_names : categoryNamesOf(m_mine.categories), names);
    }
    HRESULT put_Categories(BSTR names) override
    {
        m_names = storedText(names);
        return S_OK;
    }
    HRESULT get_BodyInk(CEBLOB *notes) override
    {
        if (notes == nullptr)
        {
            return E_POINTER;
        }
        *notes = CEBLOB{};
        if (m_mine.notes.empty())
        {
            return S_OK;
        }
        notes->lpb = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, m_mine.notes.size()));
        if (notes->lpb == nullptr)
        {
            return E_OUTOFMEMORY;
        }
        notes->dwCount = static_cast<DWORD>(m_mine.notes.size());
        std::memcpy(notes->lpb, m_mine.notes.data(), m_mine.notes.size());
        return S_OK;
    }
    HRESULT put_BodyInk(const CEBLOB &notes) override
    {
        if (notes.dwCount != 0 && notes.lpb == nullptr)
        {
            return E_INVALIDARG;
        }
        m_mine.notes.assign(notes.lpb, notes.lpb + notes.dwCount);
        return S_OK;
    }
    HRESULT get_Body(BSTR *text) override
    {
        return giveText(decodeNotes(m_mine.notes.data(), m_mine.notes.size()), text);
    }
    HRESULT put_Body(BSTR text) override
    {
        // Ink that has no text is not taken away by giving back the text that was read.
        const std::u16string wanted = textOf(text);
        if (wanted != decodeNotes(m_mine.notes.data(), m_mine.notes.size()))
        {
            m_mine.notes = encodeNotes(wanted);
        }
        return S_OK;
    }

    HRESULT Save() override
    {
        if (m_deleted)
        {
            return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
        }
        takeNames();
        if (const HRESULT result = check(m_mine); FAILED(result))
        {
            return result;
        }
        return m_oid == 0 ? saveNew() : saveExisting();
    }
    HRESULT Delete() override
    {
        if (m_oid == 0)
        {
            return m_deleted ? HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) : S_OK;
        }
        const HRESULT result = deleteStored();
        m_deleted = SUCCEEDED(result);
        m_oid = m_deleted ? 0 : m_oid;
        return result;
    }

  protected:
    ItemObject(std::shared_ptr<PimStore> store, CEOID oid, Values values)
        : m_store(std::move(store)), m_oid(oid), m_base(values), m_mine(std::move(values))
    {
    }

    virtual PimKind kind() const = 0;
    virtual HRESULT check(const Values &values) const = 0;
    /// What the record says.
    virtual Values decode(const StoredItem &record) const = 0;
    virtual void merge(Values &fresh) const = 0;
    /// The whole record for `values`; `before` is what the record said, empty as `record` is for a new item.
    virtual HRESULT encode(const Values &values, const Values &before, const StoredItem &record,
                           RecordProperties &properties) = 0;
    virtual HRESULT deleteStored()
    {
        return m_store->remove(kind(), m_oid);
    }

    virtual HRESULT saveNew()
    {
        BulkWrite bulk;
        RecordProperties properties;
        HRESULT result = encode(m_mine, Values(), StoredItem(), properties);
        if (SUCCEEDED(result) && m_original)
        {
            addFurther(*m_original, properties);
        }
        return finish(bulk, result, properties);
    }
    /// Gives a new item what this one holds, and what its record says beside that.
    HRESULT fillCopy(ItemObject &copy) const
    {
        copy.m_mine = m_mine;
        copy.m_names = m_names;
        copy.m_original = m_original;
        if (m_oid == 0)
        {
            return S_OK;
        }
        const auto record = std::make_shared<StoredItem>();
        const HRESULT result = m_store->read(kind(), m_oid, *record);
        copy.m_original = record;
        return result;
    }
    virtual HRESULT saveExisting()
    {
        if (m_mine == m_base)
        {
            StoredItem record;
            return m_store->read(kind(), m_oid, record);
        }
        BulkWrite bulk;
        StoredItem record;
        HRESULT result = m_store->read(kind(), m_oid, record);
        RecordProperties properties;
        if (SUCCEEDED(result))
        {
            const Values before = decode(record);
            Values fresh = before;
            merge(fresh);
            result = check(fresh);
            result = SUCCEEDED(result) ? encode(fresh, before, record, properties) : result;
        }
        return finish(bulk, result, properties);
    }
    /// Writes when all went well so far. Nothing was written before, so a bulk of the caller's goes on after a failure.
    HRESULT finish(BulkWrite &bulk, HRESULT result, const RecordProperties &properties)
    {
        if (FAILED(result))
        {
            bulk.commit();
            return result;
        }
        CEOID oid = m_oid;
        result = m_store->write(kind(), properties, oid);
        if (FAILED(result))
        {
            return result;
        }
        // Read back before the transaction ends: a reader after it had to drop all that it keeps of the store first.
        StoredItem record;
        result = m_store->read(kind(), oid, record);
        if (!bulk.commit())
        {
            return lastResult();
        }
        m_oid = oid;
        if (SUCCEEDED(result))
        {
            takeOver(record);
        }
        return result;
    }

    HRESULT reload()
    {
        StoredItem record;
        const HRESULT result = m_store->read(kind(), m_oid, record);
        if (SUCCEEDED(result))
        {
            takeOver(record);
        }
        return result;
    }
    /// The item is as its record says.
    virtual void takeOver(const StoredItem &record)
    {
        m_base = m_mine = decode(record);
        m_names.reset();
        m_original.reset();
    }

    /// Names become bits when they are saved; those that read as before change nothing.
    void takeNames()
    {
        if (m_names && *m_names != categoryNamesOf(m_mine.categories))
        {
            m_mine.categories = categoryBitsOf(*m_names, m_base.categories);
        }
    }

    template <typename Value>
    HRESULT takeText(Value Values::*member, BSTR text)
    {
        m_mine.*member = storedText(text);
        return S_OK;
    }

    std::shared_ptr<PimStore> m_store;
    CEOID m_oid;
    Values m_base;
    Values m_mine;
    std::optional<std::u16string> m_names; ///< as they were put
    std::shared_ptr<const StoredItem> m_original;
    bool m_deleted = false; ///< by this object
};
} // namespace zb::internal
