// Which files have the faces: those that the device's options name, or those of the host.
//
// Threads: any; a catalog never changes, what it remembers is behind a lock.
#pragma once

#include "platform/device.h"
#include "platform/linux/font_description.h"

#include <fontconfig/fontconfig.h>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
/// One face of a file on the host.
class FaceFile
{
  public:
    /// Takes what it needs from the pattern.
    explicit FaceFile(FcPattern *pattern);
    ~FaceFile();
    FaceFile(const FaceFile &) = delete;
    FaceFile &operator=(const FaceFile &) = delete;

    const std::string &path() const
    {
        return m_path;
    }
    /// As FreeType wants it: the face in the file, with the named instance in the upper half.
    int index() const
    {
        return m_index;
    }
    /// 100 to 1,000.
    int weight() const
    {
        return m_weight;
    }
    bool isItalic() const
    {
        return m_italic;
    }
    bool isSymbol() const
    {
        return m_symbol;
    }
    /// Whether one of its names in any language is this one (as in FontKey).
    bool isOfFamily(const std::string &family) const;
    const std::string &family() const;
    bool has(char32_t character) const
    {
        return FcCharSetHasChar(m_coverage, character) != 0;
    }

  private:
    std::string m_path;
    std::vector<std::string> m_families; ///< lower case
    int m_index = 0;
    int m_weight = 400;
    bool m_italic = false;
    bool m_symbol = false;
    FcCharSet *m_coverage = nullptr;
};

/// The face asked for first, then those that step in for characters that it lacks. Empty when there is no face at all.
using FaceFiles = std::vector<std::shared_ptr<const FaceFile>>;

class FontCatalog
{
  public:
    virtual ~FontCatalog() = default;
    FontCatalog() = default;
    FontCatalog(const FontCatalog &) = delete;
    FontCatalog &operator=(const FontCatalog &) = delete;

    /// By family, weight and slant alone.
    std::shared_ptr<const FaceFiles> find(const FontKey &key);

    /// Of the open device; the same one as long as its options are the same.
    static std::shared_ptr<FontCatalog> current();

  protected:
    virtual FaceFiles search(const FontKey &key) = 0;

  private:
    using Style = std::tuple<std::string, int, bool>;
    struct StyleHash
    {
        std::size_t operator()(const Style &style) const
        {
            return std::hash<std::string>()(std::get<0>(style)) ^
                   static_cast<std::size_t>(std::get<1>(style) * 2 + std::get<2>(style));
        }
    };

    std::mutex m_mutex;
    std::unordered_map<Style, std::shared_ptr<const FaceFiles>, StyleHash> m_found;
};

std::shared_ptr<FontCatalog> makeHostCatalog();
std::shared_ptr<FontCatalog> makeFileCatalog(const std::vector<std::filesystem::path> &files);
} // namespace zb::internal
