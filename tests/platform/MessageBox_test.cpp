// MessageBoxW without dialogs: it goes where the device's options say.
#include "platform/user.h"
#include "support/TestDevice.h"

namespace
{
struct Shown
{
    std::u16string text;
    std::u16string caption;
    UINT flags = 0;
};

TEST(MessageBox, GoesWhereTheOptionsSayAndGivesTheButton)
{
    Shown shown;
    zb::DeviceOptions options;
    options.messageBox = [&](std::u16string_view text, std::u16string_view caption, UINT flags)
    {
        shown = {std::u16string(text), std::u16string(caption), flags};
        return IDNO;
    };
    const zb::test::TestDevice device(options);
    EXPECT_EQ(MessageBoxW(nullptr, u"Really?", u"Question", 0x40023), IDNO);
    EXPECT_EQ(shown.text, u"Really?");
    EXPECT_EQ(shown.caption, u"Question");
    EXPECT_EQ(shown.flags, 0x40023U);
    MessageBoxW(nullptr, nullptr, nullptr, MB_OK);
    EXPECT_EQ(shown.text, u"");
    EXPECT_EQ(shown.caption, u"");
}

TEST(MessageBox, WithoutAScreenItIsALineOfTextAndTheFirstButton)
{
    const zb::test::TestDevice device;
    const std::pair<UINT, int> buttons[] = {{MB_OK, IDOK},           {MB_OKCANCEL, IDOK},
                                            {MB_YESNOCANCEL, IDYES}, {MB_YESNO, IDYES},
                                            {MB_RETRYCANCEL, IDRETRY}, {MB_ABORTRETRYIGNORE, IDABORT}};
    for (const auto &[flags, button] : buttons)
    {
        testing::internal::CaptureStderr();
        EXPECT_EQ(MessageBoxW(nullptr, u"Grüße", u"Fatal", flags | 0x40000), button);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "Fatal: Grüße\n");
    }
    testing::internal::CaptureStderr();
    MessageBoxW(nullptr, u"x", nullptr, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "x\n");
}
} // namespace
