#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <memory>

#include "base/RunLoop.h"
#include "nowplaying/NowPlaying.h"

namespace sunpane {

/// Carries what is playing to the now-playing strip and its clicks back. Holds no rules; main thread only.
class NowPlayingPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasTrack READ hasTrack NOTIFY changed)
    // What follows keeps its value while the strip leaves the screen.
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString artist READ artist NOTIFY changed)
    Q_PROPERTY(QString coverTooltip READ coverTooltip NOTIFY changed)
    /// Null without a cover.
    Q_PROPERTY(QImage cover READ cover NOTIFY changed)
    Q_PROPERTY(bool hasCover READ hasCover NOTIFY changed)
    /// The buttons from left to right: objects with `key`, `symbol`, `symbolSize` and `label`.
    Q_PROPERTY(QVariantList buttons READ buttons NOTIFY buttonsChanged)
    Q_PROPERTY(qreal hitArea READ hitArea CONSTANT)

public:
    NowPlayingPresenter(NowPlaying& nowPlaying, RunLoop& runLoop);

    bool hasTrack() const { return nowPlaying_.track().has_value(); }
    const QString& title() const { return title_; }
    const QString& artist() const { return artist_; }
    const QString& coverTooltip() const { return coverTooltip_; }
    const QImage& cover() const { return cover_; }
    bool hasCover() const { return !cover_.isNull(); }
    const QVariantList& buttons() const { return buttons_; }
    qreal hitArea() const;

    /// The button with that key was pressed.
    Q_INVOKABLE void press(const QString& key);
    Q_INVOKABLE void openSource() { nowPlaying_.openSource(); }

signals:
    void changed();
    void buttonsChanged();

private:
    void scheduleRefresh();
    void refresh();

    NowPlaying& nowPlaying_;
    RunLoop& runLoop_;
    QString title_;
    QString artist_;
    QString coverTooltip_;
    QVariantList buttons_;
    std::shared_ptr<const Artwork> artwork_;
    QImage cover_;  // of `artwork_`
    bool refreshPosted_ = false;
    Subscription changes_;
    std::shared_ptr<NowPlayingPresenter*> self_;
};

}  // namespace sunpane
