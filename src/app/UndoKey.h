#pragma once

#include "app/NotchUndo.h"
#include "base/Subscription.h"
#include "platform/EventMonitors.h"

namespace sunpane {

/// Control+Z or Command+Z takes the latest action back, in whichever of the program's windows it is pressed. A field
/// for text keeps the key for its own undo, and when there is nothing to take back the key goes on as any other.
///
/// One instance, owned by the start-up code; main thread only.
class UndoKey {
public:
    UndoKey(EventMonitors& monitors, NotchUndo& undo);

private:
    bool handle(const KeyEvent& key);

    NotchUndo& undo_;
    Subscription monitor_;
};

}  // namespace sunpane
