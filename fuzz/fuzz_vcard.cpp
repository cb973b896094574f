// Any bytes as a vCard file: cut into cards, read as contacts, encoded. No device is open.
#include "interchange/card_reader.h"
#include "interchange/card_values.h"
#include "interchange/contact_card.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace zb::interchange;
    const auto bytes = openMemory(std::string_view(reinterpret_cast<const char *>(data), size));
    try
    {
        CardReader reader(*bytes);
        Card card;
        while (reader.next(card))
        {
            const ContactReading reading = readContact(card);
            zb::encodeContact(reading.item);
            personOf(reading.item);
            identityOf(card);
            PictureFault fault = PictureFault::None;
            if (reading.photo != nullptr)
            {
                readCardPicture(*reading.photo, fault);
            }
        }
    }
    catch (const CalendarFileError &)
    {
        // how bad files are meant to end
    }
    return 0;
}
