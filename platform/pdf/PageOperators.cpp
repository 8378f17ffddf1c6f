// What PageProcessor puts in front of MuPDF's operators.

#include "platform/pdf/OptionalContent.h"
#include "platform/pdf/PageProcessor.h"
#include "platform/pdf/SoftMask.h"

#include <cmath>
#include <string_view>

namespace murkwell {

// The functions that MuPDF's interpreter calls instead of the processor's own. MuPDF may longjmp
// through all of them.
struct PageOperators {
    // An operator that does as before, except for how it fails.
    template <auto Operator>
    struct Guarded;

    template <typename... Arguments,
              void (*pdf_processor::*Operator)(fz_context*, pdf_processor*, Arguments...)>
    struct Guarded<Operator> {
        static void call(fz_context* context, pdf_processor* processor, Arguments... arguments) {
            PageProcessor& self = PageProcessor::of(context);
            self.run(processor,
                     [&] { (self.original.*Operator)(context, processor, arguments...); });
        }
    };

    // The optional content that the interpreter counts in `hidden` is ours: it is told nothing of
    // what is hidden, but counts on from what it finds.
    static void beginMarked(fz_context* context, pdf_processor* processor, const char*) {
        PageProcessor::of(context).openMarkedContent(processor, false);
    }

    // A form may name what only the page has.
    static void beginProperties(fz_context* context, pdf_processor* processor, const char* tag,
                                pdf_obj* name, pdf_obj* properties) {
        PageProcessor& self = PageProcessor::of(context);
        const bool isOptional = tag != nullptr && std::string_view(tag) == "OC";
        if (isOptional && properties == nullptr) {
            properties = pdf_dict_get(
                context, pdf_dict_get(context, self.pageResources, PDF_NAME(Properties)), name);
        }
        self.openMarkedContent(processor,
                               isOptional && self.optionalContent.hides(context, properties));
    }

    static void endMarked(fz_context* context, pdf_processor* processor) {
        PageProcessor::of(context).closeMarkedContent(processor);
    }

