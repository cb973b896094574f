// What the contact loader costs with 20,000 contacts: loading the cache, the first page, a key of find-as-you-type, a
// deep search of all, a change of display, and the memory of the cache.
//
// Aims: the cache within 2.5 times the walk of the same five properties; the first page within 30 ms once the cache is
// warm; a prefix within 5 ms; a deep search within 1.5 times the walk of the same properties; below 400 bytes of memory
// a contact beyond its texts.
#include "contacts/CContactsThread.h"
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "platform/user.h"
#include "records/CategoryEdit.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <cstdlib>
#include <malloc.h>
#include <random>
#include <stdexcept>

namespace
{
constexpr std::size_t contactCount = 20'000;
constexpr unsigned categoryCount = 12;

class ContactMaker
{
  public:
    zb::ContactItem make()
    {
        zb::ContactItem contact;
        // One in ten is a company alone, one in ten has letters beyond ASCII.
        if (below(10) != 0)
        {
            contact.firstName = name();
            contact.lastName = name();
        }
        contact.company = below(3) == 0 ? name() + u" " + name() : std::u16string();
        if (contact.lastName.empty() && contact.company.empty())
        {
            contact.company = name();
        }
        contact.businessPhone = below(2) == 0 ? number() : std::u16string();
        contact.mobilePhone = below(4) != 0 ? number() : std::u16string();
        contact.homePhone = below(3) == 0 ? number() : std::u16string();
        contact.email1 = below(4) != 0 ? name() + u"@example.org" : std::u16string();
        contact.jobTitle = below(3) == 0 ? name() : std::u16string();
        contact.home = {name() + u" " + number(), name(), name(), number(), name()};
        contact.notes = below(4) == 0 ? name() + u" " + name() : std::u16string();
        return contact;
    }
    std::vector<BYTE> categories()
    {
        const DWORD bits = 1U << below(categoryCount);
        return {static_cast<BYTE>(bits), static_cast<BYTE>(bits >> 8U), 0, 0};
    }
    /// By remainder, since the library's distributions differ from one library to the next.
    unsigned below(unsigned limit)
    {
        return static_cast<unsigned>(m_random() % limit);
    }

  private:
    std::u16string name()
    {
        std::u16string made(4 + below(8), u' ');
        for (WCHAR &ch : made)
        {
            ch = static_cast<WCHAR>(u'a' + below(26));
        }
        made[0] = static_cast<WCHAR>(made[0] - u'a' + u'A');
        if (below(10) == 0)
        {
            made[1] = u'é';
        }
        return made;
    }
    std::u16string number()
    {
        std::u16string made(9, u' ');
        for (WCHAR &ch : made)
        {
            ch = static_cast<WCHAR>(u'0' + below(10));
        }
        return made;
    }

    std::mt19937 m_random{20'260'302};
};

void storeContacts()
{
    ContactMaker maker;
    for (unsigned n = 0; n < categoryCount; ++n)
    {
        const std::u16string name = u"Category " + std::u16string(1, static_cast<WCHAR>(u'A' + n));
        zb::addCategory(name.c_str());
    }
    CEOID oid = 0;
    const HANDLE database = CeOpenDatabase(&oid, zb::contactsDatabase, 0, 0, nullptr);
    zb::BulkWrite bulk;
    for (std::size_t n = 0; n < contactCount; ++n)
    {
        zb::RecordProperties properties = zb::encodeContact(maker.make());
        properties.set(zb::itemCategories, maker.categories());
        CeWriteRecordProps(database, 0, properties.count(), properties.values());
    }
    const bool written = bulk.commit();
    CloseHandle(database);
    if (!written)
    {
        throw std::runtime_error("the contacts were not written");
    }
}

/// A device with the contacts and a window that takes messages; gone with the object.
class Stage : public zb::bench::DeviceStage
{
  public:
    Stage()
    {
        storeContacts();
    }
    HWND window() const
    {
        return m_host.handle();
    }

  private:
    zb::bench::ListHost m_host;
};

Stage &stage()
{
    static Stage made;
    return made;
}

/// First to last in file-as order, and nothing done with the properties.
class Walk
{
  public:
    explicit Walk(std::vector<CEPROPID> ids) : m_ids(std::move(ids))
    {
        if (!m_database.Open(zb::contactsDatabase, zb::contactFileAs, 0, nullptr))
        {
            throw std::runtime_error("the contacts did not open");
        }
    }
    void run()
    {
        std::size_t records = 0;
        for (CEOID oid = m_database.SeekFirst(); oid != 0; oid = m_database.SeekNext())
        {
            records += m_reader.read(m_database, static_cast<WORD>(m_ids.size()), m_ids.data()) != nullptr ? 1 : 0;
        }
        if (records != contactCount)
        {
            throw std::runtime_error("not all contacts were read");
        }
    }

