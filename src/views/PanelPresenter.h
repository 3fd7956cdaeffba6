#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "app/NotchViewModel.h"
#include "calendar/MeetingWatcher.h"
#include "notch/ScrollSwipeHub.h"
#include "platform/MotionPreference.h"
#include "platform/Workspace.h"
#include "views/BriefColumnModel.h"
#include "views/CardPresenter.h"
#include "views/NowPlayingPresenter.h"
#include "views/ReminderPresenter.h"
#include "views/SpringCurve.h"
#include "views/TodoColumnPresenter.h"

namespace sunpane {

/// Carries the view model to the panel's QML and the panel's gestures back. Holds no rules. One for each panel
/// window; main thread only.
class PanelPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool expanded READ expanded NOTIFY changed)
    Q_PROPERTY(bool hasUnread READ hasUnread NOTIFY changed)
    Q_PROPERTY(bool hasBriefing READ hasBriefing NOTIFY changed)
    /// The id of the briefing on screen, which stays when the file is written anew; empty when there is none.
    Q_PROPERTY(QString briefingId READ briefingId NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY changed)
    Q_PROPERTY(QString icon READ icon NOTIFY changed)
    Q_PROPERTY(bool canGoOlder READ canGoOlder NOTIFY changed)
    Q_PROPERTY(bool canGoNewer READ canGoNewer NOTIFY changed)
    /// How many cards of the briefing on screen are hidden.
    Q_PROPERTY(int hiddenCards READ hiddenCards NOTIFY changed)
    Q_PROPERTY(qreal expandedHeight READ expandedHeight NOTIFY changed)
    /// The id of the one section that is open; -1 when none is.
    Q_PROPERTY(int openSection READ openSection NOTIFY openSectionChanged)
    Q_PROPERTY(sunpane::BriefColumnModel* column READ column CONSTANT)
    /// Whether there is a next meeting to show, and what is shown of it.
    Q_PROPERTY(bool hasMeeting READ hasMeeting NOTIFY changed)
    Q_PROPERTY(QString meetingTitle READ meetingTitle NOTIFY changed)
    Q_PROPERTY(QString meetingTime READ meetingTime NOTIFY changed)
    Q_PROPERTY(bool canJoinMeeting READ canJoinMeeting NOTIFY changed)
    Q_PROPERTY(bool meetingImminent READ meetingImminent NOTIFY changed)
    Q_PROPERTY(sunpane::NowPlayingPresenter* nowPlaying READ nowPlaying CONSTANT)
    Q_PROPERTY(sunpane::CardPresenter* cards READ cards CONSTANT)
    Q_PROPERTY(sunpane::ReminderPresenter* reminders READ reminders CONSTANT)
    Q_PROPERTY(sunpane::TodoColumnPresenter* todos READ todos CONSTANT)
    /// Whether things come and go without moving, because the user or the desktop says so.
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)
    Q_PROPERTY(qreal notchWidth READ notchWidth NOTIFY measuresChanged)
    Q_PROPERTY(qreal notchHeight READ notchHeight NOTIFY measuresChanged)
    Q_PROPERTY(qreal headerHeight READ headerHeight CONSTANT)
    Q_PROPERTY(qreal cardWidth READ cardWidth NOTIFY measuresChanged)
    Q_PROPERTY(sunpane::SpringCurve unfoldSpring READ unfoldSpring CONSTANT)
    Q_PROPERTY(sunpane::SpringCurve foldSpring READ foldSpring CONSTANT)
    Q_PROPERTY(sunpane::SpringCurve accordionSpring READ accordionSpring CONSTANT)
    Q_PROPERTY(sunpane::SpringCurve scheduleSpring READ scheduleSpring CONSTANT)
    Q_PROPERTY(sunpane::SpringCurve menuSpring READ menuSpring CONSTANT)

