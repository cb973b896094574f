// The settings file: its sections and values, and the text form.
#include "core/CRegistry_file.h"

#include "core/textfile.h"
#include "platform/device.h"
#include "platform/file_turn.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>

namespace
{
constexpr std::size_t longestLine = 2050;
constexpr std::size_t dwordMarkLength = 6;

bool isBlank(WCHAR ch)
{
    return ch == u'\r' || iswctype(ch, C1_SPACE) != 0;
}

std::u16string trimmed(const std::u16string &line)
{
    std::size_t begin = 0;
    std::size_t end = line.size();
    while (begin < end && isBlank(line[begin]))
    {
        ++begin;
    }
    while (end > begin && isBlank(line[end - 1]))
    {
        --end;
    }
    return line.substr(begin, end - begin);
}

/// One quote is taken off at each end, so that quotes inside a text stay.
std::u16string unquoted(std::u16string text)
{
    if (!text.empty() && text.front() == u'"')
    {
        text.erase(0, 1);
    }
    if (!text.empty() && text.back() == u'"')
    {
        text.pop_back();
    }
    return text;
}

bool holdsDwordMark(const std::u16string &text)
{
    static const std::u16string mark = u"dword:";
    const auto equal = [](WCHAR a, WCHAR b) { return towlower(a) == b; };
    return std::search(text.begin(), text.end(), mark.begin(), mark.end(), equal) != text.end();
}

/// A line end inside a text would end the line and make the rest a line of its own.
std::u16string onOneLine(std::u16string text)
{
    std::replace_if(
        text.begin(), text.end(), [](WCHAR ch) { return ch == u'\r' || ch == u'\n' || ch == 0; }, u' ');
    return text;
}

std::u16string hexadecimal(DWORD value)
{
    static const WCHAR digits[] = u"0123456789ABCDEF";
    std::u16string text(8, u'0');
    for (int i = 7; i >= 0; --i, value >>= 4U)
    {
        text[static_cast<std::size_t>(i)] = digits[value & 15U];
    }
    return text;
}

std::u16string lineOf(const CRegistry::INIValue &value)
{
    const std::u16string name = value.name == u"@" ? value.name : u'"' + onOneLine(value.name) + u'"';
    if (value.type == REG_DWORD)
    {
        return name + u"=dword:" + hexadecimal(value.number);
    }
    std::u16string line = name + u"=\"" + onOneLine(value.text);
    if (line.size() > longestLine - 1)
    {
        line.resize(longestLine - 1);
    }
    return line + u"\"";
}

bool isOneLine(const std::u16string &name)
{
    return name.find_first_of(u"\r\n") == std::u16string::npos;
}

/// A name with "=" would be read as a shorter name, and one that fills its line leaves no room for the value.
bool canBeRead(const CRegistry::INIValue &value)
{
    const std::size_t quotes = value.name == u"@" ? 0 : 2;
    const std::size_t shortest = value.name.size() + quotes + (value.type == REG_DWORD ? 15 : 3);
    return shortest <= longestLine && value.name.find(u'=') == std::u16string::npos;
}

/// One save of a file at a time in this process: a save that was overtaken by another would write an older text last.
/// The device's own mutex, since that one is given up when a thread is terminated inside a save.
class SaveTurn
{
  public:
    explicit SaveTurn(const std::u16string &path)
        : m_mutex(CreateMutexW(nullptr, FALSE, (u"settings file " + path).c_str()))
    {
        WaitForSingleObject(m_mutex, INFINITE);
    }
    ~SaveTurn()
    {
        ReleaseMutex(m_mutex);
        CloseHandle(m_mutex);
    }
    SaveTurn(const SaveTurn &) = delete;
    SaveTurn &operator=(const SaveTurn &) = delete;

  private:
    HANDLE m_mutex;
};
} // namespace

// --- Sections ----------------------------------------------------------------------------------------------------

