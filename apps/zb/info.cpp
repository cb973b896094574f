// zb info: the databases of the device.
#include "common/exit_code.h"
#include "common/open_device.h"
#include "common/visible_text.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "records/CeDbEnum.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/property_text.h"
#include "zb/terminal.h"

#include <algorithm>

namespace zb::cli
{
using namespace host;

namespace
{
struct Database
{
    CEOID id;
    CEDBASEINFO info;
};

std::vector<Database> databases()
{
    std::vector<Database> found;
    CeDbEnum walk;
    if (walk.First())
    {
        while (walk.Next())
        {
            Database database{walk.GetOid(), {}};
            // One that went away meanwhile has no information any more.
            if (walk.GetInfo(database.info))
            {
                found.push_back(database);
            }
        }
    }
    return found;
}

std::string flagsText(DWORD flags)
{
    std::string text;
    text += (flags & CEDB_SORT_DESCENDING) != 0 ? " descending" : "";
    text += (flags & CEDB_SORT_CASEINSENSITIVE) != 0 ? " caseless" : "";
    text += (flags & CEDB_SORT_UNKNOWNFIRST) != 0 ? " missing-first" : "";
    return text;
}

WORD sortsOf(const CEDBASEINFO &info)
{
    return std::min(info.wNumSortOrder, CEDB_MAXSORTORDER);
}

Json asJson(const Database &database)
{
    const CEDBASEINFO &info = database.info;
    Json sorts = Json::array();
    for (WORD n = 0; n < sortsOf(info); ++n)
    {
        const SORTORDERSPEC &sort = info.rgSortSpecs[n];
        sorts.push_back({{"property", propertyId(sort.propid)},
                         {"name", propertyName(sort.propid)},
                         {"type", typeName(TypeFromPropID(sort.propid))},
                         {"descending", (sort.dwFlags & CEDB_SORT_DESCENDING) != 0},
                         {"caseInsensitive", (sort.dwFlags & CEDB_SORT_CASEINSENSITIVE) != 0},
                         {"unknownFirst", (sort.dwFlags & CEDB_SORT_UNKNOWNFIRST) != 0}});
    }
    return {{"id", database.id},        {"name", toUtf8(info.szDbaseName)},
            {"type", info.dwDbaseType}, {"records", info.dwNumRecords},
            {"size", info.dwSize},      {"lastChange", fileTimeText(info.ftLastModified)},
            {"sortOrders", sorts}};
}

void print(const Database &database, const Terminal &terminal, Output &output)
{
    const CEDBASEINFO &info = database.info;
    output.line(terminal.styled(visibleText(info.szDbaseName), Style::Heading));
    const auto row = [&](const char *label, const std::string &value)
    { output.line("  " + terminal.styled(padded(label, 13), Style::Dim) + value); };
    row("id", std::to_string(database.id));
    row("type", std::to_string(info.dwDbaseType));
    row("records", std::to_string(info.dwNumRecords) + " (" + std::to_string(info.dwSize) + " bytes)");
    row("last change", fileTimeText(info.ftLastModified));
    for (WORD n = 0; n < sortsOf(info); ++n)
    {
        const SORTORDERSPEC &sort = info.rgSortSpecs[n];
        const std::string name = propertyName(sort.propid);
        row(n == 0 ? "sort orders" : "", propertyId(sort.propid) + " " + typeName(TypeFromPropID(sort.propid)) +
                                             (name.empty() ? "" : " " + name) + flagsText(sort.dwFlags));
    }
}
} // namespace

int runInfo(const InfoArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    Output output;
    const std::vector<Database> found = databases();
    if (arguments.json)
    {
        Json list = Json::array();
        std::transform(found.begin(), found.end(), std::back_inserter(list), asJson);
        output.line(text({{"version", jsonVersion},
                          {"device", device->root().string()},
                          {"zone", deviceZoneName()},
                          {"databases", list}}));
    }
    else
    {
        const Terminal terminal(stdout);
        output.line("Device " + device->root().string() + ", zone " + deviceZoneName());
        for (const Database &database : found)
        {
            output.line("");
            print(database, terminal, output);
        }
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
