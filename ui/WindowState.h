// What the window shows and allows, derived from the model whenever it is asked for.
#pragma once

#include "model/RedactModel.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace murkwell {

struct StatusText {
    enum class Kind : std::uint8_t { none, hint, success, warning };

    Kind kind = Kind::none;
    std::string text;

    bool operator==(const StatusText&) const = default;
};

struct WindowState {
    explicit WindowState(const RedactModel& model);

    bool hasDocument;
    bool isPDF;
    std::int64_t pageCount; // 0 without a document
    std::int64_t currentPage;
    bool hasManyPages; // sidebar, page navigation and scope rows
    std::string title; // empty when none
    bool isDirty;
    std::size_t redactionCount; // on all pages

    bool canGoBack;
    bool canGoForward;
    bool canDelete;
    bool canClear;
    bool canClearPage;
    bool canClearDetected;
    bool canReveal;
    bool canExport;

    std::optional<RedactModel::Operation> running;
    bool canSearch; // no search is running
    bool canDetect; // and a kind is chosen

    // What searches lack on this computer, as far as it is known; empty when nothing.
    std::string missingForFind;
    std::string missingForDetect;

    StatusText status;
};

// Whether a search for the text can be started now.
[[nodiscard]] bool canRedactMatches(const WindowState& state, std::string_view findQuery);

// "Page 2 of 14"; pages count from 0 here and from 1 for the reader.
[[nodiscard]] std::string pageOfPagesLabel(std::int64_t currentPage, std::int64_t pageCount);

// "1 redaction", "2 redactions".
[[nodiscard]] std::string redactionCountLabel(std::size_t count);

// What a screen reader says of a box: "Redaction 2, black bar, detected". The index counts from 0.
[[nodiscard]] std::string redactionName(std::size_t index, const Redaction& redaction);

} // namespace murkwell
