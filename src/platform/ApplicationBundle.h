#pragma once

#include <string>
#include <vector>

namespace sunpane {

/// Where this program is installed. Main thread only.
class ApplicationBundle {
public:
    virtual ~ApplicationBundle() = default;

    /// The folder that holds the whole program and ends in ".app"; for a program that was built and not installed, the
    /// folder that it is in.
    virtual std::string path() const = 0;

    /// The folders in which installed programs live, each with a slash at its end.
    virtual std::vector<std::string> applicationFolders() const = 0;

    /// Where the program goes when the user wants it installed.
    virtual std::string installedPath() const = 0;

    /// Copies the bundle to `installedPath()`, in place of what is there. Either all of it is there afterwards, or what
    /// was there before, which is a failure.
    virtual bool install() = 0;

    /// Starts the program at `installedPath()` on its own. Returns at once; a failure shows in nothing.
    virtual void openInstalled() = 0;
};

}  // namespace sunpane
