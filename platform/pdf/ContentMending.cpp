#include "platform/pdf/ContentMending.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

namespace murkwell {
namespace {

struct Operator {
    std::string_view name;
    std::string_view operands; // a kind each; those of colors are not counted
};

// Kinds of operands. A name may stand for properties.
enum Kind : char { number = 'n', name = 'N', string = 's', array = 'a', properties = 'p' };
constexpr std::string_view colors = "*";

// All but those of inline images and of compatibility sections.
constexpr auto operators = std::to_array<Operator>(
    {{"\"", "nns"},    {"'", "s"},       {"B", ""},       {"B*", ""},      {"BDC", "Np"},
     {"BMC", "N"},     {"BT", ""},       {"CS", "N"},     {"DP", "Np"},    {"Do", "N"},
     {"EMC", ""},      {"ET", ""},       {"F", ""},       {"G", "n"},      {"J", "n"},
     {"K", "nnnn"},    {"M", "n"},       {"MP", "N"},     {"Q", ""},       {"RG", "nnn"},
     {"S", ""},        {"SC", colors},   {"SCN", colors}, {"T*", ""},      {"TD", "nn"},
     {"TJ", "a"},      {"TL", "n"},      {"Tc", "n"},     {"Td", "nn"},    {"Tf", "Nn"},
     {"Tj", "s"},      {"Tm", "nnnnnn"}, {"Tr", "n"},     {"Ts", "n"},     {"Tw", "n"},
     {"Tz", "n"},      {"W", ""},        {"W*", ""},      {"b", ""},       {"b*", ""},
     {"c", "nnnnnn"},  {"cm", "nnnnnn"}, {"cs", "N"},     {"d", "an"},     {"d0", "nn"},
     {"d1", "nnnnnn"}, {"f", ""},        {"f*", ""},      {"g", "n"},      {"gs", "N"},
     {"h", ""},        {"i", "n"},       {"j", "n"},      {"k", "nnnn"},   {"l", "nn"},
     {"m", "nn"},      {"n", ""},        {"q", ""},       {"re", "nnnn"},  {"rg", "nnn"},
     {"ri", "N"},      {"s", ""},        {"sc", colors},  {"scn", colors}, {"sh", "N"},
     {"v", "nnnn"},    {"w", "n"},       {"y", "nnnn"}});

constexpr std::size_t mostOperands = 32; // that MuPDF takes

bool isNumeric(char c) {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+';
}

bool isBlank(unsigned char c) {
    return c <= ' ';
}

// Reads a stream as MuPDF's interpreter would, and goes on where that stops. Lives in the frame of
// mendContent, where MuPDF's jumps cannot pass its destructor: it has none.
class ContentScan {
public:
    ContentScan(fz_context* usedContext, pdf_document* usedDocument, pdf_obj* usedResources,
                fz_stream* usedStream, std::span<unsigned char> streamBytes)
        : context(usedContext), document(usedDocument), resources(usedResources),
          stream(usedStream), bytes(streamBytes) {}

    ContentMending run(pdf_lexbuf* buffer) {
        lexBuffer = buffer;
        while (token() != PDF_TOK_EOF) {
        }
        return done;
    }

private:
    // Reads one token, and the object or image that it begins.
    pdf_token token() {
        const std::size_t start = position();
        pdf_token kind = PDF_TOK_ERROR;
        const bool isContent = attempt(context, [&] {
            kind = pdf_lex(context, stream, lexBuffer);
            readRest(kind, start);
        });
        rethrowMemory(isContent);
        if (isContent) {
            return kind;
        }
        const std::size_t end = position();
        blankOut(start, end);
        operandCount = 0;
        return end == start ? PDF_TOK_EOF : PDF_TOK_ERROR;
    }

    void rethrowMemory(bool isDone) {
        if (!isDone && ranOut(context)) {
            fz_rethrow(context);
        }
    }

    void readRest(pdf_token kind, std::size_t start) {
        switch (kind) {
        case PDF_TOK_EOF:
            return;
        case PDF_TOK_NAME:
            addOperand(name, start);
            return;
        case PDF_TOK_STRING:
            addOperand(string, start);
            return;
        case PDF_TOK_INT:
        case PDF_TOK_REAL:
            addOperand(number, start);
            return;
        case PDF_TOK_OPEN_ARRAY:
            pdf_drop_obj(context, pdf_parse_array(context, document, stream, lexBuffer));
            addOperand(array, start);
            return;
        case PDF_TOK_OPEN_DICT:
            pdf_drop_obj(context, pdf_parse_dict(context, document, stream, lexBuffer));
            addOperand(properties, start);
            return;
        case PDF_TOK_KEYWORD:
            readOperator(lexBuffer->scratch, start);
            operandCount = 0;
            return;
        default:
            require(false);
        }
    }

    void addOperand(Kind kind, std::size_t start) {
        require(operandCount < mostOperands);
        operandKinds.at(operandCount) = kind;
        operandStarts.at(operandCount) = start;
        ++operandCount;
    }

