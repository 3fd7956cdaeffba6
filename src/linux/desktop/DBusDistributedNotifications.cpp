#include "linux/desktop/DBusDistributedNotifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <memory>
#include <utility>

namespace sunpane {
namespace {

/// Gives a signal's arrival to a handler. Destroying it ends the subscription on the bus.
class SignalReceiver : public QObject {
    Q_OBJECT

public:
    SignalReceiver(const QString& interface, const QString& member, std::function<void()> handler)
        : handler_(std::move(handler)) {
        QDBusConnection::sessionBus().connect(QString(), QString(), interface, member, this,
                                              SLOT(receive(QDBusMessage)));
    }

private slots:
    void receive(const QDBusMessage& /*message*/) { handler_(); }

private:
    std::function<void()> handler_;
};

}  // namespace

Subscription DBusDistributedNotifications::observe(const std::string& name, std::function<void()> handler) {
    const auto dot = name.rfind('.');
    if (dot == std::string::npos) return {};
    const auto interface = QString::fromStdString(name.substr(0, dot));
    const auto member = QString::fromStdString(name.substr(dot + 1));
    auto receiver = std::make_shared<SignalReceiver>(interface, member, std::move(handler));
    return Subscription([receiver]() mutable { receiver.reset(); });
}

}  // namespace sunpane

#include "DBusDistributedNotifications.moc"
