#pragma once

#include <QObject>

#include "base/RunLoop.h"

namespace sunpane {

/// The main run loop on Qt's event loop. Made on the main thread after the application object.
class QtRunLoop : public RunLoop {
public:
    void post(Task task) override;
    Subscription after(Seconds delay, Task task) override;
    Subscription every(Seconds interval, Task task) override;

private:
    Subscription startTimer(Seconds interval, bool repeats, Task task);

    QObject context_;
};

}  // namespace sunpane
