#include "cli/Arguments.h"

#include "io/ContentType.h"
#include "io/FileAccess.h"
#include "io/FileName.h"
#include "io/Unicode.h"
#include "model/WhiteSpace.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <sstream>

namespace murkwell::cli {
namespace {

constexpr int wrongUsage = 2;
constexpr std::string_view allWord = "all";

template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

// Takes the text up to the separator off the front; all of it when there is none.
std::string_view takeField(std::string_view& text, char separator) {
    const std::string_view field = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(field.size() + 1, text.size()));
    return field;
}

std::optional<PageRect> parseRect(std::string_view text) {
    if (std::ranges::count(text, ',') != 3) {
        return std::nullopt;
    }
    std::array<double, 4> numbers{};
    for (double& number : numbers) {
        const auto parsed = parseNumber<double>(takeField(text, ','));
        if (!parsed || !std::isfinite(*parsed)) {
            return std::nullopt;
        }
        number = *parsed;
    }
    return PageRect{numbers[0], numbers[1], numbers[2], numbers[3]};
}

bool coversSomeOfThePage(const PageRect& rect) {
    return rect.width > 0 && rect.height > 0 && rect.x < 1 && rect.y < 1 && rect.maxX() > 0 &&
           rect.maxY() > 0;
}

std::vector<std::string> rawValues(const auto& cases) {
    std::vector<std::string> names(cases.size());
    std::ranges::transform(cases, names.begin(),
                           [](auto value) { return std::string(rawValue(value)); });
    return names;
}

std::optional<int> parsePage(std::string_view text) {
    const auto page = parseNumber<int>(text);
    return page && *page >= 1 ? page : std::nullopt;
}

std::vector<std::filesystem::path> paths(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

// Such a source may have boxes of its own.
bool isSavedDocument(const std::filesystem::path& source) {
    return ContentType::fromExtension(pathExtension(source)) == ContentType::session;
}

// With the extension added where there is none, except for a device or a pipe. None when it has
// another one, or names a folder.
std::optional<std::filesystem::path> placeOfSavedDocument(std::filesystem::path given) {
    std::error_code ignored;
    const bool isWrittenTo =
        exists(given, ignored) && !replacesFile(given) && !is_directory(given, ignored);
    if (isSavedDocument(given) || isWrittenTo) {
        return given;
    }
    const auto name = given.filename();
    if (!pathExtension(given).empty() || name.empty() || name == "." || name == "..") {
        return std::nullopt;
    }
    return given += "." + std::string(*ContentType::session.preferredFilenameExtension());
}

CLI::Validator boxValidator() {
    return {[](std::string& text) {
                return parseBox(text) ? std::string()
                                      : "“" + text +
                                            "” is no box on a page: write PAGE:X,Y,W,H[:STYLE], "
                                            "such as 1:0.1,0.1,0.3,0.05:noise";
            },
            ""};
}

CLI::Validator kindsValidator() {
    return {[](std::string& text) {
                return parseKinds(text) ? std::string()
                                        : "“" + text + "” is no kind: write all, or some of " +
                                              CLI::detail::join(rawValues(allPIIKinds), ",");
            },
            ""};
}

// What an option without its value, as an unset variable leaves it, would silently stand for.
CLI::Validator notEmpty() {
    return {[](std::string& text) { return text.empty() ? "It is empty" : std::string(); }, ""};
}

// Of white space alone nothing would be looked for, of broken characters nothing found.
CLI::Validator queryValidator() {
    return {[](std::string& text) {
                return withoutOuterWhiteSpace(text).empty() || !isUtf8(text)
                           ? "“" + text + "” is no text to find"
                           : std::string();
            },
            ""};
}

CLI::Validator pagesValidator() {
    return {[](std::string& text) {
                return text == allWord || parsePage(text)
                           ? std::string()
                           : "“" + text + "” is neither all nor a page number";
            },
            ""};
}

// May be given several times. Without this it would also take the sources behind its value.
CLI::Option* takesOneEach(CLI::Option* option) {
    return option->expected(1)->take_all()->allow_extra_args(false);
}

// --password-file, which every command has.
struct PasswordOption {
    std::string file;

    void addTo(CLI::App& command) {
        command
            .add_option("--password-file", file,
                        "File with the password of sources that need one; without it, the "
                        "terminal asks")
            ->check(notEmpty());
    }

    [[nodiscard]] std::optional<std::filesystem::path> checked() const {
        return file.empty() ? std::nullopt : std::optional<std::filesystem::path>(file);
    }
};

// What is searched for and where, as the parser sees it.
struct SearchOptions {
    std::string kinds;
    std::vector<std::string> queries;
    bool fuzzy = false;
    std::string pages{allWord};

    void addTo(CLI::App& command) {
        command
            .add_option("--detect", kinds,
                        "Kinds to find: all, or some of " +
                            CLI::detail::join(rawValues(allPIIKinds), ","))
            ->check(kindsValidator());
        takesOneEach(
            command.add_option("--find", queries, "Text to find, whatever its letter case"))
            ->check(queryValidator());
        command.add_flag("--fuzzy", fuzzy, "Also find close spellings and slips of recognition");
        command.add_option("--pages", pages, "The page to search, or all")->check(pagesValidator());
    }

    [[nodiscard]] SearchArguments checked() const {
        return {parseKinds(kinds).value_or(PIIKinds()), queries, fuzzy, parsePage(pages)};
    }
};

// The `redact` command, as the parser sees it.
struct RedactOptions {
    std::vector<std::string> sources;
    std::string output;
    std::string outputFolder;
    std::string savedDocument;
    std::vector<std::string> boxes;
    SearchOptions search;
    std::string style{rawValue(RedactionStyle::solidBlack)};
    bool force = false;
    bool json = false;
    PasswordOption password;

    void addTo(CLI::App& command) {
        command.add_option("SOURCE", sources, "Images, PDFs and saved documents")->required();
        auto* const file = command
                               .add_option("-o,--output", output,
                                           "Where to write (one SOURCE only; default: beside "
                                           "it, with -redacted in the name)")
                               ->check(notEmpty());
        command.add_option("--out-dir", outputFolder, "Folder to write into")
            ->excludes(file)
            ->check(notEmpty());
        command
            .add_option("--save", savedDocument,
                        "Save the work as a document (one SOURCE only); without -o and "
                        "--out-dir, nothing is exported")
            ->check(notEmpty());
        takesOneEach(command.add_option(
                         "--box", boxes,
                         "PAGE:X,Y,W,H[:STYLE]; pages count from 1, the rest are fractions of the "
                         "page from its top-left corner"))
            ->check(boxValidator());
        search.addTo(command);
        command.add_option("--style", style, "solidBlack, solidWhite or noise")
            ->check(CLI::IsMember(rawValues(allRedactionStyles)));
        command.add_flag("--force", force, "Replace existing files");
        command.add_flag("--json", json, "Print a JSON line for each file written");
        password.addTo(command);
    }

    [[nodiscard]] Command checked() const {
        if (!output.empty() && sources.size() > 1) {
            return Ending{wrongUsage, "-o takes one SOURCE; use --out-dir for several"};
        }
        if (!savedDocument.empty() && sources.size() > 1) {
            return Ending{wrongUsage, "--save takes one SOURCE"};
        }
        RedactArguments arguments;
        arguments.sources = paths(sources);
        if (!savedDocument.empty()) {
            arguments.savedDocument = placeOfSavedDocument(savedDocument);
            if (!arguments.savedDocument) {
                return Ending{wrongUsage,
                              "“" + savedDocument + "” is not named as a saved document"};
            }
        }
        if (!output.empty()) {
            arguments.output = output;
        }
        if (!outputFolder.empty()) {
            arguments.outputFolder = outputFolder;
        }
        for (const std::string& box : boxes) {
            arguments.boxes.push_back(*parseBox(box));
        }
        arguments.search = search.checked();
        if (arguments.boxes.empty() && !arguments.search.wanted() &&
            !std::ranges::all_of(arguments.sources, isSavedDocument)) {
            return Ending{wrongUsage, "Nothing to redact: give --box, --detect or --find"};
        }
        arguments.style = *redactionStyle(style);
        arguments.force = force;
        arguments.json = json;
        arguments.passwordFile = password.checked();
        return arguments;
    }
};

// The `scan` command, as the parser sees it.
struct ScanOptions {
    std::vector<std::string> sources;
    SearchOptions search;
    PasswordOption password;

    void addTo(CLI::App& command) {
        command.add_option("SOURCE", sources, "Images, PDFs and saved documents")->required();
        search.addTo(command);
        password.addTo(command);
    }

    [[nodiscard]] ScanArguments checked() const {
        ScanArguments arguments{paths(sources), search.checked(), password.checked()};
        if (!arguments.search.wanted()) {
            arguments.search.kinds = {allPIIKinds.begin(), allPIIKinds.end()};
        }
        return arguments;
    }
};

// The `text` command, as the parser sees it.
struct TextOptions {
    std::vector<std::string> sources;
    std::string page{allWord};
    PasswordOption password;

    void addTo(CLI::App& command) {
        command.add_option("SOURCE", sources, "Images, PDFs and saved documents")->required();
        command.add_option("--page", page, "The page to read, or all")->check(pagesValidator());
        password.addTo(command);
    }

    [[nodiscard]] TextArguments checked() const {
        return {paths(sources), parsePage(page), password.checked()};
    }
};

Ending endingOf(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
        std::ostringstream text;
        std::ostringstream unused;
        app.exit(error, text, unused);
        std::string lines = text.str();
        lines.erase(lines.find_last_not_of('\n') + 1); // whoever prints it ends the line
        return {0, lines};
    }
    return {wrongUsage, error.what()};
}

} // namespace

