#include "linux/desktop/DesktopNotificationService.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QMetaObject>
#include <QStringList>
#include <QVariantMap>
#include <utility>

#include "base/AppIdentity.h"

namespace sunpane {
namespace {

const QString serviceName = QStringLiteral("org.freedesktop.Notifications");
const QString servicePath = QStringLiteral("/org/freedesktop/Notifications");
const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");
const QString defaultAction = QStringLiteral("default");
// Starting the service may take a while.
constexpr int callTimeout = 25000;
constexpr uchar normalUrgency = 1;
constexpr int serviceDecidesHowLong = -1;

QDBusMessage serviceCall(const QString& method) {
    return QDBusMessage::createMethodCall(serviceName, servicePath, serviceName, method);
}

QDBusMessage busCall(const QString& method) {
    return QDBusMessage::createMethodCall(busName, busPath, busName, method);
}

}  // namespace

DesktopNotificationService::DesktopNotificationService() : bus_(QDBusConnection::sessionBus()) {
    if (!bus_.isConnected()) return;
    watcher_ = std::make_unique<QDBusServiceWatcher>(serviceName, bus_, QDBusServiceWatcher::WatchForOwnerChange);
    connect(watcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { ownerChanged(owner); });
    bus_.connect(serviceName, servicePath, serviceName, QStringLiteral("ActionInvoked"), this,
                 SLOT(actionInvoked(uint, QString)));
    bus_.connect(busName, busPath, busName, QStringLiteral("ActivatableServicesChanged"), this,
                 SLOT(askWhetherActivatable()));
    call(busCall(QStringLiteral("GetId")), [this](const QDBusMessage* reply) {
        if (reply != nullptr) busIdentifier_ = reply->arguments().value(0).toString();
    });
    QDBusMessage owner = busCall(QStringLiteral("GetNameOwner"));
    owner << serviceName;
    call(owner, [this](const QDBusMessage* reply) {
        if (reply != nullptr) ownerChanged(reply->arguments().value(0).toString());
    });
    askWhetherActivatable();
}

DesktopNotificationService::~DesktopNotificationService() = default;

bool DesktopNotificationService::available() const {
    return !owner_.isEmpty() || activatable_;
}

std::string DesktopNotificationService::instance() const {
    if (owner_.isEmpty() || busIdentifier_.isEmpty()) return {};
    return (busIdentifier_ + QLatin1Char(' ') + owner_).toStdString();
}

void DesktopNotificationService::setClickHandler(std::function<void(std::uint32_t number)> handler) {
    clickHandler_ = std::move(handler);
}

void DesktopNotificationService::setAvailabilityHandler(std::function<void()> handler) {
    availabilityHandler_ = std::move(handler);
}

void DesktopNotificationService::call(const QDBusMessage& message, Reply done) {
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(message, callTimeout), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [done = std::move(done)](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const QDBusMessage reply = call->reply();
        done(reply.type() == QDBusMessage::ReplyMessage ? &reply : nullptr);
    });
}

// The handler is told of a new owner too: a service that was started again knows nothing of what it showed before.
void DesktopNotificationService::update(const std::function<void()>& change) {
    const bool wasAvailable = available();
    const QString previousOwner = owner_;
    change();
    if ((available() != wasAvailable || owner_ != previousOwner) && availabilityHandler_) availabilityHandler_();
}

void DesktopNotificationService::ownerChanged(const QString& owner) {
    update([&] {
        if (owner_ != owner) bodyIsMarkup_.reset();
        owner_ = owner;
    });
}

void DesktopNotificationService::askWhetherActivatable() {
    call(busCall(QStringLiteral("ListActivatableNames")), [this](const QDBusMessage* reply) {
        if (reply == nullptr) return;
        update([&] { activatable_ = reply->arguments().value(0).toStringList().contains(serviceName); });
    });
}

void DesktopNotificationService::withCapabilities(std::function<void()> then) {
    if (bodyIsMarkup_) {
        then();
        return;
    }
    call(serviceCall(QStringLiteral("GetCapabilities")), [this, then = std::move(then)](const QDBusMessage* reply) {
        if (reply != nullptr) {
            bodyIsMarkup_ = reply->arguments().value(0).toStringList().contains(QStringLiteral("body-markup"));
        }
        then();
    });
}

void DesktopNotificationService::show(const std::string& title, const std::string& body,
                                      std::function<void(std::uint32_t number)> shown) {
    if (!available()) {
        QMetaObject::invokeMethod(
            this, [shown = std::move(shown)] { shown(0); }, Qt::QueuedConnection);
        return;
    }
    withCapabilities([this, title = QString::fromStdString(title), body = QString::fromStdString(body),
                      shown = std::move(shown)]() mutable {
        // Unknown when the service did not answer: escaped text read as plain looks odd, raw text read as markup obeys
        // whoever wrote it.
        notify(title, bodyIsMarkup_.value_or(true) ? body.toHtmlEscaped() : body, std::move(shown));
    });
}

void DesktopNotificationService::notify(const QString& title, const QString& body,
                                        std::function<void(std::uint32_t)> shown) {
    const QString application = QString::fromUtf8(appIdentifier.data(), static_cast<qsizetype>(appIdentifier.size()));
    const QVariantMap hints{{QStringLiteral("sound-name"), QStringLiteral("message-new-instant")},
                            {QStringLiteral("desktop-entry"), application},
                            {QStringLiteral("urgency"), QVariant::fromValue(normalUrgency)}};
    constexpr uint replacesNothing = 0;
    QDBusMessage message = serviceCall(QStringLiteral("Notify"));
    message << QStringLiteral("Dawnly") << replacesNothing << application << title << body
            << QStringList{defaultAction, QStringLiteral("Open")} << hints << serviceDecidesHowLong;
    call(message, [shown = std::move(shown)](const QDBusMessage* reply) {
        shown(reply != nullptr ? reply->arguments().value(0).toUInt() : 0);
    });
}

void DesktopNotificationService::actionInvoked(uint number, const QString& action) {
    if (action == defaultAction && clickHandler_) clickHandler_(number);
}

}  // namespace sunpane
