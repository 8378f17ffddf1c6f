#include "platform/pdf/AnnotationDrawing.h"

#include "platform/pdf/OptionalContent.h"
#include "platform/pdf/PageProcessor.h"

namespace murkwell {
namespace {

// The stream to draw, or null.
pdf_obj* appearanceOf(fz_context* context, pdf_obj* annotation) {
    pdf_obj* const normal = pdf_dict_getl(context, annotation, PDF_NAME(AP), PDF_NAME(N), nullptr);
    if (pdf_is_stream(context, normal) != 0) {
        return normal;
    }
    pdf_obj* const state = pdf_dict_get(context, annotation, PDF_NAME(AS));
    pdf_obj* appearance = nullptr;
    if (pdf_is_name(context, state) != 0) {
        appearance = pdf_dict_get(context, normal, state);
    } else if (pdf_dict_len(context, normal) == 1) {
        appearance = pdf_dict_get_val(context, normal, 0);
    }
    return pdf_is_stream(context, appearance) != 0 ? appearance : nullptr;
}

// From the appearance's coordinates to those of the page: its box fills the annotation's rectangle.
fz_matrix placement(fz_context* context, pdf_obj* annotation, pdf_obj* appearance) {
    const fz_rect target = pdf_dict_get_rect(context, annotation, PDF_NAME(Rect));
    const fz_rect box = fz_transform_rect(pdf_xobject_bbox(context, appearance),
                                          pdf_xobject_matrix(context, appearance));
    const auto ratio = [](float part, float whole) { return whole == 0 ? 0 : part / whole; };
    const float x = ratio(target.x1 - target.x0, box.x1 - box.x0);
    const float y = ratio(target.y1 - target.y0, box.y1 - box.y0);
    return fz_pre_scale(fz_translate(target.x0 - box.x0 * x, target.y0 - box.y0 * y), x, y);
}

// One that does not turn with the page is turned back about its upper left corner.
fz_matrix unturned(fz_context* context, pdf_page* page, pdf_obj* annotation, fz_matrix transform) {
    const int degrees =
        pdf_to_int(context, pdf_dict_get_inheritable(context, page->obj, PDF_NAME(Rotate)));
    const fz_rect target = pdf_dict_get_rect(context, annotation, PDF_NAME(Rect));
    const fz_point corner = fz_transform_point_xy(target.x0, target.y1, transform);
    transform = fz_concat(transform, fz_translate(-corner.x, -corner.y));
    transform = fz_concat(transform, fz_rotate(static_cast<float>(-degrees)));
    return fz_concat(transform, fz_translate(corner.x, corner.y));
}

class AnnotationPainter {
public:
    fz_context* context;
    pdf_page* page;
    const OptionalContent& optionalContent;
    PageProcessor& pageProcessor;
    fz_device* device;
    fz_matrix transform;
    fz_default_colorspaces* colorspaces;
    fz_cookie& cookie;

    void draw(pdf_obj* annotation) {
        const int flags = pdf_dict_get_int(context, annotation, PDF_NAME(F));
        if ((flags & (PDF_ANNOT_IS_HIDDEN | PDF_ANNOT_IS_NO_VIEW)) != 0 ||
            optionalContent.hides(context, pdf_dict_get(context, annotation, PDF_NAME(OC)))) {
            return;
        }
        pdf_obj* const appearance = appearanceOf(context, annotation);
        if (appearance == nullptr) {
            return;
        }
        const fz_matrix onPage = (flags & PDF_ANNOT_IS_NO_ROTATE) != 0
                                     ? unturned(context, page, annotation, transform)
                                     : transform;
        pdf_obj* const resources = pdf_page_resources(context, page);
        pdf_processor* const processor =
            pageProcessor.make(device, onPage, resources, colorspaces, &cookie);
        const bool isDrawn = attempt(context, [&] {
            const fz_matrix m = placement(context, annotation, appearance);
            processor->op_q(context, processor);
            processor->op_cm(context, processor, m.a, m.b, m.c, m.d, m.e, m.f);
            processor->op_Do_form(context, processor, nullptr, appearance, resources);
            processor->op_Q(context, processor);
            pdf_close_processor(context, processor);
        });
        pdf_drop_processor(context, processor);
        if (!isDrawn) {
            fz_rethrow(context);
        }
    }

    // What the file has counts before the appearances that MuPDF has made itself, also where MuPDF
    // took it for none. Those are seen only in between the pushes.
    void draw(pdf_annot* annotation) {
        pdf_obj* const object = pdf_annot_obj(context, annotation);
        if (appearanceOf(context, object) != nullptr) {
            draw(object);
            return;
        }
        pdf_annot_push_local_xref(context, annotation);
        const bool isDrawn = attempt(context, [&] { draw(object); });
        pdf_annot_pop_local_xref(context, annotation);
        if (!isDrawn) {
            fz_rethrow(context);
        }
    }
};

} // namespace

void drawAnnotations(fz_context* context, pdf_page* page, const OptionalContent& optionalContent,
                     PageProcessor& processor, fz_device* device, fz_matrix transform,
                     fz_default_colorspaces* colorspaces, fz_cookie& cookie) {
    AnnotationPainter painter{context, page,      optionalContent, processor,
                              device,  transform, colorspaces,     cookie};
    // MuPDF keeps two lists, in the order of the page's.
    pdf_annot* annotation = pdf_first_annot(context, page);
    pdf_annot* widget = pdf_first_widget(context, page);
    pdf_obj* const all = pdf_dict_get(context, page->obj, PDF_NAME(Annots));
    for (int i = 0; i < pdf_array_len(context, all) && cookie.abort == 0; ++i) {
        pdf_obj* const object = pdf_array_get(context, all, i);
        if (annotation != nullptr && object == pdf_annot_obj(context, annotation)) {
            painter.draw(annotation);
            annotation = pdf_next_annot(context, annotation);
        } else if (widget != nullptr && object == pdf_annot_obj(context, widget)) {
            painter.draw(widget);
            widget = pdf_next_widget(context, widget);
        } else if (pdf_is_dict(context, object) != 0) {
            painter.draw(object);
        }
    }
}

} // namespace murkwell
