#pragma once

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace sunpane {

struct GObjectDeleter {
    void operator()(gpointer object) const { g_object_unref(object); }
};
/// Holds one reference.
template <class T>
using GObjectPointer = std::unique_ptr<T, GObjectDeleter>;

struct GFreeDeleter {
    void operator()(gpointer memory) const { g_free(memory); }
};
using GString8 = std::unique_ptr<char, GFreeDeleter>;

/// Calls off an operation that takes too long, from a thread of its own. One operation at a time.
class Watchdog {
public:
    Watchdog() : thread_([this] { run(); }) {}
    ~Watchdog() {
        {
            const std::lock_guard lock(mutex_);
            stopped_ = true;
            changed_.notify_all();
        }
        thread_.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// Begins an operation that may take until `limit` from now. The result is good until the next one begins.
    GCancellable* begin(std::chrono::seconds limit) {
        const std::lock_guard lock(mutex_);
        current_.reset(g_cancellable_new());
        if (closed_) g_cancellable_cancel(current_.get());
        deadline_ = std::chrono::steady_clock::now() + limit;
        changed_.notify_all();
        return current_.get();
    }

    /// Calls off the operation that runs and all later ones; any thread.
    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        if (current_) g_cancellable_cancel(current_.get());
    }

private:
    void run() {
        std::unique_lock lock(mutex_);
        while (!stopped_) {
            if (!current_ || g_cancellable_is_cancelled(current_.get()) != FALSE) {
                changed_.wait(lock);
            } else if (std::chrono::steady_clock::now() < deadline_) {
                changed_.wait_until(lock, deadline_);
            } else {
                const GObjectPointer<GCancellable> overdue(G_CANCELLABLE(g_object_ref(current_.get())));
                // Cancelling calls handlers, which may take their time.
                lock.unlock();
                g_cancellable_cancel(overdue.get());
                lock.lock();
            }
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    GObjectPointer<GCancellable> current_;
    std::chrono::steady_clock::time_point deadline_;
    bool closed_ = false;
    bool stopped_ = false;
    std::thread thread_;
};

}  // namespace sunpane
