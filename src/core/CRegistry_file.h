// The text file of settings, in memory and on the disk.
//
// On the disk: UTF-16, little-endian, with its mark FF FE; lines end with CR LF.
//
//     (an empty line)
//     [HKEY_CURRENT_USER\Software\Kelvo\Zembrik\CAV]
//     "TaskSort"=dword:0000A4F3
//     "FloatCat"="Ideas"
//     @="value without a name"
//     (an empty line behind each section)
//
// A section without values is not written. A line is at most 2,050 characters: a longer text is cut on writing, a
// longer line is passed over on reading. Comments and lines without "=" do not survive the next save. Files without the
// mark are read by the device's code page, files with UTF-8's mark as UTF-8.
#pragma once

#include "core/CRegistry.h"

#include <mutex>
#include <unordered_map>

struct CRegistry::INIValue
{
    std::u16string name; ///< "@" for the value without a name
    std::u16string text;
    DWORD number = 0;
    DWORD type = REG_SZ; ///< REG_SZ or REG_DWORD
    bool changed = false;
};

/// One section: values in the order in which they came, found by an index.
struct CRegistry::INISection
{
    std::u16string name;
    bool changed = false;
    /// Made anew after it was deleted: what the disk holds of it must not come back.
    bool replacesOld = false;
    std::vector<INIValue> values;
    std::vector<std::u16string> deletedValues;

    INIValue *find(const std::u16string &valueName);
    INIValue &findOrAdd(const std::u16string &valueName);
    bool erase(const std::u16string &valueName);

  private:
    std::unordered_map<std::u16string, std::size_t> m_index;
};

/// One file. Every public call is one step under the file's own lock; disk work happens outside of it, so that a
/// thread that is held in a file call holds up nobody.
class CRegistry::INIFile
{
  public:
    explicit INIFile(std::u16string path);

    const std::u16string &path() const
    {
        return m_path;
    }
    /// Counts one more object that uses the file. A file that was read from an earlier device is read again.
    void attach();
    /// Reads it unless it was read from this device before. False when there is a file that can't be read; what can't
    /// be read counts as empty.
    bool read();
    /// Counts one less; returns how many are left.
    int detach();
    int references() const;

    /// False for names that no line can hold.
    static bool canHold(const std::u16string &section);
    bool openSection(const std::u16string &name); ///< true when it was made
    bool hasSection(const std::u16string &name) const;
    void deleteSection(const std::u16string &name);

    bool value(const std::u16string &section, const std::u16string &name, INIValue &out) const;
    bool number(const std::u16string &section, const std::u16string &name, DWORD &out) const;
    /// False when there is no such section, or for a name that could not be read again: with "=" or a line end, or too
    /// long for its line.
    bool setValue(const std::u16string &section, INIValue value);
    bool deleteValue(const std::u16string &section, const std::u16string &name);

    std::vector<std::u16string> valueNames(const std::u16string &section) const;
    /// Names one level below a section.
    std::vector<std::u16string> childNames(const std::u16string &section) const;
    std::vector<std::u16string> sectionNames() const;

    bool dirty() const;
    /// See CRegistry::SaveINIFile. False when it can't be written, or when what stands on the disk can't be read.
    bool save();

  private:
    using Sections = std::vector<std::unique_ptr<INISection>>;

    INISection *find(const std::u16string &name) const;
    INISection &add(const std::u16string &name);
    void clear();
    void parse(const std::u16string &text);
    void parseLine(std::u16string line, INISection *&current);
    void deleteIn(INIFile &copy) const;
    void mergeInto(INIFile &copy) const;
    std::u16string written() const;
    void noteChange();
    bool takeOver(INIFile &copy, unsigned changesWritten);

    std::u16string m_path;
    mutable std::mutex m_mutex;
    Sections m_sections;
    std::unordered_map<std::u16string, INISection *> m_index;
    std::vector<std::u16string> m_deletedSections;
    bool m_dirty = false;
    unsigned m_changes = 0; ///< grows with every change, so that a save notices one made meanwhile
    int m_references = 0;
    std::uint64_t m_generation = 0;
};
