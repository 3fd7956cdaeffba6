#pragma once

#include <pulse/context.h>
#include <pulse/mainloop-api.h>
#include <pulse/operation.h>

#include <memory>

namespace sunpane {

struct PulseContextRelease {
    /// Ends the connection; nothing is called back any more.
    void operator()(pa_context* context) const;
};
using PulseContext = std::unique_ptr<pa_context, PulseContextRelease>;

struct PulseOperationRelease {
    /// An operation that has not come to its end never calls back any more.
    void operator()(pa_operation* operation) const;
};
using PulseOperation = std::unique_ptr<pa_operation, PulseOperationRelease>;

/// Begins a connection to the user's sound server, without starting one. Null when there is none. Returns at once;
/// `changed` hears of every change of its state.
PulseContext beginPulseConnection(pa_mainloop_api* loop, pa_context_notify_cb_t changed, void* userData);

}  // namespace sunpane
