#include "dawnly/HeapMemory.h"

#ifdef SUNPANE_JEMALLOC

#include <jemalloc/jemalloc.h>

extern "C" {

// Each opening of the panel makes and frees some megabytes of small blocks, and a few stay. Without a cache of freed
// blocks in every thread the next one always comes from the lowest run with room, so what stays lies together, and not
// one by one on pages that can never be given back. One arena does: nearly everything is the main thread's.
const char* malloc_conf = "tcache:false,narenas:1,muzzy_decay_ms:0";
}

namespace sunpane {

void returnFreeMemory() {
    mallctl("arena.0.purge", nullptr, nullptr, nullptr, 0);
}

}  // namespace sunpane

#else

namespace sunpane {

void returnFreeMemory() {}

}  // namespace sunpane

#endif
