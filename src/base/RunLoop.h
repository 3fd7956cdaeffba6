#pragma once

#include "base/SerialExecutor.h"

namespace sunpane {

/// The main thread's executor: all state and all views live on it. Its timers also fire while the pointer drags or a
/// menu is open.
class RunLoop : public SerialExecutor {};

}  // namespace sunpane
