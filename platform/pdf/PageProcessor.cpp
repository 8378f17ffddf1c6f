#include "platform/pdf/PageProcessor.h"

#include "platform/pdf/OptionalContent.h"
#include "platform/pdf/SoftMask.h"

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

    static void beginProperties(fz_context* context, pdf_processor* processor, const char* tag,
                                pdf_obj*, pdf_obj* properties) {
        PageProcessor& self = PageProcessor::of(context);
        const bool isOptional = tag != nullptr && std::string_view(tag) == "OC";
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
            self.original.op_gs_SMask(context, processor, form, resources, backdrop, luminosity);
        });
    }

    template <auto Operator>
    static void pattern(fz_context* context, pdf_processor* processor, const char* name,
                        pdf_pattern* pattern, int count, float* color) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            self.leaveOutHidden(pattern->resources);
            (self.original.*Operator)(context, processor, name, pattern, count, color);
        });
    }

    // An image that cannot be decoded may have been there to cover: its place is painted grey. One
    // whose mask cannot be decoded is painted whole.
    template <typename Paint>
    static void image(fz_context* context, pdf_processor* processor, fz_image* image,
                      Paint&& paint) {
        PageProcessor& self = PageProcessor::of(context);
        self.run(processor, [&] {
            if (self.isDecodable(image, false)) {
                self.paintMasked(image, [&] { paint(self.original); });
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
        guard<&P::op_w, &P::op_j, &P::op_J, &P::op_M, &P::op_d, &P::op_ri, &P::op_q, &P::op_Q,
              &P::op_cm, &P::op_END>(processor);
        guard<&P::op_gs_BM, &P::op_gs_ca, &P::op_gs_CA, &P::op_gs_OP, &P::op_gs_op, &P::op_gs_OPM,
              &P::op_gs_UseBlackPtComp>(processor);
        guard<&P::op_CS, &P::op_cs, &P::op_SC_shade, &P::op_sc_shade, &P::op_SC_color,
              &P::op_sc_color>(processor);
        guard<&P::op_G, &P::op_g, &P::op_RG, &P::op_rg, &P::op_K, &P::op_k>(processor);
    }

    static void checkImages(pdf_processor* processor) {
        processor->op_BI = &inlineImage;
        processor->op_Do_image = &imageObject;
    }

    static void install(pdf_processor* processor) {
        processor->op_BMC = &beginMarked;
        processor->op_BDC = &beginProperties;
        processor->op_EMC = &endMarked;
        processor->op_Do_form = &form;
        processor->op_gs_begin = &graphicsState;
        processor->op_gs_SMask = &softMask;
        processor->op_SC_pattern = &pattern<&pdf_processor::op_SC_pattern>;
        processor->op_sc_pattern = &pattern<&pdf_processor::op_sc_pattern>;
    }
};

PageProcessor::PageProcessor(fz_context* usedContext, const OptionalContent& content,
                             Errors onErrors)
    : context(usedContext), optionalContent(content), errors(onErrors) {
    fz_set_user_context(context, this);
    warn = fz_warning_callback(context, &warned);
    fz_flush_warnings(context); // one that was given before is not given again
    fz_set_warning_callback(context, &noteWarning, this);
}

PageProcessor::~PageProcessor() {
    fz_flush_warnings(context);
    fz_set_warning_callback(context, warn, warned);
    fz_set_user_context(context, nullptr);
}

pdf_processor* PageProcessor::make(fz_device* device, fz_matrix transform, pdf_obj* resources,
                                   fz_default_colorspaces* colorspaces, fz_cookie* cookie) {
    markedContent = {};
    leaveOutHidden(resources);
    // Without a usage MuPDF takes all optional content for visible.
    pdf_processor* const processor =
        pdf_new_run_processor(context, device, transform, nullptr, nullptr, colorspaces, cookie);
    original = *processor;
    PageOperators::install(processor);
    if (errors == Errors::SkipOperator || !optionalContent.isNone()) {
        PageOperators::guardDrawing(processor);
    }
    if (errors == Errors::SkipOperator) {
        PageOperators::checkImages(processor);
        guardPainting(device);
    }
    return processor;
}

// The text so far is drawn as it was begun.
void PageProcessor::openMarkedContent(pdf_processor* processor, bool hidesContent) {
    ++markedContent.depth;
    if (hidesContent && markedContent.hiddenFrom == 0) {
        original.op_END(context, processor);
        markedContent.hiddenFrom = markedContent.depth;
    }
    processor->hidden = markedContent.hiddenFrom == 0 ? 0 : 1; // MuPDF adds 1 to more than 0
}

void PageProcessor::closeMarkedContent(pdf_processor* processor) {
    if (markedContent.depth > markedContent.outermost) {
        if (markedContent.depth == markedContent.hiddenFrom) {
            original.op_END(context, processor);
            markedContent.hiddenFrom = 0;
        }
        --markedContent.depth;
    }
    processor->hidden = markedContent.hiddenFrom == 0 ? 0 : 2; // MuPDF takes 1 off again
}

// An image's optional content is looked at before any function of ours is called, so hidden ones
// give way to something that is not drawn.
void PageProcessor::leaveOutHidden(pdf_obj* resources) {
    if (optionalContent.isNone()) {
        return;
    }
    pdf_obj* const objects = pdf_dict_get(context, resources, PDF_NAME(XObject));
    for (int i = pdf_dict_len(context, objects) - 1; i >= 0; --i) {
        pdf_obj* const content =
            pdf_dict_get(context, pdf_dict_get_val(context, objects, i), PDF_NAME(OC));
        if (optionalContent.hides(context, content)) {
            pdf_obj* const nothing =
                pdf_dict_put_dict(context, objects, pdf_dict_get_key(context, objects, i), 1);
            pdf_dict_put_name(context, nothing, PDF_NAME(Subtype), "PS");
        }
    }
}

// Without a mask that is broken.
template <typename Paint>
void PageProcessor::paintMasked(fz_image* image, Paint&& paint) {
    fz_image* const mask = image->mask;
    if (mask != nullptr && !isDecodable(mask, true)) {
        image->mask = nullptr;
    }
    const bool isPainted = attempt(context, paint);
    image->mask = mask;
    if (!isPainted) {
        fz_rethrow(context);
    }
}

// A mask must be there to the end. May longjmp out when there is no memory.
bool PageProcessor::isDecodable(fz_image* image, bool toTheEnd) {
    const bool givenUpBefore = givenUp;
    givenUp = false;
    fz_flush_warnings(context);
    const bool isDecoded = attempt(context, [&] {
        fz_drop_pixmap(
            context, fz_get_pixmap_from_image(context, image, nullptr, nullptr, nullptr, nullptr));
    });
    if (!isDecoded && ranOut(context)) {
        fz_rethrow(context);
    }
    const bool isToTheEnd = isDecoded && !givenUp;
    skipped = skipped || !isToTheEnd;
    givenUp = givenUpBefore;
    return isDecoded && (isToTheEnd || !toTheEnd);
}

// The words are those of the MuPDF that the project builds with; the tests see if they change.
void PageProcessor::noteWarning(void* self, const char* message) {
    const std::string_view text = message;
    auto& processor = *static_cast<PageProcessor*>(self);
    if (text.starts_with("too many syntax errors") || text == "padding truncated image") {
        processor.givenUp = true;
    }
    if (text.starts_with("Type3 glyph load failed") || text.starts_with("cannot render glyph") ||
        text.starts_with("cannot load content stream part") || text.starts_with("read error")) {
        processor.skipped = true;
    }
}

template <typename Call>
void PageProcessor::run(pdf_processor* processor, Call&& call) {
    const MarkedContent before = markedContent;
    const int hidden = processor->hidden;
    markedContent.outermost = before.depth;
    if (errors == Errors::EndThePage) {
        call();
    } else {
        skipFailed(call);
    }
    markedContent = before;
    processor->hidden = hidden;
}

} // namespace murkwell
