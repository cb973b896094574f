// The tables of texts as compile_texts writes them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zb::resources
{
struct Text
{
    std::uint32_t number;
    std::uint32_t length; ///< characters, without the terminating zero
    const char16_t *words;
};

struct Language
{
    const char *name;  ///< of the table's file: "en", "de", "pt-BR"
    const Text *texts; ///< by rising number
    std::size_t count;
};

extern const Language *const languages;
extern const std::size_t languageCount;
} // namespace zb::resources
