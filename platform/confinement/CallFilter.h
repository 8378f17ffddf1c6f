// The system calls that are left to a worker.
#pragma once

namespace murkwell {

// For all threads of this process, for good: everything but memory, locks, clocks and the messages
// on descriptors that are open already is refused, and what only an attacker would try ends the
// process. False when the kernel has no such filter.
[[nodiscard]] bool filterCalls(bool startsThreads);

} // namespace murkwell
