#include "linux/system/HeapMemory.h"

#include <malloc.h>

namespace sunpane {

void returnLargeBlocksAtOnce() {
    // Left alone, the threshold grows with the first large block that is freed, and the next ones come from the heap,
    // where whatever is made after them keeps their pages.
    constexpr int largeBlock = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, largeBlock);
}

void returnFreeMemory() {
    malloc_trim(0);
}

}  // namespace sunpane
