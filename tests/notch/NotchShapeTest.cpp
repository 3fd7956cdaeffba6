#include "notch/NotchShape.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace sunpane
