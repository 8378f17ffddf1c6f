// One box on one page that is painted over when the document is exported.
#pragma once

#include "core/Geometry.h"
#include "core/RedactionStyle.h"
#include "core/Uuid.h"

namespace murkwell {

// A plain value. Moving, resizing or restyling a box keeps its id. Style and flag have no default:
// whoever makes a box states them.
struct Redaction {
    Uuid id;
    PageRect rect;
    RedactionStyle style;
    bool detected; // found by the program rather than drawn by hand

    bool operator==(const Redaction&) const = default;
};

} // namespace murkwell
