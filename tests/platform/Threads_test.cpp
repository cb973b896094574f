#include "platform/kernel.h"

#include <gtest/gtest.h>

namespace
{
DWORD doubled(void *argument)
{
    return *static_cast<DWORD *>(argument) * 2;
}

TEST(Threads, EndWithTheValueOfTheirStart)
{
    DWORD value = 21;
    DWORD id = 0;
    HANDLE thread = CreateThread(nullptr, 0, doubled, &value, 0, &id);
    ASSERT_NE(thread, nullptr);
    EXPECT_NE(id, 0U);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 42U);
    EXPECT_TRUE(CloseHandle(thread));
}
} // namespace
