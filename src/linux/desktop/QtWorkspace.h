#pragma once

#include <QObject>

#include "base/HandlerList.h"
#include "linux/desktop/X11Events.h"
#include "platform/Workspace.h"

namespace sunpane {

/// Opens folders and addresses with the programs that the user chose for them (xdg-open), hears of sleep from the login
/// manager (org.freedesktop.login1), and ends the application's event loop.
class QtWorkspace : public QObject, public Workspace {
    Q_OBJECT

public:
    explicit QtWorkspace(X11Events& events);

    void revealFolder(const std::string& path) override;
    void openUrl(const std::string& url) override;
    void openAccountSettings() override;
    Subscription observeWake(std::function<void()> handler) override;
    Subscription onApplicationActivated(std::function<void()> handler) override;
    void terminate() override;

private slots:
    void prepareForSleep(bool begins);

private:
    HandlerList<> wakeHandlers_;
    HandlerList<> activationHandlers_;
};

}  // namespace sunpane
