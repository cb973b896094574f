// What the tests of contact lists share: records, a loader, settings, and rows as text.
#pragma once

#include "contacts/CContactsThread.h"
#include "platform/pim.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
using Bytes = std::vector<BYTE>;

/// Bits of the categories that the fixture makes: Work, Home, Garden.
inline constexpr int workBit = 1;
inline constexpr int homeBit = 2;
inline constexpr int gardenBit = 3;

/// Adds it to the contacts of the device; 0 on failure. Without bits it has no categories.
CEOID addContact(const ContactItem &item, std::initializer_list<int> categories = {});
CEOID addContact(const std::u16string &first, const std::u16string &last, const std::u16string &company = {},
                 std::initializer_list<int> categories = {});
CEOID addCompany(const std::u16string &company);
/// Writes it over the record: what it lacks is removed, its categories too.
bool changeContact(CEOID oid, const ContactItem &item, std::initializer_list<int> categories = {});
bool removeContact(CEOID oid);
/// Writes properties as they are told, and nothing else.
CEOID writeContact(CEOID oid, const RecordProperties &properties);
bool deleteContactsDatabase();

inline constexpr const WCHAR *contactsKey = u"Software\\Kelvo\\Zembrik\\CV";
void setSetting(const WCHAR *name, DWORD value);
std::optional<DWORD> setting(const WCHAR *name);

/// Name of a row; a header as "[name (count) +]", with + when open and - when closed; "null" for none.
std::string describe(const DATACONTACTS *row);

class ContactListTest : public ::testing::Test
{
  protected:
    ContactListTest();
    CContactsThread &loader();
    /// A whole run on this thread; what shows, joined by "; ".
    std::string load();
    std::string load(LONG display);
    std::string search(const std::u16string &text, bool deep = false);
    std::string shown();
    /// The cache in its order, by file-as name.
    std::string cached();
    const DATACONTACTS *row(CEOID oid);
    void set(const WCHAR *name, DWORD value)
    {
        setSetting(name, value);
    }
    void display(LONG value)
    {
        set(u"CV_DisplayFormat", static_cast<DWORD>(value));
    }
    /// Chooses categories by their bits, and how they count.
    void choose(std::initializer_list<int> bits, LONG mode = 0, bool includeNone = false);

    TestDevice device;

  private:
    std::unique_ptr<CContactsThread> m_loader;
};
} // namespace zb::test
