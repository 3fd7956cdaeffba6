#include "linux/desktop/DBusStoreRequests.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <utility>

#include "base/AppIdentity.h"

namespace sunpane {
namespace {

constexpr const char* signature = "ssssd";

// What `busctl --user introspect` and other tools show. The signals are those that the program listens for.
constexpr const char* description = R"(  <interface name="app.dawnly.Dawnly">
    <method name="ChangeTodo">
      <arg name="folder" type="s" direction="in"/>
      <arg name="verb" type="s" direction="in"/>
      <arg name="id" type="s" direction="in"/>
      <arg name="text" type="s" direction="in"/>
      <arg name="expires" type="d" direction="in"/>
      <arg name="outcome" type="s" direction="out"/>
      <arg name="number" type="u" direction="out"/>
      <arg name="todo" type="s" direction="out"/>
    </method>
    <method name="ChangeFlag">
      <arg name="folder" type="s" direction="in"/>
      <arg name="verb" type="s" direction="in"/>
      <arg name="key" type="s" direction="in"/>
      <arg name="text" type="s" direction="in"/>
      <arg name="expires" type="d" direction="in"/>
      <arg name="outcome" type="s" direction="out"/>
    </method>
    <signal name="expand"/>
    <signal name="report"/>
    <signal name="settings"/>
  </interface>
)";

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

class DBusStoreRequests::Object : public QDBusVirtualObject {
public:
    QString introspect(const QString& path) const override {
        return path == toQString(appObjectPath) ? QString::fromLatin1(description) : QString();
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QString member = message.member();
        const bool isTodo = member == QLatin1String("ChangeTodo");
        const bool isOurs = message.interface() == toQString(appIdentifier);
        if (!isOurs && !message.interface().isEmpty()) return false;
        if (!isTodo && member != QLatin1String("ChangeFlag")) {
            return isOurs &&
                   connection.send(message.createErrorReply(QDBusError::UnknownMethod, "no method " + member));
        }
        const auto arguments = message.arguments();
        if (message.signature() != QLatin1String(signature) || !handler) {
            return connection.send(message.createErrorReply(QDBusError::InvalidArgs, member + " takes " + signature));
        }
        const auto word = [&](int index) { return arguments[index].toString().toStdString(); };
        const StoreChange change{isTodo ? StoreChange::Subject::todo : StoreChange::Subject::flag,
                                 word(0),
                                 word(1),
                                 word(2),
                                 word(3),
                                 Instant::fromUnix(arguments[4].toDouble())};
        handler(change, [message, connection, isTodo](const StoreChangeAnswer& answer) {
            QDBusMessage reply =
                message.createReply(toQString(storeChangeOutcomes.at(static_cast<std::size_t>(answer.outcome))));
            if (isTodo) reply << static_cast<uint>(answer.number) << toQString(answer.todo);
            connection.send(reply);
        });
        return true;
    }

    Handler handler;
};

DBusStoreRequests::DBusStoreRequests() : object_(std::make_unique<Object>()) {}

DBusStoreRequests::~DBusStoreRequests() = default;

Subscription DBusStoreRequests::serve(Handler handler) {
    object_->handler = std::move(handler);
    const QString path = toQString(appObjectPath);
    QDBusConnection::sessionBus().registerVirtualObject(path, object_.get());
    return Subscription([this, path] {
        QDBusConnection::sessionBus().unregisterObject(path);
        object_->handler = nullptr;
    });
}

}  // namespace sunpane
