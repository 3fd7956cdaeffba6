#include "cli/ProgramCommand.h"

#include <ostream>
#include <string>

#include "base/AppIdentity.h"
#include "base/Text.h"
#include "cli/TerminalText.h"
#include "notch/StateReport.h"

namespace sunpane::cli {
namespace {

bool tellProgram(const char* member, const Command& command, Environment& environment) {
    const std::string name = std::string(appIdentifier) + "." + member;
    const Broadcast outcome = environment.broadcast ? environment.broadcast(name) : Broadcast::noSession;
    if (outcome == Broadcast::sent) return true;
    environment.err << "dawnlyctl " << command.name << ": "
                    << (outcome == Broadcast::noSession ? "there is no session bus to reach dawnly on"
                                                        : "dawnly is not running")
                    << '\n';
    return false;
}

}  // namespace

int runExpand(Arguments arguments, Environment& environment) {
    if (!arguments.empty()) return usageError(expandCommand, "nothing may follow", environment);
    return tellProgram("expand", expandCommand, environment) ? success : negative;
}

int runReport(Arguments arguments, Environment& environment) {
    if (!arguments.empty()) return usageError(reportCommand, "nothing may follow", environment);
    constexpr std::size_t maximumBytes = std::size_t{64} << 10;
    FileSystem& files = *environment.files;
    // Every report is a new file, so that its stamp tells it from the last one.
    const auto before = files.stamp(StateReport::path);
    if (!tellProgram("report", reportCommand, environment)) return negative;
    for (int look = 0; look < reportTries; ++look) {
        const auto now = files.stamp(StateReport::path);
        if (now && now != before) {
            const FileReading report = files.read(StateReport::path, maximumBytes);
            // The folder is everybody's, so the text may be anybody's.
            environment.out << printable(text::toValidUtf8(report.bytes)) << '\n';
            return report.status == FileReading::Status::read ? success : negative;
        }
        environment.wait(reportPoll);
    }
    environment.err << "dawnlyctl report: dawnly does not answer\n";
    return negative;
}

}  // namespace sunpane::cli
