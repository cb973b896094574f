// The data folder, and what the library shares before it is started.
#include "core/KelvoDirectory.h"

#include "core/CRegistry.h"
#include "core/SharedState.h"
#include "platform/kernel.h"
#include "platform/modules.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::utf8;

class KelvoDirectoryTest : public zb::test::DeviceTest
{
  protected:
    static void tell(const std::u16string &folder)
    {
        SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik", u"Kelvo_Folder", folder.c_str());
    }
    std::string readAnew()
    {
        device.reopen();
        InitKelvoDirectory();
        return utf8(GetKelvoDirectory());
    }
};

TEST_F(KelvoDirectoryTest, IsTheRegistrysValueElseTheDocumentsFolder)
{
    EXPECT_EQ(utf8(GetKelvoDirectory()), "\\My Documents");
    tell(u"\\Storage Card\\Data");
    EXPECT_EQ(utf8(GetKelvoDirectory()), "\\My Documents") << "read once";
    const WCHAR *const text = GetKelvoDirectory();
    EXPECT_EQ(readAnew(), "\\Storage Card\\Data");
    EXPECT_EQ(GetKelvoDirectory(), text) << "the text keeps its place";
    EXPECT_EQ(SettingsBaseFolder(), u"\\Storage Card\\Data");
    tell(u"");
    EXPECT_EQ(readAnew(), "\\My Documents");
}

TEST_F(KelvoDirectoryTest, HasRoomFor260Characters)
{
    tell(u"\\" + std::u16string(259, u'a'));
    EXPECT_EQ(readAnew(), "\\" + std::string(259, 'a'));
    tell(u"\\" + std::u16string(260, u'a'));
    EXPECT_EQ(readAnew(), "\\My Documents") << "no path is longer";
}

TEST_F(KelvoDirectoryTest, ForgottenItIsReadAnew)
{
    ASSERT_EQ(utf8(GetKelvoDirectory()), "\\My Documents");
    tell(u"\\Other");
    zb::forgetKelvoDirectory();
    EXPECT_EQ(utf8(GetKelvoDirectory()), "\\Other");
}

TEST_F(KelvoDirectoryTest, WithoutADeviceNothingIsRead)
{
    device.close();
    zb::forgetKelvoDirectory();
    InitKelvoDirectory();
    device.open();
    tell(u"\\Later");
    EXPECT_EQ(utf8(GetKelvoDirectory()), "\\Later");
}

TEST(SharedState, BeforeTheStartOfTheLibrary)
{
    EXPECT_EQ(GetLeftDefine(), 0U);
    EXPECT_EQ(GetRightDefine(), 2U);
    EXPECT_EQ(GetOutlookObject(), nullptr);
    EXPECT_EQ(zb::scratchBytes, 8000U);
    EXPECT_FALSE(zb::sharedState().initialized);
    EXPECT_NE(zb::sharedState().module, nullptr) << "kept when the library was loaded";
    EXPECT_NE(GetProcAddressW(zb::sharedState().module, u"_Z13DisplayMemoryPKDsS0_"), nullptr) << "and it is this one";
}

TEST(SharedState, TheApplicationsInstanceIsTheProgram)
{
    EXPECT_NE(CeGetAppInstance(), nullptr);
    EXPECT_EQ(CeGetAppInstance(), GetModuleHandleW(nullptr));
    EXPECT_NE(CeGetAppInstance(), zb::sharedState().module);
}
} // namespace
