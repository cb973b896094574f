// A list of strings: a CePtrList of texts that copies what it is given, compares by text and knows its file form.
//
// In a list file (CeList_file.h) a string is its UTF-16 characters with their zero; an empty one has size 0.
#pragma once

#include "core/CePtrList.h"

/// How a CeStrList compares.
enum CeStrCompare : int
{
    CESTR_CODE_UNITS = 1,        ///< by code unit
    CESTR_CODE_UNITS_NOCASE = 2, ///< by code unit, case folded
    CESTR_LOCALE_NOCASE = 3,     ///< the locale's order without regard to case
    CESTR_LOCALE = 4             ///< the locale's order; letters that differ in case alone differ
};

/// T is WCHAR *. Which ownership a list has decides how AddString copies: 2 malloc, 3 LocalAlloc, 5 BSTR; with any
/// other the list holds the caller's pointer.
template <class T = WCHAR *>
class CeStrList : public CePtrList<T>
{
    static_assert(std::is_same_v<std::remove_const_t<std::remove_pointer_t<T>>, WCHAR>);

  public:
    explicit CeStrList(int base = 0, int ownership = CEOWN_FREE, int compare = CESTR_LOCALE)
        : CePtrList<T>(base, ownership, ComparerFor(compare)), m_nOwnership(ownership)
    {
        this->SetUser(static_cast<DWORD_PTR>(ownership));
        this->SetPack(PackerFor(ownership));
    }

    /// Appends a copy; null counts as empty. 0, or 2 without memory.
    int AddString(const WCHAR *text)
    {
        T copy = Copy(text != nullptr ? text : u"", m_nOwnership);
        return copy != nullptr ? this->AddTail(copy) : CELIST_MEMORY;
    }
    /// Index of the first text that compares equal, or base - 1.
    int FindString(const WCHAR *text)
    {
        return this->Find(const_cast<T>(text));
    }

  private:
    static const WCHAR *Text(T element)
    {
        return element != nullptr ? element : u"";
    }
    template <DWORD flags>
    static int ByLocale(const T *a, const T *b, DWORD_PTR)
    {
        return CompareStringW(LOCALE_USER_DEFAULT, flags, Text(*a), -1, Text(*b), -1) - CSTR_EQUAL;
    }
    static typename CePtrList<T>::CompareCallback ComparerFor(int compare)
    {
        switch (compare)
        {
        case CESTR_CODE_UNITS:
            return [](const T *a, const T *b, DWORD_PTR) { return wcscmp(Text(*a), Text(*b)); };
        case CESTR_CODE_UNITS_NOCASE:
            return [](const T *a, const T *b, DWORD_PTR) { return _wcsicmp(Text(*a), Text(*b)); };
        case CESTR_LOCALE_NOCASE:
            return ByLocale<NORM_IGNORECASE>;
        default:
            return ByLocale<0>;
        }
    }
    static T Copy(const WCHAR *text, int ownership);
    /// What is read is allocated as the list will free it. That must not hang on the user value, which a file may set.
    template <int ownership>
    static int Pack(T &element, UINT &size, void *&buffer, _CELIST_STREAMTYPE type, DWORD_PTR user);
    static typename CePtrList<T>::PackCallback PackerFor(int ownership)
    {
        switch (ownership)
        {
        case CEOWN_FREE:
            return Pack<CEOWN_FREE>;
        case CEOWN_LOCAL:
            return Pack<CEOWN_LOCAL>;
        case CEOWN_BSTR:
            return Pack<CEOWN_BSTR>;
        default:
            return Pack<CEOWN_NONE>;
        }
    }

    int m_nOwnership;
};

template <class T>
T CeStrList<T>::Copy(const WCHAR *text, int ownership)
{
    const std::size_t bytes = (wcslen(text) + 1) * sizeof(WCHAR);
    switch (ownership)
    {
    case CEOWN_FREE:
    case CEOWN_LOCAL:
    {
        void *copy = ownership == CEOWN_FREE ? std::malloc(bytes) : LocalAlloc(LMEM_FIXED, bytes);
        return copy != nullptr ? static_cast<T>(std::memcpy(copy, text, bytes)) : nullptr;
    }
    case CEOWN_BSTR:
        return SysAllocString(text);
    default:
        return const_cast<T>(text);
    }
}

template <class T>
template <int ownership>
int CeStrList<T>::Pack(T &element, UINT &size, void *&buffer, _CELIST_STREAMTYPE type, DWORD_PTR)
{
    if (type == CELIST_WRITE)
    {
        const std::size_t length = wcslen(Text(element));
        size = length == 0 ? 0 : static_cast<UINT>((length + 1) * sizeof(WCHAR));
        buffer = const_cast<WCHAR *>(Text(element));
        return CELIST_OK;
    }
    if (ownership == CEOWN_NONE)
    {
        return CELIST_FILE; // nobody would own the text
    }
    // The bytes may be cut, odd in number or not aligned: they are copied, and what is missing is the zero.
    std::vector<WCHAR> text(size / sizeof(WCHAR) + 1, u'\0');
    if (size >= sizeof(WCHAR))
    {
        std::memcpy(text.data(), buffer, size / sizeof(WCHAR) * sizeof(WCHAR));
    }
    element = Copy(text.data(), ownership);
    return element != nullptr ? CELIST_OK : CELIST_MEMORY;
}
