// Records, settings and row texts of the contact lists' tests.
#include "contacts/ContactListTest.h"

#include "core/CRegistry.h"
#include "platform/kernel.h"
#include "records/FullCategories.h"
#include "support/CategoryRecords.h"
#include "support/LoaderRecords.h"

namespace zb::test
{
namespace
{
constexpr CEPROPID categoriesId = 0x00160041;

RecordProperties propertiesOf(const ContactItem &item, std::initializer_list<int> categories)
{
    RecordProperties properties = encodeContact(item);
    if (categories.size() != 0)
    {
        properties.set(categoriesId, categoryBlob(categories));
    }
    else
    {
        properties.remove(categoriesId);
    }
    return properties;
}
} // namespace

CEOID writeContact(CEOID oid, const RecordProperties &properties)
{
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Contacts Database", 0, 0, nullptr);
    const CEOID written = CeWriteRecordProps(handle, oid, properties.count(), properties.values());
    CloseHandle(handle);
    return written;
}

CEOID addContact(const ContactItem &item, std::initializer_list<int> categories)
{
    return writeContact(0, propertiesOf(item, categories));
}

CEOID addContact(const std::u16string &first, const std::u16string &last, const std::u16string &company,
                 std::initializer_list<int> categories)
{
    ContactItem item;
    item.firstName = first;
    item.lastName = last;
    item.company = company;
    return addContact(item, categories);
}

CEOID addCompany(const std::u16string &company)
{
    return addContact(u"", u"", company);
}

bool changeContact(CEOID oid, const ContactItem &item, std::initializer_list<int> categories)
{
    return writeContact(oid, propertiesOf(item, categories)) == oid;
}

bool removeContact(CEOID oid)
{
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Contacts Database", 0, 0, nullptr);
    const bool removed = CeDeleteRecord(handle, oid) != FALSE;
    CloseHandle(handle);
    return removed;
}

bool deleteContactsDatabase()
{
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, u"Contacts Database", 0, 0, nullptr));
    return CeDeleteDatabase(oid) != FALSE;
}

void setSetting(const WCHAR *name, DWORD value)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, contactsKey);
    EXPECT_EQ(registry.SetValue(name, value), 0);
}

std::optional<DWORD> setting(const WCHAR *name)
{
    CRegistry registry;
    DWORD value = 0;
    registry.OpenKey(HKEY_CURRENT_USER, contactsKey);
    return registry.QueryValue(name, &value) == 0 ? std::optional(value) : std::nullopt;
}

std::string describe(const DATACONTACTS *row)
{
    if (row == nullptr)
    {
        return "null";
    }
    const std::string name = utf8(row->m_pszName);
    return row->m_bHeader ? "[" + name + " " + utf8(row->m_pszDetail) + (row->m_bOpen ? " +]" : " -]") : name;
}

ContactListTest::ContactListTest()
{
    BulkWrite bulk;
    addCategoryRecord(u"Work", workBit);
    addCategoryRecord(u"Home", homeBit);
    addCategoryRecord(u"Garden", gardenBit);
    bulk.commit();
}

CContactsThread &ContactListTest::loader()
{
    if (m_loader == nullptr)
    {
        m_loader = std::make_unique<CContactsThread>();
    }
    return *m_loader;
}

std::string ContactListTest::load()
{
    loader().LoadContacts(nullptr);
    return shown();
}

std::string ContactListTest::load(LONG value)
{
    display(value);
    return load();
}

std::string ContactListTest::search(const std::u16string &text, bool deep)
{
    loader().SetCompareString(text.c_str(), deep);
    return load();
}

std::string ContactListTest::shown()
{
    std::string text;
    for (int i = 1; i <= loader().GetList().GetDisplayCount(); ++i)
    {
        text += (i == 1 ? "" : "; ") + describe(loader().GetList().GetAt(i));
    }
    return text;
}

std::string ContactListTest::cached()
{
    std::string text;
    for (int i = 0; i < loader().GetCatCache().GetCount(); ++i)
    {
        const BSTR fileAs = loader().GetCatCache().GetPtrAt(i)->m_bstrFileAs;
        text += (i == 0 ? "" : "; ") + (fileAs != nullptr ? utf8(fileAs) : std::string("-"));
    }
    return text;
}

const DATACONTACTS *ContactListTest::row(CEOID oid)
{
    for (int i = 1; i <= loader().GetList().GetCount(); ++i)
    {
        const DATACONTACTS *each = loader().GetList().GetAt(i);
        if (each != nullptr && !each->m_bHeader && each->m_oid == oid)
        {
            return each;
        }
    }
    return nullptr;
}

void ContactListTest::choose(std::initializer_list<int> bits, LONG mode, bool includeNone)
{
    CCategoryFilterInfo *restriction = nullptr;
    loader().GetCategoryRestrict(restriction);
    restriction->m_pSelected->RemoveAll();
    CePtrList<CFullCategory *> all{0, CEOWN_DELETE};
    GetFullCategoryInfo(all, true);
    for (int i = 0; i < all.GetCount(); ++i)
    {
        for (const int bit : bits)
        {
            if (all.GetAt(i)->m_nId == bit)
            {
                restriction->m_pSelected->AddTail(all.GetAt(i)->Copy());
            }
        }
    }
    restriction->bHideCategories = mode;
    restriction->m_bIncludeNoCat = includeNone ? 1 : 0;
    loader().SetCategoryRestrict(true);
}
} // namespace zb::test
