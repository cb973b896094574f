// zb add: one appointment, task or contact.
#include "common/exit_code.h"
#include "common/open_device.h"
#include "platform/propdb.h"
#include "records/COutlook.h"
#include "zb/item_words.h"
#include "zb/items.h"
#include "zb/json.h"
#include "zb/recorded.h"
#include "zb/terminal.h"

namespace zb::cli
{
using namespace host;

int runAdd(const ItemArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    COutlook outlook;
    Counted<IDispatch> made;
    if (outlook.CreateItem(arguments.kind, made.out()) != S_OK)
    {
        return exitDevice;
    }
    auto *const item = static_cast<IPOutlookItem *>(made.get());
    Recorded recorded("add");
    BulkWrite bulk; // with the categories that it makes
    fillItem(*item, arguments, true);
    recorded.describe(std::string("add ") + kindWord(*item) + " " + quoted(titleOf(*item)));
    if (const int code = exitCodeOf(committed(bulk, item->Save())); code != exitOk)
    {
        return code;
    }
    LONG oid = 0;
    item->get_Oid(&oid);
    Output output;
    output.line(arguments.json ? text(Json{{"version", jsonVersion}, {"kind", kindWord(*item)}, {"id", oid}})
                               : std::to_string(oid));
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
