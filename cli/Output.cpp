#include "cli/Output.h"

#include "core/Localization.h"
#include "io/FileName.h"
#include "model/DocumentRemarks.h"

#include <iostream>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace murkwell::cli {
namespace {

constexpr std::string_view clearLine = "\r\033[K";

} // namespace

void printJson(const nlohmann::ordered_json& line) {
    using Json = nlohmann::ordered_json;
    constexpr int onOneLine = -1;
    constexpr bool escapeNonAscii = false;
    std::cout << line.dump(onOneLine, ' ', escapeNonAscii, Json::error_handler_t::replace)
              << std::endl;
}

void printFailure(std::string_view message) {
    std::cerr << message << std::endl;
}

void printRemarks(const std::filesystem::path& file, const DocumentIO::Document& document) {
    for (const std::string& remark : remarksOn(document)) {
        printFailure(lastPathComponent(file) + ": " + remark);
    }
}

std::string alreadyThere(const std::filesystem::path& file) {
    return localized("Couldn’t write to “%@”. It is there already; --force replaces it, but not "
                     "with two sources.",
                     {lastPathComponent(file)});
}

std::string boxTooSmall(const std::filesystem::path& file) {
    return localized("A box for “%@” is too small.", {lastPathComponent(file)});
}

std::string noSuchPage(const std::filesystem::path& file, int page, std::size_t pageCount) {
    return localized("“%@” has no page %d; its last page is %d.",
                     {lastPathComponent(file), page, pageCount});
}

Progress::Progress(std::size_t fileCount)
    : count(fileCount), watched(fileCount > 1 && ::isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    if (watched) {
        std::cerr << clearLine << std::flush;
    }
}

void Progress::begin(const std::filesystem::path& file) {
    ++begun;
    if (watched) {
        std::cerr << clearLine << '[' << begun << '/' << count << "] " << lastPathComponent(file)
                  << std::flush;
    }
}

} // namespace murkwell::cli
