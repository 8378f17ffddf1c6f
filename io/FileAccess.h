// Whole files in and out.
#pragma once

#include "core/SharedBytes.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

namespace murkwell {

// None when the location is no readable regular file or does not fit into memory.
[[nodiscard]] std::optional<SharedBytes> readFile(const std::filesystem::path& location);

// Replaces the file at the location as a whole: it holds either its old bytes or all the new ones,
// also after a power cut. A symbolic link stays and its target is replaced; the permissions of a
// replaced file are kept. A device or pipe is written to directly. False on any failure, and the
// file is then as it was.
[[nodiscard]] bool writeFileAtomically(const std::filesystem::path& location,
                                       std::span<const std::byte> bytes);

// The same for bytes that lie in several places, one part after the other.
[[nodiscard]] bool writeFileAtomically(const std::filesystem::path& location,
                                       std::span<const std::span<const std::byte>> parts);

} // namespace murkwell
