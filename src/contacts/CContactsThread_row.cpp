// One row: whether a contact is wanted, its name, its number, and what else shows of it.
#include "contacts/CContactsThread.h"

#include "platform/pim.h"
#include "platform/text.h"
#include "records/FullCategories.h"

#include <algorithm>
#include <cstdlib>

namespace
{
enum RowProperty : int
{
    ROW_ICON,
    ROW_NOTES,
    ROW_FIRST_NUMBER
};

/// Kind n of the settings stands for the property at index n - 2.
constexpr int numberKindOffset = 2;
/// Blobs up to this size count as empty notes.
constexpr DWORD emptyBlobSize = 4;
/// Characters of a name that is put together.
constexpr std::size_t longestName = 2'000;

constexpr std::array<CEPROPID, 2> alwaysRead{zb::itemExtraText, zb::itemNotes};
constexpr std::array<CEPROPID, 15> numbers{
    zb::contactBusinessPhone,  zb::contactMobilePhone, zb::contactCarPhone,       zb::contactHomePhone,
    zb::contactEmail1,         zb::contactEmail2,      zb::contactEmail3,         zb::contactBusiness2Phone,
    zb::contactHome2Phone,     zb::contactBusinessFax, zb::contactRadioPhone,     zb::contactPager,
    zb::contactAssistantPhone, zb::contactHomeFax,     zb::contactPreferredNumber};
/// What only a deep search looks at. Kept: the postal code of the home address is not among them.
constexpr std::array<CEPROPID, 19> searchedDeep{zb::contactBusinessAddress,
                                                zb::contactBusinessAddress + 0x10000,
                                                zb::contactBusinessAddress + 0x20000,
                                                zb::contactBusinessAddress + 0x30000,
                                                zb::contactBusinessAddress + 0x40000,
                                                zb::contactHomeAddress,
                                                zb::contactHomeAddress + 0x10000,
                                                zb::contactHomeAddress + 0x20000,
                                                zb::contactHomeAddress + 0x40000,
                                                zb::contactAssistant,
                                                zb::contactWebPage,
                                                zb::contactOffice,
                                                zb::contactDepartment,
                                                zb::contactJobTitle,
                                                zb::contactOtherAddress,
                                                zb::contactOtherAddress + 0x10000,
                                                zb::contactOtherAddress + 0x20000,
                                                zb::contactOtherAddress + 0x30000,
                                                zb::contactOtherAddress + 0x40000};

std::u16string_view viewOf(BSTR text)
{
    return text != nullptr ? std::u16string_view(text) : std::u16string_view();
}

/// Both texts with the joint between them, or the one that there is.
std::u16string joined(std::u16string_view first, const WCHAR *joint, std::u16string_view second)
{
    std::u16string name(first);
    if (!first.empty() && !second.empty())
    {
        name += joint;
    }
    name += second;
    if (!first.empty() && !second.empty() && name.size() > longestName)
    {
        name.resize(longestName);
    }
    return name;
}
} // namespace

int CContactsThread::SetPropIds(bool)
{
    auto at = std::copy(alwaysRead.begin(), alwaysRead.end(), m_propIds.begin());
    m_nPreferredIndex = -1;
    if (m_settings.ShowNamesOnly == 0 || m_bDeep)
    {
        at = std::copy(numbers.begin(), numbers.end(), at);
        m_nPreferredIndex = static_cast<int>(at - m_propIds.begin()) - 1;
    }
    if (m_bDeep)
    {
        at = std::copy(searchedDeep.begin(), searchedDeep.end(), at);
    }
    m_nPropIds = static_cast<int>(at - m_propIds.begin());
    return m_nPropIds;
}

/// The walk stands on a contact's record, or came to it in a few steps, which are cheaper than a search.
bool CContactsThread::StepTo(Walk &walk, CEOID oid)
{
    if (!walk.database.IsOpen() || walk.at == oid)
    {
        return walk.database.IsOpen();
    }
    int steps = 0;
    CEOID at = 0;
    do
    {
        at = walk.database.SeekNext();
        ++steps;
    } while (at != 0 && at != oid && steps < MOST_STEPS);
    if (at != oid)
    {
        // Back, but for one step: whoever comes next may be among those that were passed.
        at = steps > 1 ? walk.database.SeekCurrent(1 - steps) : at;
    }
    walk.at = at;
    return at == oid;
}

