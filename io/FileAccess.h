// Whole files in and out.
#pragma once

#include "core/SharedBytes.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>

namespace murkwell {

// None when the location is no readable regular file or does not fit into memory.
[[nodiscard]] std::optional<SharedBytes> readFile(const std::filesystem::path& location);

// Where a file is to be written.
struct Destination {
    Destination(std::filesystem::path place, bool replaces = true)
        : location(std::move(place)), mayReplace(replaces) {}

    bool operator==(const Destination&) const = default;

    std::filesystem::path location;
    // Otherwise writing fails when there is a file, also one that has only just come.
    bool mayReplace;
};

// Whether writing there would replace a file. What is no file, and what this process has open
// (/dev/stdout), is written to instead.
[[nodiscard]] bool replacesFile(const std::filesystem::path& location);

// Makes or replaces a file as a whole: it holds either its old bytes or all the new ones, also
// after a power cut. A replaced file keeps its owner, group, rights and access list as far as the
// system allows, but no right to run as its owner. A symbolic link stays and what it leads to is
// replaced; one that leads nowhere is a failure. False on any failure, and the file is then as it
// was.
//
// A file in a folder that takes no new ones is overwritten where it is, and a device, a pipe or an
// open file (/dev/stdout) is written to; a failure may leave those half written.
[[nodiscard]] bool writeFileAtomically(const Destination& destination,
                                       std::span<const std::byte> bytes);

// The same for a file that holds the other one's content among its parts, which are written one
// after the other: nobody may read it who may not read the other. Where there was none it is for
// its owner alone.
[[nodiscard]] bool writeContainerAtomically(const Destination& destination,
                                            const std::filesystem::path& contained,
                                            std::span<const std::span<const std::byte>> parts);

} // namespace murkwell
