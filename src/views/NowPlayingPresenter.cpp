#include "views/NowPlayingPresenter.h"

#include <utility>

#include "views/NowPlayingRules.h"

namespace sunpane {
namespace {

QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QImage toImage(const Artwork* artwork) {
    if (artwork == nullptr) return {};
    const qsizetype bytesPerRow = qsizetype{4} * artwork->width;
    return QImage(artwork->rgba.data(), artwork->width, artwork->height, bytesPerRow, QImage::Format_RGBA8888).copy();
}

}  // namespace

NowPlayingPresenter::NowPlayingPresenter(NowPlaying& nowPlaying, RunLoop& runLoop)
    : nowPlaying_(nowPlaying), runLoop_(runLoop), self_(std::make_shared<NowPlayingPresenter*>(this)) {
    changes_ = nowPlaying_.onWillChange([this] { scheduleRefresh(); });
    refresh();
}

void NowPlayingPresenter::scheduleRefresh() {
    // A change is announced before it takes effect; by the time the posted task runs it is in place.
    if (std::exchange(refreshPosted_, true)) return;
    runLoop_.post([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) (*self)->refresh();
    });
}

void NowPlayingPresenter::refresh() {
    refreshPosted_ = false;
    // What was shown of the last track stays while it leaves the screen.
    if (const auto& track = nowPlaying_.track()) {
        if (std::exchange(artwork_, nowPlaying_.artwork()) != nowPlaying_.artwork()) cover_ = toImage(artwork_.get());
        title_ = toQt(track->title);
        artist_ = toQt(track->artist);
        coverTooltip_ = toQt(now_playing_rules::coverTooltip(*track));
        showButtons(*track);
    }
    emit changed();
}

void NowPlayingPresenter::showButtons(const Track& track) {
    QStringList keys;
    for (const auto& button : now_playing_rules::transportButtons(track, nowPlaying_.outputMuted())) {
        keys.append(toQt(button.key));
        buttons_.insert(keys.back(), QVariantMap{{QStringLiteral("symbol"), toQt(button.symbol)},
                                                 {QStringLiteral("symbolSize"), button.symbolSize},
                                                 {QStringLiteral("label"), toQt(button.label)}});
    }
    if (std::exchange(buttonKeys_, keys) != keys) emit buttonKeysChanged();
}

qreal NowPlayingPresenter::hitArea() const {
    return now_playing_rules::hitArea;
}

void NowPlayingPresenter::press(const QString& key) {
    const auto& track = nowPlaying_.track();
    if (!track) return;
    for (const auto& button : now_playing_rules::transportButtons(*track, nowPlaying_.outputMuted())) {
        if (toQt(button.key) != key) continue;
        switch (button.action) {
            case now_playing_rules::Action::previousTrack:
                return nowPlaying_.command(NowPlaying::Command::previousTrack);
            case now_playing_rules::Action::playPause:
                return nowPlaying_.playPause();
            case now_playing_rules::Action::nextTrack:
                return nowPlaying_.command(NowPlaying::Command::nextTrack);
            case now_playing_rules::Action::toggleMute:
                return nowPlaying_.toggleMute();
        }
    }
}

}  // namespace sunpane
