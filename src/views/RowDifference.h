#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace sunpane {

/// Which rows of a list were replaced: `removed` old ones by `inserted` new ones behind the first `kept`; those after
/// them are the same again.
struct RowDifference {
    std::size_t kept = 0;
    std::size_t removed = 0;
    std::size_t inserted = 0;
};

/// `isSame(old, next)` tells whether two rows show the same thing, whatever it looks like.
template <typename Row, typename Next, typename IsSame>
RowDifference rowDifference(const std::vector<Row>& rows, const std::vector<Next>& next, IsSame isSame) {
    const std::size_t common = std::min(rows.size(), next.size());
    std::size_t head = 0;
    while (head < common && isSame(rows[head], next[head]))
        ++head;
    std::size_t tail = 0;
    while (tail < common - head && isSame(rows[rows.size() - 1 - tail], next[next.size() - 1 - tail]))
        ++tail;
    return {head, rows.size() - head - tail, next.size() - head - tail};
}

}  // namespace sunpane
