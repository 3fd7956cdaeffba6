#include "views/RootWindow.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QQuickItem>

#include "support/ViewModelFixture.h"
#include "views/WindowsFixture.h"

namespace sunpane {
namespace {

class NoBackdrop : public ScreenBackdrop {
public:
    bool isBlurredByDesktop() const override { return false; }
    bool isLive() const override { return false; }
    std::optional<Capture> capture(std::uint64_t, int) override { return std::nullopt; }
};

/// The panel's QML over a simulated platform, in a window that no screen shows. Only its animations and its timers take
/// real time.
struct RootWindowTest : testing::ViewModelFixture {
    testing::SimulatedWorkspace workspace;
    testing::SimulatedMotion motion;
    NoBackdrop backdrop;
    ThemeStore theme{defaults, platform.runLoop};
    QQmlEngine engine;
    std::unique_ptr<RootWindow> window;

    static void SetUpTestSuite() { testing::WindowsFixture::SetUpTestSuite(); }
    static void TearDownTestSuite() { testing::WindowsFixture::TearDownTestSuite(); }

    void SetUp() override {
        std::string cards;
        for (int i = 0; i < 40; ++i)
            cards += "- Card " + std::to_string(i) + "\n";
        longDay = "### Schedule\n" + cards;
        folder.write("2026-11-20.md", "# One\n" + longDay);
        folder.write("2026-11-21.md", "# Two\n" + longDay);
        model->start();
        platform.time.runPending();
        engine.addImportPath(QStringLiteral("qrc:/"));
        const PanelPresenter::Collaborators collaborators{
            *model,         agenda.meetings, agenda.fallback, players.nowPlaying, platform.runLoop,
            platform.clock, notifications,   defaults,        workspace,          hub,
            motion};
        window = std::make_unique<RootWindow>(
            engine, std::make_unique<PanelPresenter>(collaborators, PanelPresenter::Measures{{200, 32}, 720, 600}),
            PanelBackground::Collaborators{theme, backdrop, platform.runLoop, platform.queues, [] { return 0; }});
        window->resize(780, 640);
        // The ways of the notch without their length.
        motion.reduce(true);
        platform.time.runPending();
    }

    QQuickItem& root() { return *window->contentItem()->childItems().front(); }
    template <class T>
    T* child(const char* type) {
        for (auto* object : root().findChildren<T*>()) {
            if (QByteArray(object->metaObject()->className()).startsWith(type)) return object;
        }
        return nullptr;
    }
    void setOpen(bool open) {
        model->setExpanded(open);
        platform.time.runPending();
    }
    template <class Condition>
    static bool waitFor(const Condition& condition, int milliseconds = 3000) {
        QElapsedTimer clock;
        clock.start();
        while (!condition() && clock.elapsed() < milliseconds)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
        return condition();
    }
    bool hasContent() { return child<QQuickItem>("BriefingCard") != nullptr; }
    /// Lets a folded panel give its content up after `shortTime`.
    void beImpatient() {
        QObject* idle = nullptr;
        for (auto* object : root().findChildren<QObject*>()) {
            if (object->property("interval").toInt() == 30000) idle = object;
        }
        ASSERT_NE(idle, nullptr);
        idle->setProperty("interval", shortTime);
    }
    bool isFolded() { return root().property("folded").toBool(); }