/// To a contact's record; null when it is gone. Where the display's order is much like that of the records, the next
/// contact lies a few steps on from the one before, or, since records lie by the codes of their letters, from the last
/// one with an accent: so two walks take turns. Where steps lead nowhere they are left out but now and then.
CeDb *CContactsThread::SeekOn(CEOID oid)
{
    constexpr int mostMisses = 4;
    constexpr int missesBetweenTries = 16;
    if (m_nMisses < mostMisses || m_nMisses % missesBetweenTries == 0)
    {
        for (const std::size_t turn : {m_nWalk, 1 - m_nWalk})
        {
            if (StepTo(m_walks[turn], oid))
            {
                m_nWalk = turn;
                m_nMisses = 0;
                return &m_walks[turn].database;
            }
        }
    }
    ++m_nMisses;
    m_nWalk = 1 - m_nWalk;
    Walk &walk = m_walks[m_nWalk];
    if (!walk.database.IsOpen() && !OpenContacts(walk.database))
    {
        return nullptr;
    }
    walk.at = walk.database.SeekTo(oid);
    return walk.at != 0 ? &walk.database : nullptr;
}

/// Reads the contact's record, unless it was read just before.
bool CContactsThread::ReadItem(const CCatCache &item)
{
    if (m_pRecord != nullptr && m_oidRead == item.m_oid)
    {
        return true;
    }
    CeDb *database = IsDatabaseOpen() ? SeekOn(item.m_oid) : nullptr;
    m_pRecord =
        database != nullptr ? m_reader.read(*database, static_cast<WORD>(m_nPropIds), m_propIds.data()) : nullptr;
    m_oidRead = item.m_oid;
    return m_pRecord != nullptr;
}

bool CContactsThread::IsWanted(const CCatCache &item, LONG nNode, bool bSkipSearch, bool bFilter)
{
    const bool tested = m_settings.CV_DisplayFormat != contactsCategories && (nNode != 0 || bFilter);
    return (!tested || PassesFilter(item)) && (bSkipSearch || !m_bSearch || CheckContactsSearchCriteria(item)) &&
           ReadItem(item);
}

DATACONTACTS *CContactsThread::AddContactItem(bool *pbAdded, int nIndex, LONG nNode, bool bSkipSearch, bool bFilter)
{
    const CCatCache *item = CurrentItem();
    *pbAdded = item != nullptr && item->m_oid != 0 && IsWanted(*item, nNode, bSkipSearch, bFilter);
    if (!*pbAdded)
    {
        if (nIndex >= 0 && nNode == 0)
        {
            DropRow(nIndex);
        }
        return nullptr;
    }
    constexpr int countOnly = -2;
    if (nIndex == countOnly)
    {
        return nullptr;
    }
    DATACONTACTS *row = RowFor(nIndex, nNode);
    const bool alone = !m_bLinksOpen;
    InitiateLinksDB();
    FillRow(*row, *item, nNode);
    if (alone)
    {
        CloseLinksDB();
    }
    return row;
}

void CContactsThread::DropRow(int nIndex)
{
    if (m_lstRows.RemoveAt(nIndex) == CELIST_OK)
    {
        m_lstRows.SetDisplayCount(m_lstRows.GetDisplayCount() - (nIndex <= m_lstRows.GetDisplayCount() ? 1 : 0));
    }
}

/// The row at the index, emptied, or a new one.
DATACONTACTS *CContactsThread::RowFor(int nIndex, LONG nNode)
{
    DATACONTACTS *row = nIndex >= 0 && nNode == 0 ? m_lstRows.GetAt(nIndex) : nullptr;
    if (row != nullptr)
    {
        row->NullData();
        return row;
    }
    auto made = std::make_unique<DATACONTACTS>();
    if (nIndex < 1)
    {
        m_lstRows.AddTail(made.get());
    }
    else if (nNode != 0)
    {
        m_lstRows.InsertAt(nIndex, made.get());
    }
    else if (m_lstRows.SetAt(nIndex, made.get()) != CELIST_OK)
    {
        m_lstRows.AddTail(made.get());
    }
    return made.release();
}

