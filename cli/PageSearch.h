// Everything that one call is to find in a document.
#pragma once

#include "cli/Arguments.h"
#include "cli/EachSource.h"
#include "model/RedactModel.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace murkwell::cli {

// Indices of the page that counts so from 1, or of all. Empty when there is no such page.
[[nodiscard]] std::vector<std::size_t> pagesIn(const DocumentIO::Document& document,
                                               std::optional<int> page);

[[nodiscard]] bool readsText(const SearchArguments& arguments);

// What is missing on this computer so that the source cannot be searched. Loads the engines that
// the search needs.
[[nodiscard]] Failure obstacleTo(const SearchArguments& arguments,
                                 const std::filesystem::path& source,
                                 const Detector::Engines& engines);

[[nodiscard]] Failure obstacleToText(const std::filesystem::path& source,
                                     const Detector::Engines& engines);

// Says on standard error when text will be read by one of two readers only.
void warnOfMissingReader(const Detector::Engines& engines);

// Adds what is detected, then what each query finds; a message when something could not be
// searched. The model's searches must be over when they return, as those of a HeadlessModel are.
[[nodiscard]] Failure search(RedactModel& model, const SearchArguments& arguments,
                             RedactionStyle style, const std::filesystem::path& source,
                             const Detector::Engines& engines);

// A message when something could not be searched. That a page was read by one of two readers only
// is no failure: it is said on standard error, unless that was to be expected.
[[nodiscard]] Failure failureOf(const SearchReport& report, const std::filesystem::path& source,
                                const Detector::Engines& engines);

} // namespace murkwell::cli