    static constexpr int shortTime = 60;  // ms
    std::string longDay;
};

TEST_F(RootWindowTest, GivesItsContentUpOnlyWhileFolded) {
    beImpatient();
    window->makeContent();
    ASSERT_TRUE(hasContent());
    EXPECT_TRUE(waitFor([&] { return !hasContent(); })) << "nobody came";

    setOpen(true);
    ASSERT_TRUE(waitFor([&] { return root().property("unfolding") == 1.0; }));
    motion.reduce(false);
    setOpen(false);
    // The pointer stays near while the panel folds, and comes back before it has.
    window->makeContent();
    EXPECT_FALSE(isFolded());
    setOpen(true);
    EXPECT_FALSE(waitFor([&] { return !hasContent(); }, 10 * shortTime)) << "an open panel goes blank";

    motion.reduce(true);
    setOpen(false);
    ASSERT_TRUE(waitFor([&] { return isFolded(); }));
    EXPECT_TRUE(waitFor([&] { return !hasContent(); }));
}

TEST_F(RootWindowTest, ADraftOutlivesTheContentThatItWasTypedIn) {
    beImpatient();
    window->show();
    setOpen(true);
    const auto field = [&] { return child<QQuickItem>("CaptureField"); };
    ASSERT_NE(field(), nullptr);
    EXPECT_EQ(field()->property("text").toString(), "");
    QMetaObject::invokeMethod(field(), "takeFocus");
    testing::WindowsFixture::type(*window, QStringLiteral("call"));
    setOpen(false);
    ASSERT_TRUE(waitFor([&] { return !hasContent(); })) << "a draft keeps the content";
    setOpen(true);
    ASSERT_TRUE(hasContent());
    EXPECT_EQ(field()->property("text").toString(), "call");
}

TEST_F(RootWindowTest, AKeyThatIsHeldDownActsOnATodoOnce) {
    model->todoStore().add("Call Anna");
    window->show();
    setOpen(true);
    auto* column = child<QQuickItem>("TodoColumn");
    ASSERT_NE(column, nullptr);
    const auto hold = [&](Qt::Key key, int repeats) {
        QMetaObject::invokeMethod(column, "focusRow", Q_ARG(QVariant, 0));
        testing::WindowsFixture::press(*window, key, {}, repeats);
        platform.time.runPending();
    };
    const auto isPriority = [&] { return model->todoStore().todos().front().isPrio(); };
    // As many toggles as come in a second would leave it where it was.
    hold(Qt::Key_P, 25);
    EXPECT_TRUE(isPriority());
    hold(Qt::Key_P, 0);
    EXPECT_FALSE(isPriority());
    hold(Qt::Key_Space, 24);
    EXPECT_TRUE(model->todoStore().todos().front().done);
    for (const char* text : {"Call Bert", "Call Cleo"})
        model->todoStore().add(text);
    platform.time.runPending();
    hold(Qt::Key_Delete, 25);
    EXPECT_EQ(model->todoStore().todos().size(), 2U);
}

TEST_F(RootWindowTest, AnotherDayIsReadFromItsTop) {
    setOpen(true);
    auto* column = child<QQuickItem>("BriefColumn");
    ASSERT_NE(column, nullptr);
    ASSERT_TRUE(waitFor([&] { return column->property("contentHeight").toReal() > column->height() + 300; }));
    const auto scrolled = [&] { return column->property("contentY").toReal(); };
    column->setProperty("contentY", 200);
    folder.write("2026-11-21.md", "# Two\n" + longDay + "- One more\n");
    folderEvents.tell(folder.path(), "2026-11-21.md");
    platform.time.advance(0.5);
    waitFor([] { return false; }, 50);
    EXPECT_EQ(scrolled(), 200) << "the same day, written anew";
    model->older();
    platform.time.runPending();
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(RootWindowTest, WhatPlayedStaysWholeWhileItsStripGoes) {
    players.applications.running.emplace(bundleIdentifier(Player::spotify));
    players.scripts.reply(Player::spotify, "playing|||Song|||Artist|||u1");
    players.nowPlaying.poll();
    platform.time.runPending();
    players.covers.arrive("u1", testing::pixel(7));
    platform.time.runPending();
    const auto& strip = *window->presenter().nowPlaying();
    ASSERT_TRUE(strip.hasTrack());
    ASSERT_TRUE(strip.hasCover());
    players.applications.running.clear();
    players.nowPlaying.poll();
    platform.time.runPending();
    EXPECT_FALSE(strip.hasTrack());
    EXPECT_EQ(strip.title(), "Song");
    EXPECT_TRUE(strip.hasCover());
    // Another track does not have it.
    players.applications.running.emplace(bundleIdentifier(Player::spotify));
    players.scripts.reply(Player::spotify, "playing|||Other|||Artist|||u2");
    players.nowPlaying.poll();
    platform.time.runPending();
    EXPECT_EQ(strip.title(), "Other");
    EXPECT_FALSE(strip.hasCover());
}

}  // namespace
}  // namespace sunpane
