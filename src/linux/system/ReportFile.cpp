#include "linux/system/ReportFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace sunpane {

void replaceReport(const std::string& path, const std::string& text) {
    std::string temporary = path + ".XXXXXX";
    const int file = mkostemp(temporary.data(), O_CLOEXEC);
    if (file < 0) return;
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    fchmod(file, 0644);
    close(file);
    if (!written || std::rename(temporary.c_str(), path.c_str()) != 0) unlink(temporary.c_str());
}

}  // namespace sunpane
