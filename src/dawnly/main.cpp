#include <QFont>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QQuickWindow>
#include <cstdlib>
#include <iostream>
#include <optional>

#include "app/AppDelegate.h"
#include "app/ChangeRequests.h"
#include "app/LoginItem.h"
#include "app/NotchViewModel.h"
#include "app/NotificationResponses.h"
#include "app/TodoReminders.h"
#include "app/UndoKey.h"
#include "base/AppIdentity.h"
#include "calendar/CalendarFallback.h"
#include "calendar/MeetingWatcher.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "dawnly/CommandLine.h"
#include "dawnly/PanelAssembly.h"
#include "dawnly/TerminationSignals.h"
#include "linux/calendar/DesktopCalendarStore.h"
#include "linux/calendar/eds/EdsModule.h"
#include "linux/desktop/BusName.h"
#include "linux/desktop/DBusDistributedNotifications.h"
#include "linux/desktop/DBusStoreRequests.h"
#include "linux/desktop/DesktopNotificationService.h"
#include "linux/desktop/PortalMotion.h"
#include "linux/desktop/QtArtworkLoader.h"
#include "linux/desktop/QtPasteboard.h"
#include "linux/desktop/QtRunLoop.h"
#include "linux/desktop/QtScreens.h"
#include "linux/desktop/QtWorkspace.h"
#include "linux/desktop/ToolkitChoice.h"
#include "linux/desktop/X11Backdrop.h"
#include "linux/desktop/X11EventMonitors.h"
#include "linux/desktop/X11Events.h"
#include "linux/desktop/X11Hotkeys.h"
#include "linux/desktop/X11WindowSpaces.h"
#include "linux/players/PlayerAdapters.h"
#include "linux/system/AutostartLoginService.h"
#include "linux/system/InotifyFolderEvents.h"
#include "linux/system/InstalledBundle.h"
#include "linux/system/JsonUserDefaults.h"
#include "linux/system/LocalCloudFiles.h"
#include "linux/system/OwnBundle.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/ReportFile.h"
#include "linux/system/SingleInstance.h"
#include "linux/system/SystemClock.h"
#include "linux/system/ThreadWorkQueue.h"
#include "linux/system/XdgPaths.h"
#include "notch/HotkeyManager.h"
#include "notch/NotchController.h"
#include "notch/PinnedSpace.h"
#include "notch/ScrollSwipeHub.h"
#include "notch/StateReport.h"
#include "nowplaying/NowPlaying.h"
#include "onboarding/Tour.h"
#include "reminders/PendingNotifications.h"
#include "reminders/ReminderScheduler.h"
#include "settings/SettingsModel.h"
#include "views/AlertWindows.h"
#include "views/CalendarPrompt.h"
#include "views/FolderPickerWindow.h"
#include "views/OnboardingWindowController.h"
#include "views/SettingsWindowController.h"
#include "views/ThemeStore.h"

namespace {

Q_LOGGING_CATEGORY(programLog, "dawnly.program")

/// The parts of the running program, in the order in which they need each other.
class Program {
public:
    Program() {
        delegate_.applicationDidFinishLaunching();
        wakes_ = workspace_.observeWake([this] {
            qCInfo(programLog) << "the machine woke up";
            notificationCenter_.wallClockChanged();
            meetings_.refresh(false);
        });
        QObject::connect(&x11Events_, &sunpane::X11Events::compositorChanged, &tourWindow_,
                         &sunpane::OnboardingWindowController::fitShape);
        settingsChanges_ = distributed_.observe(std::string(sunpane::appIdentifier) + ".settings", [this] {
            theme_.reload();
            settings_.changedOutside();
        });
        // Last, when everything that can be asked for is listened for.
        sunpane::claimBusName();
        qCInfo(programLog) << "settings in" << sunpane::JsonUserDefaults::defaultPath().c_str() << "and briefings in"
                           << sunpane::FolderBriefingProvider::currentDirectory(defaults_).c_str();
    }

private:
    /// Whether the calendars may be read is the program's own question, so it is asked anew.
    void openCalendarPrivacy(const std::function<void()>& done) {
        calendars_.askAgain([this, done](bool) { calendar_.ensureAccess([done](bool) { done(); }); });
    }

