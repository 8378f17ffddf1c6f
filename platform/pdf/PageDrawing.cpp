#include "platform/pdf/PageDrawing.h"

#include "platform/pdf/AnnotationDrawing.h"
#include "platform/pdf/OptionalContent.h"
#include "platform/pdf/PageMending.h"
#include "platform/pdf/PageProcessor.h"

namespace murkwell {
namespace {

// One pass over a page, onto one device.
class Pass {
public:
    Pass(fz_context* usedContext, pdf_page* drawnPage, const OptionalContent& content,
         PageProcessor& pageProcessor, fz_cookie& pageCookie)
        : context(usedContext), page(drawnPage), optionalContent(content), processor(pageProcessor),
          cookie(pageCookie) {}

    // False after an error, which fz_caught tells.
    bool draw(fz_pixmap* pixmap, fz_matrix transform) {
        const bool isDrawn = attempt(context, [&] {
            fz_clear_pixmap_with_value(context, pixmap, 255);
            device = fz_new_draw_device(context, fz_identity, pixmap);
            colorspaces = pdf_load_default_colorspaces(context, page->doc, page);
            if (colorspaces != nullptr) {
                fz_set_default_colorspaces(context, device, colorspaces);
            }
            fz_rect box;
            fz_matrix fromPage;
            pdf_page_transform(context, page, &box, &fromPage);
            fromPage = fz_concat(fromPage, transform);
            drawContent(fz_transform_rect(box, fromPage), fromPage);
            drawAnnotations(context, page, optionalContent, processor, device, fromPage,
                            colorspaces, cookie);
            fz_close_device(context, device);
        });
        fz_drop_device(context, device);
        fz_drop_colorspace(context, blending);
        fz_drop_default_colorspaces(context, colorspaces);
        return isDrawn;
    }

private:
    // The members below may longjmp out.

    void drawContent(fz_rect area, fz_matrix fromPage) {
        if (page->transparency != 0) {
            blending = blendingSpace();
            fz_begin_group(context, device, area, blending, 1, 0, FZ_BLEND_NORMAL, 1);
        }
        pdf_obj* const resources = pdf_page_resources(context, page);
        processor.lookForEnd(page->doc, pdf_page_contents(context, page));
        pdf_processor* const content =
            processor.make(device, fromPage, resources, colorspaces, &cookie);
        const bool isDrawn = attempt(context, [&] {
            pdf_process_contents(context, content, page->doc, resources,
                                 pdf_page_contents(context, page), &cookie);
            pdf_close_processor(context, content);
        });
        pdf_drop_processor(context, content);
        if (!isDrawn) {
            fz_rethrow(context);
        }
        if (page->transparency != 0) {
            fz_end_group(context, device);
        }
    }

    // That of the page's group; the caller owns a reference. Null for the device's own.
    fz_colorspace* blendingSpace() {
        pdf_obj* const group = pdf_page_group(context, page);
        if (group == nullptr) {
            return fz_keep_colorspace(context, fz_default_output_intent(context, colorspaces));
        }
        fz_colorspace* space = nullptr;
        pdf_obj* const named = pdf_dict_get(context, group, PDF_NAME(CS));
        const bool isUsable = attempt(context, [&] {
            space = named == nullptr ? nullptr : pdf_load_colorspace(context, named);
        });
        if (isUsable && space != nullptr && fz_is_valid_blend_colorspace(context, space) == 0) {
            fz_drop_colorspace(context, space);
            space = nullptr;
        }
        return isUsable ? space : nullptr;
    }

    fz_context* context;
    pdf_page* page;
    const OptionalContent& optionalContent;
    PageProcessor& processor;
    fz_cookie& cookie;
    fz_device* device = nullptr;
    fz_default_colorspaces* colorspaces = nullptr;
    fz_colorspace* blending = nullptr;
};

// Draws what MuPDF gave up on, without what it cannot draw.
PageDrawing drawMended(fz_context* context, pdf_page* page, const OptionalContent& optionalContent,
                       fz_pixmap* pixmap, fz_matrix transform, fz_cookie& cookie) {
    ++cookie.errors;         // even where MuPDF has counted none
    fz_empty_store(context); // decoded again, what is broken is reported again
    PageMending mending(context, page->doc, cookie);
    if (!mending.mend(page)) {
        return PageDrawing::Failed;
    }
    const int errorsBefore = cookie.errors;
    PageProcessor processor(context, optionalContent, PageProcessor::Errors::SkipOperator);
    const bool isDrawn =
        Pass(context, page, optionalContent, processor, cookie).draw(pixmap, transform);
    if (cookie.abort != 0 || (!isDrawn && ranOut(context))) {
        return PageDrawing::Failed;
    }
    const bool isWhole = isDrawn && cookie.errors == errorsBefore && !mending.hasTakenOut() &&
                         !processor.hasSkipped() && !processor.hasGivenUp();
    return isWhole ? PageDrawing::Whole : PageDrawing::Incomplete;
}

} // namespace

PageDrawing drawPage(fz_context* context, pdf_page* page, const OptionalContent& optionalContent,
                     fz_pixmap* pixmap, fz_matrix transform, fz_cookie& cookie) {
    {
        PageProcessor processor(context, optionalContent, PageProcessor::Errors::EndThePage);
        const bool isDrawn =
            Pass(context, page, optionalContent, processor, cookie).draw(pixmap, transform);
        if (cookie.abort != 0 || (!isDrawn && ranOut(context))) {
            return PageDrawing::Failed;
        }
        if (isDrawn && !processor.hasGivenUp() && cookie.errors == 0) {
            return processor.hasSkipped() ? PageDrawing::Incomplete : PageDrawing::Whole;
        }
    }
    return drawMended(context, page, optionalContent, pixmap, transform, cookie);
}

} // namespace murkwell
