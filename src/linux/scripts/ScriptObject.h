#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sunpane::scripts {

/// What an object can be asked for. The language knows these words and no others.
enum class Term {
    playerState,
    currentTrack,
    name,
    artist,
    artworkUrl,
    windows,
    tabs,
    activeTabIndex,
    id,
    url,
    title,
    index,
    outputMuted,
    volumeSettings,
};

/// What an application can be told to do.
enum class Verb { playPause, nextTrack, previousTrack, activate };

class Object;
using ObjectPointer = std::shared_ptr<Object>;
using ObjectList = std::vector<ObjectPointer>;

/// What an expression amounts to. `std::monostate` is the value of what has none, like a command.
using Value = std::variant<std::monostate, bool, std::int64_t, std::string, ObjectPointer, ObjectList>;

/// Something that a script can name: an application, a window, a tab, a track. Used on the thread that runs the script
/// and no longer than the script runs. Whatever an object does not know, or cannot tell right now, fails the script.
class Object {
public:
    virtual ~Object() = default;

    /// `term of object`; nothing fails the script.
    virtual std::optional<Value> get(Term term);
    /// `set term of object to value`; false fails the script.
    virtual bool set(Term term, const Value& value);
    /// `verb`, said to the object; false fails the script.
    virtual bool perform(Verb verb);
    /// `execute object javascript source`; nothing fails the script.
    virtual std::optional<Value> executeJavaScript(const std::string& source);
};

/// What scripts can reach. Used on the thread that runs the script.
class Host {
public:
    virtual ~Host() = default;

    /// The application of that name, or null when it does not run.
    virtual ObjectPointer application(std::string_view name) = 0;

    /// What answers outside of every `tell`: the volume.
    virtual ObjectPointer additions() = 0;

    /// Asked before each step; false fails the script, as one whose time is up.
    virtual bool mayGoOn() { return true; }
};

}  // namespace sunpane::scripts
