// The screens' host run as a child without a window, and the pictures that it draws.
#pragma once

#include "apps/ZbProgram.h"
#include "support/Picture.h"
#include "support/TestDevice.h"
#include "support/TestFace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zb::test
{
/// Every run has the test faces, a fixed moment, and 240 by 320 pixels unless it asks for others.
class ZembrikTest : public ::testing::Test
{
  protected:
    ZembrikTest() : m_fonts(testFonts(m_folder.path()))
    {
    }

    std::string now = "2026-11-20T09:00Z";
    std::string locale = "en_GB.UTF-8";

    std::filesystem::path file(const std::string &name) const
    {
        return m_folder.path() / name;
    }
    std::filesystem::path device() const
    {
        return m_folder.path() / "device";
    }
    /// As it is called, with device, faces and clock. In the input "@" stands for the test's folder.
    ProgramResult run(std::vector<std::string> words, std::string input = {}, const std::string &display = {}) const
    {
        for (std::size_t at = input.find('@'); at != std::string::npos; at = input.find('@'))
        {
            input.replace(at, 1, m_folder.path().string());
        }
        words.insert(words.end(), {"--device", device().string()});
        for (const std::filesystem::path &face : m_fonts.files)
        {
            words.insert(words.end(), {"--font", face.string()});
        }
        ProgramOptions options;
        options.environment["ZB_NOW"] = now;
        options.environment["LC_ALL"] = locale;
        options.input = input;
        if (!display.empty())
        {
            options.environment["DISPLAY"] = display;
        }
        return runProgram(ZEMBRIK_PROGRAM, words, options);
    }
    /// Plays lines without a window.
    ProgramResult play(const std::string &lines, std::vector<std::string> words = {"--size", "240x320"}) const
    {
        words.insert(words.end(), {"--headless", "--script", "-"});
        return run(words, lines);
    }
    /// Without pixels when it was not drawn.
    Picture drawn(const std::string &name) const
    {
        return loadPng(file(name)).value_or(Picture{});
    }
    std::string settings() const
    {
        return readFile(device() / "files" / "My Documents" / "Kelvo" / "Settings.txt");
    }

  private:
    TemporaryFolder m_folder;
    FontOptions m_fonts;
};

/// Pixels of a colour inside a box.
inline int count(const Picture &picture, std::uint32_t color, int left = 0, int top = 0, int right = 1 << 20,
                 int bottom = 1 << 20)
{
    int found = 0;
    for (int y = top; y < std::min(bottom, picture.height); ++y)
    {
        for (int x = left; x < std::min(right, picture.width); ++x)
        {
            found += picture.at(x, y) == color ? 1 : 0;
        }
    }
    return found;
}
} // namespace zb::test
