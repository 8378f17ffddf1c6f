// Which columns of a strip carry ink.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace murkwell {

// A run of columns, in strip space.
struct BlankRun {
    int begin;
    int end; // the first column after it

    [[nodiscard]] int width() const { return end - begin; }
};

// Whether the ink of a strip is lighter than its paper.
[[nodiscard]] bool hasLightInk(const cv::Mat& strip);

class InkProfile {
public:
    // Ink is what differs from the commonest grey by more than that share of the largest
    // difference; the edges of the strip, where other lines reach in, are left out.
    InkProfile(const cv::Mat& strip, double share);

    [[nodiscard]] int columns() const { return static_cast<int>(counts.size()); }

    // Pixels of ink in a column.
    [[nodiscard]] int at(int column) const { return counts[static_cast<std::size_t>(column)]; }

    [[nodiscard]] bool isBlank(int column) const { return at(column) <= 1; }

    // The longest run of blank columns between two places, the first of equal ones.
    [[nodiscard]] std::optional<BlankRun> widestBlank(double from, double to) const;

private:
    std::vector<int> counts;
};

} // namespace murkwell
