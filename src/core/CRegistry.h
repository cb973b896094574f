// The settings store: one interface over two places, chosen for each object, a text file or the device's registry.
//
// The settings of the system live in the text file "%s\Kelvo\Settings.txt", where %s is the base folder; the registry
// serves what other programs read or write. The text file has the form of an INI file whose sections are registry
// paths; CRegistry_file.h tells its layout. A cached file is read once and shared by all objects of the process, so a
// read never touches the disk and objects see each other's unsaved changes.
//
// Results: 0 is success, a negative number failure (0x80004005 unless a registry code, negated, is known). An out
// parameter keeps its value on failure. Threads: an object belongs to one thread; the files behind objects are shared,
// and each call on them is one step that no other thread can divide.
#pragma once

#include "core/CePtrList.h"
#include "core/api.h"
#include "platform/registry.h"
#include "platform/types.h"

#include <memory>
#include <string>
#include <vector>

enum _REGISTRY_TYPE
{
    RegistryTypeFile = 0,
    RegistryTypeRegistry = 1
};

class ZBTOOLS_API CRegistry
{
  public:
    struct INIValue;
    struct INISection;
    class INIFile;

    /// Every cached text file of the process. Grows only.
    static CePtrList<INIFile *> INIFileCache;

    /// What a null path stands for.
    static constexpr const WCHAR *DefaultFile = u"%s\\Kelvo\\Settings.txt";
    static constexpr LONG Failed = static_cast<LONG>(0x80004005U);

    CRegistry();
    explicit CRegistry(_REGISTRY_TYPE type);
    explicit CRegistry(const WCHAR *path);
    CRegistry(_REGISTRY_TYPE type, const WCHAR *path);
    CRegistry(_REGISTRY_TYPE type, const WCHAR *path, int cached);
    /// Registry: closes the key. File: saves a dirty file when no other object uses it.
    ~CRegistry();
    CRegistry(const CRegistry &) = delete;
    CRegistry &operator=(const CRegistry &) = delete;

    /// Chooses the place; a "%s" in the path takes the base folder. 0x80070057 for a null path of a file.
    LONG SetRegistryType(_REGISTRY_TYPE type, const WCHAR *path, int cached = 1);
    _REGISTRY_TYPE RegistryType() const
    {
        return m_type;
    }
    /// Full path of the text file; empty in registry mode.
    std::u16string INIFileName() const;
    static bool INIFileInCache(const WCHAR *path);
    /// The file behind this object, null in registry mode; owned by the cache or by this object.
    INIFile *GetINIFile() const
    {
        return m_file;
    }
    /// The open key of the registry; -1 when none is open, and in file mode.
    HKEY KeyRef() const
    {
        return m_key != nullptr ? m_key : reinterpret_cast<HKEY>(static_cast<LONG_PTR>(-1));
    }

    /// Opens a key and makes it when missing (*disposition: 1 made, 2 was there). A key made in a file is written only
    /// once it has values. A path that no line of a file can hold (a line end in it, more than 2,048 characters with
    /// its root) is refused.
    LONG OpenKey(HKEY root, const WCHAR *path, DWORD *disposition = nullptr);
    bool Exists(HKEY root, const WCHAR *path) const;
    LONG CloseKey();
    /// With all keys below it.
    LONG DeleteKey(HKEY root, const WCHAR *path);
    /// Puts changes on the disk.
    LONG FlushKey();

    LONG QueryValue(const WCHAR *name, LONG *value) const;
    LONG QueryValue(const WCHAR *name, DWORD *value) const;
    /// `size` in characters. 0 means 200 in the registry and no limit in a file; a longer text of a file is cut.
    LONG QueryValue(const WCHAR *name, WCHAR *buffer, DWORD size) const;
    LONG QueryValueType(const WCHAR *name, DWORD *type) const;
    /// A file refuses names that could not be read again: those with "=" or a line end, or too long for a line.
    LONG SetValue(const WCHAR *name, DWORD value);
    LONG SetValue(const WCHAR *name, const WCHAR *value);
    LONG DeleteValue(const WCHAR *name);

