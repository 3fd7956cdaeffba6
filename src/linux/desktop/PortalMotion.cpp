#include "linux/desktop/PortalMotion.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace sunpane {
namespace {

const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");

}  // namespace

bool reducesMotion(const PortalSettings& settings) {
    if (settings[appearance][QStringLiteral("reduced-motion")].toUInt() == 1) return true;
    if (!settings[gnome].value(QStringLiteral("enable-animations"), true).toBool()) return true;
    bool isNumber = false;
    const double length = settings[kde][QStringLiteral("AnimationDurationFactor")].toDouble(&isNumber);
    return isNumber && length <= 0;
}

PortalMotion::PortalMotion() {
    // From any sender: naming the portal would make the toolkit wait for the bus to tell who that is.
    QDBusConnection::sessionBus().connect(QString(), path, interface, QStringLiteral("SettingChanged"), this,
                                          SLOT(ask()));
    ask();
}

void PortalMotion::ask() {
    auto question = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"), path, interface,
                                                   QStringLiteral("ReadAll"));
    question << QStringList{appearance, gnome, kde};
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusMessage reply = watcher->reply();
        watcher->deleteLater();
        if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == QLatin1String("a{sa{sv}}")) {
            answer(qdbus_cast<PortalSettings>(reply.arguments().constFirst()));
        }
    });
}

void PortalMotion::answer(const PortalSettings& settings) {
    const bool reduced = reducesMotion(settings);
    if (std::exchange(reduced_, reduced) != reduced) handlers_.call();
}

}  // namespace sunpane
