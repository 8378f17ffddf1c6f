#include "platform/pdf/OptionalContent.h"

#include <algorithm>
#include <string_view>

namespace murkwell {
namespace {

// Visibility expressions that are nested deeper hold.
constexpr int deepestExpression = 32;

// The object numbers in an array of groups, ascending. May longjmp out, but not while it grows
// `numbers`, which the caller owns.
void collectNumbers(fz_context* context, pdf_obj* array, std::vector<int>& numbers) {
    const int length = pdf_array_len(context, array);
    numbers.reserve(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        numbers.push_back(pdf_to_num(context, pdf_array_get(context, array, i)));
    }
    std::ranges::sort(numbers);
}

} // namespace

OptionalContent::OptionalContent(fz_context* context, pdf_document* document) {
    std::vector<int> groups;
    std::vector<int> on;
    std::vector<int> off;
    bool hiddenAtFirst = false;
    const bool isRead = attempt(context, [&] {
        pdf_obj* const properties = pdf_dict_getl(context, pdf_trailer(context, document),
                                                  PDF_NAME(Root), PDF_NAME(OCProperties), nullptr);
        pdf_obj* const configuration = pdf_dict_get(context, properties, PDF_NAME(D));
        collectNumbers(context, pdf_dict_get(context, properties, PDF_NAME(OCGs)), groups);
        collectNumbers(context, pdf_dict_get(context, configuration, PDF_NAME(ON)), on);
        collectNumbers(context, pdf_dict_get(context, configuration, PDF_NAME(OFF)), off);
        hiddenAtFirst =
            pdf_name_eq(context, pdf_dict_get(context, configuration, PDF_NAME(BaseState)),
                        PDF_NAME(OFF)) != 0;
    });
    if (!isRead) {
        return;
    }
    hasGroups = !groups.empty();
    for (const int group : groups) {
        const bool isOn = !hiddenAtFirst || std::ranges::binary_search(on, group);
        if (!isOn || std::ranges::binary_search(off, group)) {
            hiddenGroups.push_back(group);
        }
    }
}

bool OptionalContent::hides(fz_context* context, pdf_obj* content) const {
    if (isNone() || content == nullptr) {
        return false;
    }
    if (pdf_name_eq(context, pdf_dict_get(context, content, PDF_NAME(Type)), PDF_NAME(OCMD)) == 0) {
        return isHiddenGroup(context, content);
    }
    pdf_obj* const expression = pdf_dict_get(context, content, PDF_NAME(VE));
    return pdf_is_array(context, expression) != 0 ? !holds(context, expression, 0)
                                                  : hidesMembers(context, content);
}

bool OptionalContent::isHiddenGroup(fz_context* context, pdf_obj* group) const {
    return std::ranges::binary_search(hiddenGroups, pdf_to_num(context, group));
}

bool OptionalContent::hidesMembers(fz_context* context, pdf_obj* membership) const {
    pdf_obj* const members = pdf_dict_get(context, membership, PDF_NAME(OCGs));
    int hidden = 0;
    int count = 0;
    if (pdf_is_array(context, members) != 0) {
        for (int i = pdf_array_len(context, members) - 1; i >= 0; --i) {
            pdf_obj* const member = pdf_array_get(context, members, i);
            if (pdf_is_dict(context, member) != 0) {
                ++count;
                hidden += isHiddenGroup(context, member) ? 1 : 0;
            }
        }
    } else if (pdf_is_dict(context, members) != 0) {
        count = 1;
        hidden = isHiddenGroup(context, members) ? 1 : 0;
    } else {
        return false;
    }
    pdf_obj* const policy = pdf_dict_get(context, membership, PDF_NAME(P));
    if (pdf_name_eq(context, policy, PDF_NAME(AllOn)) != 0) {
        return hidden > 0;
    }
    if (pdf_name_eq(context, policy, PDF_NAME(AnyOff)) != 0) {
        return hidden == 0;
    }
    if (pdf_name_eq(context, policy, PDF_NAME(AllOff)) != 0) {
        return hidden < count;
    }
    return hidden == count;
}

bool OptionalContent::holds(fz_context* context, pdf_obj* expression, int depth) const {
    if (pdf_is_array(context, expression) == 0) {
        return !isHiddenGroup(context, expression);
    }
    const int length = pdf_array_len(context, expression);
    if (depth == deepestExpression || length < 2) {
        return true;
    }
    const std::string_view operation = pdf_to_name(context, pdf_array_get(context, expression, 0));
    const auto operand = [&](int i) {
        return holds(context, pdf_array_get(context, expression, i), depth + 1);
    };
    if (operation == "Not") {
        return !operand(1);
    }
    // Of several operands one decides: a false one for And, a true one for Or.
    const bool isOr = operation == "Or";
    for (int i = 1; i < length; ++i) {
        if (operand(i) == isOr) {
            return isOr;
        }
    }
    return !isOr;
}

} // namespace murkwell