    DWORD ValueCount() const;
    DWORD SubKeyCount() const;
    LONG ValueName(DWORD index, WCHAR *buffer, DWORD size) const;
    LONG SubKeyName(DWORD index, WCHAR *buffer, DWORD size) const;
    std::vector<std::u16string> ValueNames() const;
    /// Names of the keys directly below the open one.
    std::vector<std::u16string> SubKeyNames() const;

    /// Merges this process's changes into what the disk holds now and writes it. Without `force` only when there are
    /// changes and no other object uses the file.
    LONG SaveINIFile(int force);

    // Transfers. All give 0x80004005 whether or not they worked: callers have never looked at it.

    /// Copies a registry key with all below it into a text file; into `other` when given, else into `file`.
    static LONG ExportRegistry(HKEY root, const WCHAR *path, const WCHAR *file, CRegistry *other);
    /// The same from this system's text store into another.
    static LONG ExportINIFile(HKEY root, const WCHAR *path, const WCHAR *file, CRegistry *other);
    /// Copies every section of a file into the registry.
    static LONG ImportINIFile(const WCHAR *file);
    /// Copies every section of a file into this object, `find` replaced by `replace` in section paths when both are
    /// given.
    LONG AppendINIFile(const WCHAR *file, const WCHAR *find, const WCHAR *replace);

    /// "HKEY_CURRENT_USER\path" and its kin; any other root counts as HKEY_CURRENT_USER. The text lives until the
    /// calling thread's next call.
    static const WCHAR *GetKeySection(HKEY root, const WCHAR *path);
    /// The reverse. `path` points into `section`; null (and HKEY_CURRENT_USER) for a name with none of the four roots.
    static void GetSectionKey(const WCHAR *section, HKEY &root, const WCHAR *&path);

  private:
    LONG OpenRegistryKey(HKEY root, const WCHAR *path, DWORD *disposition);
    LONG QueryNumber(const WCHAR *name, DWORD &value) const;
    void ReleaseFile();

    _REGISTRY_TYPE m_type = RegistryTypeFile;
    bool m_cached = false; ///< m_file is one that objects share
    INIFile *m_file = nullptr;
    std::unique_ptr<INIFile> m_own; ///< holds m_file when it is not shared
    HKEY m_key = nullptr;
    std::u16string m_section;
    bool m_open = false;
};

/// The base folder of the data: value Kelvo_Folder of Software\Kelvo\Zembrik in the registry, else the documents
/// folder. Read once for each device.
ZBTOOLS_API std::u16string SettingsBaseFolder();

// Free helpers, always on the registry; each opens and closes the key around one call and gives the platform's code.

ZBTOOLS_API LONG QueryKey(HKEY root, const WCHAR *path, DWORD *subKeys, DWORD *values);
/// `buffer` has room for 75 characters.
ZBTOOLS_API LONG EnumRegistryKeysSZ(HKEY root, const WCHAR *path, WCHAR *buffer, DWORD index);
ZBTOOLS_API LONG DeleteRegistryValue(HKEY root, const WCHAR *path, const WCHAR *name);
ZBTOOLS_API LONG SetToRegistry(HKEY root, const WCHAR *path, const WCHAR *name, DWORD value);
ZBTOOLS_API LONG GetFromRegistry(HKEY root, const WCHAR *path, const WCHAR *name, DWORD *value);
ZBTOOLS_API LONG SetToRegistrySZ(HKEY root, const WCHAR *path, const WCHAR *name, const WCHAR *text);
/// At most 800 bytes.
ZBTOOLS_API LONG GetFromRegistrySZ(HKEY root, const WCHAR *path, const WCHAR *name, WCHAR *buffer);
