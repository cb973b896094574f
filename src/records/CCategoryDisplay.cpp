// The list of picture files for the chooser of icons.
#include "records/CCategoryDisplay.h"

#include "core/xstrtok.h"
#include "platform/files.h"

namespace
{
constexpr const WCHAR *defaultTypes = u".bmp";
constexpr DWORD sizeLimit = 256000;

bool isIcon(const WIN32_FIND_DATAW &file)
{
    // Kept: the high word is taken off the low one, so a file a little above 4 GiB counts as a small one.
    return (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
           file.nFileSizeLow - file.nFileSizeHigh < sizeLimit;
}
} // namespace

CCategoryDisplay::CCategoryDisplay(const WCHAR *folder) : CCategoryDisplay(folder, nullptr)
{
}

CCategoryDisplay::CCategoryDisplay(const WCHAR *folder, const WCHAR *types)
    : m_strFolder(folder != nullptr ? folder : u"")
{
    SetGraphicTypes(types);
}

bool CCategoryDisplay::Init()
{
    return LoadCategoryIcons() != 0;
}

void CCategoryDisplay::UnInit()
{
    m_list.RemoveAll();
}

void CCategoryDisplay::SetGraphicTypes(const WCHAR *types)
{
    m_strTypes = types != nullptr ? types : defaultTypes;
}

int CCategoryDisplay::LoadCategoryIcons()
{
    m_list.RemoveAll();
    std::u16string types = m_strTypes;
    XSTRTOK state;
    state.m_pszStart = types.data();
    state.m_pszDelimiter = u".";
    while (const WCHAR *type = xstrtok(&state))
    {
        // In front of the first point stands nothing, which is no type.
        if (*type != 0 && !m_strFolder.empty())
        {
            AddFiles(m_strFolder + u"\\*." + type);
        }
    }
    m_list.Sort(true);
    return m_list.GetCount();
}

void CCategoryDisplay::AddFiles(const std::u16string &pattern)
{
    WIN32_FIND_DATAW file{};
    const HANDLE find = FindFirstFileW(pattern.c_str(), &file);
    if (find == INVALID_HANDLE_VALUE)
    {
        return;
    }
    do
    {
        if (isIcon(file))
        {
            m_list.AddString(file.cFileName);
        }
    } while (FindNextFileW(find, &file) != FALSE);
    FindClose(find);
}
