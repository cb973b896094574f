// Small drawing helpers of the views, and the colours that they share.
#pragma once

#include "platform/gdi.h"

#include <string>

namespace zb::screens
{
inline constexpr COLORREF todayColor = RGB(0x2F, 0x5D, 0x96);
inline constexpr COLORREF headerColor = RGB(0xE6, 0xEB, 0xF2);
inline constexpr COLORREF quietColor = RGB(0xF4, 0xF6, 0xF9);
inline constexpr COLORREF ruleColor = RGB(0xDD, 0xE2, 0xE8);
inline constexpr COLORREF inkColor = RGB(0x16, 0x20, 0x2B);
inline constexpr COLORREF dimColor = RGB(0x5C, 0x68, 0x75);
/// Of an item without a category that has one.
inline constexpr COLORREF usualColor = RGB(0x6C, 0x9B, 0xD2);
inline constexpr COLORREF nowColor = RGB(0xC6, 0x28, 0x28);

/// What the markup of a cell begins with: its ground.
std::u16string groundMarkup(COLORREF color);
void fillBox(HDC hdc, const RECT &box, COLORREF color);
/// So many hundredths of `color`, the rest of `ground`.
COLORREF mixed(COLORREF color, COLORREF ground, int hundredths);
/// Marked-up text in a box, which cuts it.
void drawMarkup(HDC hdc, const RECT &box, const std::u16string &markup);
/// Height of a line of text in a font of that SIZE of the markup language.
int lineHeight(HDC hdc, int size);
/// One line of plain text, cut with "…" where the box ends; in the middle of its height.
void drawLine(HDC hdc, const RECT &box, const std::u16string &text, int size, COLORREF color);
/// A box in a tint of the colour with a strip of the colour at its left; words only where there is room for them.
void drawChip(HDC hdc, const RECT &box, const std::u16string &text, COLORREF color, int size);
} // namespace zb::screens
