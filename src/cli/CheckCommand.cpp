#include "cli/CheckCommand.h"

namespace sunpane::cli {

int runCheck(Arguments /*arguments*/, Environment& environment) {
    return usageError(checkCommand, "no file or folder given", environment);
}

}  // namespace sunpane::cli