void CContactsThread::FillRow(DATACONTACTS &row, const CCatCache &item, LONG nNode)
{
    const CeDbRecord &record = *m_pRecord;
    row.m_oid = item.m_oid;
    row.m_bHasNotes = record.IsPresent(ROW_NOTES) && record.GetProps()[ROW_NOTES].val.blob.dwCount > emptyBlobSize;
    CeList<unsigned int> ids;
    BLOB2Categories(CEBLOB{item.m_cbCategories, item.m_pCategories}, ids);
    row.m_pszCategories = ids.IsEmpty() ? _wcsdup(u"") : CategoryAssembler(ids);
    row.m_pszIcon = _wcsdup(TextAt(ROW_ICON));
    row.m_pszName = _wcsdup(NameOf(item).c_str());
    FillDetail(row);
    row.m_bSortLast = false;
    row.m_nNode = nNode;
    row.m_nSortGroup = nNode;
    row.m_bLoaded = true;
    ReadLinkFlags(row);
}

std::u16string CContactsThread::NameOf(const CCatCache &item) const
{
    LONG format = m_settings.CV_DisplayFormat;
    if (format == contactsCompanies)
    {
        format = m_settings.CV_DisplayFormatCompany == 0 ? contactsFirstName : contactsLastName;
    }
    std::u16string name;
    if (format == contactsFirstName)
    {
        name = joined(viewOf(item.m_bstrFirstName), u" ", viewOf(item.m_bstrLastName));
    }
    else if (format == contactsLastName)
    {
        name = joined(viewOf(item.m_bstrLastName), u", ", viewOf(item.m_bstrFirstName));
    }
    return name.empty() ? std::u16string(viewOf(item.m_bstrFileAs)) : name;
}

/// Null when the record has no such text or an empty one.
const WCHAR *CContactsThread::TextAt(int index) const
{
    const WCHAR *text = m_pRecord->IsPresent(index) ? m_pRecord->GetProps()[index].val.lpwstr : nullptr;
    return text != nullptr && *text != 0 ? text : nullptr;
}

/// Index of the number that the contact's owner chose; -1 when none was chosen or it has no text.
int CContactsThread::PreferredIndex() const
{
    ULONG chosen = 0;
    if (!m_pRecord->GetIndexVal(m_nPreferredIndex, chosen) || chosen == zb::contactPreferredNumber)
    {
        return -1;
    }
    const auto *first = m_propIds.data() + ROW_FIRST_NUMBER;
    const auto *last = m_propIds.data() + m_nPreferredIndex;
    const auto *found = std::find(first, last, chosen);
    const int index = static_cast<int>(found - m_propIds.data());
    return found != last && TextAt(index) != nullptr ? index : -1;
}

void CContactsThread::FillDetail(DATACONTACTS &row) const
{
    int index = -1;
    if (m_settings.ShowNamesOnly == 0 && m_nPreferredIndex >= 0)
    {
        index = PreferredIndex();
        for (std::size_t i = 0; index < 0 && i < contactNumberKinds; ++i)
        {
            const int kind = static_cast<int>(m_settings.CV_dwNumberType[i]) - numberKindOffset;
            index = TextAt(kind) != nullptr ? kind : -1;
        }
    }
    row.m_pszDetail = _wcsdup(index >= 0 ? TextAt(index) : u"");
    row.m_propDetail = index >= 0 ? m_propIds[static_cast<std::size_t>(index)] : 0;
}

void CContactsThread::ReadLinkFlags(DATACONTACTS &row)
{
    m_keyLinks.val.lVal = m_keyJournal.val.lVal = static_cast<LONG>(row.m_oid);
    row.m_bHasLinks = m_dbLinks.IsOpen() && m_dbLinks.SeekRec(&m_keyLinks) != 0 ? 1 : 0;
    row.m_bHasJournal = m_dbJournal.IsOpen() && m_dbJournal.SeekRec(&m_keyJournal) != 0 ? 1 : 0;
}
