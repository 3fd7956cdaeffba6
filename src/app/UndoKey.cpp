#include "app/UndoKey.h"

namespace sunpane {

UndoKey::UndoKey(EventMonitors& monitors, NotchUndo& undo)
    : undo_(undo), monitor_(monitors.onLocalKeyDown([this](const KeyEvent& key) { return handle(key); })) {}

bool UndoKey::handle(const KeyEvent& key) {
    if (key.characters != "z" || key.shift || !(key.command || key.control)) return false;
    return !key.inTextField && undo_.undo();
}

}  // namespace sunpane