    static void form(fz_context* context, pdf_processor* processor, const char* name, pdf_obj* form,
                     pdf_obj* resources) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            self.leaveOutHidden(pdf_xobject_resources(context, form));
            self.lookForEnd(pdf_get_bound_document(context, form), form);
            // Others leave out one without a box.
            self.skipped = self.skipped ||
                           pdf_is_array(context, pdf_dict_get(context, form, PDF_NAME(BBox))) == 0;
            self.original.op_Do_form(context, processor, name, form, resources);
        });
    }

    static void graphicsState(fz_context* context, pdf_processor* processor, const char* name,
                              pdf_obj* state) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            self.skipped =
                !mendSoftMask(context, state) || hasTransfer(context, state) || self.skipped;
            self.original.op_gs_begin(context, processor, name, state);
        });
    }

    static void softMask(fz_context* context, pdf_processor* processor, pdf_obj* form,
                         pdf_obj* resources, float* backdrop, int luminosity) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            self.leaveOutHidden(pdf_xobject_resources(context, form));
            self.lookForEnd(pdf_get_bound_document(context, form), form);
            self.original.op_gs_SMask(context, processor, form, resources, backdrop, luminosity);
        });
    }

    template <auto Operator>
    static void pattern(fz_context* context, pdf_processor* processor, const char* name,
                        pdf_pattern* pattern, int count, float* color) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            self.leaveOutHidden(pattern->resources);
            self.lookForEnd(pattern->document, pattern->contents);
            const auto usable = [](float step, float size) { return step == 0 ? size : step; };
            pattern->xstep = usable(pattern->xstep, pattern->bbox.x1 - pattern->bbox.x0);
            pattern->ystep = usable(pattern->ystep, pattern->bbox.y1 - pattern->bbox.y0);
            (self.original.*Operator)(context, processor, name, pattern, count, color);
        });
    }

    // Without a mask that is broken.
    template <typename Paint>
    static void paintMasked(PageProcessor& self, fz_image* image, Paint&& paint) {
        fz_image* const mask = image->mask;
        if (mask != nullptr && !self.isDecodable(mask, true)) {
            image->mask = nullptr;
        }
        const bool isPainted = attempt(self.context, paint);
        image->mask = mask;
        if (!isPainted) {
            fz_rethrow(self.context);
        }
    }

    // An image that cannot be decoded may have been there to cover: its place is painted grey. One
    // whose mask cannot be decoded is painted whole.
    template <typename Paint>
    static void image(fz_context* context, pdf_processor* processor, fz_image* image,
                      Paint&& paint) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            if (self.isDecodable(image, false)) {
                paintMasked(self, image, [&] { paint(self.original); });
                return;
            }
            self.original.op_q(context, processor);
            self.original.op_g(context, processor, 0.5F);
            self.original.op_re(context, processor, 0, 0, 1, 1);
            self.original.op_f(context, processor);
            self.original.op_Q(context, processor);
        });
    }

    static void inlineImage(fz_context* context, pdf_processor* processor, fz_image* inlined,
                            const char* space) {
        image(context, processor, inlined, [&](const pdf_processor& original) {
            original.op_BI(context, processor, inlined, space);
        });
    }

    static void imageObject(fz_context* context, pdf_processor* processor, const char* name,
                            fz_image* object) {
        image(context, processor, object, [&](const pdf_processor& original) {
            original.op_Do_image(context, processor, name, object);
        });
    }

    static void lineWidth(fz_context* context, pdf_processor* processor, float width) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] { self.original.op_w(context, processor, std::abs(width)); });
    }

    // The colorant None leaves no marks, but MuPDF paints it.
    template <auto Operator>
    static void colorSpace(fz_context* context, pdf_processor* processor, const char* name,
                           fz_colorspace* space) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            if (fz_colorspace_type(context, space) == FZ_COLORSPACE_SEPARATION &&
                fz_colorspace_n(context, space) == 1) {
                const char* const colorant = fz_colorspace_colorant(context, space, 0);
                self.skipped =
                    self.skipped || (colorant != nullptr && std::string_view(colorant) == "None");
            }
            (self.original.*Operator)(context, processor, name, space);
        });
    }

    template <auto... Operators>
    static void guard(pdf_processor* processor) {
        ((processor->*Operators = &Guarded<Operators>::call), ...);
    }

    // All that draw, and all that first draw the text before them.
    static void guardDrawing(pdf_processor* processor) {
        using P = pdf_processor;
        guard<&P::op_S, &P::op_s, &P::op_F, &P::op_f, &P::op_fstar, &P::op_B, &P::op_Bstar,
              &P::op_b, &P::op_bstar, &P::op_n>(processor);
        guard<&P::op_ET, &P::op_TJ, &P::op_Tj, &P::op_squote, &P::op_dquote>(processor);
        guard<&P::op_sh>(processor);
        guard<&P::op_j, &P::op_J, &P::op_M, &P::op_d, &P::op_ri, &P::op_q, &P::op_Q, &P::op_cm,
              &P::op_END>(processor);
        guard<&P::op_gs_BM, &P::op_gs_ca, &P::op_gs_CA, &P::op_gs_OP, &P::op_gs_op, &P::op_gs_OPM,
              &P::op_gs_UseBlackPtComp>(processor);
        guard<&P::op_SC_shade, &P::op_sc_shade, &P::op_SC_color, &P::op_sc_color>(processor);
        guard<&P::op_G, &P::op_g, &P::op_RG, &P::op_rg, &P::op_K, &P::op_k>(processor);
    }

    static void checkImages(pdf_processor* processor) {
        processor->op_BI = &inlineImage;
        processor->op_Do_image = &imageObject;
    }

    static void decide(pdf_processor* processor) {
        processor->op_BMC = &beginMarked;
        processor->op_BDC = &beginProperties;
        processor->op_EMC = &endMarked;
        processor->op_w = &lineWidth;
        processor->op_CS = &colorSpace<&pdf_processor::op_CS>;
        processor->op_cs = &colorSpace<&pdf_processor::op_cs>;
        processor->op_Do_form = &form;
        processor->op_gs_begin = &graphicsState;
        processor->op_gs_SMask = &softMask;
        processor->op_SC_pattern = &pattern<&pdf_processor::op_SC_pattern>;
        processor->op_sc_pattern = &pattern<&pdf_processor::op_sc_pattern>;
    }
};

void PageProcessor::install(pdf_processor* processor) const {
    PageOperators::decide(processor);
    if (errors == Errors::SkipOperator || !optionalContent.isNone()) {
        PageOperators::guardDrawing(processor);
    }
    if (errors == Errors::SkipOperator) {
        PageOperators::checkImages(processor);
    }
}

} // namespace murkwell
