#include "notch/NotchShape.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace sunpane {
namespace {

using Kind = NotchShape::Segment::Kind;

TEST(NotchShape, HangsFromTheTopEdgeWithFlaresAndRoundedBottom) {
    const auto path = NotchShape{22, 10}.path({30, 0, 720, 500});
    EXPECT_EQ(path.start, (Point{20, 0}));
    const std::vector<NotchShape::Segment> expected = {
        {Kind::quadratic, {30, 0}, {30, 10}},      {Kind::line, {}, {30, 478}},
        {Kind::quadratic, {30, 500}, {52, 500}},   {Kind::line, {}, {728, 500}},
        {Kind::quadratic, {750, 500}, {750, 478}}, {Kind::line, {}, {750, 10}},
        {Kind::quadratic, {750, 0}, {760, 0}},
    };
    EXPECT_EQ(path.segments, expected);
}

TEST(NotchShape, WithoutRadiiItIsTheRectangle) {
    const auto path = NotchShape{0, 0}.path({10, 20, 100, 50});
    double minX = path.start.x;
    double maxX = path.start.x;
    double maxY = path.start.y;
    for (const auto& segment : path.segments) {
        minX = std::min(minX, segment.end.x);
        maxX = std::max(maxX, segment.end.x);
        maxY = std::max(maxY, segment.end.y);
    }
    EXPECT_EQ(minX, 10);
    EXPECT_EQ(maxX, 110);
    EXPECT_EQ(maxY, 70);
}

}  // namespace
}  // namespace sunpane
