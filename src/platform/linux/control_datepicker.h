// The date picker's object, and the month that drops down from it.
#pragma once

#include "platform/date_picker.h"
#include "platform/linux/control_notifying.h"
#include "platform/linux/date_fields.h"

#include <string>
#include <vector>

namespace zb::internal
{
/// To the picker from its month: a day was taken (wParam its number since 1601), or it was given up (wParam the month).
inline constexpr UINT monthTaken = 0x7FF1;
inline constexpr UINT monthGivenUp = 0x7FF2;

/// What a month begins with.
struct MonthStart
{
    SYSTEMTIME moment;
    SYSTEMTIME first; ///< of the range
    SYSTEMTIME last;
    HFONT font;
};

/// A window of the screen that holds the capture, so every tap comes to it; the keys stay with the picker, which is its
/// owner and hands them on. lpCreateParams is a MonthStart.
class DropMonth final : public NotifyingControl
{
  public:
    using NotifyingControl::NotifyingControl;
    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;
    /// Of the client area.
    static SIZE sizeFor(HFONT font);

  private:
    enum class Part
    {
        Beside,
        Inside,
        EarlierMonth,
        LaterMonth,
        EarlierYear,
        LaterYear,
        Day,
        Today
    };
    struct Hit
    {
        Part part = Part::Beside;
        int day = 0;
        bool operator==(const Hit &) const = default;
    };

    void create(const MonthStart &start);
    bool takeKey(int key);
    void moveTo(int day);
    void moveMonths(int months);
    bool isInRange(int day) const;
    int firstShown() const;
    RECT partBox(Part part) const;
    RECT dayBox(int place) const;
    Hit hitTest(POINT point) const;
    void penDown(POINT point);
    void penMoved(POINT point);
    void penUp(POINT point);
    void press(Part part);
    void takeDay(int day);
    void draw(HDC context) const;
    void drawHeader(HDC context) const;
    void drawStepper(HDC context, Part earlier, Part later, const std::u16string &text) const;
    void drawWeekdays(HDC context) const;
    void drawDay(HDC context, int place) const;
    void drawToday(HDC context) const;

    SYSTEMTIME m_moment{};
    int m_first = 0; ///< of the range, day numbers
    int m_last = 0;
    int m_today = 0;
    int m_weekStart = 0; ///< 0 Monday
    int m_wantedDay = 1;
    Hit m_pressed;
    bool m_held = false;
    bool m_armed = false; ///< the pen has been inside since it opened the month
};

class DatePicker final : public NotifyingControl
{
  public:
    using NotifyingControl::NotifyingControl;
    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    // control_datepicker.cpp: messages, places and looks
    LRESULT takeWindow(UINT message, WPARAM wParam, LPARAM lParam);
    void create();
    bool setMoment(WPARAM kind, const SYSTEMTIME *moment);
    LRESULT getRange(SYSTEMTIME *both) const;
    bool setRange(WPARAM which, const SYSTEMTIME *both);
    void setPicture(const WCHAR *picture);
    bool hasArrows() const
    {
        return (style() & DTS_UPDOWN) != 0;
    }
    bool hasCheckBox() const
    {
        return (style() & DTS_SHOWNONE) != 0;
    }
    bool isDate() const
    {
        return !hasCheckBox() || m_checked;
    }
    RECT buttonsBox() const;
    RECT arrowBox(bool up) const;
    RECT checkBox() const;
    std::vector<RECT> partBoxes() const;
    std::u16string shownText(std::size_t part) const;
    void draw(HDC context) const;
    void drawParts(HDC context) const;
    LRESULT dialogCode(const MSG *about) const;

    // control_datepicker_input.cpp: keys, pen, the month
    LRESULT takeInput(UINT message, WPARAM wParam, LPARAM lParam);
    void takeKey(int key);
    void typed(WCHAR character);
    void penDown(POINT point);
    void penUp(POINT point);
    void openMonth();
    void closeMonth();

    // control_datepicker_fields.cpp: what typing and stepping does to the parts and the moment
    void typedDigit(WCHAR digit);
    void typedLetter(WCHAR letter);
    bool isField(int part) const
    {
        return part >= 0 && part < static_cast<int>(m_parts.size()) &&
               m_parts[static_cast<std::size_t>(part)].field != DateField::None;
    }
    void markFirst();
    void moveMark(int direction);
    void endDigits();
    void step(int by);
    void toEnd(bool highest);
    void setField(const DatePart &part, int value);
    SYSTEMTIME insideRange(const SYSTEMTIME &moment) const;
    void changeTo(const SYSTEMTIME &moment);
    void turnCheck();
    void tellChange();

    SYSTEMTIME m_moment{};
    SYSTEMTIME m_first{};
    SYSTEMTIME m_last{};
    bool m_hasFirst = false;
    bool m_hasLast = false;
    bool m_checked = true;
    int m_wantedDay = 1; ///< the day that was asked for, which a shorter month may not have
    std::vector<DatePart> m_parts;
    bool m_ownPicture = false;
    int m_marked = -1; ///< the part that keys change
    std::u16string m_digits;
    HWND m_month = nullptr;
    int m_pressedArrow = 0; ///< 1 up, -1 down
};
} // namespace zb::internal
