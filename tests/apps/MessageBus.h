// A message bus of the test's own, and on it a service that shows notifications: it keeps what it is told.
#pragma once

#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

struct DBusConnection;
struct DBusMessage;

namespace zb::test
{
/// dbus-daemon with a configuration and a socket in `folder`, which ends with the object. Throws std::runtime_error when
/// it can't be started.
class MessageBus
{
  public:
    explicit MessageBus(const std::filesystem::path &folder);
    ~MessageBus();
    MessageBus(const MessageBus &) = delete;
    MessageBus &operator=(const MessageBus &) = delete;

    /// For DBUS_SESSION_BUS_ADDRESS. The socket itself is `bus` in the folder.
    const std::string &address() const
    {
        return m_address;
    }

  private:
    pid_t m_daemon = -1;
    std::string m_address;
};

/// The arguments of one call.
struct ToldNotification
{
    std::string signature;
    std::string application;
    unsigned replaces = 1;
    std::string icon;
    std::string title;
    std::string text;
    std::vector<std::string> actions;
    std::map<std::string, std::string> hints; ///< those that are texts
    int expires = -1;
};

class NotificationService
{
  public:
    /// What it answers.
    enum class Answer
    {
        Number,
        Error
    };
    explicit NotificationService(const MessageBus &bus, Answer answer = Answer::Number);
    ~NotificationService();
    NotificationService(const NotificationService &) = delete;
    NotificationService &operator=(const NotificationService &) = delete;

    std::vector<ToldNotification> told() const;

  private:
    void serve();
    void answerTo(DBusMessage *call);

    DBusConnection *m_connection;
    Answer m_answer;
    mutable std::mutex m_mutex;
    std::vector<ToldNotification> m_told;
    std::atomic<bool> m_end{false};
    std::thread m_thread;
};
} // namespace zb::test
