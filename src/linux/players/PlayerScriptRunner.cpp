#include "linux/players/PlayerScriptRunner.h"

#include <string>
#include <utility>
#include <variant>

#include "linux/players/MprisPlayer.h"
#include "linux/scripts/Interpreter.h"

namespace sunpane {
namespace {

using scripts::Object;
using scripts::ObjectPointer;
using scripts::Term;
using scripts::Value;

class VolumeSettings : public Object {
public:
    VolumeSettings(PulseVolume& volume, Deadline deadline) : volume_(volume), deadline_(deadline) {}

    std::optional<Value> get(Term term) override {
        if (term != Term::outputMuted) return std::nullopt;
        const auto muted = volume_.muted(deadline_);
        if (!muted) return std::nullopt;
        return *muted;
    }

    bool set(Term term, const Value& value) override {
        const bool* muted = std::get_if<bool>(&value);
        return term == Term::outputMuted && muted != nullptr && volume_.setMuted(*muted, deadline_);
    }

private:
    PulseVolume& volume_;
    const Deadline deadline_;
};

class Additions : public Object {
public:
    Additions(PulseVolume& volume, Deadline deadline) : settings_(std::make_shared<VolumeSettings>(volume, deadline)) {}

    std::optional<Value> get(Term term) override {
        if (term != Term::volumeSettings) return std::nullopt;
        return settings_;
    }

private:
    const ObjectPointer settings_;
};

}  // namespace

class PlayerScriptRunner::MachineHost : public scripts::Host {
public:
    explicit MachineHost(PlayerScriptRunner& runner) : runner_(runner), deadline_(deadlineIn(runTime)) {}

    ObjectPointer application(std::string_view name) override {
        if (name == "Spotify") return player(runner_.directory_.spotify());
        if (name == "Music") return player(runner_.directory_.music());
        if (name == "Google Chrome") return chromeForScript(runner_.browser_, deadline_);
        return nullptr;
    }

    ObjectPointer additions() override { return std::make_shared<Additions>(runner_.volume_, deadline_); }

    bool mayGoOn() override { return std::chrono::steady_clock::now() < deadline_; }

private:
    ObjectPointer player(std::optional<std::string> name) {
        if (!name) return nullptr;
        return std::make_shared<MprisPlayer>(runner_.bus_, std::move(*name), deadline_);
    }

    PlayerScriptRunner& runner_;
    const Deadline deadline_;
};

std::optional<ScriptValue> PlayerScriptRunner::run(std::string_view source) {
    MachineHost host(*this);
    auto result = scripts::runScript(source, host);
    if (!result) return std::nullopt;
    if (const bool* flag = std::get_if<bool>(&*result)) return *flag;
    if (const auto* integer = std::get_if<std::int64_t>(&*result)) return std::to_string(*integer);
    if (auto* text = std::get_if<std::string>(&*result)) return std::move(*text);
    return std::string();
}

void PlayerScriptRunner::togglePlayPause() {
    const auto name = directory_.lastPlayed();
    if (name) tellPlayer(bus_, *name, "PlayPause", deadlineIn(MprisPlayer::answerTime));
}

}  // namespace sunpane
