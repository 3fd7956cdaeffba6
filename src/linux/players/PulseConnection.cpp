#include "linux/players/PulseConnection.h"

#include <pulse/subscribe.h>

namespace sunpane {

void PulseContextRelease::operator()(pa_context* context) const {
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_set_subscribe_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
}

void PulseOperationRelease::operator()(pa_operation* operation) const {
    if (pa_operation_get_state(operation) == PA_OPERATION_RUNNING) pa_operation_cancel(operation);
    pa_operation_unref(operation);
}

PulseContext beginPulseConnection(pa_mainloop_api* loop, pa_context_notify_cb_t changed, void* userData) {
    PulseContext context(pa_context_new(loop, "Dawnly"));
    if (!context) return nullptr;
    pa_context_set_state_callback(context.get(), changed, userData);
    if (pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return nullptr;
    return context;
}

}  // namespace sunpane
