#include "records/CeDbEnum.h"

#include "platform/kernel.h"

CeDbEnum::CeDbEnum() : m_hFind(INVALID_HANDLE_VALUE), m_oid(0), m_bInfoValid(false), m_info{}
{
}

CeDbEnum::~CeDbEnum()
{
    close();
}

void CeDbEnum::close()
{
    if (m_hFind != INVALID_HANDLE_VALUE)
    {
        CloseHandle(m_hFind);
        m_hFind = INVALID_HANDLE_VALUE;
    }
}

bool CeDbEnum::First(DWORD type)
{
    close();
    m_hFind = CeFindFirstDatabase(type);
    m_oid = 0;
    m_bInfoValid = false;
    return m_hFind != INVALID_HANDLE_VALUE;
}

bool CeDbEnum::Next(bool getInfo)
{
    m_oid = CeFindNextDatabase(m_hFind);
    m_bInfoValid = false;
    // The end is id 0 with last error 259. Any other failure ends the walk as well: on a dead handle the error would be
    // another one for ever, and a loop over Next would not stop.
    if (m_oid == 0)
    {
        return false;
    }
    if (getInfo)
    {
        GetInfo();
    }
    return true;
}

bool CeDbEnum::GetInfo()
{
    if (!m_bInfoValid)
    {
        m_bInfoValid = m_oid != 0 && CeOidGetInfo(m_oid, &m_info) && m_info.wObjType == OBJTYPE_DATABASE;
        if (!m_bInfoValid)
        {
            m_info = CEOIDINFO{};
        }
    }
    return m_bInfoValid;
}

bool CeDbEnum::GetInfo(CEDBASEINFO &info)
{
    if (!GetInfo())
    {
        return false;
    }
    info = m_info.infDatabase;
    return true;
}

const CEDBASEINFO &CeDbEnum::info()
{
    GetInfo();
    return m_info.infDatabase;
}

const WCHAR *CeDbEnum::GetName()
{
    return info().szDbaseName;
}

DWORD CeDbEnum::GetFlags()
{
    return info().dwFlags;
}

DWORD CeDbEnum::GetType()
{
    return info().dwDbaseType;
}

WORD CeDbEnum::GetNumRecords()
{
    return info().wNumRecords;
}

WORD CeDbEnum::GetNumSorts()
{
    return info().wNumSortOrder;
}

DWORD CeDbEnum::GetSize()
{
    return info().dwSize;
}

FILETIME CeDbEnum::GetModified()
{
    return info().ftLastModified;
}
