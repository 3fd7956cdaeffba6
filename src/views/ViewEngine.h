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

    /// The panel gave up its content: returns the memory soon, when all of it is gone. Its types stay loaded, because
    /// it is opened many times a day and each loading leaves their names behind in the toolkit, for good.
    void contentGone() { tidying_.start(); }

    /// A window was closed: gives up its types too, soon.
    void windowGone();

private:
    void tidyUp();

    std::function<void()> returnMemory_;
    QTimer tidying_;
    bool hasUnusedTypes_ = false;
};

}  // namespace sunpane
