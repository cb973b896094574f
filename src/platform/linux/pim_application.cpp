// The application of the object model, its folders, and how it is found.
#include "platform/device.h"
#include "platform/linux/pim_appointment_object.h"
#include "platform/linux/pim_contact_object.h"
#include "platform/linux/pim_item.h"
#include "platform/linux/pim_outbox.h"
#include "platform/linux/pim_task_object.h"
#include "platform/pim_objects.h"
#include "platform/registry.h"
#include "platform/user.h"

#include <vector>

namespace zb::internal
{
namespace
{
constexpr HRESULT notFound = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
constexpr const WCHAR *settingsKey = u"Software\\PimStore";
constexpr const WCHAR *compatibleValue = u"OutlookCompatible";
constexpr const WCHAR *moduleName = u"pimstore.dll";

HRESULT readItem(const std::shared_ptr<PimStore> &store, CEOID oid, IPOutlookItem **item)
{
    const std::optional<PimKind> kind = PimStore::kindOf(oid);
    if (!kind)
    {
        return notFound;
    }
    StoredItem record;
    if (const HRESULT result = store->read(*kind, oid, record); FAILED(result))
    {
        return result;
    }
    switch (*kind)
    {
    case PimKind::Appointment:
        *item = appointmentOf(store, oid, record);
        break;
    case PimKind::Contact:
        *item = contactOf(store, oid, record);
        break;
    case PimKind::Task:
        *item = taskOf(store, oid, record);
        break;
    }
    return S_OK;
}

class ItemsObject final : public CountedObject<IPOutlookItemCollection>
{
  public:
    ItemsObject(std::shared_ptr<PimStore> store, std::vector<CEOID> oids)
        : m_store(std::move(store)), m_oids(std::move(oids))
    {
    }
    HRESULT get_Count(int *count) override
    {
        return give(m_oids.size(), count);
    }
    HRESULT Item(int index, IPOutlookItem **item) override
    {
        if (item == nullptr)
        {
            return E_POINTER;
        }
        *item = nullptr;
        if (index < 1 || static_cast<std::size_t>(index) > m_oids.size())
        {
            return E_INVALIDARG;
        }
        return readItem(m_store, m_oids[static_cast<std::size_t>(index - 1)], item);
    }

  private:
    std::shared_ptr<PimStore> m_store;
    std::vector<CEOID> m_oids;
};

class DatabaseFolder final : public CountedObject<IFolder>
{
  public:
    DatabaseFolder(std::shared_ptr<PimStore> store, PimKind kind) : m_store(std::move(store)), m_kind(kind)
    {
    }
    HRESULT get_DefaultItemType(int *kind) override
    {
        return give(m_kind, kind);
    }
    HRESULT get_Items(IPOutlookItemCollection **items) override
    {
        if (items == nullptr)
        {
            return E_POINTER;
        }
        std::vector<CEOID> oids;
        const HRESULT result = m_store->all(m_kind, oids);
        *items = SUCCEEDED(result) ? new ItemsObject(m_store, std::move(oids)) : nullptr;
        return result;
    }
    HRESULT AddItemToInfraredFolder(int, IDispatch *) override
    {
        return E_NOTIMPL;
    }
    HRESULT SendToInfrared() override
    {
        return E_NOTIMPL;
    }

  private:
    std::shared_ptr<PimStore> m_store;
    PimKind m_kind;
};

class InfraredFolder final : public CountedObject<IFolder>
{
  public:
    HRESULT get_DefaultItemType(int *kind) override
    {
        return give(0, kind);
    }
    HRESULT get_Items(IPOutlookItemCollection **items) override
    {
        return items == nullptr ? E_POINTER : (*items = nullptr, E_NOTIMPL);
    }
    HRESULT AddItemToInfraredFolder(int kind, IDispatch *item) override
    {
        OutboxItem made;
        HRESULT result = E_INVALIDARG;
        if (const auto appointment = as<IAppointment>(item, kind == olAppointmentItem, IID_IAppointment))
        {
            result = outboxAppointment(*appointment.get(), OutboxMethod::Publish, made);
        }
        else if (const auto contact = as<IContact>(item, kind == olContactItem, IID_IContact))
        {
            result = outboxContact(*contact.get(), made);
        }
        else if (const auto task = as<ITask>(item, kind == olTaskItem, IID_ITask))
        {
            result = outboxTask(*task.get(), made);
        }
        if (SUCCEEDED(result))
        {
            m_waiting.push_back(std::move(made));
        }
        return result;
    }
    HRESULT SendToInfrared() override
    {
        if (m_waiting.empty())
        {
            return E_ABORT;
        }
        const std::vector<OutboxItem> waiting = std::exchange(m_waiting, {});
        HRESULT result = S_OK;
        for (const OutboxItem &item : waiting)
        {
            const HRESULT written = writeOutbox(item);
            result = FAILED(result) ? result : written;
        }
        return result;
    }

  private:
    template <typename Interface>
    static Counted<Interface> as(IDispatch *item, bool isKind, const GUID &id)
    {
        void *found = nullptr;
        if (item == nullptr || !isKind || FAILED(item->QueryInterface(id, &found)))
        {
            return Counted<Interface>();
        }
        return Counted<Interface>(static_cast<Interface *>(found));
    }

