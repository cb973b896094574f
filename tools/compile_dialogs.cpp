// Turns dialogs in a small text form into one C++ source with their templates, for libZBResources.
//
//     compile_dialogs OUTPUT.cpp DIALOGS.txt
//
// The form, one thing a line, places in dialog units, "#" begins a comment:
//
//     dialog 103 160 60 popup caption center "Title"     number, width, height, styles, title
//     push 1001 5 40 45 14 tab default "Yes"             kind, id, x, y, width, height, styles, title
//
// Kinds: push, check (changes by itself), radio (likewise), group, owner (drawn by the dialog), text, picture, edit,
// list, combo. In a title "" is one quotation mark. The bytes are those that platform/dialog_template.h tells; the font
// of all is Tahoma of 8 points. Trouble is told with file and line, and no output is written.
#include "compile_lines.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using Bytes = std::vector<std::uint8_t>;
using Styles = std::map<std::string, std::uint32_t>;

constexpr std::uint32_t child = 0x50000000; // WS_CHILD and WS_VISIBLE
constexpr std::uint32_t setFont = 0x40;
constexpr unsigned points = 8;

const Styles dialogStyles = {{"popup", 0x80000000}, {"child", 0x40000000}, {"caption", 0x00C00000},
                             {"border", 0x00800000}, {"close", 0x00080000}, {"center", 0x0800}};
const Styles itemStyles = {{"tab", 0x00010000},    {"first", 0x00020000},   {"default", 0x0001}, {"hidden", 0x10000000},
                           {"disabled", 0x08000000}, {"centered", 0x0001},  {"right", 0x0002},   {"noprefix", 0x0080},
                           {"multiline", 0x2000},  {"border", 0x00800000},  {"vscroll", 0x00200000}};

struct Kind
{
    unsigned className;
    std::uint32_t style;
};
const std::map<std::string, Kind> kinds = {{"push", {128, 0}},    {"check", {128, 3}},   {"radio", {128, 9}},
                                           {"group", {128, 7}},   {"owner", {128, 11}},  {"text", {130, 0}},
                                           {"picture", {130, 14}}, {"edit", {129, 0x80}}, {"list", {131, 1}},
                                           {"combo", {133, 3}}};

