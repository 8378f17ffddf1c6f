#include "cli/Output.h"

#include "core/Localization.h"
#include "io/FileName.h"
#include "io/Unicode.h"
#include "model/DocumentRemarks.h"

#include <iostream>
#include <nlohmann/json.hpp>
#include <unistd.h>
#include <utility>

namespace murkwell::cli {
namespace {

constexpr std::string_view clearLine = "\r\033[K";

// JSON lets DEL and the control characters from U+0080 to U+009F stand for themselves, a terminal
// does not. They can only stand in strings, where each may be written as its number.
std::string withoutControlCharacters(std::string_view json) {
    constexpr char firstOfTwo = '\xC2';
    std::string result;
    for (std::size_t i = 0; i < json.size(); ++i) {
        if (json[i] == '\x7F') {
            result += "\\u007f";
        } else if (json[i] == firstOfTwo && static_cast<unsigned char>(json[i + 1]) < 0xA0) {
            result += json[++i] < '\x90' ? "\\u008" : "\\u009";
            result += "0123456789abcdef"[json[i] & 0xF];
        } else {
            result += json[i];
        }
    }
    return result;
}

// What stands on the terminal's last line for the time being.
bool showsProgress = false;

} // namespace

std::optional<std::string> printJson(const nlohmann::ordered_json& line) {
    using Json = nlohmann::ordered_json;
    constexpr int onOneLine = -1;
    constexpr bool escapeNonAscii = false;
    clearProgress();
    std::cout << withoutControlCharacters(
                     line.dump(onOneLine, ' ', escapeNonAscii, Json::error_handler_t::replace))
              << std::endl;
    return resultsAreRead() ? std::nullopt
                            : std::optional(localized("Couldn’t write to standard output."));
}

bool resultsAreRead() {
    return std::cout.good();
}

void printFailure(std::string_view message) {
    clearProgress();
    std::cerr << printable(message) << std::endl;
}

void printRemarks(const std::filesystem::path& file, const DocumentIO::Document& document) {
    for (const std::string& remark : remarksOn(document)) {
        printFailure(shownName(file) + ": " + remark);
    }
}

std::string noPasswordIn(const std::filesystem::path& file) {
    return localized("Couldn’t read a password from “%@”.", {shownName(file)});
}

std::string alreadyThere(const std::filesystem::path& file) {
    return localized("Couldn’t write to “%@”. It is there already; --force replaces it.",
                     {shownName(file)});
}

std::string wouldBeLost(const std::filesystem::path& target) {
    return localized("Couldn’t write to “%@”. It is one of the sources, or written twice; nothing "
                     "was written.",
                     {shownName(target)});
}

std::string boxTooSmall(const std::filesystem::path& file) {
    return localized("A box for “%@” is too small.", {shownName(file)});
}

std::string ofFile(const std::filesystem::path& file, std::string_view message) {
    return localized("“%@”: %@", {lastPathComponent(file), message});
}

std::string namingFile(const std::filesystem::path& file, const std::string& message) {
    return message.find(shownName(file)) == std::string::npos ? ofFile(file, message) : message;
}

std::string noKindToWrite(const std::filesystem::path& file) {
    return localized("“%@” does not say what kind of file to write; name one with -o.",
                     {shownName(file)});
}

std::string noSuchPage(const std::filesystem::path& file, int page, std::size_t pageCount) {
    return localized("“%@” has no page %d; its last page is %d.",
                     {shownName(file), page, pageCount});
}

void clearProgress() {
    if (std::exchange(showsProgress, false)) {
        std::cerr << clearLine << std::flush;
    }
}

Progress::Progress(std::size_t fileCount)
    : count(fileCount), watched(fileCount > 1 && ::isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    clearProgress();
}

void Progress::begin(const std::filesystem::path& file) {
    ++begun;
    clearProgress();
    if (watched) {
        showsProgress = true;
        std::cerr << '[' << begun << '/' << count << "] " << shownName(file) << std::flush;
    }
}

} // namespace murkwell::cli
