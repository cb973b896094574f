// libZBResources: the system's own texts, pictures, dialogs and menus by number.
#include "dialogs.h"
#include "menus.h"
#include "pictures.h"
#include "texts.h"

#include "platform/resources.h"

#include <algorithm>
#include <string_view>

namespace
{
using zb::resources::Language;
using zb::resources::Picture;
using zb::resources::Text;

const Language *languageNamed(std::string_view name)
{
    const Language *end = zb::resources::languages + zb::resources::languageCount;
    const Language *found =
        std::find_if(zb::resources::languages, end, [&](const Language &language) { return language.name == name; });
    return found == end ? nullptr : found;
}

const Text *textIn(const Language *language, UINT id)
{
    if (language == nullptr)
    {
        return nullptr;
    }
    const Text *end = language->texts + language->count;
    const Text *found =
        std::lower_bound(language->texts, end, id, [](const Text &text, UINT number) { return text.number < number; });
    return found != end && found->number == id ? found : nullptr;
}

/// From the most particular table to English: "pt-BR", then "pt", then "en".
const Text *textFor(UINT id, std::string_view language)
{
    while (!language.empty())
    {
        if (const Text *text = textIn(languageNamed(language), id))
        {
            return text;
        }
        const auto dash = language.rfind('-');
        language = dash == std::string_view::npos ? std::string_view() : language.substr(0, dash);
    }
    return textIn(languageNamed("en"), id);
}
/// The least density that is not below the one asked for; without any, the greatest.
const Picture *pictureFor(UINT id, int dotsPerInch)
{
    const Picture *end = zb::resources::pictures + zb::resources::pictureCount;
    const Picture *picture = std::lower_bound(zb::resources::pictures, end, id,
                                              [](const Picture &one, UINT number) { return one.number < number; });
    const Picture *best = nullptr;
    for (; picture != end && picture->number == id; ++picture)
    {
        best = picture;
        if (picture->dotsPerInch >= dotsPerInch)
        {
            break;
        }
    }
    return best;
}

/// Of a list by rising number.
template <typename Kind>
const Kind *numbered(const Kind *all, std::size_t count, UINT id)
{
    const Kind *end = all + count;
    const Kind *found =
        std::lower_bound(all, end, id, [](const Kind &one, UINT number) { return one.number < number; });
    return found != end && found->number == id ? found : nullptr;
}

struct Bytes
{
    const void *data = nullptr;
    std::size_t size = 0;
};

Bytes bytesOf(UINT type, UINT id, int dotsPerInch)
{
    constexpr UINT bitmapType = 2;
    constexpr UINT menuType = 4;
    constexpr UINT dialogType = 5;
    if (type == bitmapType)
    {
        const Picture *picture = pictureFor(id, dotsPerInch);
        return picture == nullptr ? Bytes{} : Bytes{picture->words, picture->size};
    }
    if (type == menuType)
    {
        const auto *menu = numbered(zb::resources::menus, zb::resources::menuCount, id);
        return menu == nullptr ? Bytes{} : Bytes{menu->bytes, menu->size};
    }
    const auto *dialog =
        type == dialogType ? numbered(zb::resources::dialogs, zb::resources::dialogCount, id) : nullptr;
    return dialog == nullptr ? Bytes{} : Bytes{dialog->bytes, dialog->size};
}
} // namespace

extern "C" __attribute__((visibility("default"))) const WCHAR *zbResourceString(UINT id, const char *language,
                                                                                std::size_t *length);

const WCHAR *zbResourceString(UINT id, const char *language, std::size_t *length)
{
    const Text *text = textFor(id, language == nullptr ? std::string_view() : std::string_view(language));
    if (length != nullptr)
    {
        *length = text == nullptr ? 0 : text->length;
    }
    return text == nullptr ? nullptr : text->words;
}

extern "C" __attribute__((visibility("default"))) const void *zbResourceBytes(UINT type, UINT id, int dotsPerInch,
                                                                              std::size_t *size);

const void *zbResourceBytes(UINT type, UINT id, int dotsPerInch, std::size_t *size)
{
    const Bytes bytes = bytesOf(type, id, dotsPerInch);
    if (size != nullptr)
    {
        *size = bytes.size;
    }
    return bytes.data;
}
