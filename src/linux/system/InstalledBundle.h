#pragma once

#include "platform/ApplicationBundle.h"

namespace sunpane {

/// A relocatable folder "Dawnly.app" with the program at "bin/dawnly" in it. Main thread only.
class InstalledBundle : public ApplicationBundle {
public:
    /// `program` is the absolute path of the running program, `home` the user's home folder.
    InstalledBundle(std::string program, std::string home);

    /// The path of the program that runs in this process; empty when the kernel does not tell.
    static std::string runningProgram();

    std::string path() const override { return path_; }
    std::vector<std::string> applicationFolders() const override;
    std::string installedPath() const override;
    bool install() override;
    void openInstalled() override;

private:
    std::string program_;
    std::string home_;
    std::string path_;
};

}  // namespace sunpane
