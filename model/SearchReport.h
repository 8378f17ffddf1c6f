// What a search could not do, and what none will be able to do on this computer, in the words of
// the user's language.
#pragma once

#include "detect/Detector.h"

#include <cstddef>
#include <string>
#include <vector>

namespace murkwell {

// Of the pages of one search.
class SearchReport {
public:
    // Pages are given by their index, from 0.
    void add(std::size_t page, const Detector::Findings& findings);
    // A page of which nothing was found out.
    void addUnsearched(std::size_t page);

    // Whether every page was searched for everything, be it by one of two readers only.
    [[nodiscard]] bool coversEverything() const {
        return unsearched.empty() && withoutText.empty() && withoutFaces.empty();
    }

    // Which pages were not searched, or not for everything, or not by every reader; empty when
    // there are none.
    [[nodiscard]] std::string message() const;

private:
    std::size_t pageCount = 0;
    // Numbers from 1, in order. A page that is in the first list is in no other.
    std::vector<std::size_t> unsearched;
    std::vector<std::size_t> withoutText;
    std::vector<std::size_t> withoutFaces;
    std::vector<std::size_t> readByOne;
};

// What the engines of a search can do on this computer.
struct SearchReadiness {
    Readiness text;
    Readiness faces;
};

// What is missing, and what that means; empty when nothing is.
[[nodiscard]] std::string missingForText(const Readiness& text);
[[nodiscard]] std::string missingForFaces(const Readiness& faces);

} // namespace murkwell
