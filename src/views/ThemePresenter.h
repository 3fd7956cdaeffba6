#pragma once

#include <QColor>
#include <QObject>
#include <QVariantList>
#include <memory>

#include "base/RunLoop.h"
#include "views/ThemeStore.h"

namespace sunpane {

/// Carries the theme store to QML and the user's choices back. Holds no rules. Any number of them may follow one store;
/// main thread only.
class ThemePresenter : public QObject {
    Q_OBJECT
    /// One of the names in `themes`.
    Q_PROPERTY(QString theme READ theme WRITE setTheme NOTIFY changed)
    Q_PROPERTY(qreal translucency READ translucency WRITE setTranslucency NOTIFY changed)
    Q_PROPERTY(QColor customTop READ customTop WRITE setCustomTop NOTIFY changed)
    Q_PROPERTY(QColor customBottom READ customBottom WRITE setCustomBottom NOTIFY changed)
    Q_PROPERTY(qreal customStrength READ customStrength WRITE setCustomStrength NOTIFY changed)
    /// What can be chosen, in order: maps of "name", "label" and "fill", the latter a list of maps of "color" and
    /// "location".
    Q_PROPERTY(QVariantList themes READ themes NOTIFY changed)

public:
    /// Both outlive the presenter.
    ThemePresenter(ThemeStore& store, RunLoop& runLoop);

    QString theme() const { return QString::fromStdString(store_.themeName()); }
    /// A name that no theme has changes nothing.
    void setTheme(const QString& name);
    qreal translucency() const { return store_.translucency(); }
    void setTranslucency(qreal translucency) { store_.setTranslucency(translucency); }
    QColor customTop() const;
    void setCustomTop(const QColor& color);
    QColor customBottom() const;
    void setCustomBottom(const QColor& color);
    qreal customStrength() const { return store_.customStrength(); }
    void setCustomStrength(qreal strength) { store_.setCustomStrength(strength); }
    QVariantList themes() const;

    const ThemeStore& store() const { return store_; }

signals:
    /// After a change of the store, once for several that come together.
    void changed();

private:
    ThemeStore& store_;
    RunLoop& runLoop_;
    bool posted_ = false;
    std::shared_ptr<ThemePresenter*> self_;
    Subscription changes_;
};

}  // namespace sunpane
