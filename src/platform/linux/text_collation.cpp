// The order of texts: ICU's collators, one for each locale and strength, made when first asked for.
//
// A collator's third strength holds letter case, kana type and width together. When all three are ignored the
// strength is lowered; when only some are, those are taken out of the texts before they are compared.
#include "platform/kernel.h"
#include "platform/linux/current_locale.h"
#include "platform/linux/text_ascii_order.h"
#include "platform/linux/text_folding.h"
#include "platform/text.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>

namespace zb::internal
{
namespace
{
constexpr DWORD stringSort = 0x1000;
constexpr DWORD thirdStrength = NORM_IGNORECASE | NORM_IGNOREKANATYPE | NORM_IGNOREWIDTH;
constexpr DWORD knownFlags = thirdStrength | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | stringSort;

constexpr bool has(DWORD flags, DWORD mask)
{
    return (flags & mask) == mask;
}

/// A text as the call was given it: a negative length means up to the zero.
struct GivenText
{
    const WCHAR *text;
    int length;

    std::u16string_view view() const
    {
        return length < 0 ? std::u16string_view(text) : std::u16string_view(text, static_cast<std::size_t>(length));
    }
};

/// One collator with its settings, and its tables for ASCII text if it has any. Used from all threads, never changed.
class TextOrder
{
  public:
    TextOrder(const std::string &locale, UCollationStrength strength, bool ignoreSymbols)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_collator = ucol_open(locale.c_str(), &status);
        if (U_FAILURE(status))
        {
            m_collator = nullptr;
            return;
        }
        ucol_setStrength(m_collator, strength);
        if (ignoreSymbols)
        {
            ucol_setMaxVariable(m_collator, UCOL_REORDER_CODE_CURRENCY, &status);
            ucol_setAttribute(m_collator, UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
        }
        m_ascii = AsciiOrder::of(m_collator);
    }
    TextOrder(const TextOrder &) = delete;
    TextOrder &operator=(const TextOrder &) = delete;
    ~TextOrder() = delete; // lives as long as the process

    /// The tables for ASCII text; null when the locale has none.
    const AsciiOrder *ascii() const
    {
        return m_ascii ? &*m_ascii : nullptr;
    }

    int compare(GivenText a, GivenText b) const
    {
        return m_collator == nullptr ? a.view().compare(b.view())
                                     : ucol_strcoll(m_collator, a.text, a.length, b.text, b.length);
    }

  private:
    UCollator *m_collator = nullptr;
    std::optional<AsciiOrder> m_ascii;
};

/// The orders of one locale.
class LocaleOrders
{
  public:
    explicit LocaleOrders(std::string locale) : m_locale(std::move(locale))
    {
    }

    const TextOrder &order(DWORD flags) const
    {
        const bool symbols = has(flags, NORM_IGNORESYMBOLS);
        const int level = !has(flags, thirdStrength) ? 2 : has(flags, NORM_IGNORENONSPACE) ? 0 : 1;
        const auto &slot = m_slots[static_cast<std::size_t>(level * 2 + (symbols ? 1 : 0))];
        const TextOrder *made = slot.load(std::memory_order_acquire);
        return made != nullptr ? *made : make(level, symbols);
    }

  private:
    const TextOrder &make(int level, bool symbols) const
    {
        constexpr UCollationStrength strengths[] = {UCOL_PRIMARY, UCOL_SECONDARY, UCOL_TERTIARY};
        const std::lock_guard guard(m_making);
        auto &slot = m_slots[static_cast<std::size_t>(level * 2 + (symbols ? 1 : 0))];
        if (slot.load(std::memory_order_relaxed) == nullptr)
        {
            slot.store(new TextOrder(m_locale, strengths[level], symbols), std::memory_order_release);
        }
        return *slot.load(std::memory_order_relaxed);
    }

    std::string m_locale;
    mutable std::mutex m_making;
    mutable std::array<std::atomic<const TextOrder *>, 6> m_slots{};
};

const LocaleOrders &ordersOf(const std::string &locale)
{
    // Never destroyed: threads that outlive main may still compare.
    static auto *mutex = new std::mutex;
    static auto *all = new std::map<std::string, std::unique_ptr<LocaleOrders>>;
    const std::lock_guard guard(*mutex);
    auto &orders = (*all)[locale];
    if (orders == nullptr)
    {
        orders = std::make_unique<LocaleOrders>(locale);
    }
    return *orders;
}

const LocaleOrders &ordersOf(LCID locale)
{
    thread_local DeviceLocaleMemory<LocaleOrders> memory;
    return memory.get(locale, [](const std::string &name) -> const LocaleOrders & { return ordersOf(name); });
}

/// What has to be taken out of the texts, since no strength leaves out just that.
DWORD foldingOf(DWORD flags)
{
    return has(flags, thirdStrength) ? 0 : flags & (thirdStrength | NORM_IGNORENONSPACE);
}

std::optional<int> compareAscii(const AsciiOrder *order, DWORD flags, GivenText a, GivenText b)
{
    if (order == nullptr)
    {
        return std::nullopt;
    }
    const bool ignoreCase = has(flags, NORM_IGNORECASE);
    return a.length < 0 && b.length < 0 ? order->compare(a.text, b.text, ignoreCase)
                                        : order->compare(a.view(), b.view(), ignoreCase);
}

int compareTexts(LCID locale, DWORD flags, GivenText a, GivenText b)
{
    const TextOrder &order = ordersOf(locale).order(flags);
    if (const auto ascii = compareAscii(order.ascii(), flags, a, b))
    {
        return *ascii;
    }
    const DWORD folding = foldingOf(flags);
    if (folding == 0)
    {
        return order.compare(a, b);
    }
    const std::u16string left = foldedText(a.view(), folding);
    const std::u16string right = foldedText(b.view(), folding);
    return order.compare({left.data(), static_cast<int>(left.size())}, {right.data(), static_cast<int>(right.size())});
}
} // namespace
} // namespace zb::internal

int CompareStringW(LCID locale, DWORD flags, const WCHAR *a, int aLength, const WCHAR *b, int bLength)
{
    using namespace zb::internal;
    if (a == nullptr || b == nullptr || (flags & ~knownFlags) != 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const int result = compareTexts(locale, flags, {a, std::max(aLength, -1)}, {b, std::max(bLength, -1)});
    return result < 0 ? CSTR_LESS_THAN : result == 0 ? CSTR_EQUAL : CSTR_GREATER_THAN;
}

namespace
{
int compareWithNull(const WCHAR *a, const WCHAR *b, DWORD flags)
{
    if (a == nullptr || b == nullptr)
    {
        return static_cast<int>(a != nullptr) - static_cast<int>(b != nullptr);
    }
    return CompareStringW(LOCALE_USER_DEFAULT, flags, a, -1, b, -1) - CSTR_EQUAL;
}
} // namespace

int lstrcmpW(const WCHAR *a, const WCHAR *b)
{
    return compareWithNull(a, b, 0);
}

int lstrcmpiW(const WCHAR *a, const WCHAR *b)
{
    return compareWithNull(a, b, NORM_IGNORECASE);
}
