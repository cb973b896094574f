// Turns tables of texts (<language>.txt) into one C++ source with a sorted table a language, for resources.cpp.
//
//     compile_texts OUTPUT.cpp TABLE.txt ...
//
// A table is UTF-8; each line is empty, a comment ('#' first), or number, tab, text. A number is decimal, 1 to 65535.
// In a text, \n is a line feed, \t a tab and \\ a backslash. Anything else is an error, told with file and line in the
// form that build tools understand, and no output is written.
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{
namespace fs = std::filesystem;

struct Text
{
    std::u16string words;
    int line;
};
using Table = std::map<unsigned, Text>;

struct BadLine : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// One character of well-formed UTF-8 off the front of `bytes`.
char32_t takeCharacter(std::string_view &bytes)
{
    const auto first = static_cast<unsigned char>(bytes.front());
    const std::size_t size = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
    if (size == 0 || size > bytes.size())
    {
        throw BadLine("the text is not UTF-8");
    }
    char32_t code = size == 1 ? first : first & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i)
    {
        const auto next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0U) != 0x80)
        {
            throw BadLine("the text is not UTF-8");
        }
        code = (code << 6U) | (next & 0x3FU);
    }
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < smallest[size] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
    {
        throw BadLine("the text is not UTF-8");
    }
    bytes.remove_prefix(size);
    return code;
}

char32_t unescaped(std::string_view &bytes)
{
    const char kind = bytes.empty() ? '\0' : bytes.front();
    if (kind != 'n' && kind != 't' && kind != '\\')
    {
        throw BadLine("a backslash must be followed by n, t or another backslash");
    }
    bytes.remove_prefix(1);
    return kind == 'n' ? U'\n' : kind == 't' ? U'\t' : U'\\';
}

std::u16string wordsOf(std::string_view bytes)
{
    std::u16string words;
    while (!bytes.empty())
    {
        char32_t code = takeCharacter(bytes);
        if (code == U'\\')
        {
            code = unescaped(bytes);
        }
        else if (code < 0x20 || code == 0x7F)
        {
            throw BadLine("control characters must be written as escapes");
        }
        if (code >= 0x10000)
        {
            words += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10U));
            code = 0xDC00 + ((code - 0x10000) & 0x3FFU);
        }
        words += static_cast<char16_t>(code);
    }
    return words;
}

unsigned numberOf(std::string_view text)
{
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 1 || number > 0xFFFF)
    {
        throw BadLine("a line must begin with a number from 1 to 65535");
    }
    return number;
}

void readLine(std::string_view line, int lineNumber, Table &table)
{
    if (line.empty() || line.front() == '#')
    {
        return;
    }
    const auto tab = line.find('\t');
    if (tab == std::string_view::npos)
    {
        throw BadLine("number and text must be parted by a tab");
    }
    const unsigned number = numberOf(line.substr(0, tab));
    std::u16string words = wordsOf(line.substr(tab + 1));
    if (words.empty())
    {
        throw BadLine("the text is empty");
    }
    const auto [place, isNew] = table.try_emplace(number, Text{std::move(words), lineNumber});
    if (!isNew)
    {
        throw BadLine("number " + std::to_string(number) + " stands in line " + std::to_string(place->second.line) +
                      " already");
    }
}

/// Nothing when the file has errors, which have been told.
std::optional<Table> readTable(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
    {
        std::fprintf(stderr, "%s: error: the file can't be read\n", path.c_str());
        return std::nullopt;
    }
    Table table;
    bool good = true;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number)
    {
        if (!line.empty() && line.back() == '\r')
        {
            line.pop_back();
        }
        try
        {
            readLine(line, number, table);
        }
        catch (const BadLine &error)
        {
            std::fprintf(stderr, "%s:%d: error: %s\n", path.c_str(), number, error.what());
            good = false;
        }
    }
    return good ? std::optional(std::move(table)) : std::nullopt;
}

/// The words as a u"" literal in plain ASCII, so that the output compiles the same under any setting.
std::string literalOf(const std::u16string &words)
{
    std::string result = "u\"";
    char escape[8];
    for (const char16_t ch : words)
    {
        if (ch >= 0x20 && ch < 0x7F && ch != u'"' && ch != u'\\' && ch != u'?')
        {
            result += static_cast<char>(ch);
            continue;
        }
        // Octal escapes end after three digits, so what follows can't be drawn into them; above that only \u serves,
        // and half pairs (not allowed there) are closed off by splitting the literal.
        std::snprintf(escape, sizeof escape, ch < 0x80 ? "\\%03o" : "\\x%04x", static_cast<unsigned>(ch));
        result += escape;
        result += ch < 0x80 ? "" : "\" u\"";
    }
    return result + "\"";
}

std::string tableName(const std::string &language)
{
    std::string name = "texts_" + language;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

void writeTable(std::ostream &out, const std::string &language, const Table &table)
{
    out << "const Text " << tableName(language) << "[] = {\n";
    for (const auto &[number, text] : table)
    {
        out << "    {" << number << ", " << text.words.size() << ", " << literalOf(text.words) << "},\n";
    }
    out << "};\n\n";
}

std::string sourceOf(const std::map<std::string, Table> &tables)
{
    std::ostringstream out;
    out << "// Made by compile_texts from the tables in texts/; changes belong there.\n"
           "#include \"texts.h\"\n\nnamespace zb::resources\n{\nnamespace\n{\n";
    for (const auto &[language, table] : tables)
    {
        writeTable(out, language, table);
    }
    out << "const Language allLanguages[] = {\n";
    for (const auto &[language, table] : tables)
    {
        out << "    {\"" << language << "\", " << tableName(language) << ", " << table.size() << "},\n";
    }
    out << "};\n} // namespace\n\nconst Language *const languages = allLanguages;\nconst std::size_t languageCount = "
        << tables.size() << ";\n} // namespace zb::resources\n";
    return out.str();
}

bool writeOutput(const fs::path &path, const std::string &source)
{
    const fs::path temporary = path.string() + ".new";
    {
        std::ofstream file(temporary, std::ios::binary);
        file << source;
        if (!file.flush())
        {
            std::fprintf(stderr, "%s: error: the file can't be written\n", path.c_str());
            return false;
        }
    }
    std::error_code error;
    fs::rename(temporary, path, error);
    return !error;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc < 3)
    {
        std::fprintf(stderr, "usage: compile_texts OUTPUT.cpp TABLE.txt ...\n");
        return 2;
    }
    std::map<std::string, Table> tables;
    bool good = true;
    for (int i = 2; i < argc; ++i)
    {
        const fs::path path = argv[i];
        std::optional<Table> table = readTable(path);
        if (table && table->empty())
        {
            std::fprintf(stderr, "%s:1: error: the table has no texts\n", path.c_str());
        }
        good = good && table && !table->empty();
        if (table)
        {
            tables.emplace(path.stem().string(), std::move(*table));
        }
    }
    if (good && tables.count("en") == 0)
    {
        std::fprintf(stderr, "compile_texts: error: there is no table en.txt, which all languages fall back to\n");
        good = false;
    }
    return good && writeOutput(argv[1], sourceOf(tables)) ? 0 : 1;
}