    sunpane::SystemClock clock_;
    sunpane::QtRunLoop runLoop_;
    sunpane::ThreadWorkQueueFactory queues_;
    sunpane::LocalNotifications notifications_;
    sunpane::JsonUserDefaults defaults_{sunpane::JsonUserDefaults::defaultPath()};
    sunpane::InotifyFolderEvents folderEvents_;
    sunpane::LocalCloudFiles cloudFiles_;
    sunpane::PosixFileSystem files_;
    sunpane::StoreFiles storeFiles_{{files_, cloudFiles_, clock_, runLoop_, queues_, sunpane::sleepFor},
                                    sunpane::xdg::stateFolder()};
    sunpane::X11Events x11Events_;
    sunpane::QtScreens screens_{defaults_};
    sunpane::X11EventMonitors monitors_{x11Events_, runLoop_};
    sunpane::DBusDistributedNotifications distributed_;
    sunpane::DBusStoreRequests storeRequests_;
    sunpane::ThemeStore theme_{defaults_, runLoop_};
    sunpane::CalendarPrompt calendarPrompt_;
    sunpane::DesktopCalendarStore calendars_{
        {clock_, runLoop_, queues_, folderEvents_, files_, defaults_, sunpane::xdg::dataFolder() + "/calendars",
         [this](std::function<void(sunpane::CalendarAccess)> answer) { calendarPrompt_.ask(std::move(answer)); },
         sunpane::edsCalendars(), std::nullopt}};
    sunpane::DesktopNotificationService notificationService_;
    sunpane::PendingNotifications notificationCenter_{{notificationService_, clock_, runLoop_, files_, queues_},
                                                      sunpane::xdg::stateFolder() + "/notifications.json"};
    sunpane::ReminderScheduler reminders_{notificationCenter_, clock_};
    sunpane::CalendarFallback calendar_{calendars_, defaults_, clock_};
    sunpane::MeetingWatcher meetings_{{calendars_, calendar_, reminders_, clock_, runLoop_}};
    sunpane::PlayerAdapters players_{defaults_};
    sunpane::QtArtworkLoader artwork_{runLoop_, queues_};
    std::unique_ptr<sunpane::WorkQueue> scriptQueue_ = queues_.makeQueue(sunpane::NowPlaying::queueLabel);
    sunpane::NowPlaying nowPlaying_{
        {runLoop_, *scriptQueue_, players_.scripts, players_.applications, players_.audio, players_.scripts, artwork_}};
    sunpane::NotchViewModel viewModel_{{clock_,
                                        runLoop_,
                                        notifications_,
                                        defaults_,
                                        {clock_, queues_, folderEvents_, cloudFiles_},
                                        storeFiles_,
                                        calendar_,
                                        meetings_,
                                        nowPlaying_}};
    sunpane::TodoReminders todoReminders_{{viewModel_.todoStore(), reminders_, notificationCenter_, clock_, runLoop_}};
    sunpane::ChangeRequests changeRequests_{
        {storeRequests_, viewModel_, sunpane::NotchUndo::shared(), clock_, runLoop_, files_}};
    sunpane::QtWorkspace workspace_{x11Events_};
    sunpane::NotificationResponses responses_{notificationCenter_, notifications_, workspace_};
    sunpane::ScrollSwipeHub scrollSwipes_{monitors_};
    sunpane::UndoKey undoKey_{monitors_, sunpane::NotchUndo::shared()};
    sunpane::X11Backdrop backdrop_{x11Events_};
    sunpane::PortalMotion motion_;
    sunpane::PanelAssembly windows_{
        {viewModel_, meetings_, calendar_, nowPlaying_, runLoop_, clock_, notifications_, defaults_, workspace_,
         scrollSwipes_, motion_},
        {theme_, backdrop_, runLoop_, queues_, [this] { return pinnedSpace_.generation(); }},
        x11Events_};
    sunpane::X11Hotkeys hotkeys_{x11Events_};
    sunpane::HotkeyManager hotkey_{&hotkeys_, defaults_, notifications_};
    sunpane::X11WindowSpaces spaces_{x11Events_};
    sunpane::PinnedSpace pinnedSpace_{&spaces_, defaults_, [](const std::string& line) { std::cerr << line << '\n'; }};
    sunpane::NotchController controller_{
        {clock_, runLoop_, screens_, monitors_, windows_, workspace_, &spaces_, pinnedSpace_, distributed_,
         notifications_, viewModel_, [] { return sunpane::ThemeStore::shared().themeName(); },
         [](const std::string& json) { sunpane::replaceReport(sunpane::StateReport::path, json); }}};
    sunpane::InstalledBundle bundle_{sunpane::InstalledBundle::runningProgram(), sunpane::xdg::homeFolder()};
    sunpane::AutostartLoginService loginService_{sunpane::AutostartLoginService::defaultFolder(),
                                                 sunpane::InstalledBundle::runningProgram()};
    sunpane::LoginItem loginItem_{bundle_, loginService_, defaults_};
    sunpane::QtPasteboard pasteboard_;
    sunpane::AlertWindows alerts_{windows_.engine()};
    sunpane::FolderPickerWindow folderPicker_{windows_.engine()};
    sunpane::Tour tour_{{defaults_, notifications_, runLoop_, calendars_, calendar_, workspace_, pasteboard_,
                         [this](const std::function<void()>& done) { openCalendarPrivacy(done); }}};
    sunpane::OnboardingWindowController tourWindow_{windows_.engine(), tour_, runLoop_,
                                                    [this] { return x11Events_.hasCompositor(); }};
    sunpane::SettingsModel settings_{{defaults_, notifications_, loginItem_, calendars_, workspace_, folderPicker_,
                                      pasteboard_, [this] { hotkey_.registerAnew(); },
                                      [this] {
                                          viewModel_.reapply();
                                          meetings_.refresh(false);
                                      },
                                      viewModel_.storesFolder()}};
    sunpane::SettingsWindowController settingsWindow_{
        {windows_.engine(), settings_, calendars_, theme_, runLoop_, notifications_},
        {[this] { tourWindow_.show(); }, [this] { workspace_.terminate(); }}};
    sunpane::AppDelegate delegate_{{clock_, runLoop_, defaults_, notifications_, distributed_, files_, workspace_,
                                    &spaces_, bundle_, loginItem_, alerts_, calendars_, calendar_},
                                   {[this] { hotkey_.registerAnew(); }, [this] { controller_.show(); },
                                    [this] { tourWindow_.show(); }, [this] { openCalendarPrivacy([] {}); }}};
    sunpane::Subscription wakes_;
    sunpane::Subscription settingsChanges_;
};

/// Makes this the only copy that runs. The exit code when it cannot be.
std::optional<int> becomeOnlyCopy(sunpane::SingleInstance& instance) {
    using Outcome = sunpane::SingleInstance::Outcome;
    switch (instance.replaceOther()) {
        case Outcome::alone:
            return std::nullopt;
        case Outcome::newerRuns:
            qCInfo(programLog) << "a newer copy runs";
            return EXIT_SUCCESS;
        case Outcome::outOfReach:
            qCWarning(programLog) << "another copy runs and cannot be ended";
            return EXIT_FAILURE;
        case Outcome::unknown:
            qCWarning(programLog) << "cannot tell whether another copy runs: no lock at"
                                  << sunpane::SingleInstance::defaultPath().c_str();
            return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

int main(int argc, char* argv[]) {
    const sunpane::CommandLine commandLine = sunpane::readCommandLine(argc, argv);
    if (commandLine.exitCode) return *commandLine.exitCode;
    sunpane::chooseLogging(commandLine.isVerbose);
    sunpane::choosePlatform();
    sunpane::chooseRenderer();
    sunpane::interpretScripts();
    QCoreApplication::setApplicationName(QStringLiteral("dawnly"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SUNPANE_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Dawnly"));
    QGuiApplication::setDesktopFileName(QString::fromUtf8(sunpane::appIdentifier.data()));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const QGuiApplication application(argc, argv);
    // Every text chooses it; the toolkit would load its own default beside it.
    QGuiApplication::setFont(QFont(QStringLiteral("Inter")));

    if (!sunpane::areUnderstood(QCoreApplication::arguments().mid(1))) return EXIT_FAILURE;
    qCInfo(programLog) << "version" << SUNPANE_VERSION << "in" << sunpane::ownBundlePath().c_str() << "on"
                       << QGuiApplication::platformName() << "with renderer"
                       << qEnvironmentVariable("QT_QUICK_BACKEND", QStringLiteral("rhi"));

    sunpane::quitOnTerminationSignals();
    // Held until everything is written: the next copy may start then.
    sunpane::SingleInstance instance(sunpane::SingleInstance::defaultPath());
    if (const auto exitCode = becomeOnlyCopy(instance)) return *exitCode;
    const Program program;
    return QGuiApplication::exec();
}
