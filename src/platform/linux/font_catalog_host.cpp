// Faces of the host, by a configuration of our own, so that nothing else in the process sees what we add to it.
#include "platform/linux/font_catalog.h"

#include <filesystem>

namespace zb::internal
{
namespace
{
/// Has a face with the measures of Tahoma, and lies where the host itself doesn't look.
constexpr const char *extraFolder = "/usr/share/wine/fonts";
constexpr const char *defaultFamily = "Tahoma";

FcConfig *loadConfiguration()
{
    FcConfig *config = FcInitLoadConfigAndFonts();
    std::error_code none;
    if (config != nullptr && std::filesystem::is_directory(extraFolder, none))
    {
        FcConfigAppFontAddDir(config, reinterpret_cast<const FcChar8 *>(extraFolder));
    }
    return config;
}

FcPattern *patternOf(FcConfig *config, const FontKey &key)
{
    FcPattern *pattern = FcPatternCreate();
    const char *family = key.family.empty() ? defaultFamily : key.family.c_str();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8 *>(family));
    FcPatternAddDouble(pattern, FC_WEIGHT, FcWeightFromOpenTypeDouble(key.weight));
    FcPatternAddInteger(pattern, FC_SLANT, key.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    FcPatternAddBool(pattern, FC_OUTLINE, FcTrue);
    FcPatternAddBool(pattern, FC_VARIABLE, FcFalse);
    FcConfigSubstitute(config, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    return pattern;
}

bool isOutline(FcPattern *pattern)
{
    FcBool outline = FcFalse;
    FcBool color = FcFalse;
    FcPatternGetBool(pattern, FC_OUTLINE, 0, &outline);
    FcPatternGetBool(pattern, FC_COLOR, 0, &color);
    return outline != FcFalse && color == FcFalse;
}

class HostCatalog final : public FontCatalog
{
  public:
    HostCatalog() : m_config(loadConfiguration())
    {
    }
    ~HostCatalog() override
    {
        if (m_config != nullptr)
        {
            FcConfigDestroy(m_config);
        }
    }
    HostCatalog(const HostCatalog &) = delete;
    HostCatalog &operator=(const HostCatalog &) = delete;

  protected:
    FaceFiles search(const FontKey &key) override
    {
        FaceFiles files;
        FcPattern *wanted = patternOf(m_config, key);
        FcResult result = FcResultMatch;
        // Without those that add no character to the ones before.
        FcFontSet *sorted = FcFontSort(m_config, wanted, FcTrue, nullptr, &result);
        for (int n = 0; sorted != nullptr && n < sorted->nfont; ++n)
        {
            if (isOutline(sorted->fonts[n]))
            {
                auto file = std::make_shared<const FaceFile>(sorted->fonts[n]);
                // Pictures in the place of letters are for those who ask for them by name.
                if (!file->isSymbol() || (files.empty() && file->isOfFamily(key.family)))
                {
                    files.push_back(std::move(file));
                }
            }
        }
        if (sorted != nullptr)
        {
            FcFontSetDestroy(sorted);
        }
        FcPatternDestroy(wanted);
        return files;
    }

  private:
    FcConfig *m_config;
};
} // namespace

std::shared_ptr<FontCatalog> makeHostCatalog()
{
    return std::make_shared<HostCatalog>();
}
} // namespace zb::internal
