#include "platform/linux/pim_recipients.h"

#include "platform/linux/pim_item.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// One attendee, known by name and address: others may be removed in front of it meanwhile. One that was removed
/// itself is refused.
class RecipientObject final : public CountedObject<IRecipient>
{
  public:
    RecipientObject(RecipientsOwner &owner, std::size_t place)
        : m_owner(owner), m_place(place), m_known(owner.recipientsOfItem()[place])
    {
        m_owner.recipientsItem().AddRef();
    }
    HRESULT get_Name(BSTR *name) override
    {
        const Recipient *const own = recipient();
        return own == nullptr ? E_UNEXPECTED : giveText(own->name, name);
    }
    HRESULT get_Address(BSTR *address) override
    {
        const Recipient *const own = recipient();
        return own == nullptr ? E_UNEXPECTED : giveText(own->address, address);
    }
    HRESULT put_Address(BSTR address) override
    {
        Recipient *const own = recipient();
        if (own == nullptr)
        {
            return E_UNEXPECTED;
        }
        own->address = storedText(address);
        m_known = *own;
        return S_OK;
    }

  private:
    ~RecipientObject() override
    {
        m_owner.recipientsItem().Release();
    }
    /// Where it was, else where one like it is; else another object gave it its address.
    Recipient *recipient()
    {
        std::vector<Recipient> &all = m_owner.recipientsOfItem();
        const auto moved = std::find(all.begin(), all.end(), m_known);
        const bool isThere = m_place < all.size() && all[m_place].name == m_known.name;
        if (moved != all.end() && !(isThere && all[m_place] == m_known))
        {
            m_place = static_cast<std::size_t>(moved - all.begin());
        }
        else if (!isThere)
        {
            return nullptr;
        }
        m_known = all[m_place];
        return &all[m_place];
    }

    RecipientsOwner &m_owner;
    std::size_t m_place;
    Recipient m_known;
};

class RecipientsObject final : public CountedObject<IRecipients>
{
  public:
    explicit RecipientsObject(RecipientsOwner &owner) : m_owner(owner)
    {
        m_owner.recipientsItem().AddRef();
    }
    HRESULT get_Count(int *count) override
    {
        return give(all().size(), count);
    }
    HRESULT Item(int index, IRecipient **recipient) override
    {
        if (recipient == nullptr)
        {
            return E_POINTER;
        }
        *recipient = isPlace(index) ? new RecipientObject(m_owner, static_cast<std::size_t>(index - 1)) : nullptr;
        return *recipient != nullptr ? S_OK : E_INVALIDARG;
    }
    HRESULT Add(BSTR name, IRecipient **recipient) override
    {
        if (recipient == nullptr)
        {
            return E_POINTER;
        }
        all().push_back({storedText(name), {}});
        *recipient = new RecipientObject(m_owner, all().size() - 1);
        return S_OK;
    }
    HRESULT Remove(int index) override
    {
        if (!isPlace(index))
        {
            return E_INVALIDARG;
        }
        all().erase(all().begin() + (index - 1));
        return S_OK;
    }

  private:
    ~RecipientsObject() override
    {
        m_owner.recipientsItem().Release();
    }
    std::vector<Recipient> &all()
    {
        return m_owner.recipientsOfItem();
    }
    bool isPlace(int index)
    {
        return index >= 1 && static_cast<std::size_t>(index) <= all().size();
    }

    RecipientsOwner &m_owner;
};
} // namespace

IRecipients *newRecipients(RecipientsOwner &owner)
{
    return new RecipientsObject(owner);
}
} // namespace zb::internal
