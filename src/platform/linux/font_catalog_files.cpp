// Faces from the files that the device's options name, and nothing else.
#include "platform/linux/font_catalog.h"

#include <algorithm>
#include <cstdlib>
#include <fontconfig/fcfreetype.h>

namespace zb::internal
{
namespace
{
class FileCatalog final : public FontCatalog
{
  public:
    explicit FileCatalog(const std::vector<std::filesystem::path> &files)
    {
        for (const std::filesystem::path &file : files)
        {
            addFaces(file);
        }
    }

  protected:
    FaceFiles search(const FontKey &key) override
    {
        if (m_faces.empty())
        {
            return {};
        }
        // An unknown family is the first file's, so that its bold and italic faces serve too.
        const bool known =
            std::any_of(m_faces.begin(), m_faces.end(), [&](const auto &face) { return face->isOfFamily(key.family); });
        const std::string &family = known ? key.family : m_faces.front()->family();
        const auto distance = [&](const std::shared_ptr<const FaceFile> &face)
        {
            const int foreign = face->isOfFamily(family) ? 0 : 10'000;
            return foreign + std::abs(face->weight() - key.weight) + (face->isItalic() == key.italic ? 0 : 100);
        };
        const auto best =
            std::min_element(m_faces.begin(), m_faces.end(),
                             [&](const auto &one, const auto &other) { return distance(one) < distance(other); });
        FaceFiles chosen = {*best};
        std::copy_if(m_faces.begin(), m_faces.end(), std::back_inserter(chosen),
                     [&](const auto &face) { return face != *best; });
        return chosen;
    }

  private:
    /// A file that is none, or no font, is passed over.
    void addFaces(const std::filesystem::path &file)
    {
        int count = 1;
        for (int index = 0; index < count; ++index)
        {
            FcPattern *pattern =
                FcFreeTypeQuery(reinterpret_cast<const FcChar8 *>(file.c_str()), index, nullptr, &count);
            if (pattern == nullptr)
            {
                return;
            }
            m_faces.push_back(std::make_shared<const FaceFile>(pattern));
            FcPatternDestroy(pattern);
        }
    }

    FaceFiles m_faces;
};
} // namespace

std::shared_ptr<FontCatalog> makeFileCatalog(const std::vector<std::filesystem::path> &files)
{
    return std::make_shared<FileCatalog>(files);
}
} // namespace zb::internal
