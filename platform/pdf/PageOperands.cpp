// Counts what stands before each operator. MuPDF draws with the first numbers and names, and with
// zeros for those that lack, without a word, and tells only what it draws with; but it counts the
// tokens that it has read, from 0 in each stream. Notices also a path that MuPDF loses.

#include "platform/pdf/PageProcessor.h"

#include <utility>

namespace murkwell {

// How many tokens stand for an argument of a processor's function.
template <typename Argument>
constexpr int tokensFor = 0;
template <>
constexpr int tokensFor<float> = 1;
template <>
constexpr int tokensFor<int> = 1;
template <>
constexpr int tokensFor<char*> = 1;
template <>
constexpr int tokensFor<const char*> = 1;

// MuPDF may longjmp through all functions here.
struct PageOperands {
    // Operators that mind no operands, or take any number of them.
    template <auto Operator>
    struct Noted;

    template <typename... Arguments,
              void (*pdf_processor::*Operator)(fz_context*, pdf_processor*, Arguments...)>
    struct Noted<Operator> {
        static constexpr int tokens = (tokensFor<Arguments> + ... + 0);

        static void call(fz_context* context, pdf_processor* processor, Arguments... arguments) {
            PageProcessor& self = PageProcessor::of(context);
            self.tokensBefore = 0; // of a stream that the operator draws
            (self.uncounted.*Operator)(context, processor, arguments...);
            self.tokensBefore = self.cookie->progress;
        }
    };

    template <auto Operator>
    struct Counted;

    template <typename... Arguments,
              void (*pdf_processor::*Operator)(fz_context*, pdf_processor*, Arguments...)>
    struct Counted<Operator> {
        static void call(fz_context* context, pdf_processor* processor, Arguments... arguments) {
            expect(context, Noted<Operator>::tokens);
            Noted<Operator>::call(context, processor, arguments...);
        }
    };

    // Operators that begin a path or go on with it.
    template <auto Operator>
    struct Building;

    template <typename... Arguments,
              void (*pdf_processor::*Operator)(fz_context*, pdf_processor*, Arguments...)>
    struct Building<Operator> {
        static void call(fz_context* context, pdf_processor* processor, Arguments... arguments) {
            PageProcessor::of(context).isInPath = true;
            Counted<Operator>::call(context, processor, arguments...);
        }
    };

    template <void (*pdf_processor::*Operator)(fz_context*, pdf_processor*)>
    static void endPath(fz_context* context, pdf_processor* processor) {
        PageProcessor::of(context).isInPath = false;
        Noted<Operator>::call(context, processor);
    }

    // MuPDF drops the path.
    static void form(fz_context* context, pdf_processor* processor, const char* name, pdf_obj* form,
                     pdf_obj* resources) {
        PageProcessor& self = PageProcessor::of(context);
        self.skipped = std::exchange(self.isInPath, false) || self.skipped;
        Counted<&pdf_processor::op_Do_form>::call(context, processor, name, form, resources);
    }

    // Not when MuPDF calls a function that no token stands for.
    static void expect(fz_context* context, int tokens, int orTokens = 0) {
        PageProcessor& self = PageProcessor::of(context);
        const int read = self.cookie->progress - self.tokensBefore - 1;
        self.givenUp = self.givenUp || (read >= 0 && read != tokens && read != orTokens);
    }

    // In a text object each element and bracket of an array is a token.
    static void expectArray(fz_context* context, pdf_obj* array, int others) {
        expect(context, 1 + others, pdf_array_len(context, array) + 2 + others);
    }

    static void dash(fz_context* context, pdf_processor* processor, pdf_obj* array, float phase) {
        expectArray(context, array, 1);
        Noted<&pdf_processor::op_d>::call(context, processor, array, phase);
    }

    static void showArray(fz_context* context, pdf_processor* processor, pdf_obj* array) {
        expectArray(context, array, 0);
        Noted<&pdf_processor::op_TJ>::call(context, processor, array);
    }

    template <auto Operator>
    static void properties(fz_context* context, pdf_processor* processor, const char* tag,
                           pdf_obj* name, pdf_obj* values) {
        expect(context, 2);
        Noted<Operator>::call(context, processor, tag, name, values);
    }

    static void endStream(fz_context* context, pdf_processor* processor) {
        Noted<&pdf_processor::op_END>::call(context, processor);
        PageProcessor::of(context).tokensBefore = 0;
    }

    template <auto... Operators>
    static void note(pdf_processor* processor) {
        ((processor->*Operators = &Noted<Operators>::call), ...);
    }

    template <auto... Operators>
    static void build(pdf_processor* processor) {
        ((processor->*Operators = &Building<Operators>::call), ...);
    }

    template <auto... Operators>
    static void end(pdf_processor* processor) {
        ((processor->*Operators = &endPath<Operators>), ...);
    }

    template <auto... Operators>
    static void count(pdf_processor* processor) {
        ((processor->*Operators = &Counted<Operators>::call), ...);
    }
};

void PageProcessor::countOperands(pdf_processor* processor) {
    uncounted = *processor;
    using P = pdf_processor;
    using O = PageOperands;
    O::count<&P::op_w, &P::op_j, &P::op_J, &P::op_M, &P::op_ri, &P::op_i, &P::op_gs_begin,
             &P::op_cm>(processor);
    O::build<&P::op_m, &P::op_l, &P::op_c, &P::op_v, &P::op_y, &P::op_re>(processor);
    O::count<&P::op_Tc, &P::op_Tw, &P::op_Tz, &P::op_TL, &P::op_Tf, &P::op_Tr, &P::op_Ts, &P::op_Td,
             &P::op_TD, &P::op_Tm, &P::op_Tj, &P::op_squote, &P::op_dquote>(processor);
    O::count<&P::op_CS, &P::op_cs, &P::op_G, &P::op_g, &P::op_RG, &P::op_rg, &P::op_K, &P::op_k>(
        processor);
    O::count<&P::op_sh, &P::op_Do_image, &P::op_MP, &P::op_BMC>(processor);
    processor->op_Do_form = &O::form;
    processor->op_d = &O::dash;
    processor->op_TJ = &O::showArray;
    processor->op_BDC = &O::properties<&P::op_BDC>;
    processor->op_DP = &O::properties<&P::op_DP>;
    O::note<&P::op_q, &P::op_Q, &P::op_h, &P::op_W, &P::op_Wstar>(processor);
    O::end<&P::op_S, &P::op_s, &P::op_F, &P::op_f, &P::op_fstar, &P::op_B, &P::op_Bstar, &P::op_b,
           &P::op_bstar, &P::op_n>(processor);
    O::note<&P::op_BT, &P::op_ET, &P::op_Tstar, &P::op_d0, &P::op_d1, &P::op_BI, &P::op_EMC,
            &P::op_BX, &P::op_EX>(processor);
    O::note<&P::op_SC_color, &P::op_sc_color, &P::op_SC_pattern, &P::op_sc_pattern, &P::op_SC_shade,
            &P::op_sc_shade>(processor);
    processor->op_END = &O::endStream;
}

} // namespace murkwell
