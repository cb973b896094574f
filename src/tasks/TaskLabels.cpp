// Texts of group headers.
#include "tasks/TaskLabels.h"

#include "platform/resources.h"

#include <array>

namespace zb
{
std::u16string taskLabel(UINT label)
{
    std::array<WCHAR, 140> text{};
    LoadStringW(nullptr, label, text.data(), static_cast<int>(text.size()));
    return text.data();
}
} // namespace zb
