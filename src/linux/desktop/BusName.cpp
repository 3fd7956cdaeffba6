#include "linux/desktop/BusName.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include "base/AppIdentity.h"

namespace sunpane {
namespace {

// The bus's own numbers for RequestName.
constexpr uint allowReplacement = 1;
constexpr uint replaceExisting = 2;
constexpr uint doNotQueue = 4;

}  // namespace

void claimBusName() {
    auto request =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
    request << QString::fromUtf8(appIdentifier.data(), static_cast<qsizetype>(appIdentifier.size()))
            << (allowReplacement | replaceExisting | doNotQueue);
    // Toolkit calls for the same would wait for the bus, and the start must not.
    QDBusConnection::sessionBus().send(request);
}

}  // namespace sunpane