CRegistry::INIValue *CRegistry::INISection::find(const std::u16string &valueName)
{
    const auto found = m_index.find(valueName);
    return found == m_index.end() ? nullptr : &values[found->second];
}

CRegistry::INIValue &CRegistry::INISection::findOrAdd(const std::u16string &valueName)
{
    if (INIValue *known = find(valueName))
    {
        return *known;
    }
    m_index.emplace(valueName, values.size());
    values.emplace_back();
    values.back().name = valueName;
    return values.back();
}

bool CRegistry::INISection::erase(const std::u16string &valueName)
{
    const auto found = m_index.find(valueName);
    if (found == m_index.end())
    {
        return false;
    }
    const std::size_t place = found->second;
    m_index.erase(found);
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(place));
    for (auto &[name, position] : m_index)
    {
        position -= position > place ? 1U : 0U;
    }
    return true;
}

CRegistry::INISection *CRegistry::INIFile::find(const std::u16string &name) const
{
    const auto found = m_index.find(name);
    return found == m_index.end() ? nullptr : found->second;
}

CRegistry::INISection &CRegistry::INIFile::add(const std::u16string &name)
{
    m_sections.push_back(std::make_unique<INISection>());
    INISection &section = *m_sections.back();
    section.name = name;
    m_index.emplace(name, &section);
    return section;
}

void CRegistry::INIFile::clear()
{
    m_index.clear();
    m_sections.clear();
    m_deletedSections.clear();
    m_dirty = false;
}

CRegistry::INIFile::INIFile(std::u16string path) : m_path(std::move(path))
{
}

void CRegistry::INIFile::attach()
{
    bool stale = false;
    {
        const std::lock_guard guard(m_mutex);
        ++m_references;
        stale = m_generation != zb::deviceGeneration();
    }
    if (stale)
    {
        read();
    }
}

int CRegistry::INIFile::detach()
{
    const std::lock_guard guard(m_mutex);
    return --m_references;
}

int CRegistry::INIFile::references() const
{
    const std::lock_guard guard(m_mutex);
    return m_references;
}

bool CRegistry::INIFile::canHold(const std::u16string &section)
{
    return isOneLine(section) && section.size() + 2 <= longestLine;
}

bool CRegistry::INIFile::openSection(const std::u16string &name)
{
    const std::lock_guard guard(m_mutex);
    if (find(name) != nullptr)
    {
        return false;
    }
    INISection &section = add(name);
    const auto deleted = std::find(m_deletedSections.begin(), m_deletedSections.end(), name);
    if (deleted != m_deletedSections.end())
    {
        m_deletedSections.erase(deleted);
        section.replacesOld = true;
        section.changed = true;
    }
    return true;
}

bool CRegistry::INIFile::hasSection(const std::u16string &name) const
{
    const std::lock_guard guard(m_mutex);
    return find(name) != nullptr;
}

void CRegistry::INIFile::deleteSection(const std::u16string &name)
{
    const std::lock_guard guard(m_mutex);
    const std::u16string below = name + u"\\";
    const auto goes = [&](const std::u16string &candidate)
    { return candidate == name || candidate.compare(0, below.size(), below) == 0; };
    for (const auto &section : m_sections)
    {
        if (goes(section->name))
        {
            m_deletedSections.push_back(section->name);
            m_index.erase(section->name);
            noteChange();
        }
    }
    m_sections.erase(
        std::remove_if(m_sections.begin(), m_sections.end(), [&](const auto &section) { return goes(section->name); }),
        m_sections.end());
}

void CRegistry::INIFile::noteChange()
{
    m_dirty = true;
    ++m_changes;
}

// --- Values ------------------------------------------------------------------------------------------------------

bool CRegistry::INIFile::value(const std::u16string &section, const std::u16string &name, INIValue &out) const
{
    const std::lock_guard guard(m_mutex);
    INISection *holder = find(section);
    const INIValue *found = holder == nullptr ? nullptr : holder->find(name);
    if (found == nullptr)
    {
        return false;
    }
    out = *found;
    return true;
}

