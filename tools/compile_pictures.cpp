// Turns drawings that were rasterised at several densities into one C++ source, for libZBResources.
//
//     compile_pictures OUTPUT.cpp NUMBER@DPI.png ...
//
// Each becomes the bytes that platform/resources.h tells for a bitmap: a header of 40 bytes, then the rows from the
// bottom up, each pixel blue, green, red, opacity. Any trouble is told on standard error, and no output is written.
#include <SDL_image.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{
namespace fs = std::filesystem;

/// What TransparentImage leaves out: pure green.
constexpr std::uint32_t clearPixel = 0x0000FF00U;
constexpr std::uint32_t headerSize = 40;

struct FreeSurface
{
    void operator()(SDL_Surface *surface) const
    {
        SDL_FreeSurface(surface);
    }
};
using SurfacePointer = std::unique_ptr<SDL_Surface, FreeSurface>;

/// By number, then dots an inch.
using Pictures = std::map<std::pair<unsigned, unsigned>, std::vector<std::uint32_t>>;

unsigned numberOf(std::string_view digits, const fs::path &file)
{
    unsigned number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number == 0 || number > 0xFFFF)
    {
        throw std::runtime_error(file.string() + ": the name is not NUMBER@DPI.png");
    }
    return number;
}

SurfacePointer read(const fs::path &file)
{
    const SurfacePointer loaded(IMG_Load(file.c_str()));
    SurfacePointer picture(loaded == nullptr ? nullptr
                                             : SDL_ConvertSurfaceFormat(loaded.get(), SDL_PIXELFORMAT_ARGB8888, 0));
    if (picture == nullptr)
    {
        throw std::runtime_error(file.string() + ": " + SDL_GetError());
    }
    return picture;
}

std::vector<std::uint32_t> header(unsigned width, unsigned height, unsigned dotsPerInch)
{
    const unsigned dotsPerMeter = (dotsPerInch * 10000U + 127U) / 254U;
    return {headerSize, width, height, 1U | 32U << 16U, 0, width * height * 4U, dotsPerMeter, dotsPerMeter, 0, 0};
}

std::vector<std::uint32_t> bitmapOf(const SDL_Surface &picture, unsigned dotsPerInch)
{
    const auto width = static_cast<unsigned>(picture.w);
    const auto height = static_cast<unsigned>(picture.h);
    std::vector<std::uint32_t> words = header(width, height, dotsPerInch);
    for (unsigned row = height; row-- > 0;)
    {
        const auto *pixels = reinterpret_cast<const std::uint32_t *>(static_cast<const std::uint8_t *>(picture.pixels) +
                                                                     static_cast<std::size_t>(picture.pitch) * row);
        for (unsigned column = 0; column < width; ++column)
        {
            words.push_back(pixels[column] >> 24U == 0 ? clearPixel : pixels[column]);
        }
    }
    return words;
}

Pictures readAll(int count, char **files)
{
    Pictures pictures;
    for (int i = 0; i < count; ++i)
    {
        const fs::path file = files[i];
        const std::string name = file.stem().string();
        const auto at = name.find('@');
        const std::string_view view(name);
        const unsigned number = numberOf(view.substr(0, at), file);
        const unsigned dots = numberOf(at == std::string::npos ? std::string_view() : view.substr(at + 1), file);
        pictures[{number, dots}] = bitmapOf(*read(file), dots);
    }
    return pictures;
}

void write(const fs::path &output, const Pictures &pictures)
{
    std::ofstream out(output, std::ios::trunc);
    out << "#include \"pictures.h\"\n\nnamespace\n{\n";
    for (const auto &[key, words] : pictures)
    {
        out << "const std::uint32_t picture" << key.first << "at" << key.second << "[] = {";
        for (const std::uint32_t word : words)
        {
            out << word << "U,";
        }
        out << "};\n";
    }
    out << "const zb::resources::Picture all[] = {\n";
    for (const auto &[key, words] : pictures)
    {
        out << "{" << key.first << "U, " << key.second << ", picture" << key.first << "at" << key.second << ", "
            << words.size() * sizeof(std::uint32_t) << "},\n";
    }
    out << "};\n} // namespace\n\nconst zb::resources::Picture *const zb::resources::pictures = all;\n"
        << "const std::size_t zb::resources::pictureCount = " << pictures.size() << ";\n";
    if (!out.flush())
    {
        throw std::runtime_error(output.string() + ": can't be written");
    }
}
} // namespace

int main(int count, char **arguments)
try
{
    if (count < 3)
    {
        std::fputs("usage: compile_pictures OUTPUT.cpp NUMBER@DPI.png ...\n", stderr);
        return 2;
    }
    write(arguments[1], readAll(count - 2, arguments + 2));
    return 0;
}
catch (const std::exception &error)
{
    std::fprintf(stderr, "compile_pictures: %s\n", error.what());
    return 1;
}
