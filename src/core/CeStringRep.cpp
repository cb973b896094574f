// The shared representation behind CeString.
#include "core/CeString.h"

#include <limits>
#include <new>

namespace
{
/// One empty text for all strings. Its count is never touched, so it is the same for all threads from the start.
struct NullData
{
    CeStringRep m_rep{1, 0};
    WCHAR m_text[2] = {0, 0};
};
constinit NullData s_rgNullData;

static_assert(sizeof(CeStringRep) == 8 && offsetof(NullData, m_text) == sizeof(CeStringRep),
              "the characters follow the 8 bytes of the header");
} // namespace

CeStringRep *CeStringRep::AllocBuf(int length)
{
    if (length < 0 || length > std::numeric_limits<int>::max() / 2 - 5)
    {
        throw std::bad_alloc();
    }
    void *memory = ::operator new((static_cast<std::size_t>(length) + 5) * sizeof(WCHAR));
    auto *rep = new (memory) CeStringRep{1, length};
    rep->GetString()[length] = 0;
    return rep;
}

void CeStringRep::FreeBuf(CeStringRep *rep)
{
    ::operator delete(rep);
}

CeStringRep *CeStringRep::NullRep()
{
    return &s_rgNullData.m_rep;
}

WCHAR *CeStringRep::NullString()
{
    return s_rgNullData.m_text;
}

CeStringRep *CeStringRep::Of(const WCHAR *text)
{
    return reinterpret_cast<CeStringRep *>(const_cast<WCHAR *>(text)) - 1;
}
