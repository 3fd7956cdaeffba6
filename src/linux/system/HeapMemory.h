#pragma once

namespace sunpane {

/// Before the first thread: has large blocks, such as pictures, go back to the system as soon as they are freed.
void returnLargeBlocksAtOnce();

/// Gives back to the system what of the heap is not in use. Takes a few milliseconds; any thread.
void returnFreeMemory();

}  // namespace sunpane
