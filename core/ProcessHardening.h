// What a program does before it touches anybody's files.
#pragma once

namespace murkwell {

// Keeps the pages and sources that this process holds out of core dumps, the descriptors of
// standard input, output and error out of the hands of files that are opened later, and turns
// writing to a closed pipe or beyond the allowed size into an ordinary failure. To be called before
// other threads run.
void hardenProcess();

} // namespace murkwell
