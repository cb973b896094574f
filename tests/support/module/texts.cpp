// libZBTestModule: a resource module of the tests' own, and a few symbols to be found by name.
#include "platform/types.h"

#include <cstring>
#include <string>

namespace
{
struct Entry
{
    UINT id;
    const char16_t *english;
    const char16_t *german; ///< null: English serves
    std::size_t length;     ///< of both; texts of one entry are equally long
};

// The text of 3 holds a zero, which a caller only sees when it goes by the length. Text 4 is cut by its length:
// texts in place need not be terminated.
constexpr Entry entries[] = {
    {1, u"first", u"erste", 5},
    {2, u"", nullptr, 0},
    {3, u"a\0b", nullptr, 3},
    {4, u"cut short", nullptr, 3},
    {0x1234, u"from the module", nullptr, 15},
    {0xFFFF, u"last", nullptr, 4},
};
} // namespace

extern "C" const WCHAR *zbResourceString(UINT id, const char *language, std::size_t *length)
{
    if (id == 5)
    {
        // The language that is asked for, itself.
        static thread_local std::u16string asked;
        asked.assign(language, language + std::strlen(language));
        *length = asked.size();
        return asked.c_str();
    }
    if (id == 40003)
    {
        static const std::u16string longer(300, u'x');
        *length = longer.size();
        return longer.c_str();
    }
    for (const Entry &entry : entries)
    {
        if (entry.id == id)
        {
            const bool german = std::strncmp(language, "de", 2) == 0 && entry.german != nullptr;
            *length = entry.length;
            return german ? entry.german : entry.english;
        }
    }
    return nullptr;
}

extern "C" int zbTestAnswer()
{
    return 42;
}