    std::vector<OutboxItem> m_waiting;
};

class ApplicationObject final : public CountedObject<IPOutlookApp>
{
  public:
    HRESULT Logon(HWND window) override
    {
        if (deviceGeneration() == 0)
        {
            return HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE);
        }
        if (window != nullptr && IsWindow(window) == FALSE)
        {
            return HRESULT_FROM_WIN32(ERROR_INVALID_WINDOW_HANDLE);
        }
        // A database that its owner deleted is made anew.
        if (FAILED(openAll()) && !createPimDatabases())
        {
            return lastResult();
        }
        return openAll();
    }
    HRESULT Logoff() override
    {
        m_store = std::make_shared<PimStore>(); // items that are still held keep the old one
        return S_OK;
    }
    HRESULT CreateItem(int kind, IDispatch **item) override;
    HRESULT GetItemFromOid(LONG oid, IDispatch **item) override
    {
        if (item == nullptr)
        {
            return E_POINTER;
        }
        IPOutlookItem *found = nullptr;
        const HRESULT result = readItem(m_store, static_cast<CEOID>(oid), &found);
        *item = found;
        return result;
    }
    HRESULT GetDefaultFolder(int folder, IFolder **result) override;
    HRESULT get_OutlookCompatible(VARIANT_BOOL *compatible) override
    {
        HKEY key = nullptr;
        DWORD value = 1;
        DWORD size = sizeof value;
        DWORD type = REG_NONE;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, settingsKey, 0, 0, &key) == 0)
        {
            BYTE bytes[sizeof value] = {};
            if (RegQueryValueExW(key, compatibleValue, nullptr, &type, bytes, &size) == 0 && type == REG_DWORD)
            {
                value = bytes[0] | bytes[1] | bytes[2] | bytes[3];
            }
            RegCloseKey(key);
        }
        return giveFlag(value != 0, compatible);
    }

  protected:
    const GUID &ownInterface() const override
    {
        return IID_IPOutlookApp;
    }

  private:
    HRESULT openAll()
    {
        HRESULT result = S_OK;
        for (const PimKind kind : {PimKind::Appointment, PimKind::Contact, PimKind::Task})
        {
            result = SUCCEEDED(result) ? m_store->open(kind) : result;
        }
        return result;
    }

    std::shared_ptr<PimStore> m_store = std::make_shared<PimStore>();
};

HRESULT ApplicationObject::CreateItem(int kind, IDispatch **item)
{
    if (item == nullptr)
    {
        return E_POINTER;
    }
    switch (kind)
    {
    case olAppointmentItem:
        *item = newAppointment(m_store);
        return S_OK;
    case olContactItem:
        *item = newContact(m_store);
        return S_OK;
    case olTaskItem:
        *item = newTask(m_store);
        return S_OK;
    default:
        *item = nullptr;
        return E_INVALIDARG;
    }
}

HRESULT ApplicationObject::GetDefaultFolder(int folder, IFolder **result)
{
    if (result == nullptr)
    {
        return E_POINTER;
    }
    switch (folder)
    {
    case olFolderCalendar:
        *result = new DatabaseFolder(m_store, PimKind::Appointment);
        return S_OK;
    case olFolderContacts:
        *result = new DatabaseFolder(m_store, PimKind::Contact);
        return S_OK;
    case olFolderTasks:
        *result = new DatabaseFolder(m_store, PimKind::Task);
        return S_OK;
    case olFolderInfrared:
        *result = new InfraredFolder;
        return S_OK;
    default:
        *result = nullptr;
        return E_INVALIDARG;
    }
}

std::u16string serverKey(const GUID &classId)
{
    WCHAR text[39];
    guidText(classId, text);
    return std::u16string(u"CLSID\\") + text + u"\\InProcServer32";
}

bool isRegistered(const GUID &classId)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, serverKey(classId).c_str(), 0, 0, &key) != 0)
    {
        return false;
    }
    RegCloseKey(key);
    return true;
}
} // namespace
} // namespace zb::internal

HRESULT CoCreateInstance(const GUID &classId, IDispatch *outer, DWORD context, const GUID &interfaceId, void **object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr || context != CLSCTX_INPROC_SERVER)
    {
        return E_INVALIDARG;
    }
    if (!(classId == CLSID_Application) || !zb::internal::isRegistered(classId))
    {
        return REGDB_E_CLASSNOTREG;
    }
    const zb::Counted<IPOutlookApp> application(new zb::internal::ApplicationObject);
    return application->QueryInterface(interfaceId, object);
}

void zb::guidText(const GUID &id, WCHAR *text)
{
    std::u16string_view digits = u"0123456789ABCDEF";
    const auto put = [&](DWORD value, int places)
    {
        for (int place = places - 1; place >= 0; --place)
        {
            *text++ = digits[value >> static_cast<unsigned>(place * 4) & 15U];
        }
    };
    *text++ = u'{';
    put(id.Data1, 8);
    *text++ = u'-';
    put(id.Data2, 4);
    *text++ = u'-';
    put(id.Data3, 4);
    *text++ = u'-';
    for (int i = 0; i < 8; ++i)
    {
        put(id.Data4[i], 2);
        if (i == 1)
        {
            *text++ = u'-';
        }
    }
    *text++ = u'}';
    *text = 0;
}

HRESULT zb::registerObjectModel()
{
    HKEY key = nullptr;
    const std::u16string path = internal::serverKey(CLSID_Application);
    LONG error = RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, 0, nullptr, &key, nullptr);
    if (error != 0)
    {
        return HRESULT_FROM_WIN32(static_cast<DWORD>(error));
    }
    const std::u16string module = internal::moduleName;
    error = RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE *>(module.c_str()),
                           static_cast<DWORD>((module.size() + 1) * sizeof(WCHAR)));
    RegCloseKey(key);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(error));
}
