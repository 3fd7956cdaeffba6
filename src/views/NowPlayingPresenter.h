#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <memory>

#include "base/RunLoop.h"
#include "nowplaying/NowPlaying.h"
#include "views/SpringCurve.h"

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
    /// The keys of the buttons from left to right, and by key what each shows: objects with `symbol`, `symbolSize` and
    /// `label`. Only another kind of source makes the buttons anew: one of them may have the keyboard.
    Q_PROPERTY(QStringList buttonKeys READ buttonKeys NOTIFY buttonKeysChanged)
    Q_PROPERTY(QVariantMap buttons READ buttons NOTIFY changed)
    Q_PROPERTY(qreal hitArea READ hitArea CONSTANT)
    Q_PROPERTY(sunpane::SpringCurve spring READ spring CONSTANT)

public:
    NowPlayingPresenter(NowPlaying& nowPlaying, RunLoop& runLoop);

    bool hasTrack() const { return nowPlaying_.track().has_value(); }
    const QString& title() const { return title_; }
    const QString& artist() const { return artist_; }
    const QString& coverTooltip() const { return coverTooltip_; }
    const QImage& cover() const { return cover_; }
    bool hasCover() const { return !cover_.isNull(); }
    const QStringList& buttonKeys() const { return buttonKeys_; }
    const QVariantMap& buttons() const { return buttons_; }
    qreal hitArea() const;
    SpringCurve spring() const { return spring_; }

    /// The button with that key was pressed.
    Q_INVOKABLE void press(const QString& key);
    Q_INVOKABLE void openSource() { nowPlaying_.openSource(); }

signals:
    void changed();
    void buttonKeysChanged();

private:
    void scheduleRefresh();
    void refresh();
    void showButtons(const Track& track);

    NowPlaying& nowPlaying_;
    RunLoop& runLoop_;
    QString title_;
    QString artist_;
    QString coverTooltip_;
    QStringList buttonKeys_;
    QVariantMap buttons_;
    std::shared_ptr<const Artwork> artwork_;
    QImage cover_;  // of `artwork_`
    SpringCurve spring_{NowPlaying::animation};
    bool refreshPosted_ = false;
    Subscription changes_;
    std::shared_ptr<NowPlayingPresenter*> self_;
};

}  // namespace sunpane
