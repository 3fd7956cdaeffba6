#pragma once

#include "cli/Command.h"

namespace sunpane::cli {

/// Ends on SIGINT, SIGTERM or SIGHUP, or when the other end of standard output is closed. Main thread.
class ProcessInterrupt : public Interrupt {
public:
    ProcessInterrupt() = default;
    ProcessInterrupt(const ProcessInterrupt&) = delete;
    ProcessInterrupt& operator=(const ProcessInterrupt&) = delete;
    ~ProcessInterrupt() override;

    void arm() override;
    void wait() override;

private:
    int signals_ = -1;
};

}  // namespace sunpane::cli
