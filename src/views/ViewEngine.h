#pragma once

#include <QQmlEngine>
#include <QTimer>
#include <functional>

namespace sunpane {

/// The QML engine that all windows share. Main thread only.
class ViewEngine : public QQmlEngine {
    Q_OBJECT

public:
    /// `returnMemory` gives what the heap no longer uses back to the system.
    explicit ViewEngine(std::function<void()> returnMemory);

    /// Views were closed: returns their memory soon, when all of it is gone. Their types stay loaded, because each
    /// loading leaves their names behind in the toolkit, for good.
    void tidyUp() { tidying_.start(); }

private:
    std::function<void()> returnMemory_;
    QTimer tidying_;
};

}  // namespace sunpane