    void readOperator(std::string_view word, std::size_t start) {
        if (word == "BI") {
            readInlineImage(start);
        } else if (word == "BX" || word == "EX") {
            compatibility += word == "BX" ? 1 : -1;
        } else {
            const auto* const known = std::ranges::find(operators, word, &Operator::name);
            // Other viewers take a number that runs into a word for both.
            const bool isGlued = known == operators.end() && isNumeric(word.front());
            done.hasLost = done.hasLost || isGlued;
            require(!isGlued && (compatibility != 0 || known != operators.end()));
            if (known != operators.end() && known->operands != colors) {
                checkOperands(known->operands, start);
            }
        }
    }

    // Of too many operands the last count, where MuPDF takes the first numbers and names. An
    // operator that lacks some, or has others, does nothing, where MuPDF takes zeros.
    void checkOperands(std::string_view expected, std::size_t operatorStart) {
        if (expected.empty()) {
            return;
        }
        const std::size_t surplus =
            operandCount - std::min<std::size_t>(operandCount, expected.size());
        const auto given = std::span(operandKinds).first(operandCount).subspan(surplus);
        const bool isUsable = std::ranges::equal(expected, given, [](char asked, char kind) {
            return asked == kind || (asked == properties && kind == name);
        });
        if (!isUsable) {
            fill(operandCount == 0 ? operatorStart : operandStarts.front(), position());
        } else if (surplus > 0) {
            fill(operandStarts.front(), operandStarts.at(surplus));
        }
    }

    void readInlineImage(std::size_t start) {
        const std::size_t entries = position();
        pdf_obj* dictionary = nullptr;
        const bool isLoaded = attempt(context, [&] {
            dictionary = pdf_parse_dict(context, document, stream, lexBuffer);
            fz_read_byte(context, stream);
            fz_drop_image(context,
                          pdf_load_inline_image(context, document, resources, dictionary, stream));
        });
        pdf_drop_obj(context, dictionary);
        rethrowMemory(isLoaded);
        const std::size_t data = isLoaded ? position() - 1 : afterWord("ID", entries);
        const std::size_t end = data == bytes.size() && !isLoaded ? entries : afterWord("EI", data);
        fz_seek(context, stream, static_cast<std::int64_t>(end), SEEK_SET);
        if (!isLoaded) {
            done.hasLost = true;
            blankOut(start, end);
        }
    }

    // Where the next such word ends; the end when there is none.
    [[nodiscard]] std::size_t afterWord(std::string_view word, std::size_t from) const {
        for (std::size_t i = from; i + word.size() <= bytes.size(); ++i) {
            const std::size_t end = i + word.size();
            if ((i == 0 || isBlank(bytes[i - 1]) || i == from) &&
                std::memcmp(&bytes[i], word.data(), word.size()) == 0 &&
                (end == bytes.size() || isBlank(bytes[end]) || bytes[end] == '/' ||
                 bytes[end] == '<')) {
                return end;
            }
        }
        return bytes.size();
    }

    [[nodiscard]] std::size_t position() const {
        return std::min(static_cast<std::size_t>(fz_tell(context, stream)), bytes.size());
    }

    void require(bool isContent) {
        if (!isContent) {
            fz_throw(context, FZ_ERROR_SYNTAX, "not content");
        }
    }

    // An operator without effect stands in, where there is room, to use up the operands before.
    void blankOut(std::size_t start, std::size_t end) {
        fill(start, end);
        if (end - start > 2) {
            bytes[start + 1] = 'i';
        }
    }

    void fill(std::size_t start, std::size_t end) {
        std::ranges::fill(bytes.subspan(start, end - start), ' ');
        done.isChanged = true;
    }

    fz_context* context;
    pdf_document* document;
    pdf_obj* resources;
    fz_stream* stream;
    std::span<unsigned char> bytes;
    pdf_lexbuf* lexBuffer = nullptr;
    std::array<Kind, mostOperands> operandKinds{};
    std::array<std::size_t, mostOperands> operandStarts{};
    std::size_t operandCount = 0;
    int compatibility = 0;
    ContentMending done;
};

} // namespace

ContentMending mendContent(fz_context* context, pdf_document* document, pdf_obj* resources,
                           fz_buffer* content) {
    unsigned char* data = nullptr;
    const std::size_t size = fz_buffer_storage(context, content, &data);
    fz_stream* const stream = fz_open_buffer(context, content);
    pdf_lexbuf lexBuffer;
    pdf_lexbuf_init(context, &lexBuffer, PDF_LEXBUF_SMALL);
    ContentMending done;
    const bool isRead = attempt(context, [&] {
        done = ContentScan(context, document, resources, stream, {data, size}).run(&lexBuffer);
    });
    pdf_lexbuf_fin(context, &lexBuffer);
    fz_drop_stream(context, stream);
    if (!isRead) {
        fz_rethrow(context);
    }
    return done;
}

} // namespace murkwell
