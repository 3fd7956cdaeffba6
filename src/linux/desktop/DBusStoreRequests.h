#pragma once

#include <memory>

#include "platform/StoreRequests.h"

namespace sunpane {

/// Takes requests as method calls on the session bus: `ChangeTodo` and `ChangeFlag` of the interface
/// `app.dawnly.Dawnly` on the object `/app/dawnly/Dawnly`, which tells about itself when asked. Without a bus nothing
/// comes. Main thread only.
class DBusStoreRequests : public StoreRequests {
public:
    DBusStoreRequests();
    ~DBusStoreRequests() override;
    DBusStoreRequests(const DBusStoreRequests&) = delete;
    DBusStoreRequests& operator=(const DBusStoreRequests&) = delete;

    Subscription serve(Handler handler) override;

private:
    class Object;
    std::unique_ptr<Object> object_;
};

}  // namespace sunpane