  private:
    std::vector<CEPROPID> m_ids;
    CeDb m_database;
    zb::ContactReader m_reader{0x8000};
};

std::vector<CEPROPID> cacheIds()
{
    return {zb::itemCategories, zb::contactFileAs, zb::contactFirstName, zb::contactLastName, zb::contactCompany};
}

std::unique_ptr<CContactsThread> loaderOf(LONG display, bool withHost)
{
    auto loader = std::make_unique<CContactsThread>();
    ContactListSettings settings;
    settings.CV_DisplayFormat = display;
    loader->m_ownSettings = settings;
    loader->m_hWndHost = withHost ? stage().window() : nullptr;
    loader->LoadContacts(nullptr);
    return loader;
}

void cacheLoad(benchmark::State &state)
{
    stage();
    Walk walk(cacheIds());
    const auto loader = loaderOf(contactsFileAs, true);
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { walk.run(); }, [&] { loader->LoadCatCache(); });
}
BENCHMARK(cacheLoad)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void cacheMemory(benchmark::State &state)
{
    stage();
    const auto loader = loaderOf(contactsFileAs, true);
    loader->ClearCatCache();
    const auto used = []
    { return static_cast<double>(mallinfo2().uordblks) + static_cast<double>(mallinfo2().hblkhd); };
    for ([[maybe_unused]] auto _ : state)
    {
        const double before = used();
        loader->LoadCatCache();
        double texts = 0;
        for (int i = 0; i < loader->GetCatCache().GetCount(); ++i)
        {
            const CCatCache &item = *loader->GetCatCache().GetPtrAt(i);
            texts += item.m_cbCategories;
            for (const BSTR text : {item.m_bstrFirstName, item.m_bstrLastName, item.m_bstrCompany, item.m_bstrFileAs})
            {
                texts += sizeof(WCHAR) * SysStringLen(text);
            }
        }
        state.counters["bytes_beyond_texts"] = (used() - before - texts) / static_cast<double>(contactCount);
    }
}
BENCHMARK(cacheMemory)->Iterations(1);

void firstPage(benchmark::State &state, LONG display)
{
    stage();
    Walk walk(cacheIds());
    const auto loader = loaderOf(display, true);
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { walk.run(); }, [&] { loader->LoadContacts(nullptr); });
    state.counters["rows"] = loader->GetList().GetDisplayCount();
}
BENCHMARK_CAPTURE(firstPage, firstName, contactsFirstName)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstPage, fileAs, contactsFileAs)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstPage, companies, contactsCompanies)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstPage, categories, contactsCategories)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void keystroke(benchmark::State &state, const WCHAR *text)
{
    stage();
    Walk walk(cacheIds());
    const auto loader = loaderOf(contactsLastName, true);
    loader->SetCompareString(text, false);
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { walk.run(); }, [&] { loader->LoadContacts(nullptr); });
    state.counters["rows"] = loader->GetList().GetDisplayCount();
}
BENCHMARK_CAPTURE(keystroke, oneLetter, u"b")->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(keystroke, twoLetters, u"be")->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(keystroke, threeLetters, u"ber")->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void deepSearch(benchmark::State &state, LONG display)
{
    stage();
    const auto loader = loaderOf(display, true);
    loader->SetCompareString(u"1234567", true);
    const int count = loader->SetPropIds(true);
    Walk walk(std::vector<CEPROPID>(loader->GetPropIds().begin(), loader->GetPropIds().begin() + count));
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { walk.run(); }, [&] { loader->LoadContacts(nullptr); });
    state.counters["rows"] = loader->GetList().GetDisplayCount();
}
BENCHMARK_CAPTURE(deepSearch, fileAs, contactsFileAs)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(deepSearch, firstName, contactsFirstName)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void displayChange(benchmark::State &state)
{
    stage();
    Walk walk(cacheIds());
    const auto loader = loaderOf(contactsFileAs, true);
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { walk.run(); },
        [&]
        {
            LONG &display = loader->m_ownSettings->CV_DisplayFormat;
            display = display == contactsFirstName ? contactsLastName : contactsFirstName;
            loader->LoadContacts(nullptr);
        });
}
BENCHMARK(displayChange)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
