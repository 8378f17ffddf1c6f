#include "platform/pdf/RowFilter.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace murkwell {
namespace {

using Row = std::span<const std::uint8_t>;

// A row with its neighbours: `left` is the row moved right by one pixel with zeros moved in,
// `upperLeft` the same of the row above. All have one length.
struct Neighbourhood {
    Row row;
    Row left;
    Row above;
    Row upperLeft;
};

std::uint8_t difference(int value, int prediction) {
    return static_cast<std::uint8_t>(value - prediction);
}

int paeth(int left, int above, int upperLeft) {
    const int estimate = left + above - upperLeft;
    const int toLeft = std::abs(estimate - left);
    const int toAbove = std::abs(estimate - above);
    const int toUpperLeft = std::abs(estimate - upperLeft);
    const int nearer = toAbove <= toUpperLeft ? above : upperLeft;
    return toLeft <= toAbove && toLeft <= toUpperLeft ? left : nearer;
}

template <typename Prediction>
void apply(const Neighbourhood& n, std::uint8_t* out, Prediction&& prediction) {
    for (std::size_t i = 0; i < n.row.size(); ++i) {
        out[i] = difference(n.row[i], prediction(n.left[i], n.above[i], n.upperLeft[i]));
    }
}

constexpr int filterCount = 5;

// The numbers of the filters are those of the file format.
void filter(int number, const Neighbourhood& n, std::uint8_t* out) {
    switch (number) {
    case 0:
        return apply(n, out, [](int, int, int) { return 0; });
    case 1:
        return apply(n, out, [](int left, int, int) { return left; });
    case 2:
        return apply(n, out, [](int, int above, int) { return above; });
    case 3:
        return apply(n, out, [](int left, int above, int) { return (left + above) / 2; });
    default:
        return apply(n, out, paeth);
    }
}

long cost(Row filtered) {
    long sum = 0;
    for (const std::uint8_t value : filtered) {
        sum += value < 128 ? value : 256 - value;
    }
    return sum;
}

} // namespace

std::vector<std::uint8_t> filterRows(std::span<const std::uint8_t> rows, std::size_t rowSize,
                                     std::size_t bytesPerPixel) {
    const std::size_t height = rows.size() / rowSize;
    std::vector<std::uint8_t> result((rowSize + 1) * height);
    // The current row and the one above, each behind a pixel of zeros.
    std::vector<std::uint8_t> current(bytesPerPixel + rowSize);
    std::vector<std::uint8_t> above(bytesPerPixel + rowSize);
    std::vector<std::uint8_t> candidate(rowSize);
    for (std::size_t y = 0; y < height; ++y) {
        std::ranges::copy(rows.subspan(y * rowSize, rowSize),
                          current.begin() + static_cast<std::ptrdiff_t>(bytesPerPixel));
        const Neighbourhood n{Row(current).subspan(bytesPerPixel), Row(current).first(rowSize),
                              Row(above).subspan(bytesPerPixel), Row(above).first(rowSize)};
        std::uint8_t* const out = result.data() + y * (rowSize + 1);
        long least = -1;
        for (int number = 0; number < filterCount; ++number) {
            filter(number, n, candidate.data());
            const long sum = cost(candidate);
            if (least < 0 || sum < least) {
                least = sum;
                out[0] = static_cast<std::uint8_t>(number);
                std::ranges::copy(candidate, out + 1);
            }
        }
        std::swap(current, above);
    }
    return result;
}

} // namespace murkwell
