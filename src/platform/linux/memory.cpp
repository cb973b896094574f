// Local memory: malloc blocks that remember the size they were asked for in the 16 bytes in front of them.
#include "platform/kernel.h"

#include <cstdlib>
#include <cstring>

namespace
{
/// As wide as malloc's own alignment, so that the block keeps it.
struct alignas(std::max_align_t) BlockHeader
{
    std::size_t bytes;
};

BlockHeader *headerOf(void *block)
{
    return static_cast<BlockHeader *>(block) - 1;
}

const BlockHeader *headerOf(const void *block)
{
    return static_cast<const BlockHeader *>(block) - 1;
}

void *finish(BlockHeader *header, std::size_t bytes)
{
    if (header == nullptr)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    header->bytes = bytes;
    return header + 1;
}

bool isTooLarge(std::size_t bytes)
{
    return bytes > PTRDIFF_MAX - sizeof(BlockHeader);
}
} // namespace

void *LocalAlloc(UINT flags, std::size_t bytes)
{
    zb::stoppingPoint();
    if (isTooLarge(bytes))
    {
        return finish(nullptr, bytes);
    }
    const std::size_t whole = bytes + sizeof(BlockHeader);
    void *raw = (flags & LMEM_ZEROINIT) != 0 ? std::calloc(1, whole) : std::malloc(whole);
    return finish(static_cast<BlockHeader *>(raw), bytes);
}

void *LocalReAlloc(void *block, std::size_t bytes, UINT flags)
{
    zb::stoppingPoint();
    if (block == nullptr)
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    if (isTooLarge(bytes))
    {
        return finish(nullptr, bytes);
    }
    const std::size_t former = headerOf(block)->bytes;
    void *grown = finish(static_cast<BlockHeader *>(std::realloc(headerOf(block), bytes + sizeof(BlockHeader))), bytes);
    if (grown != nullptr && (flags & LMEM_ZEROINIT) != 0 && bytes > former)
    {
        std::memset(static_cast<char *>(grown) + former, 0, bytes - former);
    }
    return grown;
}

void *LocalFree(void *block)
{
    if (block != nullptr)
    {
        std::free(headerOf(block));
    }
    return nullptr;
}

std::size_t LocalSize(const void *block)
{
    return block == nullptr ? 0 : headerOf(block)->bytes;
}
