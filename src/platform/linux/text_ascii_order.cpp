#include "platform/linux/text_ascii_order.h"

#include <unicode/ucol.h>
#include <unicode/uset.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace zb::internal
{
namespace
{
struct CollatorRelease
{
    void operator()(UCollator *collator) const
    {
        ucol_close(collator);
    }
};
using OwnCollator = std::unique_ptr<UCollator, CollatorRelease>;

struct SetRelease
{
    void operator()(USet *set) const
    {
        uset_close(set);
    }
};

OwnCollator withStrength(const UCollator *collator, UCollationStrength strength)
{
    UErrorCode status = U_ZERO_ERROR;
    OwnCollator copy(ucol_clone(collator, &status));
    if (U_FAILURE(status))
    {
        return nullptr;
    }
    ucol_setStrength(copy.get(), strength);
    return copy;
}

bool isOff(const UCollator *collator, UColAttribute attribute)
{
    UErrorCode status = U_ZERO_ERROR;
    return ucol_getAttribute(collator, attribute, &status) == UCOL_OFF && U_SUCCESS(status);
}

/// Whether a text that the locale orders in a way of its own stands in the way of the tables: an ASCII character, or
/// a run in which one follows another character. A lone one with a mark behind it does not: comparisons see the mark.
bool disturbs(std::u16string_view text)
{
    const auto isAscii = [](WCHAR ch) { return ch < 0x80; };
    return (text.size() == 1 && isAscii(text[0])) || std::any_of(text.begin() + 1, text.end(), isAscii);
}

bool tailorsAscii(const UCollator *collator)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<USet, SetRelease> set(ucol_getTailoredSet(collator, &status));
    if (U_FAILURE(status) || set == nullptr)
    {
        return true;
    }
    const int items = uset_getItemCount(set.get());
    for (int i = 0; i < items; ++i)
    {
        UChar32 first = 0;
        UChar32 last = 0;
        std::array<UChar, 32> text{};
        const int length =
            uset_getItem(set.get(), i, &first, &last, text.data(), static_cast<int>(text.size()), &status);
        const std::u16string_view run(text.data(), static_cast<std::size_t>(length));
        if (U_FAILURE(status) || (run.empty() ? first < 0x80 : disturbs(run)))
        {
            return true;
        }
    }
    return false;
}

int compareOne(const UCollator *collator, UChar a, UChar b)
{
    return ucol_strcoll(collator, &a, 1, &b, 1);
}
} // namespace

std::optional<AsciiOrder> AsciiOrder::of(const UCollator *collator)
{
    if (!isOff(collator, UCOL_NUMERIC_COLLATION) || !isOff(collator, UCOL_CASE_LEVEL) || tailorsAscii(collator))
    {
        return std::nullopt;
    }
    const OwnCollator primary = withStrength(collator, UCOL_PRIMARY);
    const OwnCollator secondary = withStrength(collator, UCOL_SECONDARY);
    AsciiOrder order;
    if (primary == nullptr || secondary == nullptr || !order.fill(collator, primary.get(), secondary.get()))
    {
        return std::nullopt;
    }
    return order;
}

bool AsciiOrder::fill(const UCollator *collator, UCollator *primary, UCollator *secondary)
{
    m_variantsCount = ucol_getStrength(collator) >= UCOL_TERTIARY;
    std::vector<UChar> counted;
    for (UChar ch = 0; ch < size; ++ch)
    {
        if (ucol_strcoll(primary, &ch, 1, u"", 0) != UCOL_EQUAL)
        {
            counted.push_back(ch);
        }
        else if (ucol_strcoll(collator, &ch, 1, u"", 0) != UCOL_EQUAL)
        {
            return false; // counts, but only behind the letters: the tables can't say that
        }
    }
    std::stable_sort(counted.begin(), counted.end(),
                     [&](UChar a, UChar b) { return compareOne(collator, a, b) == UCOL_LESS; });
    for (std::size_t i = 0; i < counted.size(); ++i)
    {
        const UChar ch = counted[i];
        const UChar before = i == 0 ? UChar{0} : counted[i - 1];
        const bool alike = i != 0 && compareOne(primary, before, ch) == UCOL_EQUAL;
        if (alike && compareOne(secondary, before, ch) != UCOL_EQUAL)
        {
            return false;
        }
        const BYTE last = i == 0 ? BYTE{0} : m_rank[before];
        m_rank[ch] = static_cast<BYTE>(alike ? last : last + 1);
        const bool sameVariant = alike && compareOne(collator, before, ch) == UCOL_EQUAL;
        m_variant[ch] = static_cast<BYTE>(!alike ? 0 : sameVariant ? m_variant[before] : m_variant[before] + 1);
    }
    return true;
}

