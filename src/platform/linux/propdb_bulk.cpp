// BulkWrite: which bulk the calling thread is in.
#include "platform/kernel.h"
#include "platform/linux/store_fault.h"
#include "platform/linux/store_state.h"

#include <utility>

namespace zb
{
namespace
{
struct ThreadBulk
{
    std::shared_ptr<internal::Store> store;
    bool active = false;
    /// The store could not begin one, or a joined one was given up: commit fails with this.
    DWORD error = 0;
};

thread_local ThreadBulk t_bulk;

bool fail(DWORD code)
{
    SetLastError(code);
    return false;
}
} // namespace

BulkWrite::BulkWrite() : m_outer(false), m_open(true)
{
    stoppingPoint();
    if (t_bulk.active)
    {
        return;
    }
    m_outer = true;
    t_bulk = ThreadBulk{nullptr, true, 0};
    try
    {
        t_bulk.store = internal::openedStore();
        if (!t_bulk.store->beginBulk())
        {
            t_bulk.error = GetLastError();
        }
    }
    catch (const internal::StoreFault &fault)
    {
        t_bulk.error = fault.code();
    }
}

BulkWrite::~BulkWrite()
{
    if (!m_open)
    {
        return;
    }
    if (!m_outer)
    {
        // Its writes can't be taken back apart from those of the one it joined.
        t_bulk.error = t_bulk.error == 0 ? ERROR_WRITE_FAULT : t_bulk.error;
        return;
    }
    const DWORD before = GetLastError();
    if (t_bulk.store != nullptr)
    {
        t_bulk.store->endBulk(false);
    }
    t_bulk = ThreadBulk();
    SetLastError(before);
}

bool BulkWrite::commit()
{
    stoppingPoint();
    if (!m_open)
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    m_open = false;
    if (!m_outer)
    {
        return t_bulk.error == 0 || fail(t_bulk.error);
    }
    const ThreadBulk bulk = std::exchange(t_bulk, ThreadBulk());
    const bool ended = bulk.store != nullptr && bulk.store->endBulk(bulk.error == 0);
    return bulk.error == 0 ? ended : fail(bulk.error);
}
} // namespace zb
