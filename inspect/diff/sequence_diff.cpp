#include "inspect/diff/sequence_diff.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

// Beyond it the table of common lengths would cost more than the answer is worth.
constexpr std::size_t kLargestTable = std::size_t{16} * 1024 * 1024;

// The lists between their common beginning and end.
struct Middle {
    std::size_t begin = 0;
    std::size_t firstEnd = 0;
    std::size_t secondEnd = 0;

    [[nodiscard]] std::size_t rows() const { return firstEnd - begin; }
    [[nodiscard]] std::size_t columns() const { return secondEnd - begin; }
};

Middle findMiddle(const std::vector<std::string>& first, const std::vector<std::string>& second) {
    Middle middle{0, first.size(), second.size()};
    while (middle.begin < std::min(middle.firstEnd, middle.secondEnd) &&
           first[middle.begin] == second[middle.begin]) {
        ++middle.begin;
    }
    while (std::min(middle.firstEnd, middle.secondEnd) > middle.begin &&
           first[middle.firstEnd - 1] == second[middle.secondEnd - 1]) {
        --middle.firstEnd;
        --middle.secondEnd;
    }
    return middle;
}

std::vector<Edit> replaceAll(const Middle& middle) {
    std::vector<Edit> edits;
    for (std::size_t i = middle.begin; i < middle.firstEnd; ++i) {
        edits.push_back({false, i});
    }
    for (std::size_t i = middle.begin; i < middle.secondEnd; ++i) {
        edits.push_back({true, i});
    }
    return edits;
}

}  // namespace

std::vector<Edit> differences(const std::vector<std::string>& first,
                              const std::vector<std::string>& second) {
    const Middle middle = findMiddle(first, second);
    const std::size_t rows = middle.rows();
    const std::size_t columns = middle.columns();
    const std::size_t cells = std::min(rows, kLargestTable) * std::min(columns, kLargestTable);
    if (cells == 0 || cells > kLargestTable) {
        return replaceAll(middle);
    }
    // common[i][j]: the length of what first from i on and second from j on have in common.
    const std::size_t width = columns + 1;
    std::vector<unsigned> common((rows + 1) * width, 0);
    const auto isSame = [&](std::size_t row, std::size_t column) {
        return first[middle.begin + row] == second[middle.begin + column];
    };
    for (std::size_t row = rows; row-- > 0;) {
        for (std::size_t column = columns; column-- > 0;) {
            common[row * width + column] = isSame(row, column)
                                               ? common[(row + 1) * width + column + 1] + 1
                                               : std::max(common[(row + 1) * width + column],
                                                          common[row * width + column + 1]);
        }
    }
    std::vector<Edit> edits;
    std::size_t row = 0;
    std::size_t column = 0;
    while (row < rows || column < columns) {
        if (row < rows && column < columns && isSame(row, column)) {
            ++row;
            ++column;
        } else if (column == columns || (row < rows && common[(row + 1) * width + column] >=
                                                           common[row * width + column + 1])) {
            edits.push_back({false, middle.begin + row++});
        } else {
            edits.push_back({true, middle.begin + column++});
        }
    }
    return edits;
}

}  // namespace rcp::inspect
