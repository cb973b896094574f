// A CeList of pointers that says who releases what they point at, and how many of its rows a host may read.
#pragma once

#include "core/CeList.h"
#include "core/bstrtools.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <atomic>

/// How a list releases an element that leaves it. Any other number releases nothing either.
enum CeOwnership : int
{
    CEOWN_DELETE = 1,  ///< delete
    CEOWN_FREE = 2,    ///< free
    CEOWN_LOCAL = 3,   ///< LocalFree
    CEOWN_RELEASE = 4, ///< the object's own Release()
    CEOWN_BSTR = 5,    ///< SysFreeString, unless the first byte of the text is 0
    CEOWN_NONE = 6     ///< nothing: somebody else owns them
};

/// T is a pointer type. Threads as CeList, but for m_nPublished, which any thread may read and write.
template <class T>
class CePtrList : public CeList<T>
{
    static_assert(std::is_pointer_v<T>);

  public:
    using typename CeList<T>::CompareCallback;
    using typename CeList<T>::DestroyCallback;

    /// A null compare takes the default, by address.
    explicit CePtrList(int base = 0, int ownership = CEOWN_NONE, CompareCallback compare = nullptr)
        : CeList<T>(base, nullptr, ReleaserFor(ownership), compare)
    {
    }

    /// Rows that the host may read: 0 until the loader has finished a load.
    std::atomic<int> m_nPublished = 0;

  private:
    static DestroyCallback ReleaserFor(int ownership)
    {
        switch (ownership)
        {
        case CEOWN_DELETE:
            return Delete;
        case CEOWN_FREE:
            return [](T &element, DWORD_PTR) { std::free(Memory(element)); };
        case CEOWN_LOCAL:
            return [](T &element, DWORD_PTR) { LocalFree(Memory(element)); };
        case CEOWN_RELEASE:
            return Release;
        case CEOWN_BSTR:
            return FreeText;
        case CEOWN_NONE:
            return [](T &, DWORD_PTR) {};
        default:
            return nullptr;
        }
    }

    static void *Memory(T element)
    {
        return const_cast<void *>(static_cast<const void *>(element));
    }
    static void Delete(T &element, DWORD_PTR)
    {
        if constexpr (!std::is_void_v<std::remove_pointer_t<T>>)
        {
            delete element;
        }
    }
    static void Release(T &element, DWORD_PTR)
    {
        if constexpr (requires { element->Release(); })
        {
            if (element != nullptr)
            {
                element->Release();
            }
        }
    }
    static void FreeText(T &element, DWORD_PTR)
    {
        FreeBSTR(static_cast<WCHAR *>(Memory(element)));
    }
};
