#pragma once

#include "platform/Workspace.h"

namespace sunpane {

/// Opens folders and addresses with the programs that the user chose for them (xdg-open), and ends the application's
/// event loop.
class QtWorkspace : public Workspace {
public:
    void revealFolder(const std::string& path) override;
    void openUrl(const std::string& url) override;
    void terminate() override;
};

}  // namespace sunpane
