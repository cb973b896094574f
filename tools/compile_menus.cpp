// Turns menus in a small text form into one C++ source with their bytes, for libZBResources.
//
//     compile_menus OUTPUT.cpp MENUS.txt
//
// The form, one thing a line, "#" begins a comment:
//
//     menu 275                            number
//     entry 1374 checked text 42358       id, states, then its words by number
//     entry 41 grayed "Cu&t"              or as they are
//     separator
//     popup "More"                        what follows lies in it
//     end                                 up to here
//
// States: checked, dot (checked, with a dot), grayed, column (begins another column). In quoted words "" is one
// quotation mark. The bytes are those that platform/menu_template.h tells. Trouble is told with file and line, and no
// output is written.
#include "compile_lines.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using Bytes = std::vector<std::uint8_t>;

constexpr unsigned popupFlag = 0x0010;
constexpr unsigned separatorFlag = 0x0800;
const std::map<std::string, unsigned> states = {{"checked", 0x0008}, {"dot", 0x0208}, {"grayed", 0x0001}, {"column", 0x0040}};

struct Entry
{
    unsigned flags = 0;
    unsigned id = 0;
    unsigned textNumber = 0;
    std::string words;
    std::vector<Entry> popup;
};
using Entries = std::vector<Entry>;

void put(Bytes &bytes, unsigned value)
{
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U));
}

void put(Bytes &bytes, const Entries &entries)
{
    put(bytes, static_cast<unsigned>(entries.size()));
    for (const Entry &entry : entries)
    {
        put(bytes, entry.flags);
        put(bytes, entry.id);
        put(bytes, entry.textNumber);
        put(bytes, static_cast<unsigned>(entry.words.size()));
        for (const char ch : entry.words)
        {
            put(bytes, static_cast<unsigned char>(ch));
        }
        if ((entry.flags & popupFlag) != 0)
        {
            put(bytes, entry.popup);
        }
    }
}

unsigned numberOf(std::istringstream &line)
{
    long value = -1;
    if (!(line >> value) || value < 0 || value > 0xFFFF)
    {
        throw std::runtime_error("a number from 0 to 65535 is missing");
    }
    return static_cast<unsigned>(value);
}

/// From behind the first quotation mark.
std::string quoted(std::istringstream &line)
{
    std::string words;
    for (char ch = 0; line.get(ch);)
    {
        if (static_cast<unsigned char>(ch) >= 0x80)
        {
            throw std::runtime_error("quoted words are plain letters; others come from the texts by number");
        }
        if (ch == '"')
        {
            if (line.peek() != '"')
            {
                return words;
            }
            line.get();
        }
        words += ch;
    }
    throw std::runtime_error("the words have no end");
}

void readRest(std::istringstream &line, Entry &entry)
{
    std::string word;
    while (line >> std::ws && line.peek() != '"' && line >> word)
    {
        if (word == "text")
        {
            entry.textNumber = numberOf(line);
            return;
        }
        const auto state = states.find(word);
        if (state == states.end())
        {
            throw std::runtime_error("\"" + word + "\" is no state");
        }
        entry.flags |= state->second;
    }
    if (line.eof())
    {
        throw std::runtime_error("the words are missing");
    }
    line.get();
    entry.words = quoted(line);
}

/// The menus that are open while lines are read: the menu itself, then the pop-ups.
class Menus
{
  public:
    void take(const std::string &word, std::istringstream &line)
    {
        if (word == "menu")
        {
            finish();
            const auto [place, isNew] = all.emplace(numberOf(line), Entries{});
            if (!isNew)
            {
                throw std::runtime_error("there is a menu of this number already");
            }
            m_open = {&place->second};
            return;
        }
        if (m_open.empty())
        {
            throw std::runtime_error("\"" + word + "\" stands in no menu");
        }
        addTo(*m_open.back(), word, line);
    }
    void finish() const
    {
        if (m_open.size() > 1)
        {
            throw std::runtime_error("a pop-up has no end");
        }
    }

    std::map<unsigned, Entries> all;

  private:
    void addTo(Entries &entries, const std::string &word, std::istringstream &line)
    {
        if (word == "end" && m_open.size() > 1)
        {
            m_open.pop_back();
            return;
        }
        Entry entry;
        if (word == "separator")
        {
            entry.flags = separatorFlag;
        }
        else if (word == "entry")
        {
            entry.id = numberOf(line);
            readRest(line, entry);
        }
        else if (word == "popup")
        {
            readRest(line, entry);
            entry.flags |= popupFlag;
        }
        else
        {
            throw std::runtime_error("\"" + word + "\" begins nothing");
        }
        entries.push_back(std::move(entry));
        if (word == "popup")
        {
            // Nothing is added to the outer menu until this one has ended, so its place stays.
            m_open.push_back(&entries.back().popup);
        }
    }

    std::vector<Entries *> m_open;
};

Menus readAll(std::istream &in, int &lineNumber)
{
    Menus menus;
    std::string text;
    while (std::getline(in, text))
    {
        ++lineNumber;
        std::istringstream line(text);
        std::string word;
        if (line >> word && word[0] != '#')
        {
            menus.take(word, line);
        }
    }
    menus.finish();
    return menus;
}

void write(const char *output, const std::map<unsigned, Entries> &all)
{
    std::ofstream out(output, std::ios::trunc);
    out << "#include \"menus.h\"\n\nnamespace\n{\n";
    std::map<unsigned, std::size_t> sizes;
    for (const auto &[number, entries] : all)
    {
        Bytes bytes;
        put(bytes, entries);
        sizes[number] = bytes.size();
        out << "const unsigned char menu" << number << "[] = {";
        for (const std::uint8_t byte : bytes)
        {
            out << static_cast<unsigned>(byte) << ",";
        }
        out << "};\n";
    }
    out << "const zb::resources::Menu all[] = {\n";
    for (const auto &[number, size] : sizes)
    {
        out << "{" << number << "U, menu" << number << ", " << size << "},\n";
    }
    out << "};\n} // namespace\n\nconst zb::resources::Menu *const zb::resources::menus = all;\n"
        << "const std::size_t zb::resources::menuCount = " << all.size() << ";\n";
    if (!out.flush())
    {
        throw std::runtime_error("can't be written");
    }
}
} // namespace

int main(int count, char **arguments)
{
    return compileFile("compile_menus OUTPUT.cpp MENUS.txt", count, arguments,
                       [](std::istream &in, int &line, const char *output) { write(output, readAll(in, line).all); });
}