bool CRegistry::INIFile::number(const std::u16string &section, const std::u16string &name, DWORD &out) const
{
    const std::lock_guard guard(m_mutex);
    INISection *holder = find(section);
    const INIValue *found = holder == nullptr ? nullptr : holder->find(name);
    if (found == nullptr || found->type != REG_DWORD)
    {
        return false;
    }
    out = found->number;
    return true;
}

bool CRegistry::INIFile::setValue(const std::u16string &section, INIValue value)
{
    const std::lock_guard guard(m_mutex);
    INISection *holder = find(section);
    if (holder == nullptr || !isOneLine(value.name) || !canBeRead(value))
    {
        return false;
    }
    auto &deleted = holder->deletedValues;
    deleted.erase(std::remove(deleted.begin(), deleted.end(), value.name), deleted.end());
    value.changed = true;
    holder->findOrAdd(value.name) = std::move(value);
    holder->changed = true;
    noteChange();
    return true;
}

bool CRegistry::INIFile::deleteValue(const std::u16string &section, const std::u16string &name)
{
    const std::lock_guard guard(m_mutex);
    INISection *holder = find(section);
    if (holder == nullptr || !holder->erase(name))
    {
        return false;
    }
    holder->deletedValues.push_back(name);
    holder->changed = true;
    noteChange();
    return true;
}

std::vector<std::u16string> CRegistry::INIFile::valueNames(const std::u16string &section) const
{
    const std::lock_guard guard(m_mutex);
    std::vector<std::u16string> names;
    if (const INISection *holder = find(section))
    {
        for (const INIValue &value : holder->values)
        {
            names.push_back(value.name);
        }
    }
    return names;
}

std::vector<std::u16string> CRegistry::INIFile::childNames(const std::u16string &section) const
{
    const std::lock_guard guard(m_mutex);
    const std::u16string below = section + u"\\";
    std::vector<std::u16string> names;
    for (const auto &candidate : m_sections)
    {
        if (candidate->name.compare(0, below.size(), below) == 0)
        {
            const std::u16string child =
                candidate->name.substr(below.size(), candidate->name.find(u'\\', below.size()) - below.size());
            if (std::find(names.begin(), names.end(), child) == names.end())
            {
                names.push_back(child);
            }
        }
    }
    return names;
}

std::vector<std::u16string> CRegistry::INIFile::sectionNames() const
{
    const std::lock_guard guard(m_mutex);
    std::vector<std::u16string> names;
    for (const auto &section : m_sections)
    {
        names.push_back(section->name);
    }
    return names;
}

bool CRegistry::INIFile::dirty() const
{
    const std::lock_guard guard(m_mutex);
    return m_dirty;
}

// --- Reading -----------------------------------------------------------------------------------------------------

bool CRegistry::INIFile::read()
{
    const auto text = zb::readTextFile(m_path);
    const bool known = text.has_value() || GetFileAttributesW(m_path.c_str()) == INVALID_FILE_ATTRIBUTES;
    const std::lock_guard guard(m_mutex);
    // Another thread may have read it meanwhile, and its object have changed it since.
    if (m_generation != zb::deviceGeneration())
    {
        clear();
        parse(text.value_or(std::u16string()));
        m_generation = zb::deviceGeneration();
    }
    return known;
}

void CRegistry::INIFile::parse(const std::u16string &text)
{
    INISection *current = nullptr;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find(u'\n', begin), text.size());
        parseLine(trimmed(text.substr(begin, end - begin)), current);
        begin = end + 1;
    }
}

