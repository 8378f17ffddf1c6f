// Which optional content ("layers") of a document is hidden on screen.
#pragma once

#include "platform/pdf/MuPdf.h"

#include <vector>

namespace murkwell {

// The document's default configuration. What groups say of their own use (/Usage, /Intent) is left
// out, as Poppler and Ghostscript do: content that they cover or hide must be covered or hidden
// here, too.
class OptionalContent {
public:
    // An unreadable configuration hides nothing.
    OptionalContent(fz_context* context, pdf_document* document);

    [[nodiscard]] bool hidesNothing() const { return hiddenGroups.empty(); }

    // `content` is a group, a membership dictionary or null. May longjmp out.
    [[nodiscard]] bool hides(fz_context* context, pdf_obj* content) const;

private:
    [[nodiscard]] bool isHiddenGroup(fz_context* context, pdf_obj* group) const;
    [[nodiscard]] bool hidesMembers(fz_context* context, pdf_obj* membership) const;
    [[nodiscard]] bool holds(fz_context* context, pdf_obj* expression, int depth) const;

    std::vector<int> hiddenGroups; // object numbers, ascending
};

} // namespace murkwell
