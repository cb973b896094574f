#include "platform/kernel.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace
{
TEST(LocalMemory, RemembersTheSizeAskedFor)
{
    for (std::size_t bytes : {0U, 1U, 7U, 16U, 17U, 1000U, 100'003U})
    {
        void *block = LocalAlloc(LMEM_FIXED, bytes);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(LocalSize(block), bytes);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U);
        std::memset(block, 0xA5, bytes);
        EXPECT_EQ(LocalSize(block), bytes);
        EXPECT_EQ(LocalFree(block), nullptr);
    }
}

TEST(LocalMemory, IsZeroWhenAskedFor)
{
    auto *block = static_cast<unsigned char *>(LocalAlloc(LMEM_ZEROINIT, 4096));
    EXPECT_EQ(std::count(block, block + 4096, 0), 4096);
    LocalFree(block);
}

TEST(LocalMemory, GrowsAndShrinksWithItsContent)
{
    auto *block = static_cast<unsigned char *>(LocalAlloc(LMEM_FIXED, 10));
    std::memset(block, 0x11, 10);
    block = static_cast<unsigned char *>(LocalReAlloc(block, 5000, LMEM_ZEROINIT));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(LocalSize(block), 5000U);
    EXPECT_EQ(std::count(block, block + 10, 0x11), 10);
    EXPECT_EQ(std::count(block + 10, block + 5000, 0), 4990) << "what is new is zero when asked for";
    block = static_cast<unsigned char *>(LocalReAlloc(block, 4, LMEM_FIXED));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(LocalSize(block), 4U);
    EXPECT_EQ(std::count(block, block + 4, 0x11), 4);
    LocalFree(block);
}

TEST(LocalMemory, TakesNull)
{
    EXPECT_EQ(LocalSize(nullptr), 0U);
    EXPECT_EQ(LocalFree(nullptr), nullptr);
    SetLastError(0);
    EXPECT_EQ(LocalReAlloc(nullptr, 5, 0), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(LocalMemory, RefusesSizesBeyondAllMemory)
{
    for (std::size_t bytes : {SIZE_MAX, SIZE_MAX - 8, static_cast<std::size_t>(PTRDIFF_MAX)})
    {
        SetLastError(0);
        EXPECT_EQ(LocalAlloc(LMEM_FIXED, bytes), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    }
    void *block = LocalAlloc(LMEM_FIXED, 3);
    EXPECT_EQ(LocalReAlloc(block, SIZE_MAX, 0), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(LocalSize(block), 3U) << "the old block stays";
    LocalFree(block);
}
} // namespace
