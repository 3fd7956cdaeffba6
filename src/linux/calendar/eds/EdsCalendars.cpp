#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "linux/calendar/eds/EdsConnection.h"
#include "linux/calendar/eds/EdsModule.h"

namespace sunpane {
namespace {

/// A thread with a GLib main context of its own, and the connection that lives on it.
class EdsThread : public std::enable_shared_from_this<EdsThread> {
public:
    using Task = std::function<void(EdsConnection&)>;

    explicit EdsThread(std::function<void()> changed) : context_(g_main_context_new()), changed_(std::move(changed)) {}
    ~EdsThread() { g_main_context_unref(context_); }
    EdsThread(const EdsThread&) = delete;
    EdsThread& operator=(const EdsThread&) = delete;

    /// The thread keeps this alive until it ends.
    void start() {
        std::thread([self = shared_from_this()] { self->run(); }).detach();
    }

    void post(Task task) {
        GSource* source = g_idle_source_new();
        g_source_set_priority(source, G_PRIORITY_DEFAULT);
        auto* call = new Call{*this, std::move(task)};
        g_source_set_callback(source, runCall, call, [](gpointer data) { delete static_cast<Call*>(data); });
        g_source_attach(source, context_);
        g_source_unref(source);
    }

    /// Ends the thread, and waits for that unless a call hangs in a way that cannot be called off.
    void stop() {
        constexpr std::chrono::seconds patience{2};
        std::unique_lock lock(mutex_);
        changed_ = nullptr;
        stopping_ = true;
        if (connection_ != nullptr) connection_->close();
        g_main_context_wakeup(context_);
        ended_.wait_for(lock, patience, [&] { return hasEnded_; });
    }

private:
    struct Call {
        EdsThread& thread;
        Task task;
    };

    static gboolean runCall(gpointer data) {
        auto* call = static_cast<Call*>(data);
        // Null when it was posted too late.
        if (call->thread.connection_ != nullptr) call->task(*call->thread.connection_);
        return G_SOURCE_REMOVE;
    }

    void run() {
        g_main_context_push_thread_default(context_);
        {
            EdsConnection connection([this] { tellChanged(); });
            setConnection(&connection);
            while (!isStopping())
                g_main_context_iteration(context_, TRUE);
            setConnection(nullptr);
        }
        // Let go of what the connection still had under way.
        while (g_main_context_iteration(context_, FALSE) != FALSE) {
        }
        g_main_context_pop_thread_default(context_);
        const std::lock_guard lock(mutex_);
        hasEnded_ = true;
        ended_.notify_all();
    }

    bool isStopping() {
        const std::lock_guard lock(mutex_);
        return stopping_;
    }
    void setConnection(EdsConnection* connection) {
        const std::lock_guard lock(mutex_);
        connection_ = connection;
    }
    void tellChanged() {
        const std::lock_guard lock(mutex_);
        if (changed_) changed_();
    }

    GMainContext* context_;
    std::mutex mutex_;
    std::condition_variable ended_;
    std::function<void()> changed_;
    EdsConnection* connection_ = nullptr;
    bool stopping_ = false;
    bool hasEnded_ = false;
};

class EdsCalendars : public CalendarService {
public:
    explicit EdsCalendars(std::function<void()> changed) : thread_(std::make_shared<EdsThread>(std::move(changed))) {
        thread_->start();
    }
    ~EdsCalendars() override { thread_->stop(); }
    EdsCalendars(const EdsCalendars&) = delete;
    EdsCalendars& operator=(const EdsCalendars&) = delete;

    void read(std::function<void(std::optional<std::vector<Calendar>>)> done) override {
        thread_->post([done = std::move(done)](EdsConnection& connection) { done(connection.read()); });
    }
    void add(const std::string& text, CancelFlag cancelled, std::function<void(Added)> done) override {
        thread_->post([text, cancelled = std::move(cancelled), done = std::move(done)](EdsConnection& connection) {
            done(connection.add(text, *cancelled));
        });
    }

private:
    std::shared_ptr<EdsThread> thread_;
};

// Without this schema the client library ends the process.
bool isInstalled() {
    GSettingsSchemaSource* schemas = g_settings_schema_source_get_default();
    if (schemas == nullptr) return false;
    GSettingsSchema* schema = g_settings_schema_source_lookup(schemas, "org.gnome.Evolution.DefaultSources", TRUE);
    if (schema == nullptr) return false;
    g_settings_schema_unref(schema);
    return true;
}

}  // namespace
}  // namespace sunpane

extern "C" __attribute__((visibility("default"))) sunpane::CalendarService* sunpaneMakeEdsCalendars(
    const std::function<void()>* changed) {
    return sunpane::isInstalled() ? new sunpane::EdsCalendars(*changed) : nullptr;
}