void put(Bytes &bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
    {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

void putText(Bytes &bytes, const std::string &text)
{
    for (const char ch : text)
    {
        if (static_cast<unsigned char>(ch) >= 0x80)
        {
            throw std::runtime_error("titles are plain letters; other words come from the texts by number");
        }
        put(bytes, static_cast<unsigned char>(ch), 2);
    }
    put(bytes, 0, 2);
}

unsigned numberOf(std::istringstream &line, unsigned highest)
{
    long value = -1;
    if (!(line >> value) || value < 0 || value > static_cast<long>(highest))
    {
        throw std::runtime_error("a number from 0 to " + std::to_string(highest) + " is missing");
    }
    return static_cast<unsigned>(value);
}

/// The words up to the title, and the title.
struct Rest
{
    std::vector<std::string> words;
    std::string title;
};

Rest restOf(std::istringstream &line)
{
    Rest rest;
    std::string word;
    while (line >> std::ws && line.peek() != '"' && line >> word)
    {
        rest.words.push_back(word);
    }
    if (line.eof())
    {
        throw std::runtime_error("the title is missing");
    }
    line.get();
    for (char ch = 0; line.get(ch);)
    {
        if (ch == '"')
        {
            if (line.peek() != '"')
            {
                return rest;
            }
            line.get();
        }
        rest.title += ch;
    }
    throw std::runtime_error("the title has no end");
}

std::uint32_t stylesOf(const std::vector<std::string> &words, const Styles &known)
{
    std::uint32_t style = 0;
    for (const std::string &word : words)
    {
        const auto found = known.find(word);
        if (found == known.end())
        {
            throw std::runtime_error("\"" + word + "\" is no style");
        }
        style |= found->second;
    }
    return style;
}

struct Dialog
{
    Bytes bytes;
    unsigned items = 0;
};

Dialog beginDialog(std::istringstream &line)
{
    const unsigned width = numberOf(line, 1000);
    const unsigned height = numberOf(line, 1000);
    const Rest rest = restOf(line);
    Dialog dialog;
    put(dialog.bytes, stylesOf(rest.words, dialogStyles) | setFont, 4);
    put(dialog.bytes, 0, 4);
    put(dialog.bytes, 0, 2); // number of items
    for (const unsigned word : {0U, 0U, width, height, 0U, 0U})
    {
        put(dialog.bytes, word, 2);
    }
    putText(dialog.bytes, rest.title);
    put(dialog.bytes, points, 2);
    putText(dialog.bytes, "Tahoma");
    return dialog;
}

void addItem(Dialog &dialog, const Kind &kind, std::istringstream &line)
{
    const unsigned id = numberOf(line, 0xFFFF);
    unsigned place[4];
    for (unsigned &side : place)
    {
        side = numberOf(line, 1000);
    }
    const Rest rest = restOf(line);
    const std::uint32_t named = stylesOf(rest.words, itemStyles);
    const std::uint32_t hidden = itemStyles.at("hidden");
    dialog.bytes.resize((dialog.bytes.size() + 3) / 4 * 4);
    put(dialog.bytes, (named & hidden) != 0 ? (child | kind.style | named) & ~hidden : child | kind.style | named, 4);
    put(dialog.bytes, 0, 4);
    for (const unsigned side : place)
    {
        put(dialog.bytes, side, 2);
    }
    put(dialog.bytes, id, 2);
    put(dialog.bytes, 0xFFFF, 2);
    put(dialog.bytes, kind.className, 2);
    putText(dialog.bytes, rest.title);
    put(dialog.bytes, 0, 2);
    ++dialog.items;
    constexpr std::size_t countAt = 8;
    dialog.bytes[countAt] = static_cast<std::uint8_t>(dialog.items);
    dialog.bytes[countAt + 1] = static_cast<std::uint8_t>(dialog.items >> 8U);
}

std::map<unsigned, Dialog> readAll(std::istream &in, int &lineNumber)
{
    std::map<unsigned, Dialog> all;
    Dialog *current = nullptr;
    std::string text;
    while (std::getline(in, text))
    {
        ++lineNumber;
        std::istringstream line(text);
        std::string word;
        if (!(line >> word) || word[0] == '#')
        {
            continue;
        }
        if (word == "dialog")
        {
            const unsigned number = numberOf(line, 0xFFFF);
            const auto [place, isNew] = all.emplace(number, beginDialog(line));
            if (!isNew)
            {
                throw std::runtime_error("there is a dialog of this number already");
            }
            current = &place->second;
            continue;
        }
        const auto kind = kinds.find(word);
        if (kind == kinds.end() || current == nullptr)
        {
            throw std::runtime_error("\"" + word + "\" begins nothing");
        }
        addItem(*current, kind->second, line);
    }
    return all;
}

void write(const char *output, const std::map<unsigned, Dialog> &all)
{
    std::ofstream out(output, std::ios::trunc);
    out << "#include \"dialogs.h\"\n\nnamespace\n{\n";
    for (const auto &[number, dialog] : all)
    {
        out << "alignas(4) const unsigned char dialog" << number << "[] = {";
        for (const std::uint8_t byte : dialog.bytes)
        {
            out << static_cast<unsigned>(byte) << ",";
        }
        out << "};\n";
    }
    out << "const zb::resources::Dialog all[] = {\n";
    for (const auto &[number, dialog] : all)
    {
        out << "{" << number << "U, dialog" << number << ", " << dialog.bytes.size() << "},\n";
    }
    out << "};\n} // namespace\n\nconst zb::resources::Dialog *const zb::resources::dialogs = all;\n"
        << "const std::size_t zb::resources::dialogCount = " << all.size() << ";\n";
    if (!out.flush())
    {
        throw std::runtime_error("can't be written");
    }
}
} // namespace

int main(int count, char **arguments)
{
    return compileFile("compile_dialogs OUTPUT.cpp DIALOGS.txt", count, arguments,
                       [](std::istream &in, int &line, const char *output) { write(output, readAll(in, line)); });
}
