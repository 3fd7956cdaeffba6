#pragma once

namespace sunpane {

/// Chooses how the panel is drawn, before the application object is made: by the GPU when the machine has a render
/// node that this user may use, in software otherwise. `QT_QUICK_BACKEND`, when set, has the last word.
void chooseRenderer();

}  // namespace sunpane
