// The settings store beside a plain map: thousands of random steps of two objects that share a file and of another
// process, with saves and reopening between them.
#include "core/CRegistry.h"
#include "support/TestDevice.h"

#include <array>
#include <map>
#include <random>
#include <variant>

namespace zb::test
{
namespace
{
using Value = std::variant<DWORD, std::u16string>;
using Key = std::map<std::u16string, Value>;
using Model = std::map<std::u16string, Key>;

const std::array<const WCHAR *, 5> keys = {u"A", u"A\\B", u"A\\B\\C", u"AB", u"Software\\D"};
const std::array<const WCHAR *, 6> names = {u"v", u"V", u"a \"name\"", u"@", u"longer name of a value", u";"};
const std::array<const WCHAR *, 6> texts = {u"", u"x", u"a=b \"c\"", u"\"", u"  padded ", u"grüße"};

class SettingsModelTest : public DeviceTest
{
  protected:
    template <typename Choices>
    const WCHAR *oneOf(const Choices &choices)
    {
        return choices[random() % choices.size()];
    }

    void set(CRegistry &registry, const WCHAR *key)
    {
        const WCHAR *name = oneOf(names);
        ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, key), 0);
        if (random() % 2 == 0)
        {
            const auto number = static_cast<DWORD>(random());
            ASSERT_EQ(registry.SetValue(name, number), 0);
            model[key][name] = number;
            return;
        }
        const WCHAR *text = oneOf(texts);
        ASSERT_EQ(registry.SetValue(name, text), 0);
        model[key][name] = std::u16string(text);
    }

    void removeValue(CRegistry &registry, const WCHAR *key)
    {
        const WCHAR *name = oneOf(names);
        ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, key), 0);
        const bool held = model.count(key) != 0 && model[key].erase(name) != 0;
        ASSERT_EQ(registry.DeleteValue(name) == 0, held);
    }

    void removeKey(CRegistry &registry, const std::u16string &key)
    {
        ASSERT_EQ(registry.DeleteKey(HKEY_CURRENT_USER, key.c_str()), 0);
        for (auto each = model.begin(); each != model.end();)
        {
            const bool goes = each->first == key || each->first.rfind(key + u"\\", 0) == 0;
            each = goes ? model.erase(each) : std::next(each);
        }
    }

    void step(CRegistry &registry)
    {
        const WCHAR *key = oneOf(keys);
        const unsigned choice = random() % 20;
        if (choice < 12)
        {
            set(registry, key);
        }
        else if (choice < 17)
        {
            removeValue(registry, key);
        }
        else if (choice < 18)
        {
            removeKey(registry, key);
        }
        else
        {
            ASSERT_EQ(registry.SaveINIFile(choice == 18 ? 1 : 0), 0);
        }
    }

    static Value read(const CRegistry &registry, const std::u16string &name)
    {
        DWORD type = 0;
        EXPECT_EQ(registry.QueryValueType(name.c_str(), &type), 0);
        if (type == REG_DWORD)
        {
            DWORD number = 0;
            EXPECT_EQ(registry.QueryValue(name.c_str(), &number), 0);
            return number;
        }
        std::array<WCHAR, 100> text{};
        EXPECT_EQ(registry.QueryValue(name.c_str(), text.data(), 100), 0);
        return std::u16string(text.data());
    }

    void compare(CRegistry &registry)
    {
        for (const WCHAR *key : keys)
        {
            ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, key), 0);
            Key held;
            for (const std::u16string &name : registry.ValueNames())
            {
                held[name] = read(registry, name);
            }
            ASSERT_EQ(held, model[key]) << utf8(key);
        }
    }

    const unsigned seed = std::random_device{}();
    std::mt19937 random{seed};
    Model model;
};

TEST_F(SettingsModelTest, TwoObjectsAndReopeningGiveWhatAMapHolds)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (int session = 0; session < 50; ++session)
    {
        {
            CRegistry first;
            CRegistry second;
            for (int count = 0; count < 60; ++count)
            {
                step(random() % 2 == 0 ? first : second);
                ASSERT_FALSE(HasFatalFailure()) << session << "," << count;
            }
            compare(first);
        }
        device.reopen();
        CRegistry later;
        compare(later);
        ASSERT_FALSE(HasFatalFailure()) << session;
    }
}
} // namespace
} // namespace zb::test
