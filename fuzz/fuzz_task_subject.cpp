// Any text as the subject of a task: the parts stay in their bounds, and the rest is a part of the text.
#include "tasks/TaskSubject.h"

#include "platform/text.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::u16string text(size / 2, u'\0');
    std::memcpy(text.data(), data, text.size() * 2);
    WCHAR letter[4];
    WCHAR number[4];
    int days = 0;
    WCHAR *rest = CTask::ParseExtraFromSubjectInt(text.c_str(), letter, number, days);
    const std::size_t length = wcslen(text.c_str());
    const std::size_t restLength = rest != nullptr ? wcslen(rest) : 0;
    const bool isEnd = restLength <= length && std::u16string_view(text.c_str(), length).ends_with(rest);
    if (rest == nullptr || !isEnd || wcslen(letter) > 1 || wcslen(number) > 2)
    {
        std::abort();
    }
    std::free(rest);
    return 0;
}