namespace
{
/// Where a comparison is in a text of known length.
class CountedCursor
{
  public:
    CountedCursor(const WCHAR *at, const WCHAR *end) : m_at(at), m_end(end)
    {
    }
    bool atEnd() const
    {
        return m_at == m_end;
    }
    WCHAR here() const
    {
        return *m_at;
    }
    /// The character behind this one, or 0. Not at the end.
    WCHAR next() const
    {
        return m_at + 1 == m_end ? WCHAR{0} : m_at[1];
    }
    void step()
    {
        ++m_at;
    }

  private:
    const WCHAR *m_at;
    const WCHAR *m_end;
};

/// The same in a text that ends with a zero.
class TerminatedCursor
{
  public:
    explicit TerminatedCursor(const WCHAR *at) : m_at(at)
    {
    }
    bool atEnd() const
    {
        return *m_at == 0;
    }
    WCHAR here() const
    {
        return *m_at;
    }
    WCHAR next() const
    {
        return m_at[1];
    }
    void step()
    {
        ++m_at;
    }

  private:
    const WCHAR *m_at;
};
} // namespace

// What both texts begin with counts alike, whatever it is, unless its last character could join the next.

std::optional<int> AsciiOrder::compare(std::u16string_view a, std::u16string_view b, bool ignoreCase) const
{
    const WCHAR *const aEnd = a.data() + a.size();
    const WCHAR *const bEnd = b.data() + b.size();
    const auto [aAt, bAt] = std::mismatch(a.data(), aEnd, b.data(), bEnd);
    if (aAt == aEnd && bAt == bEnd)
    {
        return 0;
    }
    if (aAt != a.data() && aAt[-1] >= size)
    {
        return std::nullopt;
    }
    return compareRest(CountedCursor(aAt, aEnd), CountedCursor(bAt, bEnd), m_variantsCount && !ignoreCase);
}

std::optional<int> AsciiOrder::compare(const WCHAR *a, const WCHAR *b, bool ignoreCase) const
{
    std::size_t at = 0;
    while (a[at] == b[at] && a[at] != 0)
    {
        ++at;
    }
    if (a[at] == b[at])
    {
        return 0;
    }
    if (at != 0 && a[at - 1] >= size)
    {
        return std::nullopt;
    }
    return compareRest(TerminatedCursor(a + at), TerminatedCursor(b + at), m_variantsCount && !ignoreCase);
}

template <typename Cursor>
std::optional<int> AsciiOrder::compareRest(Cursor a, Cursor b, bool variantsCount) const
{
    const auto skipIgnored = [this](Cursor &cursor)
    {
        while (!cursor.atEnd() && cursor.here() < size && m_rank[cursor.here()] == 0)
        {
            cursor.step();
        }
    };
    int variants = 0;
    for (;; a.step(), b.step())
    {
        skipIgnored(a);
        skipIgnored(b);
        const bool aEnds = a.atEnd();
        const bool bEnds = b.atEnd();
        if ((!aEnds && a.here() >= size) || (!bEnds && b.here() >= size))
        {
            return std::nullopt;
        }
        if (aEnds || bEnds)
        {
            return aEnds && bEnds ? variants : aEnds ? -1 : 1;
        }
        if (m_rank[a.here()] != m_rank[b.here()])
        {
            // A mark behind one of the two could still make another letter of it.
            if (a.next() >= size || b.next() >= size)
            {
                return std::nullopt;
            }
            return m_rank[a.here()] < m_rank[b.here()] ? -1 : 1;
        }
        if (variants == 0 && variantsCount)
        {
            variants = static_cast<int>(m_variant[a.here()]) - static_cast<int>(m_variant[b.here()]);
        }
    }
}
} // namespace zb::internal
