// Markup and the tokens that it stands for, one file in tests/data/markup a case:
//   scale 2          pixels of a font's point at the screen's density; 1 without this line
//   picture 5        the window has a bitmap for this source
//   markup <B>x</B>  to the end of the line; \n is a line feed, \\ a backslash
// and then the tokens as Markup.h writes them.
#include "display/Markup.h"
#include "support/CaseFiles.h"

#include <fstream>

namespace
{
namespace fs = std::filesystem;
const fs::path casesFolder = fs::path(ZB_SOURCE_DIR) / "tests/data/markup";

struct MarkupCase
{
    int scale = 1;
    std::vector<std::string> pictures;
    std::string markup;
    std::vector<std::string> tokens;
};

std::string unescape(const std::string &text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool escape = text[i] == '\\' && i + 1 < text.size();
        plain += !escape ? text[i] : text[++i] == 'n' ? '\n' : text[i];
    }
    return plain;
}

MarkupCase readCase(const std::string &name)
{
    MarkupCase found;
    std::ifstream stream(casesFolder / (name + ".case"));
    for (std::string line; std::getline(stream, line);)
    {
        const std::string word = line.substr(0, line.find(' '));
        const std::string rest = line.size() > word.size() ? line.substr(word.size() + 1) : "";
        if (word == "scale")
        {
            found.scale = std::stoi(rest);
        }
        else if (word == "picture")
        {
            found.pictures.push_back(rest);
        }
        else if (word == "markup")
        {
            found.markup = unescape(rest);
        }
        else if (word != "#")
        {
            found.tokens.push_back(unescape(line));
        }
    }
    return found;
}

class MarkupCases : public ::testing::TestWithParam<std::string>
{
};

TEST_P(MarkupCases, hasTheseTokens)
{
    using namespace zb::test;
    const MarkupCase expected = readCase(GetParam());
    const TestDevice device(withDensity(96 * expected.scale));
    const Scaling scaling;
    PictureWindow window;
    for (const std::string &source : expected.pictures)
    {
        window.addBitmap(utf16(source), 4, 4);
    }
    EXPECT_EQ(dumpMarkup(utf16(expected.markup), window.handle()), expected.tokens) << expected.markup;
}

INSTANTIATE_TEST_SUITE_P(Files, MarkupCases, ::testing::ValuesIn(zb::test::caseNames(casesFolder)),
                         zb::test::caseTestName);
} // namespace
