#pragma once

namespace sunpane {

/// Takes the program's name on the session bus, from an older copy too if one has it, and lets a newer copy take it in
/// turn. Whoever sees the name owned knows that broadcasts to the program are heard. Returns at once; without a bus
/// nothing happens. Main thread.
void claimBusName();

}  // namespace sunpane
