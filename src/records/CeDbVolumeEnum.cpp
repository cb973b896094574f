#include "records/CeDbVolumeEnum.h"

#include <iterator>

namespace
{
constexpr DWORD allOnes = 0xFFFFFFFFU;
constexpr CEGUID noVolume = {allOnes, allOnes, allOnes, allOnes};
} // namespace

CeDbVolumeEnum::CeDbVolumeEnum() : m_guid(noVolume), m_szName{}
{
}

bool CeDbVolumeEnum::First()
{
    m_guid = noVolume;
    return Next();
}

bool CeDbVolumeEnum::Next()
{
    return CeEnumDBVolumes(&m_guid, m_szName, static_cast<DWORD>(std::size(m_szName))) != FALSE;
}
