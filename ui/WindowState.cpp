#include "ui/WindowState.h"

#include "core/Localization.h"
#include "model/DocumentRemarks.h"
#include "model/WhiteSpace.h"
#include "ui/WindowTexts.h"

namespace murkwell {
namespace {

std::string joined(const std::vector<std::string>& sentences) {
    std::string text;
    for (const std::string& sentence : sentences) {
        text += (text.empty() ? "" : " ") + sentence;
    }
    return text;
}

StatusText statusText(const RedactModel& model) {
    using Kind = StatusText::Kind;
    if (model.errorMessage()) {
        return {Kind::warning, *model.errorMessage()};
    }
    if (model.statusMessage()) {
        return {Kind::success, *model.statusMessage()};
    }
    if (!model.document()) {
        return {};
    }
    const std::string remarks = joined(remarksOn(*model.document()));
    return remarks.empty() ? StatusText{Kind::hint, localized(WindowTexts::hint)}
                           : StatusText{Kind::warning, remarks};
}

std::string onLines(const std::string& one, const std::string& other) {
    return one + (one.empty() || other.empty() ? "" : "\n") + other;
}

std::string_view nameFormat(RedactionStyle style, bool detected) {
    switch (style) {
    case RedactionStyle::solidBlack:
        return detected ? WindowTexts::detectedBlackBar : WindowTexts::blackBar;
    case RedactionStyle::solidWhite:
        return detected ? WindowTexts::detectedWhiteBar : WindowTexts::whiteBar;
    case RedactionStyle::noise:
        return detected ? WindowTexts::detectedNoise : WindowTexts::noise;
    }
    return {};
}

} // namespace

WindowState::WindowState(const RedactModel& model)
    : hasDocument(model.document().has_value()), isPDF(hasDocument && model.document()->isPDF),
      pageCount(hasDocument ? static_cast<std::int64_t>(model.document()->pages.size()) : 0),
      currentPage(model.currentPage()), hasManyPages(pageCount > 1),
      title(model.documentTitle().value_or("")), isDirty(model.isDirty()),
      redactionCount(model.totalRedactionCount()), canGoBack(currentPage > 0),
      canGoForward(currentPage + 1 < pageCount), canDelete(model.hasSelection()),
      canClear(redactionCount > 0), canClearPage(!model.currentRedactions().empty()),
      canClearDetected(model.hasDetectedRedactions()), canReveal(model.lastExportURL().has_value()),
      canExport(redactionCount > 0), running(model.activeOperation()), canSearch(!running),
      canDetect(canSearch && !model.detectKinds().empty()),
      missingForFind(missingForText(model.searchReadiness().text)),
      missingForDetect(onLines(missingForFind, missingForFaces(model.searchReadiness().faces))),
      status(statusText(model)) {}

bool canRedactMatches(const WindowState& state, std::string_view findQuery) {
    return state.canSearch && !withoutOuterWhiteSpace(findQuery).empty();
}

std::string pageOfPagesLabel(std::int64_t currentPage, std::int64_t pageCount) {
    return localized(WindowTexts::pageOfPages, {currentPage + 1, pageCount});
}

std::string redactionCountLabel(std::size_t count) {
    return localized(count == 1 ? WindowTexts::oneRedaction : WindowTexts::redactions, {count});
}

std::string redactionName(std::size_t index, const Redaction& redaction) {
    return localized(nameFormat(redaction.style, redaction.detected), {index + 1});
}

} // namespace murkwell
