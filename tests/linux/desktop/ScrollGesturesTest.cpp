#include "linux/desktop/ScrollGestures.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

constexpr std::uint32_t first = 8;
constexpr std::uint32_t second = 9;

struct ScrollGesturesTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    // The events told: b, c and e for began, changed and ended.
    std::string told;
    double x = 0;
    double y = 0;
    bool swallows = true;
    std::uint32_t time = 1000;
    ScrollGestures gestures{
        platform.runLoop, [this](const ScrollEvent& event) {
            EXPECT_EQ(event.momentumPhase, ScrollPhase::none);
            told += event.phase == ScrollPhase::began ? 'b' : event.phase == ScrollPhase::changed ? 'c' : 'e';
            x += event.deltaX;
            y += event.deltaY;
            return swallows;
        }};

    void step(double right, double down, ScrollDevice kind = ScrollDevice::unknown, std::uint32_t device = first) {
        gestures.take({device, kind, right, down, ++time});
    }
    std::string tellAll() { return std::exchange(told, ""); }
};

TEST_F(ScrollGesturesTest, EndsWhenTheFingersLeaveOrAfterAPause) {
    step(0.5, 0.1);
    step(-1.5, 0);
    EXPECT_EQ(tellAll(), "bcc");
    EXPECT_DOUBLE_EQ(x, -15);
    EXPECT_DOUBLE_EQ(y, 1.5);
    step(0, 0);
    EXPECT_EQ(tellAll(), "e");
    platform.time.advance(10);
    step(0, 0);
    EXPECT_EQ(tellAll(), "") << "an end without a beginning";

    step(0.5, 0);
    platform.time.advance(ScrollGestures::pause - 0.01);
    step(0.5, 0);
    platform.time.advance(ScrollGestures::pause - 0.01);
    EXPECT_EQ(tellAll(), "bcc");
    platform.time.advance(0.01);
    EXPECT_EQ(tellAll(), "e");
    EXPECT_EQ(platform.time.pendingCount(), 0U);
}

TEST_F(ScrollGesturesTest, FingersMayRestOnATouchpadThatTellsWhenTheyLeave) {
    step(1, 0, ScrollDevice::touchpad);
    platform.time.advance(ScrollGestures::longestRest - 0.01);
    step(1, 0, ScrollDevice::touchpad);
    EXPECT_EQ(tellAll(), "bcc");
    platform.time.advance(ScrollGestures::longestRest);
    EXPECT_EQ(tellAll(), "e");
}

TEST_F(ScrollGesturesTest, WheelsMakeNoGestures) {
    struct Case {
        const char* what;
        ScrollDevice kind;
        double x;
        double y;
        const char* told;
    };
    const Case cases[] = {
        {"a wheel's click", ScrollDevice::unknown, 0, -1, ""},
        {"several at once", ScrollDevice::unknown, 0, 3, ""},
        {"a click sideways", ScrollDevice::unknown, 1, 0, ""},
        {"a fine wheel", ScrollDevice::wheel, 0.125, 0, ""},
        {"less than a notch", ScrollDevice::unknown, 0, 0.125, "bc"},
        {"a touchpad's whole notch", ScrollDevice::touchpad, 1, 0, "bc"},
    };
    for (const auto& [what, kind, right, down, expected] : cases) {
        step(right, down, kind);
        EXPECT_EQ(tellAll(), expected) << what;
        platform.time.advance(10);
        tellAll();
    }
    // Once it has begun, whole notches belong to the gesture, as long as they are the same device's.
    step(0.5, 0);
    step(1, 0);
    step(0, 1, ScrollDevice::unknown, second);
    step(0, 0.3, ScrollDevice::wheel, second);
    step(0, 0, ScrollDevice::unknown, second);
    EXPECT_EQ(tellAll(), "bcc");
    step(0.3, 0, ScrollDevice::unknown, second);
    EXPECT_EQ(tellAll(), "ebc");
}

TEST_F(ScrollGesturesTest, RemembersWhatWasSwallowed) {
    EXPECT_FALSE(gestures.swallowed(0));
    EXPECT_FALSE(gestures.swallowed(1));
    step(0.5, 0);
    step(0.5, 0);
    swallows = false;
    step(0.5, 0);
    step(0, 0);
    std::vector<bool> swallowed;
    for (std::uint64_t at = 1000; at <= 1004; ++at)
        swallowed.push_back(gestures.swallowed(at));
    EXPECT_EQ(swallowed, (std::vector<bool>{false, true, true, false, false}));
    step(0.5, 0);
    EXPECT_FALSE(gestures.swallowed(1005));
}

}  // namespace
}  // namespace sunpane
