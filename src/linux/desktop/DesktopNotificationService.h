#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/NotificationService.h"

class QDBusMessage;
class QDBusServiceWatcher;

namespace sunpane {

/// Notifications through `org.freedesktop.Notifications` on the D-Bus session bus (Desktop Notifications
/// Specification 1.2). Main thread; no call waits for the service.
class DesktopNotificationService : public QObject, public NotificationService {
    Q_OBJECT

public:
    DesktopNotificationService();
    ~DesktopNotificationService() override;

    bool available() const override;
    std::string instance() const override;
    void show(const std::string& title, const std::string& body,
              std::function<void(std::uint32_t number)> shown) override;
    void setClickHandler(std::function<void(std::uint32_t number)> handler) override;
    void setAvailabilityHandler(std::function<void()> handler) override;

private slots:
    void actionInvoked(uint number, const QString& action);
    void askWhetherActivatable();

private:
    /// Null when the call failed.
    using Reply = std::function<void(const QDBusMessage* reply)>;

    void call(const QDBusMessage& message, Reply done);
    void ownerChanged(const QString& owner);
    void update(const std::function<void()>& change);
    void withCapabilities(std::function<void()> then);
    void notify(const QString& title, const QString& body, std::function<void(std::uint32_t)> shown);

    QDBusConnection bus_;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    // Names the bus itself, which is a new one after each login.
    QString busIdentifier_;
    QString owner_;
    bool activatable_ = false;
    // Whether the running service reads the body as markup; absent until it has told.
    std::optional<bool> bodyIsMarkup_;
    std::function<void(std::uint32_t)> clickHandler_;
    std::function<void()> availabilityHandler_;
};

}  // namespace sunpane
