// zb dump and zb show: the records of one database, or one record, property by property.
#include "common/complain.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "zb/blob_words.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/property_text.h"
#include "zb/terminal.h"

#include <algorithm>
#include <limits>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int longestName = 18;

bool open(CeDb &database, const std::string &name)
{
    if (database.Open(toUtf16(name).c_str(), 0, 0, nullptr))
    {
        return true;
    }
    const bool isId = !name.empty() && name.size() <= 10 && name.find_first_not_of("0123456789") == std::string::npos;
    const unsigned long long id = isId ? std::stoull(name) : 0;
    return id != 0 && id <= std::numeric_limits<CEOID>::max() && database.Open(static_cast<CEOID>(id), 0, 0, nullptr);
}

std::string nameOf(const CeDb &database)
{
    CEOIDINFO info{};
    return CeOidGetInfo(database.GetDatabaseOID(), &info) != FALSE && info.wObjType == OBJTYPE_DATABASE
               ? toUtf8(info.infDatabase.szDbaseName)
               : std::string();
}

void print(const CeDbRecord &record, const Terminal &terminal, Output &output)
{
    output.line(terminal.styled("record " + std::to_string(record.GetOid()), Style::Heading));
    for (WORD n = 0; n < record.GetCount(); ++n)
    {
        const CEPROPVAL &value = record.GetProps()[n];
        const std::string head = padded(typeName(TypeFromPropID(value.propid)), 9) + " " +
                                 padded(propertyName(value.propid), longestName) + " ";
        output.line("  " + terminal.styled(propertyId(value.propid), Style::Dim) + " " + head + valueText(value));
        for (const std::string &words : blobWords(value))
        {
            output.line(std::string(longestName + 24, ' ') + terminal.styled(words, Style::Dim));
        }
    }
}

Json asJson(const CeDbRecord &record)
{
    Json properties = Json::array();
    for (WORD n = 0; n < record.GetCount(); ++n)
    {
        const CEPROPVAL &value = record.GetProps()[n];
        Json property = {{"id", propertyId(value.propid)},
                         {"type", typeName(TypeFromPropID(value.propid))},
                         {"name", propertyName(value.propid)},
                         {"value", valueJson(value)}};
        if (const std::vector<std::string> words = blobWords(value); !words.empty())
        {
            property["words"] = words;
        }
        properties.push_back(std::move(property));
    }
    return {{"id", record.GetOid()}, {"properties", properties}};
}

/// Each record once, in the order in which they lie, until `take` has had `limit` of them. Returns how many.
template <typename Take>
std::size_t walk(CeDb &database, std::optional<std::size_t> limit, Take take)
{
    std::size_t count = 0;
    CEOID id = limit && *limit == 0 ? 0 : database.SeekFirst();
    for (; id != 0; id = limit && count >= *limit ? 0 : database.SeekNext())
    {
        CeDbRecord record;
        // A record without any property reads as none; one that another process deleted meanwhile does too.
        if (database.ReadRec(record, 0, nullptr))
        {
            take(record);
        }
        ++count;
    }
    return count;
}

/// Record by record, since the text of a large database would not fit in memory at once.
void printJson(CeDb &database, const DumpArguments &arguments, Output &output)
{
    const Json head = {
        {"id", database.GetDatabaseOID()}, {"name", nameOf(database)}, {"records", database.GetRecordCount()}};
    output.line("{\n\"version\": " + std::to_string(jsonVersion) + ",\n\"database\": " + text(head) +
                ",\n\"records\": [");
    bool first = true;
    walk(database, arguments.limit,
         [&](const CeDbRecord &record)
         {
             output.write(first ? "" : ",\n");
             output.write(text(asJson(record)));
             first = false;
         });
    output.line("\n]\n}");
}

void printText(CeDb &database, const DumpArguments &arguments, Output &output)
{
    const Terminal terminal(stdout);
    const std::size_t count =
        walk(database, arguments.limit, [&](const CeDbRecord &record) { print(record, terminal, output); });
    const DWORD all = database.GetRecordCount();
    if (count < all)
    {
        complain(std::to_string(count) + " of " + std::to_string(all) + " records shown");
    }
}
} // namespace

int runDump(const DumpArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    CeDb database;
    if (!open(database, arguments.database))
    {
        complain("the device has no database \"" + arguments.database + "\"; \"zb info\" lists them");
        return exitUsage;
    }
    Output output;
    arguments.json ? printJson(database, arguments, output) : printText(database, arguments, output);
    return output.finish() ? exitOk : exitOutput;
}

int runShow(const ShowArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    CeDb database;
    CeDbRecord record;
    const BSTR name = CeDb::GetDatabaseNameFromOID(arguments.id);
    const bool found = name != nullptr && database.Open(name, 0, 0, nullptr) && database.SeekTo(arguments.id) != 0 &&
                       database.ReadRec(record, 0, nullptr);
    SysFreeString(name);
    if (!found)
    {
        complain("the device has no record " + std::to_string(arguments.id));
        return exitUsage;
    }
    Output output;
    if (arguments.json)
    {
        output.line(text(Json{{"version", jsonVersion}, {"database", nameOf(database)}, {"record", asJson(record)}}));
    }
    else
    {
        output.line(nameOf(database));
        print(record, Terminal(stdout), output);
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
