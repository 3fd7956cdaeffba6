#include "notch/NotchShape.h"

namespace sunpane {

NotchShape::Path NotchShape::path(const Rect& rect) const {
    const double b = bottomRadius;
    const double t = topRadius;
    const double left = rect.minX();
    const double right = rect.maxX();
    const double top = rect.minY();
    const double bottom = rect.maxY();

    const auto line = [](Point end) { return Segment{Segment::Kind::line, {}, end}; };
    const auto curve = [](Point control, Point end) { return Segment{Segment::Kind::quadratic, control, end}; };
    return {{left - t, top},
            {curve({left, top}, {left, top + t}),  // the left flare
             line({left, bottom - b}), curve({left, bottom}, {left + b, bottom}), line({right - b, bottom}),
             curve({right, bottom}, {right, bottom - b}), line({right, top + t}),
             curve({right, top}, {right + t, top})}};  // the right flare; closing runs back along the top edge
}

}  // namespace sunpane
