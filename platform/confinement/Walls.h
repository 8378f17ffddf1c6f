// The walls around a worker that may be missing; added up.
#pragma once

namespace murkwell::Walls {

constexpr int limits = 1; // of memory, files and descriptors
constexpr int files = 2;  // Landlock
constexpr int calls = 4;  // seccomp

} // namespace murkwell::Walls
