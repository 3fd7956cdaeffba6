#pragma once

namespace sunpane {

/// Gives back to the system what of the heap is not in use. Takes a few milliseconds; any thread.
void returnFreeMemory();

}  // namespace sunpane
