// What objects behind interfaces share: results, ids of classes and interfaces, reference counts, dates and flags in
// the form in which such objects take them.
//
// Counts: whoever gets an interface through an out parameter owns one count and gives it back with Release(); an
// object dies with its last count. Texts: a BSTR that comes out belongs to the caller (SysFreeString), one that goes in
// stays the caller's and may be null, which means empty. An out parameter is null, empty or 0 after a failure; a null
// out parameter is refused with E_POINTER.
#pragma once

#include "platform/types.h"

/// Days since 1899-12-30 with the time of day as the fraction, in the device's local time.
using DATE = double;
/// -1 true, 0 false; anything else that goes in counts as true.
using VARIANT_BOOL = SHORT;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

constexpr HRESULT makeResult(DWORD code)
{
    return static_cast<HRESULT>(code);
}
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = makeResult(0x80004001U);
inline constexpr HRESULT E_NOINTERFACE = makeResult(0x80004002U);
inline constexpr HRESULT E_POINTER = makeResult(0x80004003U);
inline constexpr HRESULT E_ABORT = makeResult(0x80004004U);
inline constexpr HRESULT E_FAIL = makeResult(0x80004005U);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = makeResult(0x80040154U);
inline constexpr HRESULT E_OUTOFMEMORY = makeResult(0x8007000EU);
inline constexpr HRESULT E_INVALIDARG = makeResult(0x80070057U);
inline constexpr HRESULT E_UNEXPECTED = makeResult(0x8000FFFFU);
constexpr bool SUCCEEDED(HRESULT result)
{
    return result >= 0;
}
constexpr bool FAILED(HRESULT result)
{
    return result < 0;
}
/// The result that carries an error code of GetLastError.
constexpr HRESULT HRESULT_FROM_WIN32(DWORD code)
{
    return code == 0 ? S_OK : makeResult(0x80070000U | (code & 0xFFFFU));
}

struct GUID
{
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
    bool operator==(const GUID &) const = default;
};

/// Base of all objects here.
struct IDispatch
{
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
    /// The same object by another of its interfaces, with a count of its own; E_NOINTERFACE when it has no such one.
    virtual HRESULT QueryInterface(const GUID &interfaceId, void **object) = 0;

  protected:
    ~IDispatch() = default;
};

/// In-process objects, the only ones that there are.
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;

/// Makes an object of a class that the device's registry names ("CLSID\{...}\InProcServer32" below HKEY_CLASSES_ROOT):
/// REGDB_E_CLASSNOTREG for one that it does not name or that is not known here, E_NOINTERFACE for an interface that
/// the class lacks, E_INVALIDARG for an outer object or another context.
ZBPLATFORM_API HRESULT CoCreateInstance(const GUID &classId, IDispatch *outer, DWORD context, const GUID &interfaceId,
                                        void **object);

namespace zb
{
/// "{05058F23-20BE-11D2-8F18-0000F87A4335}" into `text`, which has room for 39 characters.
ZBPLATFORM_API void guidText(const GUID &id, WCHAR *text);

/// One count of an object, given back at the end.
template <typename Interface>
class Counted
{
  public:
    Counted() = default;
    /// Takes the count over.
    explicit Counted(Interface *object) : m_object(object)
    {
    }
    Counted(const Counted &other) : m_object(other.m_object)
    {
        if (m_object != nullptr)
        {
            m_object->AddRef();
        }
    }
    Counted(Counted &&other) noexcept : m_object(other.m_object)
    {
        other.m_object = nullptr;
    }
    Counted &operator=(Counted other) noexcept
    {
        Interface *const own = m_object;
        m_object = other.m_object;
        other.m_object = own;
        return *this;
    }
    ~Counted()
    {
        reset();
    }
    void reset()
    {
        if (m_object != nullptr)
        {
            Interface *const object = m_object;
            m_object = nullptr;
            object->Release();
        }
    }
    /// Where a call puts its result; what was held is given back first.
    Interface **out()
    {
        reset();
        return &m_object;
    }
    Interface *get() const
    {
        return m_object;
    }
    Interface *operator->() const
    {
        return m_object;
    }
    explicit operator bool() const
    {
        return m_object != nullptr;
    }

  private:
    Interface *m_object = nullptr;
};
} // namespace zb
