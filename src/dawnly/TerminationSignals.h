#pragma once

namespace sunpane {

/// From now on SIGTERM, SIGINT and SIGHUP end the application's event loop instead of the process.
void quitOnTerminationSignals();

}  // namespace sunpane
