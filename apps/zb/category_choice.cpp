#include "zb/category_choice.h"

#include "platform/text.h"
#include "records/FullCategories.h"
#include "zb/bad_usage.h"

namespace zb::cli
{
void selectCategories(const CategoryChoice &choice, CCategoryFilterInfo &restriction)
{
    CePtrList<CFullCategory *> known(0, CEOWN_DELETE);
    GetFullCategoryInfo(known, true);
    for (const std::string &name : choice.names)
    {
        const std::u16string wanted = toUtf16(name);
        bool found = false;
        for (int n = 0; n < known.GetCount() && !found; ++n)
        {
            const CFullCategory &category = *known.GetAt(n);
            found = lstrcmpiW(category.m_pszName, wanted.c_str()) == 0;
            if (found)
            {
                restriction.m_pSelected->AddTail(category.Copy());
            }
        }
        if (!found)
        {
            throw BadUsage("there is no category \"" + name + "\"; \"zb categories\" lists them");
        }
    }
}
} // namespace zb::cli
