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

    // Whether nothing is optional. Where all groups are shown, some content may be hidden by that.
    [[nodiscard]] bool isNone() const { return !hasGroups; }

    // `content` is a group, a membership dictionary or null. May longjmp out.
    [[nodiscard]] bool hides(fz_context* context, pdf_obj* content) const;

private:
    [[nodiscard]] bool isHiddenGroup(fz_context* context, pdf_obj* group) const;
    [[nodiscard]] bool hidesMembers(fz_context* context, pdf_obj* membership) const;
    [[nodiscard]] bool holds(fz_context* context, pdf_obj* expression, int depth) const;

    bool hasGroups = false;
    std::vector<int> hiddenGroups; // object numbers, ascending
};

} // namespace murkwell
