#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>

#include "app/NotchViewModel.h"
#include "notch/ItemSwipeCoordinator.h"
#include "platform/Workspace.h"
#include "views/BriefColumnModel.h"
#include "views/InlineMarkdown.h"
#include "views/SpringCurve.h"

namespace sunpane {

/// Carries what the user does with the column's cards to the stores, and how far a card is swiped back to QML. Holds no
/// rules. A card is named by its section's id and its index there. Owned by the panel's presenter; main thread only.
class CardPresenter : public QObject {
    Q_OBJECT
    /// The key of the card that a swipe would move; empty for none.
    Q_PROPERTY(QString swipedKey READ swipedKey NOTIFY swipeChanged)
    /// How far it is moved, in points, positive to the right.
    Q_PROPERTY(qreal swipeX READ swipeX NOTIFY swipeChanged)
    /// Whether the card is in the user's hand; otherwise it goes to `swipeX` with the spring.
    Q_PROPERTY(bool inHand READ inHand NOTIFY handChanged)
    Q_PROPERTY(sunpane::SpringCurve spring READ spring NOTIFY handChanged)

public:
    struct Collaborators {
        NotchViewModel& viewModel;
        ScrollSwipeHub& scrollSwipes;
        NotchUndo& undo;
        RunLoop& runLoop;
        Workspace& workspace;
    };

    /// All of them, and `column`, outlive the presenter.
    CardPresenter(const Collaborators& collaborators, const BriefColumnModel& column);

    QString swipedKey() const { return swipedKey_; }
    qreal swipeX() const { return swipeX_; }
    bool inHand() const { return inHand_; }
    SpringCurve spring() const { return spring_; }

    /// The column shows, or has gone.
    void setShown(bool shown);

    // The pointer over the cards. While one is dragged the others are not noticed.
    Q_INVOKABLE void pointerEntered(int sectionId, int index);
    /// By its key, since the card may be gone.
    Q_INVOKABLE void pointerLeft(const QString& key);
    /// The card is shown no more, even if it was being dragged.
    Q_INVOKABLE void cardGone(const QString& key);
    /// A card is dragged sideways by `x` points from where it was.
    Q_INVOKABLE void dragTo(int sectionId, int index, qreal x);
    /// The card is let go of: far enough, and that counts as a swipe.
    Q_INVOKABLE void drop();
    /// The card goes back, whatever its place.
    Q_INVOKABLE void cancelDrag();

    /// What swipes to the right and to the left do, without one.
    Q_INVOKABLE void flag(int sectionId, int index);
    Q_INVOKABLE void dismiss(int sectionId, int index);

    /// What a drag of the card carries: data by media type. Plain text for other programs, and more for the todo
    /// column.
    Q_INVOKABLE QVariantMap dragData(int sectionId, int index) const;

    /// A menu or a sheet is about this card from now on, whatever happens to the briefing meanwhile. False when there
    /// is no such card.
    Q_INVOKABLE bool choose(int sectionId, int index);
    Q_INVOKABLE QString chosenText() const;
    Q_INVOKABLE void copyChosen() const;
    Q_INVOKABLE void addChosenToTodos();
    /// `time` in seconds since 1970; `rule` as the todo store has it, empty for once.
    Q_INVOKABLE void remindOfChosen(double time, const QString& rule);

    /// Takes a card's place as the index where links are meant.
    static constexpr int introduction = -1;
    /// The words of the links in the card, or in the section's introduction, in order.
    Q_INVOKABLE QStringList links(int sectionId, int index) const;
    /// Opens the link of that number.
    Q_INVOKABLE void openLink(int sectionId, int index, int link) const;
    /// Opens the link of the meeting that the card is about.
    Q_INVOKABLE void join(int sectionId, int index) const;

signals:
    /// Comes before `swipeChanged`, so that a view knows how to follow it.
    void handChanged();
    void swipeChanged();
    /// A card is about to be added to the todos.
    void todoComing();
    /// What a swipe did, for those who hear the program.
    void announced(const QString& text);

private:
    void scheduleRefresh();
    void refresh();
    // Swipes a card by `x` points without showing it.
    void swipe(int sectionId, int index, double x);
    std::vector<InlineLink> linksIn(int sectionId, int index) const;

    Collaborators with_;
    const BriefColumnModel& column_;
    ItemSwipeCoordinator coordinator_;
    QString swipedKey_;
    qreal swipeX_ = 0;
    bool inHand_ = false;
    SpringCurve spring_;
    // Whether the next refresh shows a change that the coordinator wants to be seen moving.
    bool springs_ = false;
    std::optional<BriefingItem> dragged_;
    std::optional<BriefingItem> chosen_;
    Subscription swipeChanges_;
    bool refreshPosted_ = false;
    std::shared_ptr<CardPresenter*> self_;
};

}  // namespace sunpane