void CRegistry::INIFile::parseLine(std::u16string line, INISection *&current)
{
    if (line.empty() || line.size() > longestLine)
    {
        return;
    }
    if (line.front() == u'[')
    {
        const std::u16string name = line.substr(1, line.size() < 2 ? 0 : line.size() - 2);
        current = find(name);
        if (current == nullptr)
        {
            current = &add(name);
        }
        return;
    }
    const std::size_t equals = line.find(u'=');
    if (current == nullptr || equals == std::u16string::npos)
    {
        return;
    }
    INIValue value;
    value.name = unquoted(trimmed(line.substr(0, equals)));
    value.name = value.name.empty() ? u"@" : value.name;
    value.text = unquoted(trimmed(line.substr(equals + 1)));
    if (holdsDwordMark(value.text))
    {
        value.type = REG_DWORD;
        value.number = wcstoul(value.text.c_str() + dwordMarkLength, nullptr, 16);
        value.text.clear();
    }
    current->findOrAdd(value.name) = std::move(value);
}

// --- Writing -----------------------------------------------------------------------------------------------------

/// Deletions come first: a deletion takes all below it along, and must not reach what was made there since.
void CRegistry::INIFile::deleteIn(INIFile &copy) const
{
    for (const std::u16string &name : m_deletedSections)
    {
        copy.deleteSection(name);
    }
    for (const auto &section : m_sections)
    {
        if (section->replacesOld)
        {
            copy.deleteSection(section->name);
        }
    }
}

void CRegistry::INIFile::mergeInto(INIFile &copy) const
{
    deleteIn(copy);
    for (const auto &section : m_sections)
    {
        INISection *target = copy.find(section->name);
        const bool isNew = target == nullptr;
        if (!isNew && !section->changed)
        {
            continue;
        }
        target = isNew ? &copy.add(section->name) : target;
        for (const INIValue &value : section->values)
        {
            if (isNew || value.changed || target->find(value.name) == nullptr)
            {
                INIValue merged = value;
                merged.changed = false;
                target->findOrAdd(value.name) = std::move(merged);
            }
        }
        for (const std::u16string &name : section->deletedValues)
        {
            target->erase(name);
        }
    }
}

std::u16string CRegistry::INIFile::written() const
{
    std::u16string text = u"\r\n";
    for (const auto &section : m_sections)
    {
        if (section->values.empty())
        {
            continue;
        }
        text += u"[" + section->name + u"]\r\n";
        for (const INIValue &value : section->values)
        {
            text += canBeRead(value) ? lineOf(value) + u"\r\n" : std::u16string();
        }
        text += u"\r\n";
    }
    return text;
}

bool CRegistry::INIFile::save()
{
    const SaveTurn turn(m_path);
    const zb::FileTurn turnOfProcess;
    while (true)
    {
        INIFile copy(m_path);
        if (!copy.read())
        {
            // What stands there can't be merged, and writing over it would lose it.
            return false;
        }
        std::u16string text;
        unsigned changesWritten = 0;
        {
            const std::lock_guard guard(m_mutex);
            mergeInto(copy);
            text = copy.written();
            changesWritten = m_changes;
        }
        if (!zb::writeTextFile(m_path, text))
        {
            return false;
        }
        if (takeOver(copy, changesWritten))
        {
            break;
        }
    }
    // A copy that fails costs nothing: on a path below the top folder the backup's folder is usually not there.
    const std::u16string backup = u"Backup" + m_path;
    CopyFileW(m_path.c_str(), backup.c_str(), FALSE);
    return true;
}

/// The written copy becomes the content, unless something changed while it was written.
bool CRegistry::INIFile::takeOver(INIFile &copy, unsigned changesWritten)
{
    const std::lock_guard guard(m_mutex);
    if (m_changes != changesWritten)
    {
        return false;
    }
    // Sections that are open and still empty are not in the file, yet their objects go on using them.
    for (const auto &section : m_sections)
    {
        if (copy.find(section->name) == nullptr && section->values.empty())
        {
            copy.add(section->name);
        }
    }
    m_sections = std::move(copy.m_sections);
    m_index = std::move(copy.m_index);
    m_deletedSections.clear();
    m_dirty = false;
    return true;
}
