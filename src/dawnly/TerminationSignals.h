#pragma once

namespace sunpane {

/// From now on SIGTERM, SIGINT and SIGHUP end the application's event loop instead of the process; the latter two not
/// where whoever started the program had them ignored.
void quitOnTerminationSignals();

}  // namespace sunpane
