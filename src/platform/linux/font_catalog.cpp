#include "platform/linux/font_catalog.h"

#include "platform/linux/device_state.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// Hosts ask for a handful of styles; a stream of invented names must not fill the memory.
constexpr std::size_t mostStyles = 256;

std::string lowered(const FcChar8 *text)
{
    std::string name(reinterpret_cast<const char *>(text));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return name;
}

/// The number of the pattern, or the fallback where it has none or a range.
double numberOf(FcPattern *pattern, const char *object, double fallback)
{
    double value = 0;
    return FcPatternGetDouble(pattern, object, 0, &value) == FcResultMatch ? value : fallback;
}

struct Current
{
    std::mutex mutex;
    std::vector<std::filesystem::path> files;
    std::shared_ptr<FontCatalog> ofFiles;
    std::shared_ptr<FontCatalog> ofHost;
};

/// Never destroyed: threads parked for good may outlive the end of main.
Current &currentCatalogs()
{
    static auto *instance = new Current;
    return *instance;
}
} // namespace

FaceFile::FaceFile(FcPattern *pattern)
{
    FcChar8 *text = nullptr;
    if (FcPatternGetString(pattern, FC_FILE, 0, &text) == FcResultMatch)
    {
        m_path = reinterpret_cast<const char *>(text);
    }
    for (int n = 0; FcPatternGetString(pattern, FC_FAMILY, n, &text) == FcResultMatch; ++n)
    {
        m_families.push_back(lowered(text));
    }
    FcPatternGetInteger(pattern, FC_INDEX, 0, &m_index);
    m_weight = static_cast<int>(FcWeightToOpenTypeDouble(numberOf(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR)) + 0.5);
    m_italic = numberOf(pattern, FC_SLANT, FC_SLANT_ROMAN) > FC_SLANT_ROMAN;
    FcBool symbol = FcFalse;
    FcPatternGetBool(pattern, FC_SYMBOL, 0, &symbol);
    m_symbol = symbol != FcFalse;
    FcCharSet *coverage = nullptr;
    m_coverage = FcPatternGetCharSet(pattern, FC_CHARSET, 0, &coverage) == FcResultMatch ? FcCharSetCopy(coverage)
                                                                                         : FcCharSetCreate();
}

FaceFile::~FaceFile()
{
    FcCharSetDestroy(m_coverage);
}

bool FaceFile::isOfFamily(const std::string &family) const
{
    return std::find(m_families.begin(), m_families.end(), family) != m_families.end();
}

const std::string &FaceFile::family() const
{
    static const std::string none;
    return m_families.empty() ? none : m_families.front();
}

std::shared_ptr<const FaceFiles> FontCatalog::find(const FontKey &key)
{
    const std::lock_guard guard(m_mutex);
    Style style(key.family, key.weight, key.italic);
    const auto found = m_found.find(style);
    if (found != m_found.end())
    {
        return found->second;
    }
    if (m_found.size() >= mostStyles)
    {
        m_found.clear();
    }
    auto files = std::make_shared<const FaceFiles>(search(key));
    m_found.emplace(std::move(style), files);
    return files;
}

std::shared_ptr<FontCatalog> FontCatalog::current()
{
    const FontOptions options = currentFonts();
    Current &all = currentCatalogs();
    const std::lock_guard guard(all.mutex);
    if (options.files.empty())
    {
        if (all.ofHost == nullptr)
        {
            all.ofHost = makeHostCatalog();
        }
        return all.ofHost;
    }
    if (all.ofFiles == nullptr || all.files != options.files)
    {
        all.ofFiles = makeFileCatalog(options.files);
        all.files = options.files;
    }
    return all.ofFiles;
}
} // namespace zb::internal
