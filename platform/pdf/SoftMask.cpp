#include "platform/pdf/SoftMask.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace murkwell {
namespace {

// Covers any page, in any coordinates that a group is likely to use.
constexpr const char* everywhere = "-100000 -100000 200000 200000 re f\n";

// How far a transfer function may be from a straight line: an 8-bit mask cannot tell.
constexpr float straightness = 1 / 256.0F;

// In a soft mask that was mended: for the next time.
constexpr const char* approximated = "MurkwellApproximated";

// From 0 to 1 in the mask.
struct Line {
    float atZero;
    float atOne;
    bool isExact;
};

// None when the function cannot be read.
std::optional<Line> straightLine(fz_context* context, pdf_obj* transfer) {
    std::array<float, 5> values{};
    pdf_function* function = nullptr;
    const bool isRead = attempt(context, [&] {
        function = pdf_load_function(context, transfer, 1, 1);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const float input = static_cast<float>(i) / (values.size() - 1);
            pdf_eval_function(context, function, &input, 1, &values.at(i), 1);
        }
    });
    pdf_drop_function(context, function);
    if (!isRead) {
        return std::nullopt;
    }
    Line line{std::clamp(values.front(), 0.0F, 1.0F), std::clamp(values.back(), 0.0F, 1.0F), true};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float position = static_cast<float>(i) / (values.size() - 1);
        const float expected = std::lerp(line.atZero, line.atOne, position);
        line.isExact = line.isExact && std::abs(values.at(i) - expected) <= straightness;
    }
    return line;
}

// The functions below may longjmp out: they make no object that has a destructor.

// Paints the group's backdrop, then the group.
void appendLuminosity(fz_context* context, fz_buffer* content, pdf_obj* mask, pdf_obj* space) {
    pdf_obj* const backdrop = pdf_dict_get(context, mask, PDF_NAME(BC));
    if (pdf_is_array(context, backdrop) == 0) {
        fz_append_string(context, content, "0 g ");
    } else {
        fz_append_string(context, content, space == nullptr ? "/DeviceGray cs " : "/Space cs ");
        for (int i = 0; i < pdf_array_len(context, backdrop); ++i) {
            fz_append_printf(context, content, "%g ", pdf_array_get_real(context, backdrop, i));
        }
        fz_append_string(context, content, "sc ");
    }
    fz_append_string(context, content, everywhere);
    fz_append_string(context, content, "/Group Do\n");
}

// Turns each grey v that was painted into the line's value at v.
void appendLine(fz_context* context, fz_buffer* content, const Line& line) {
    if (line.atOne < line.atZero) {
        fz_append_string(context, content, "q /Invert gs 1 g ");
        fz_append_string(context, content, everywhere);
        fz_append_string(context, content, "Q\n");
    }
    const float lost = 1 - std::abs(line.atOne - line.atZero);
    if (lost > 0) {
        fz_append_printf(context, content, "q /Flatten gs %g g ",
                         std::min(line.atZero, line.atOne) / lost);
        fz_append_string(context, content, everywhere);
        fz_append_string(context, content, "Q\n");
    }
}

void fillResources(fz_context* context, pdf_obj* resources, pdf_obj* group, pdf_obj* space,
                   const Line& line) {
    pdf_dict_puts(context, pdf_dict_put_dict(context, resources, PDF_NAME(XObject), 1), "Group",
                  group);
    if (space != nullptr) {
        pdf_dict_puts(context, pdf_dict_put_dict(context, resources, PDF_NAME(ColorSpace), 1),
                      "Space", space);
    }
    pdf_obj* const states = pdf_dict_put_dict(context, resources, PDF_NAME(ExtGState), 3);
    pdf_obj* const invert = pdf_dict_puts_dict(context, states, "Invert", 1);
    pdf_dict_put_name(context, invert, PDF_NAME(BM), "Difference");
    pdf_obj* const flatten = pdf_dict_puts_dict(context, states, "Flatten", 1);
    pdf_dict_put_real(context, flatten, PDF_NAME(ca), 1 - std::abs(line.atOne - line.atZero));
    pdf_obj* const masked = pdf_dict_puts_dict(context, states, "Masked", 1);
    pdf_obj* const inner = pdf_dict_put_dict(context, masked, PDF_NAME(SMask), 2);
    pdf_dict_put(context, inner, PDF_NAME(S), PDF_NAME(Alpha));
    pdf_dict_put(context, inner, PDF_NAME(G), group);
}

