#include "apps/MessageBus.h"

#include <array>
#include <csignal>
#include <dbus/dbus.h>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zb::test
{
namespace
{
constexpr int waitMilliseconds = 20;

std::filesystem::path configurationIn(const std::filesystem::path &folder)
{
    const std::filesystem::path file = folder / "bus.conf";
    std::ofstream(file) << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
                           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                           "<busconfig><type>session</type><listen>unix:path="
                        << (folder / "bus").string()
                        << "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n";
    return file;
}

std::string lineFrom(int descriptor)
{
    std::string line;
    char ch = 0;
    while (::read(descriptor, &ch, 1) == 1 && ch != '\n')
    {
        line += ch;
    }
    return line;
}

/// Takes arguments one by one.
class Arguments
{
  public:
    explicit Arguments(DBusMessage *message)
    {
        dbus_message_iter_init(message, &m_at);
    }
    explicit Arguments(const DBusMessageIter &at) : m_at(at)
    {
    }
    bool atEnd()
    {
        return dbus_message_iter_get_arg_type(&m_at) == DBUS_TYPE_INVALID;
    }
    std::string text()
    {
        const char *value = "";
        if (dbus_message_iter_get_arg_type(&m_at) == DBUS_TYPE_STRING)
        {
            dbus_message_iter_get_basic(&m_at, &value);
        }
        std::string kept = value;
        dbus_message_iter_next(&m_at);
        return kept;
    }
    int number()
    {
        dbus_int32_t value = 0; // signed or not, as wide
        dbus_message_iter_get_basic(&m_at, &value);
        dbus_message_iter_next(&m_at);
        return value;
    }
    Arguments inner()
    {
        DBusMessageIter part;
        dbus_message_iter_recurse(&m_at, &part);
        dbus_message_iter_next(&m_at);
        return Arguments(part);
    }

  private:
    DBusMessageIter m_at{};
};

ToldNotification readCall(DBusMessage *call)
{
    ToldNotification told;
    told.signature = dbus_message_get_signature(call);
    if (told.signature != "susssasa{sv}i")
    {
        return told;
    }
    Arguments arguments(call);
    told.application = arguments.text();
    told.replaces = static_cast<unsigned>(arguments.number());
    told.icon = arguments.text();
    told.title = arguments.text();
    told.text = arguments.text();
    for (Arguments actions = arguments.inner(); !actions.atEnd();)
    {
        told.actions.push_back(actions.text());
    }
    for (Arguments hints = arguments.inner(); !hints.atEnd();)
    {
        Arguments entry = hints.inner();
        const std::string name = entry.text();
        told.hints[name] = entry.inner().text();
    }
    told.expires = arguments.number();
    return told;
}
} // namespace

MessageBus::MessageBus(const std::filesystem::path &folder)
{
    const std::string option = "--config-file=" + configurationIn(folder).string();
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
    {
        throw std::runtime_error("no pipe");
    }
    m_daemon = ::fork();
    if (m_daemon == 0)
    {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        const std::string log = (folder / "bus.log").string(); // what it can't do on small machines is no trouble
        const int said = ::open(log.c_str(), O_WRONLY | O_CREAT, 0600);
        ::dup2(said, STDERR_FILENO);
        ::execlp("dbus-daemon", "dbus-daemon", option.c_str(), "--nofork", "--print-address", nullptr);
        ::_exit(127);
    }
    ::close(ends[1]);
    m_address = lineFrom(ends[0]);
    ::close(ends[0]);
    if (m_address.empty())
    {
        throw std::runtime_error("dbus-daemon can't be started; Debian has it in the package dbus-daemon");
    }
}

MessageBus::~MessageBus()
{
    ::kill(m_daemon, SIGTERM);
    ::waitpid(m_daemon, nullptr, 0);
}

NotificationService::NotificationService(const MessageBus &bus, Answer answer)
    : m_connection(dbus_connection_open_private(bus.address().c_str(), nullptr)), m_answer(answer)
{
    if (m_connection == nullptr || dbus_bus_register(m_connection, nullptr) == FALSE ||
        dbus_bus_request_name(m_connection, "org.freedesktop.Notifications", DBUS_NAME_FLAG_DO_NOT_QUEUE, nullptr) !=
            DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER)
    {
        throw std::runtime_error("the bus can't be used");
    }
    dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
    m_thread = std::thread([this] { serve(); });
}

NotificationService::~NotificationService()
{
    m_end = true;
    m_thread.join();
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

std::vector<ToldNotification> NotificationService::told() const
{
    const std::lock_guard guard(m_mutex);
    return m_told;
}

void NotificationService::serve()
{
    while (!m_end && dbus_connection_read_write(m_connection, waitMilliseconds) != FALSE)
    {
        while (DBusMessage *const message = dbus_connection_pop_message(m_connection))
        {
            answerTo(message);
            dbus_message_unref(message);
        }
    }
}

void NotificationService::answerTo(DBusMessage *call)
{
    if (dbus_message_is_method_call(call, "org.freedesktop.Notifications", "Notify") == FALSE)
    {
        return;
    }
    dbus_uint32_t number = 0;
    {
        const std::lock_guard guard(m_mutex);
        m_told.push_back(readCall(call));
        number = static_cast<dbus_uint32_t>(m_told.size());
    }
    DBusMessage *const reply = m_answer == Answer::Error ? dbus_message_new_error(call, DBUS_ERROR_FAILED, "no screen")
                                                         : dbus_message_new_method_return(call);
    if (m_answer == Answer::Number)
    {
        dbus_message_append_args(reply, DBUS_TYPE_UINT32, &number, DBUS_TYPE_INVALID);
    }
    dbus_connection_send(m_connection, reply, nullptr);
    dbus_connection_flush(m_connection);
    dbus_message_unref(reply);
}
} // namespace zb::test
