#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace sunpane {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

/// A reply, an event or an error of the X server's, which is freed like memory from C.
template <class T>
using XcbReply = std::unique_ptr<T, FreeReply>;

template <class T>
XcbReply<T> own(T* reply) {
    return XcbReply<T>(reply);
}

}  // namespace sunpane
