#include "support/Picture.h"

#include "platform/image.h"
#include "support/DeviceFiles.h"

#include <cstdlib>

namespace zb::test
{
namespace
{
namespace fs = std::filesystem;

fs::path outputFile(const std::string &name, const char *ending)
{
    return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "pictures" / (name + ending + ".png");
}

bool isUpdateWished()
{
    const char *value = std::getenv("ZB_UPDATE_PICTURES");
    return value != nullptr && std::string(value) == "1";
}

std::uint32_t paled(std::uint32_t pixel)
{
    const std::uint32_t grey = ((pixel & 0xFFU) + (pixel >> 8U & 0xFFU) + (pixel >> 16U & 0xFFU)) / 3;
    return (192 + grey / 4) * 0x010101U;
}

/// The first pixel that differs, for the message.
std::string firstDifference(const Picture &actual, const Picture &expected)
{
    if (actual.width != expected.width || actual.height != expected.height)
    {
        return "is " + std::to_string(actual.width) + " by " + std::to_string(actual.height) + " in place of " +
               std::to_string(expected.width) + " by " + std::to_string(expected.height);
    }
    std::size_t count = 0;
    std::size_t first = 0;
    for (std::size_t i = 0; i < actual.pixels.size(); ++i)
    {
        if (actual.pixels[i] != expected.pixels[i])
        {
            first = count == 0 ? i : first;
            ++count;
        }
    }
    const auto width = static_cast<std::size_t>(actual.width);
    return "differs in " + std::to_string(count) + " pixels, first at " + std::to_string(first % width) + ", " +
           std::to_string(first / width);
}
} // namespace

Picture pictureOf(HBITMAP bitmap)
{
    BITMAP record{};
    if (GetObjectW(bitmap, sizeof record, &record) != static_cast<int>(sizeof record))
    {
        return {};
    }
    return {record.bmWidth, record.bmHeight, pixelsOf(bitmap)};
}

std::optional<Picture> loadPng(const fs::path &file)
{
    const std::string bytes = hostBytes(file);
    HBITMAP bitmap = decodePicture(bytes.data(), bytes.size(), PictureLimits{}, 0, 0);
    if (bitmap == nullptr)
    {
        return std::nullopt;
    }
    Picture picture = pictureOf(bitmap);
    DeleteObject(bitmap);
    return picture;
}

bool savePng(const Picture &picture, const fs::path &file)
{
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    HBITMAP bitmap = CreateBitmap(picture.width, picture.height, 1, 32, picture.pixels.data());
    const bool written = bitmap != nullptr && writePng(bitmap, file);
    DeleteObject(bitmap);
    return written;
}

Picture differenceOf(const Picture &actual, const Picture &expected)
{
    Picture result{std::max(actual.width, expected.width), std::max(actual.height, expected.height), {}};
    for (int y = 0; y < result.height; ++y)
    {
        for (int x = 0; x < result.width; ++x)
        {
            const bool both =
                x < std::min(actual.width, expected.width) && y < std::min(actual.height, expected.height);
            const bool equal = both && actual.at(x, y) == expected.at(x, y);
            result.pixels.push_back(equal ? paled(actual.at(x, y)) : 0xFF0000U);
        }
    }
    return result;
}

fs::path expectedPictureFile(const std::string &name)
{
    return fs::path(ZB_SOURCE_DIR) / "tests/data/pictures" / (name + ".png");
}

fs::path actualPictureFile(const std::string &name)
{
    return outputFile(name, "-actual");
}

fs::path differencePictureFile(const std::string &name)
{
    return outputFile(name, "-difference");
}

testing::AssertionResult matchesPicture(const Picture &actual, const std::string &name)
{
    const fs::path file = expectedPictureFile(name);
    const std::optional<Picture> expected = loadPng(file);
    if (expected == actual && actual.width > 0)
    {
        return testing::AssertionSuccess();
    }
    if (isUpdateWished() && actual.width > 0)
    {
        return savePng(actual, file) ? testing::AssertionSuccess()
                                     : testing::AssertionFailure() << file << " can't be written";
    }
    savePng(actual, actualPictureFile(name));
    if (!expected.has_value())
    {
        return testing::AssertionFailure() << "There is no picture " << file << "; the actual one is "
                                           << actualPictureFile(name) << " (ZB_UPDATE_PICTURES=1 takes it over).";
    }
    savePng(differenceOf(actual, *expected), differencePictureFile(name));
    return testing::AssertionFailure() << "The picture " << firstDifference(actual, *expected)
                                       << ".\nExpected: " << file << "\nActual: " << actualPictureFile(name)
                                       << "\nDifference: " << differencePictureFile(name);
}

testing::AssertionResult matchesPicture(HBITMAP actual, const std::string &name)
{
    return matchesPicture(pictureOf(actual), name);
}
} // namespace zb::test
