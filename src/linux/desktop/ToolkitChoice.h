#pragma once

namespace sunpane {

/// Chooses X11 where there is an X server, XWayland included, before the application object is made: only there can the
/// panel's window be placed and shaped. `QT_QPA_PLATFORM`, when set, has the last word.
void choosePlatform();

/// Chooses how the panel is drawn, before the application object is made: by the GPU when the machine has a render
/// node that this user may use, in software otherwise. `QT_QUICK_BACKEND`, when set, has the last word.
void chooseRenderer();

/// Has the views' scripts interpreted, before the application object is made: they are short, and compiled at run time
/// they would take more memory than they save time.
void interpretScripts();

}  // namespace sunpane