public:
    struct Collaborators {
        NotchViewModel& viewModel;
        MeetingWatcher& meetings;
        CalendarFallback& calendar;
        NowPlaying& nowPlaying;
        RunLoop& runLoop;
        Clock& clock;
        LocalNotifications& notifications;
        const UserDefaults& defaults;
        Workspace& workspace;
        ScrollSwipeHub& scrollSwipes;
        MotionPreference& motion;
    };

    /// A setting of the user's own, which the desktop's gives way to: true or false.
    static constexpr const char* reduceMotionKey = "reduceMotion";

    /// The panel's measures on its screen, in points.
    struct Measures {
        Size notch;
        double cardWidth;
        double maxCardHeight;

        friend bool operator==(const Measures&, const Measures&) = default;
    };

    PanelPresenter(const Collaborators& collaborators, const Measures& measures);
    ~PanelPresenter() override;

    /// For a panel that moves to another screen.
    void setMeasures(const Measures& measures);

    bool expanded() const { return with_.viewModel.expanded(); }
    bool hasUnread() const { return with_.viewModel.hasUnread(); }
    bool hasBriefing() const { return with_.viewModel.current() != nullptr; }
    const QString& briefingId() const { return briefingId_; }
    const QString& title() const { return title_; }
    const QString& subtitle() const { return subtitle_; }
    const QString& icon() const { return icon_; }
    bool canGoOlder() const { return with_.viewModel.canGoOlder(); }
    bool canGoNewer() const { return with_.viewModel.canGoNewer(); }
    int hiddenCards() const { return static_cast<int>(hidden_.size()); }
    qreal expandedHeight() const;
    int openSection() const { return openSection_.value_or(-1); }
    BriefColumnModel* column() { return &column_; }
    NowPlayingPresenter* nowPlaying() { return &nowPlaying_; }
    CardPresenter* cards() { return &cards_; }
    ReminderPresenter* reminders() { return &reminders_; }
    TodoColumnPresenter* todos() { return &todos_; }
    bool hasMeeting() const { return meeting_.has_value(); }
    const QString& meetingTitle() const { return meetingTitle_; }
    const QString& meetingTime() const { return meetingTime_; }
    bool canJoinMeeting() const { return meeting_ && meeting_->joinURL; }
    bool meetingImminent() const { return meetingImminent_; }
    bool reducedMotion() const { return reducedMotion_; }
    qreal notchWidth() const { return measures_.notch.width; }
    qreal notchHeight() const { return measures_.notch.height; }
    static qreal headerHeight();
    qreal cardWidth() const { return measures_.cardWidth; }
    SpringCurve unfoldSpring() const { return unfoldSpring_; }
    SpringCurve foldSpring() const { return foldSpring_; }
    SpringCurve accordionSpring() const { return accordionSpring_; }
    SpringCurve scheduleSpring() const { return scheduleSpring_; }
    SpringCurve menuSpring() const { return menuSpring_; }

    Q_INVOKABLE void older() { with_.viewModel.older(); }
    Q_INVOKABLE void newer() { with_.viewModel.newer(); }
    /// Opens the section with that id and folds the one that was open, or folds it when it was the open one.
    Q_INVOKABLE void toggleSection(int id);
    /// Whether that is another height than was known.
    Q_INVOKABLE bool reportContentHeight(qreal height) { return with_.viewModel.reportBriefContentHeight(height); }

    Q_INVOKABLE void joinMeeting();
    /// An open menu or sheet keeps the panel from folding. Each says when it opens, and once when it closes.
    Q_INVOKABLE void setMenuOpen(bool open);
    /// Brings the hidden cards of the briefing on screen back.
    Q_INVOKABLE void showHiddenCards();

    Q_INVOKABLE void openBriefingsFolder();
    Q_INVOKABLE void openSettings() { with_.notifications.post(notification::showSettings); }
    Q_INVOKABLE void quit() { with_.workspace.terminate(); }
    /// Folds the panel at the user's wish.
    Q_INVOKABLE void collapse() { with_.notifications.post(notification::collapseNotch); }

signals:
    void changed();
    void measuresChanged();
    void openSectionChanged();
    void reducedMotionChanged();

private:
    /// While the panel is open, what depends on the time is shown anew this often (s).
    static constexpr Seconds clockInterval = 20;

    void scheduleRefresh();
    void refresh();
    void showBriefing(const Briefing* briefing);
    void showColumn();
    void showMeeting();
    void judgeMotion();
    bool isHidden(const BriefingItem& item) const;

    Collaborators with_;
    Measures measures_;
    BriefColumnModel column_;
    NowPlayingPresenter nowPlaying_;
    ReminderPresenter reminders_;
    TodoColumnPresenter todos_;
    CardPresenter cards_;
    std::optional<int> openSection_ = 0;
    std::optional<Briefing> shown_;
    std::vector<BriefingSection> sections_;  // of `shown_`
    std::vector<BriefingItem> hidden_;       // among the cards of `sections_`
    QString briefingId_;
    QString title_;
    QString subtitle_;
    QString icon_;
    SpringCurve unfoldSpring_{NotchViewModel::unfolding};
    SpringCurve foldSpring_{NotchViewModel::folding};
    SpringCurve accordionSpring_{Spring{0.35, 0.78}};
    SpringCurve scheduleSpring_{MeetingWatcher::animation};
    SpringCurve menuSpring_{Spring{0.3, 0.8}};
    std::optional<Meeting> meeting_;
    QString meetingTitle_;
    QString meetingTime_;
    bool meetingImminent_ = false;
    // Ticks only while the panel is open.
    Subscription clockTimer_;
    bool ticking_ = false;
    bool reducedMotion_ = false;
    Subscription motionChanges_;
    Subscription meetingChanges_;
    Subscription modelChanges_;
    Subscription flagChanges_;
    bool refreshPosted_ = false;
    int openMenus_ = 0;
    std::shared_ptr<PanelPresenter*> self_;
};

}  // namespace sunpane
