// What the user typed, checked.
#pragma once

#include "core/Geometry.h"
#include "core/RedactionStyle.h"
#include "detect/PIIKind.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace murkwell::cli {

// --box PAGE:X,Y,W,H[:STYLE]
struct BoxArgument {
    int page; // counts from 1
    PageRect rect;
    std::optional<RedactionStyle> style;
};

// None unless the text is a page number, four finite numbers that cover some of the page, and a
// style's raw value where a style is given.
[[nodiscard]] std::optional<BoxArgument> parseBox(std::string_view text);

// --detect KIND[,KIND]|all, --find TEXT, --fuzzy, --pages all|N
struct SearchArguments {
    PIIKinds kinds;
    std::vector<std::string> queries; // UTF-8
    bool fuzzy = false;
    std::optional<int> page; // counts from 1; none for all

    [[nodiscard]] bool wanted() const { return !kinds.empty() || !queries.empty(); }
};

// None unless the text is "all" or raw values with commas between them.
[[nodiscard]] std::optional<PIIKinds> parseKinds(std::string_view text);

struct RedactArguments {
    std::vector<std::filesystem::path> sources;
    std::optional<std::filesystem::path> output;
    std::optional<std::filesystem::path> outputFolder;
    std::optional<std::filesystem::path> savedDocument;
    std::vector<BoxArgument> boxes;
    SearchArguments search;
    RedactionStyle style = RedactionStyle::solidBlack; // for boxes that name none
    bool force = false;
    bool json = false;
    std::optional<std::filesystem::path> passwordFile; // of sources that need one

    // Work that is saved is exported as well only where the export is given a place.
    [[nodiscard]] bool exports() const { return !savedDocument || output || outputFolder; }
};

struct ScanArguments {
    std::vector<std::filesystem::path> sources;
    SearchArguments search;
    std::optional<std::filesystem::path> passwordFile; // of sources that need one
};

struct TextArguments {
    std::vector<std::filesystem::path> sources;
    std::optional<int> page;                           // counts from 1; none for all
    std::optional<std::filesystem::path> passwordFile; // of sources that need one
};

struct InfoArguments {
    std::vector<std::filesystem::path> sources;
    std::optional<std::filesystem::path> passwordFile; // of sources that need one
};

// Nothing to run: print the text and leave with the code.
struct Ending {
    int exitCode;
    std::string text; // for standard output when the code is 0, else for standard error
};

using Command = std::variant<Ending, RedactArguments, ScanArguments, TextArguments, InfoArguments>;

[[nodiscard]] Command parseArguments(int argc, const char* const* argv);

} // namespace murkwell::cli
