#include "platform/linux/handles.h"

#include "platform/kernel.h"

#include <array>
#include <atomic>
#include <mutex>
#include <vector>

namespace zb::internal
{
namespace
{
constexpr std::size_t slotBits = 20;
constexpr std::size_t chunkBits = 10;
constexpr std::size_t chunkSize = std::size_t{1} << chunkBits;
constexpr std::size_t chunkCount = std::size_t{1} << (slotBits - chunkBits);

/// Guards a few instructions; never held over a call that can block.
class SpinLock
{
  public:
    void lock()
    {
        while (m_flag.test_and_set(std::memory_order_acquire))
        {
            m_flag.wait(true, std::memory_order_relaxed);
        }
    }
    void unlock()
    {
        m_flag.clear(std::memory_order_release);
        m_flag.notify_one();
    }

  private:
    std::atomic_flag m_flag;
};

struct Slot
{
    SpinLock lock;
    std::uint32_t generation = 1;
    std::shared_ptr<HandleObject> object;
};

using Chunk = std::array<Slot, chunkSize>;

struct Table
{
    std::mutex mutex;
    std::array<std::atomic<Chunk *>, chunkCount> chunks{};
    std::vector<std::uint32_t> freeSlots;
    std::uint32_t used = 0;
};

/// Never destroyed: threads parked for good may outlive the end of main.
Table &table()
{
    static auto *instance = new Table;
    return *instance;
}

Slot *slotAt(std::size_t index)
{
    Chunk *chunk = table().chunks[index >> chunkBits].load(std::memory_order_acquire);
    return chunk == nullptr ? nullptr : &(*chunk)[index & (chunkSize - 1)];
}

HANDLE valueOf(std::uint32_t generation, std::size_t index)
{
    return reinterpret_cast<HANDLE>((static_cast<std::uintptr_t>(generation) << (slotBits + 2)) | (index << 2U) | 2U);
}

struct Decoded
{
    std::uint32_t generation;
    std::size_t index;
    bool valid;
};

Decoded decode(HANDLE handle)
{
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    const auto generation = value >> (slotBits + 2);
    return {static_cast<std::uint32_t>(generation), (value >> 2U) & ((std::size_t{1} << slotBits) - 1),
            (value & 3U) == 2 && generation != 0 && generation <= 0xFFFFFFFFU};
}

bool matches(const Slot &slot, const Decoded &wanted, HandleKind kind)
{
    return slot.object != nullptr && slot.generation == wanted.generation &&
           (kind == HandleKind::Free || slot.object->kind() == kind);
}

std::shared_ptr<HandleObject> refuse()
{
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}
} // namespace

HANDLE insertHandle(std::shared_ptr<HandleObject> object)
{
    Table &all = table();
    std::size_t index = 0;
    {
        const std::lock_guard guard(all.mutex);
        if (!all.freeSlots.empty())
        {
            index = all.freeSlots.back();
            all.freeSlots.pop_back();
        }
        else
        {
            index = all.used;
            if ((index >> slotBits) != 0)
            {
                SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                return nullptr;
            }
            if ((index & (chunkSize - 1)) == 0)
            {
                all.chunks[index >> chunkBits].store(new Chunk, std::memory_order_release);
            }
            ++all.used;
        }
    }
    Slot *slot = slotAt(index);
    const std::lock_guard guard(slot->lock);
    slot->object = std::move(object);
    return valueOf(slot->generation, index);
}

std::shared_ptr<HandleObject> findHandle(HANDLE handle, HandleKind kind)
{
    const Decoded wanted = decode(handle);
    Slot *slot = wanted.valid ? slotAt(wanted.index) : nullptr;
    if (slot != nullptr)
    {
        const std::lock_guard guard(slot->lock);
        if (matches(*slot, wanted, kind))
        {
            return slot->object;
        }
    }
    return refuse();
}

std::shared_ptr<HandleObject> findHandle(HANDLE handle)
{
    return findHandle(handle, HandleKind::Free);
}

std::shared_ptr<HandleObject> removeHandle(HANDLE handle, HandleKind kind, bool *closed)
{
    const Decoded wanted = decode(handle);
    Slot *slot = wanted.valid ? slotAt(wanted.index) : nullptr;
    if (slot == nullptr)
    {
        return refuse();
    }
    std::shared_ptr<HandleObject> object;
    {
        const std::lock_guard guard(slot->lock);
        if (!matches(*slot, wanted, kind))
        {
            return refuse();
        }
        object = std::move(slot->object);
        slot->object = nullptr;
        // Generation 0 would make an invalid handle; a slot comes round to it after four thousand million uses.
        slot->generation = slot->generation == 0xFFFFFFFFU ? 1 : slot->generation + 1;
    }
    {
        Table &all = table();
        const std::lock_guard guard(all.mutex);
        all.freeSlots.push_back(static_cast<std::uint32_t>(wanted.index));
    }
    const bool result = object->onClose();
    if (closed != nullptr)
    {
        *closed = result;
    }
    return object;
}

namespace
{
std::vector<HANDLE> allHandles(HandleKind kind)
{
    std::vector<HANDLE> found;
    std::uint32_t used = 0;
    {
        const std::lock_guard guard(table().mutex);
        used = table().used;
    }
    for (std::size_t index = 0; index < used; ++index)
    {
        Slot *slot = slotAt(index);
        const std::lock_guard guard(slot->lock);
        if (slot->object != nullptr && slot->object->kind() == kind)
        {
            found.push_back(valueOf(slot->generation, index));
        }
    }
    return found;
}
} // namespace

void removeAllHandles(HandleKind kind)
{
    for (HANDLE handle : allHandles(kind))
    {
        removeHandle(handle, kind);
    }
}

std::size_t liveHandles(HandleKind kind)
{
    return allHandles(kind).size();
}
} // namespace zb::internal