std::optional<BoxArgument> parseBox(std::string_view text) {
    const bool namesStyle = std::ranges::count(text, ':') > 1;
    const auto page = parseNumber<int>(takeField(text, ':'));
    const auto rect = parseRect(takeField(text, ':'));
    if (!page || *page < 1 || !rect || !coversSomeOfThePage(*rect)) {
        return std::nullopt;
    }
    if (!namesStyle) {
        return BoxArgument{*page, *rect, std::nullopt};
    }
    const auto style = redactionStyle(text);
    if (!style) {
        return std::nullopt;
    }
    return BoxArgument{*page, *rect, style};
}

std::optional<PIIKinds> parseKinds(std::string_view text) {
    if (text == allWord) {
        return PIIKinds(allPIIKinds.begin(), allPIIKinds.end());
    }
    PIIKinds kinds;
    for (auto fields = std::ranges::count(text, ',') + 1; fields > 0; --fields) {
        const auto kind = piiKind(takeField(text, ','));
        if (!kind) {
            return std::nullopt;
        }
        kinds.insert(*kind);
    }
    return kinds;
}

Command parseArguments(int argc, const char* const* argv) {
    CLI::App app("Redacts images and PDFs: what lies under a box is destroyed, not hidden.",
                 "murkwell-cli");
    app.require_subcommand(1);
    app.set_version_flag("--version", "murkwell-cli " MURKWELL_VERSION);

    RedactOptions redact;
    auto* const redactCommand =
        app.add_subcommand("redact", "Cover boxes and write flattened files");
    redact.addTo(*redactCommand);

    ScanOptions scan;
    auto* const scanCommand =
        app.add_subcommand("scan", "Print what would be covered as JSON lines");
    scan.addTo(*scanCommand);

    TextOptions text;
    auto* const textCommand = app.add_subcommand("text", "Print recognised lines as JSON lines");
    text.addTo(*textCommand);

    std::vector<std::string> infoSources;
    PasswordOption infoPassword;
    auto* const infoCommand = app.add_subcommand("info", "Print type and page sizes as JSON lines");
    infoCommand->add_option("SOURCE", infoSources, "Images, PDFs and saved documents")->required();
    infoPassword.addTo(*infoCommand);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return endingOf(app, error);
    }
    if (redactCommand->parsed()) {
        return redact.checked();
    }
    if (scanCommand->parsed()) {
        return scan.checked();
    }
    if (textCommand->parsed()) {
        return text.checked();
    }
    return InfoArguments{paths(infoSources), infoPassword.checked()};
}

} // namespace murkwell::cli
