#include "zbalarmd/program_lookup.h"

#include <algorithm>
#include <cctype>
#include <unistd.h>

namespace zb::alarmd
{
namespace
{
namespace fs = std::filesystem;

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char each) { return static_cast<char>(std::tolower(each)); });
    return text;
}

/// The entry of that name, by exact name before others; empty without one.
fs::path entryOf(const fs::path &folder, const std::string &name)
{
    std::error_code error;
    if (name == ".." || name == "." || name.find('/') != std::string::npos)
    {
        return {};
    }
    if (fs::exists(folder / name, error))
    {
        return folder / name;
    }
    fs::path best;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    {
        if (lower(entry->path().filename().string()) == lower(name) && (best.empty() || entry->path() < best))
        {
            best = entry->path();
        }
    }
    return best;
}

fs::path entryBelow(fs::path folder, const std::string &path)
{
    for (std::size_t at = 0; at < path.size() && !folder.empty();)
    {
        const std::size_t end = std::min(path.find('\\', at), path.size());
        if (end != at)
        {
            folder = entryOf(folder, path.substr(at, end - at));
        }
        at = end + 1;
    }
    return folder;
}

/// Links must not lead out of the folder.
fs::path runnable(const fs::path &file, const fs::path &folder)
{
    std::error_code error;
    const fs::path real = file.empty() ? fs::path() : fs::canonical(file, error);
    const fs::path root = fs::canonical(folder, error);
    if (error || real.empty() || !fs::is_regular_file(real, error) || access(real.c_str(), X_OK) != 0)
    {
        return {};
    }
    return std::mismatch(root.begin(), root.end(), real.begin(), real.end()).first == root.end() ? real : fs::path();
}

std::string withoutEnding(const std::string &name)
{
    const bool ends = name.size() > 4 && lower(name.substr(name.size() - 4)) == ".exe";
    return ends ? name.substr(0, name.size() - 4) : name;
}
} // namespace

fs::path findProgram(const std::string &name, const fs::path &beside, const fs::path &files)
{
    const std::string plain = withoutEnding(name);
    if (name.empty() || plain.back() == '\\')
    {
        return {};
    }
    if (name.find('\\') == std::string::npos)
    {
        if (const fs::path found = runnable(entryOf(beside, plain), beside); !found.empty())
        {
            return found;
        }
    }
    const std::string path = name.find('\\') == std::string::npos ? "Windows\\" + name : name;
    const fs::path found = runnable(entryBelow(files, path), files);
    return found.empty() ? runnable(entryBelow(files, withoutEnding(path)), files) : found;
}
} // namespace zb::alarmd
