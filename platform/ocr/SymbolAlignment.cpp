#include "platform/ocr/SymbolAlignment.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace murkwell {
namespace {

// Of a lower-case letter's width, in most fonts.
double usualWidth(const std::string& text) {
    struct Class {
        std::string_view characters;
        double width;
    };
    constexpr Class classes[] = {{"ijlI.,:;'|!`", .5}, {"ftr()[]-/\\\"*{}", .7}, {"mwMW@%—", 1.5}};
    if (text.size() == 1) {
        for (const Class& next : classes) {
            if (next.characters.find(text) != std::string_view::npos) {
                return next.width;
            }
        }
        if (text[0] >= 'A' && text[0] <= 'Z') {
            return 1.2;
        }
    }
    return 1;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

// Columns of a symbol of width 1.
double unitOf(const std::vector<ReadSymbol>& symbols) {
    std::vector<double> units{};
    for (std::size_t i = 0; i + 1 < symbols.size(); ++i) {
        if (!symbols[i + 1].beginsWord) {
            units.push_back((symbols[i + 1].left - symbols[i].left) / usualWidth(symbols[i].text));
        }
    }
    return units.empty() ? symbols.front().right - symbols.front().left : median(units);
}

// Dynamic programming over the cuts: cut i lies before symbol i, the last one behind the last.
class Alignment {
public:
    Alignment(const std::vector<ReadSymbol>& read, const InkProfile& profile)
        : symbols(read), ink(profile), unit(std::clamp(unitOf(read), 6.0, 40.0)),
          reach(static_cast<int>(std::lround(1.3 * unit))) {
        int end = 0;
        for (int x = 0; x < ink.columns(); ++x) {
            inkEnds.push_back(end);
            end = ink.isBlank(x) ? end : x + 1;
        }
        inkEnds.push_back(end);
    }

    std::vector<int> cuts() {
        const std::size_t count = symbols.size() + 1;
        std::vector<std::vector<int>> cameFrom(count, std::vector<int>(states()));
        std::vector<double> costs(states());
        for (int state = 0; state < static_cast<int>(states()); ++state) {
            costs[static_cast<std::size_t>(state)] = costOfCut(0, columnOf(0, state));
        }
        for (std::size_t cut = 1; cut < count; ++cut) {
            costs = advanced(costs, cut, cameFrom[cut]);
        }
        auto state = static_cast<int>(std::ranges::min_element(costs) - costs.begin());
        std::vector<int> columns(count);
        for (std::size_t cut = count; cut-- > 0;) {
            columns[cut] = columnOf(cut, state);
            state = cameFrom[cut][static_cast<std::size_t>(state)];
        }
        return columns;
    }

private:
    [[nodiscard]] std::size_t states() const { return 2 * static_cast<std::size_t>(reach) + 1; }

    // What the reader says of a cut.
    [[nodiscard]] double expected(std::size_t cut) const {
        if (cut < symbols.size()) {
            return symbols[cut].left - 1;
        }
        const ReadSymbol& last = symbols.back();
        const double usual = last.left + usualWidth(last.text) * unit;
        const double end = inkEndBefore(ink.columns()) + 1;
        return std::abs(end - usual) < reach ? end : std::min(last.right, usual);
    }

    [[nodiscard]] int columnOf(std::size_t cut, int state) const {
        return static_cast<int>(std::lround(expected(cut))) + state - reach;
    }

    [[nodiscard]] double inkAt(int column) const {
        constexpr double full = 6; // rows; a stroke, or more than one
        return column < 0 || column >= ink.columns() ? 0 : std::min(ink.at(column) / full, 1.0);
    }

    [[nodiscard]] double costOfCut(std::size_t cut, int column) const {
        const double away = std::abs(column - expected(cut)) / unit;
        const bool betweenWords = cut >= symbols.size() || symbols[cut].beginsWord;
        const double around = betweenWords ? (inkAt(column - 2) + inkAt(column + 2)) / 2 : 0;
        return .7 * away + 1.5 * inkAt(column) + around;
    }

    [[nodiscard]] double costOfWidth(double usual, int from, int end) const {
        return std::min(std::abs((std::max(from, end) - from) / unit - usual), 1.5);
    }

    // Behind the last column of ink before that one.
    [[nodiscard]] int inkEndBefore(int column) const {
        const auto at = std::clamp(column, 0, ink.columns());
        return inkEnds[static_cast<std::size_t>(at)];
    }

    std::vector<double> advanced(const std::vector<double>& before, std::size_t cut,
                                 std::vector<int>& cameFrom) const {
        constexpr int narrowest = 2;
        const double usual = usualWidth(symbols[cut - 1].text);
        // A word may end long before the next one begins: what counts is its ink.
        const bool endsWord = cut == symbols.size() || symbols[cut].beginsWord;
        std::vector<double> costs(states(), std::numeric_limits<double>::max());
        for (int to = 0; to < static_cast<int>(states()); ++to) {
            const auto at = static_cast<std::size_t>(to);
            const int column = columnOf(cut, to);
            const int end = endsWord ? inkEndBefore(column) + 1 : column;
            for (int from = 0; from < static_cast<int>(states()); ++from) {
                const int width = column - columnOf(cut - 1, from);
                // Where no order is left to keep, any is as good.
                const double cost =
                    before[static_cast<std::size_t>(from)] +
                    (width < narrowest ? 100 : costOfWidth(usual, column - width, end));
                if (cost < costs[at]) {
                    costs[at] = cost;
                    cameFrom[at] = from;
                }
            }
            costs[at] += costOfCut(cut, column);
        }
        return costs;
    }

    const std::vector<ReadSymbol>& symbols;
    const InkProfile& ink;
    double unit;
    int reach;
    std::vector<int> inkEnds;
};

// The middle of the ink between two cuts, or between the cuts where there is none.
double middleOfInk(const InkProfile& ink, int from, int to) {
    const auto isInk = [&](int column) {
        return column >= 0 && column < ink.columns() && !ink.isBlank(column);
    };
    int left = from;
    int right = to - 1;
    while (left < right && !isInk(left)) {
        ++left;
    }
    while (right > left && !isInk(right)) {
        --right;
    }
    return isInk(left) ? (left + right + 1) / 2.0 : (from + to) / 2.0;
}

} // namespace

std::vector<double> centresOf(const std::vector<ReadSymbol>& symbols, const InkProfile& ink) {
    if (symbols.empty()) {
        return {};
    }
    const std::vector<int> cuts = Alignment(symbols, ink).cuts();
    std::vector<double> centres;
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        const double centre = middleOfInk(ink, cuts[i], cuts[i + 1]);
        centres.push_back(i > 0 ? std::max(centre, centres.back()) : centre);
    }
    return centres;
}

} // namespace murkwell
