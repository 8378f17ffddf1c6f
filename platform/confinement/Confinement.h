// The walls around a worker, from the worker's side. Each one that the kernel does not offer is
// left out and reported.
#pragma once

#include "platform/confinement/Profiles.h"
#include "platform/confinement/Walls.h"

namespace murkwell {

// First thing in main(), since it binds the calling thread and those that this one starts: the
// process ends with the thread of the program that started it, writes no core and no file, is the
// first to go when the machine's memory runs out, gains no rights, and reads what its profile names
// and nothing else. Answers with the walls that are missing.
[[nodiscard]] int restrain(const Profile& profile);

// When all is loaded, for all threads: no file, no socket, no program, no other process, no code
// that was not there before. Answers with the walls that are missing.
[[nodiscard]] int enclose(const Profile& profile);

} // namespace murkwell
