// Notifications of the desktop over the session's message bus.
#include "platform/linux/session_bus.h"

#include <dbus/dbus.h>

#include <memory>
#include <string>

namespace
{
constexpr int patienceMilliseconds = 5000;

/// Bodies may hold marks, so what is text in them is escaped.
std::string escaped(const char *text)
{
    std::string result;
    for (; *text != '\0'; ++text)
    {
        switch (*text)
        {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        default:
            result += *text;
        }
    }
    return result;
}

struct CloseConnection
{
    void operator()(DBusConnection *connection) const
    {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
};
struct ReleaseMessage
{
    void operator()(DBusMessage *message) const
    {
        dbus_message_unref(message);
    }
};
using Message = std::unique_ptr<DBusMessage, ReleaseMessage>;

void appendSoundHint(DBusMessageIter &hints)
{
    const char *name = "sound-name";
    const char *value = "alarm-clock-elapsed";
    DBusMessageIter entry;
    DBusMessageIter variant;
    dbus_message_iter_open_container(&hints, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
    dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &name);
    dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "s", &variant);
    dbus_message_iter_append_basic(&variant, DBUS_TYPE_STRING, &value);
    dbus_message_iter_close_container(&entry, &variant);
    dbus_message_iter_close_container(&hints, &entry);
}

/// Stays until it is taken note of.
Message messageOf(const char *title, const std::string &body, bool sound)
{
    Message message(dbus_message_new_method_call("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                                 "org.freedesktop.Notifications", "Notify"));
    if (!message)
    {
        return message;
    }
    const char *application = "Zembrik";
    const char *icon = "appointment-soon";
    const char *text = body.c_str();
    dbus_uint32_t replaced = 0;
    dbus_int32_t never = 0;
    DBusMessageIter arguments;
    DBusMessageIter part;
    dbus_message_iter_init_append(message.get(), &arguments);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &application);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_UINT32, &replaced);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &icon);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &title);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &text);
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "s", &part);
    dbus_message_iter_close_container(&arguments, &part);
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "{sv}", &part);
    if (sound)
    {
        appendSoundHint(part);
    }
    dbus_message_iter_close_container(&arguments, &part);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_INT32, &never);
    return message;
}
} // namespace

extern "C" __attribute__((visibility("default"))) bool zbTellDesktop(const char *title, const char *text, bool sound)
{
    if (!zb::internal::hasSessionBus())
    {
        return false;
    }
    const std::unique_ptr<DBusConnection, CloseConnection> connection(dbus_bus_get_private(DBUS_BUS_SESSION, nullptr));
    if (!connection)
    {
        return false;
    }
    dbus_connection_set_exit_on_disconnect(connection.get(), 0);
    const Message message = messageOf(title, escaped(text), sound);
    const Message reply(message ? dbus_connection_send_with_reply_and_block(connection.get(), message.get(),
                                                                            patienceMilliseconds, nullptr)
                                : nullptr);
    return reply != nullptr;
}
