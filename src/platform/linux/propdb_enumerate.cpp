// Enumerations: of databases, and of the one volume that a device has.
#include "platform/kernel.h"
#include "platform/linux/handles.h"
#include "platform/linux/store_fault.h"
#include "platform/linux/store_state.h"

namespace zb::internal
{
namespace
{
constexpr std::u16string_view systemVolumeName = u"System";

/// Holds the last id it gave, so databases may come and go meanwhile.
class DatabaseSearch final : public HandleObject
{
  public:
    DatabaseSearch(std::shared_ptr<Store> store, DWORD type)
        : HandleObject(HandleKind::FindDatabase), m_store(std::move(store)), m_type(type)
    {
    }

    /// 0 at the end.
    CEOID next()
    {
        ReadAccess access(*m_store);
        Statement found(access.connection(), Query::DatabaseAfter);
        found.bind(1, m_last).bind(2, m_type);
        if (!found.step())
        {
            return 0;
        }
        m_last = static_cast<CEOID>(found.integer(0));
        return m_last;
    }

  private:
    std::shared_ptr<Store> m_store;
    DWORD m_type;
    CEOID m_last = 0;
};
} // namespace
} // namespace zb::internal

using namespace zb::internal;

HANDLE CeFindFirstDatabase(DWORD type)
{
    zb::stoppingPoint();
    return storeCall(INVALID_HANDLE_VALUE,
                     [&]
                     {
                         const HANDLE handle = insertHandle(std::make_shared<DatabaseSearch>(openedStore(), type));
                         return handle == nullptr ? INVALID_HANDLE_VALUE : handle;
                     });
}

CEOID CeFindNextDatabase(HANDLE find)
{
    zb::stoppingPoint();
    const auto search = findAs<DatabaseSearch>(find, HandleKind::FindDatabase);
    if (search == nullptr)
    {
        return 0;
    }
    return storeCall<CEOID>(0,
                            [&]
                            {
                                const CEOID oid = search->next();
                                // Callers tell the end by the last error alone, so success clears an old one.
                                SetLastError(oid == 0 ? ERROR_NO_MORE_ITEMS : ERROR_SUCCESS);
                                return oid;
                            });
}

BOOL CeEnumDBVolumes(CEGUID *volume, WCHAR *name, DWORD size)
{
    zb::stoppingPoint();
    if (volume == nullptr || name == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    constexpr DWORD none = 0xFFFFFFFFU;
    if ((volume->Data1 & volume->Data2 & volume->Data3 & volume->Data4) != none)
    {
        SetLastError(ERROR_NO_MORE_ITEMS);
        return FALSE;
    }
    if (size <= systemVolumeName.size())
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    *volume = CEGUID{};
    name[systemVolumeName.copy(name, systemVolumeName.size())] = 0;
    return TRUE;
}
