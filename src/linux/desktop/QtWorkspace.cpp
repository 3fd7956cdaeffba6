#include "linux/desktop/QtWorkspace.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QUrl>
#include <utility>

#include "linux/system/OwnEnvironment.h"

namespace sunpane {
namespace {

/// Starts a program that outlives us. False when it is not installed.
bool start(const QString& program, const QStringList& arguments) {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto& name : ownVariables())
        environment.remove(QString::fromStdString(name));
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    return process.startDetached();
}

void open(const QUrl& url) {
    // The toolkit does the same, but hands on our whole environment.
    if (!start(QStringLiteral("xdg-open"), {QString::fromLatin1(url.toEncoded())})) QDesktopServices::openUrl(url);
}

}  // namespace

QtWorkspace::QtWorkspace(X11Events& events) {
    connect(&events, &X11Events::applicationActivated, this, [this] { activationHandlers_.call(); });
    // Without a system bus or a login manager nothing is ever heard.
    QDBusConnection::systemBus().connect(QStringLiteral("org.freedesktop.login1"),
                                         QStringLiteral("/org/freedesktop/login1"),
                                         QStringLiteral("org.freedesktop.login1.Manager"),
                                         QStringLiteral("PrepareForSleep"), this, SLOT(prepareForSleep(bool)));
}

void QtWorkspace::revealFolder(const std::string& path) {
    open(QUrl::fromLocalFile(QString::fromStdString(path)));
}

void QtWorkspace::openUrl(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url), QUrl::StrictMode);
    // The address may come from anyone who sends an invitation.
    const bool isWeb = parsed.scheme() == QLatin1String("http") || parsed.scheme() == QLatin1String("https");
    // Mail programs attach the files that such an address names.
    const bool isMail = parsed.scheme() == QLatin1String("mailto") &&
                        !parsed.query().contains(QLatin1String("attach"), Qt::CaseInsensitive);
    if (isMail ? !parsed.path().isEmpty() : isWeb && !parsed.host().isEmpty()) open(parsed);
}

void QtWorkspace::openAccountSettings() {
    // GNOME's, Plasma's of two generations, and where calendars on the web can be added without either.
    struct Command {
        const char* program;
        QStringList arguments;
    };
    for (const auto& [program, arguments] : {Command{"gnome-control-center", {QStringLiteral("online-accounts")}},
                                             Command{"systemsettings", {QStringLiteral("kcm_kaccounts")}},
                                             Command{"systemsettings5", {QStringLiteral("kcm_kaccounts")}},
                                             Command{"gnome-calendar", {}}, Command{"evolution", {}}}) {
        if (start(QString::fromLatin1(program), arguments)) return;
    }
}

Subscription QtWorkspace::observeWake(std::function<void()> handler) {
    return wakeHandlers_.add(std::move(handler));
}

Subscription QtWorkspace::onApplicationActivated(std::function<void()> handler) {
    return activationHandlers_.add(std::move(handler));
}

void QtWorkspace::prepareForSleep(bool begins) {
    if (!begins) wakeHandlers_.call();
}

void QtWorkspace::terminate() {
    QCoreApplication::quit();
}

}  // namespace sunpane
