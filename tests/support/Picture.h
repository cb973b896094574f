// Pictures as tests expect them: PNG files below tests/data/pictures, and bitmaps held against them.
//
//     EXPECT_TRUE(zb::test::matchesPicture(board.bitmap(), "grid-plain"));
//
// On a difference the actual picture and one that shows where they differ (red) are written into the build folder, and
// the message names them. With ZB_UPDATE_PICTURES=1 in the environment the expected pictures are written instead; look
// at them before they are committed.
#pragma once

#include "platform/gdi.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
/// Rows from the top, each pixel 0x00RRGGBB.
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    bool operator==(const Picture &) const = default;
    std::uint32_t at(int x, int y) const
    {
        return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x));
    }
};

/// Without pixels for a handle that is no bitmap.
Picture pictureOf(HBITMAP bitmap);
/// Nothing when there is no such picture.
std::optional<Picture> loadPng(const std::filesystem::path &file);
bool savePng(const Picture &picture, const std::filesystem::path &file);
/// Equal pixels pale, different ones and those that only one of them has red.
Picture differenceOf(const Picture &actual, const Picture &expected);

/// Where expected pictures lie, and where actual ones and differences are written.
std::filesystem::path expectedPictureFile(const std::string &name);
std::filesystem::path actualPictureFile(const std::string &name);
std::filesystem::path differencePictureFile(const std::string &name);

/// `name` is that of the file below tests/data/pictures without ".png"; it may hold folders.
testing::AssertionResult matchesPicture(const Picture &actual, const std::string &name);
testing::AssertionResult matchesPicture(HBITMAP actual, const std::string &name);
} // namespace zb::test
