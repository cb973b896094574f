// The attendees of an appointment as objects that speak about it.
#pragma once

#include "platform/linux/pim_appointment_values.h"
#include "platform/pim_objects.h"

#include <vector>

namespace zb::internal
{
class RecipientsOwner
{
  public:
    /// The item itself, whose count the objects hold.
    virtual IDispatch &recipientsItem() = 0;
    virtual std::vector<Recipient> &recipientsOfItem() = 0;

  protected:
    ~RecipientsOwner() = default;
};

/// With one count.
IRecipients *newRecipients(RecipientsOwner &owner);
} // namespace zb::internal
