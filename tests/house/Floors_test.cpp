// Reads every include of the sources and holds them against the floors: a header includes its own floor or lower ones,
// sources may reach up only where listed here with the reason, headers form no circle, and third-party headers stay
// behind the platform.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{
namespace fs = std::filesystem;

const fs::path sourceRoot = ZB_SOURCE_DIR;

/// Height of each floor; folders of equal height may not see each other.
const std::map<std::string, int> floors = {
    {"platform", 0}, {"core", 1},     {"records", 2}, {"framework", 2}, {"display", 3},  {"dialogs", 4}, {"tasks", 5},
    {"calendar", 6}, {"contacts", 7}, {"notes", 7},   {"search", 8},    {"exchange", 9}, {"library", 10}};

/// Sources (never headers) that reach up to a header of a higher floor, and why.
const std::map<std::string, std::string> reachesUp = {};

/// Standard headers that the engine uses by these names; all others without a folder are third-party.
bool isStandard(const std::string &header)
{
    static const std::regex plain("[a-z_]+|c[a-z]+");
    static const std::set<std::string> none = {"sqlite3", "benchmark"};
    return std::regex_match(header, plain) && none.count(header) == 0;
}

struct Include
{
    std::string target;
    bool quoted;
    int line;
};

std::vector<Include> includesOf(const fs::path &file)
{
    static const std::regex pattern(R"re(^\s*#\s*include\s*(["<])([^">]+)[">])re");
    std::vector<Include> found;
    std::ifstream stream(file);
    std::string text;
    for (int number = 1; std::getline(stream, text); ++number)
    {
        std::smatch match;
        if (std::regex_search(text, match, pattern))
        {
            found.push_back({match[2].str(), match[1].str() == "\"", number});
        }
    }
    return found;
}

std::vector<fs::path> sourcesBelow(const fs::path &folder)
{
    std::vector<fs::path> found;
    if (!fs::exists(folder))
    {
        return found;
    }
    for (const auto &entry : fs::recursive_directory_iterator(folder))
    {
        if (entry.is_regular_file() && (entry.path().extension() == ".h" || entry.path().extension() == ".cpp"))
        {
            found.push_back(entry.path());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string folderOf(const std::string &relative)
{
    return relative.substr(0, relative.find('/'));
}

std::string place(const fs::path &file, int line)
{
    return fs::relative(file, sourceRoot).string() + ":" + std::to_string(line);
}

TEST(Floors, theTreeHasSourcesToRead)
{
    EXPECT_GT(sourcesBelow(sourceRoot / "src").size(), 20U);
}

TEST(Floors, noFileLooksUpToAHigherFloor)
{
    for (const fs::path &file : sourcesBelow(sourceRoot / "src"))
    {
        const std::string relative = fs::relative(file, sourceRoot / "src").string();
        const auto own = floors.find(folderOf(relative));
        if (own == floors.end())
        {
            continue; // libZBResources stands beside the house
        }
        for (const Include &include : includesOf(file))
        {
            const auto target = floors.find(folderOf(include.target));
            if (!include.quoted || include.target.find('/') == std::string::npos || target == floors.end())
            {
                continue;
            }
            const bool allowed = target->second < own->second || target->first == own->first;
            const bool listed = file.extension() == ".cpp" && reachesUp.count(relative + " > " + include.target) != 0;
            EXPECT_TRUE(allowed || listed) << place(file, include.line) << " includes " << include.target;
        }
    }
}

TEST(Floors, everyFolderOfTheSourceTreeIsKnown)
{
    for (const auto &entry : fs::directory_iterator(sourceRoot / "src"))
    {
        if (entry.is_directory())
        {
            const std::string name = entry.path().filename().string();
            EXPECT_TRUE(name == "resources" || floors.count(name) != 0) << name;
        }
    }
}

TEST(Floors, theListOfUpwardIncludesHoldsOnlyRealOnes)
{
    for (const auto &[edge, reason] : reachesUp)
    {
        const std::string relative = edge.substr(0, edge.find(" > "));
        const std::string wanted = edge.substr(edge.find(" > ") + 3);
        const auto includes = includesOf(sourceRoot / "src" / relative);
        EXPECT_TRUE(std::any_of(includes.begin(), includes.end(),
                                [&](const Include &include) { return include.target == wanted; }))
            << edge << " (" << reason << ")";
    }
}

TEST(Floors, headersFormNoCircle)
{
    std::map<std::string, std::vector<std::string>> edges;
    for (const fs::path &file : sourcesBelow(sourceRoot / "src"))
    {
        if (file.extension() == ".h")
        {
            for (const Include &include : includesOf(file))
            {
                edges[fs::relative(file, sourceRoot / "src").string()].push_back(include.target);
            }
        }
    }
    std::map<std::string, int> state; // 1 being walked, 2 done
    const std::function<void(const std::string &)> walk = [&](const std::string &header)
    {
        state[header] = 1;
        for (const std::string &next : edges[header])
        {
            EXPECT_NE(state[next], 1) << header << " and " << next << " include each other";
            if (state[next] == 0)
            {
                walk(next);
            }
        }
        state[header] = 2;
    };
    std::vector<std::string> headers;
    for (const auto &[header, targets] : edges)
    {
        headers.push_back(header);
    }
    for (const std::string &header : headers)
    {
        if (state[header] == 0)
        {
            walk(header);
        }
    }
}

TEST(Floors, thirdPartyHeadersStayBehindThePlatform)
{
    for (const fs::path &file : sourcesBelow(sourceRoot / "src"))
    {
        const std::string relative = fs::relative(file, sourceRoot / "src").string();
        if (relative.rfind("platform/linux/", 0) == 0)
        {
            continue;
        }
        for (const Include &include : includesOf(file))
        {
            if (!include.quoted)
            {
                EXPECT_TRUE(isStandard(include.target)) << place(file, include.line) << " includes " << include.target;
            }
        }
    }
}

TEST(Floors, theEngineSeesThePlatformOnlyByItsOpenHeaders)
{
    for (const fs::path &file : sourcesBelow(sourceRoot / "src"))
    {
        const std::string relative = fs::relative(file, sourceRoot / "src").string();
        if (relative.rfind("platform/", 0) == 0)
        {
            continue;
        }
        for (const Include &include : includesOf(file))
        {
            EXPECT_NE(include.target.rfind("platform/linux/", 0), 0U) << place(file, include.line);
        }
    }
}

TEST(Floors, everySourceSaysAtItsTopWhatItIsFor)
{
    for (const fs::path &file : sourcesBelow(sourceRoot / "src"))
    {
        if (file.extension() == ".h")
        {
            std::ifstream stream(file);
            std::string first;
            std::getline(stream, first);
            EXPECT_EQ(first.rfind("//", 0), 0U) << place(file, 1);
        }
    }
}

TEST(Floors, wideCharactersOfTheHostAreNotUsed)
{
    // The host system's wide characters are 32 bits; text here is 16.
    static const std::regex wide(R"re(\bwchar_t\b|\bstd::wstring\b)re");
    for (const fs::path &file : sourcesBelow(sourceRoot / "src"))
    {
        std::ifstream stream(file);
        std::string text;
        for (int number = 1; std::getline(stream, text); ++number)
        {
            EXPECT_FALSE(std::regex_search(text, wide)) << place(file, number);
        }
    }
}
} // namespace