// Writes a content whose luminosity is that of the mask, after the transfer.
void fillContent(fz_context* context, fz_buffer* content, pdf_obj* mask, pdf_obj* space,
                 const Line& line) {
    pdf_obj* const kind = pdf_dict_get(context, mask, PDF_NAME(S));
    if (pdf_name_eq(context, kind, PDF_NAME(Luminosity)) != 0) {
        appendLuminosity(context, content, mask, space);
    } else {
        fz_append_printf(context, content, "0 g %sq /Masked gs 1 g %sQ\n", everywhere, everywhere);
    }
    appendLine(context, content, line);
}

// The caller owns a reference.
pdf_obj* transferredGroup(fz_context* context, pdf_document* document, pdf_obj* mask,
                          const Line& line) {
    fz_buffer* content = nullptr;
    pdf_obj* resources = nullptr;
    pdf_obj* form = nullptr;
    const bool isMade = attempt(context, [&] {
        pdf_obj* const group = pdf_dict_get(context, mask, PDF_NAME(G));
        pdf_obj* const space =
            pdf_dict_getl(context, group, PDF_NAME(Group), PDF_NAME(CS), nullptr);
        content = fz_new_buffer(context, 256);
        fillContent(context, content, mask, space, line);
        resources = pdf_new_dict(context, document, 3);
        fillResources(context, resources, group, space, line);
        form = pdf_new_xobject(context, document, {-100000, -100000, 100000, 100000}, fz_identity,
                               resources, content);
        pdf_obj* const attributes = pdf_dict_put_dict(context, form, PDF_NAME(Group), 3);
        pdf_dict_put(context, attributes, PDF_NAME(S), PDF_NAME(Transparency));
        pdf_dict_put(context, attributes, PDF_NAME(CS), PDF_NAME(DeviceGray));
        pdf_dict_put_bool(context, attributes, PDF_NAME(I), 1);
    });
    pdf_drop_obj(context, resources);
    fz_drop_buffer(context, content);
    if (!isMade) {
        pdf_drop_obj(context, form);
        fz_rethrow(context);
    }
    return form;
}

} // namespace

bool mendSoftMask(fz_context* context, pdf_obj* graphicsState) {
    pdf_obj* const mask = pdf_dict_get(context, graphicsState, PDF_NAME(SMask));
    if (pdf_is_dict(context, mask) == 0) {
        return true;
    }
    pdf_obj* const form = pdf_dict_get(context, mask, PDF_NAME(G));
    if (pdf_is_stream(context, form) == 0 ||
        pdf_is_dict(context, pdf_dict_get(context, form, PDF_NAME(Group))) == 0) {
        pdf_dict_del(context, graphicsState, PDF_NAME(SMask));
        return true;
    }
    if (pdf_dict_gets(context, mask, approximated) != nullptr) {
        return false;
    }
    pdf_obj* const transfer = pdf_dict_get(context, mask, PDF_NAME(TR));
    if (transfer == nullptr || pdf_is_name(context, transfer) != 0) {
        return true;
    }
    const std::optional<Line> line = straightLine(context, transfer);
    if (!line) {
        return false;
    }
    pdf_document* const document = pdf_get_bound_document(context, graphicsState);
    pdf_obj* const group = transferredGroup(context, document, mask, *line);
    pdf_obj* const mended = pdf_dict_put_dict(context, graphicsState, PDF_NAME(SMask), 2);
    pdf_dict_put(context, mended, PDF_NAME(S), PDF_NAME(Luminosity));
    pdf_dict_put_drop(context, mended, PDF_NAME(G), group);
    if (!line->isExact) {
        pdf_dict_puts(context, mended, approximated, PDF_TRUE);
    }
    return line->isExact;
}

bool hasTransfer(fz_context* context, pdf_obj* graphicsState) {
    pdf_obj* const newer = pdf_dict_get(context, graphicsState, PDF_NAME(TR2));
    pdf_obj* const transfer =
        newer == nullptr ? pdf_dict_get(context, graphicsState, PDF_NAME(TR)) : newer;
    return transfer != nullptr && pdf_is_name(context, transfer) == 0; // Identity and Default
}

} // namespace murkwell
