// The cpdump program: options, the library pipeline, and the verdict.
#ifndef CPDUMP_CPDUMP_H
#define CPDUMP_CPDUMP_H

#include <string>

#include "input.h"

namespace cpdump {

// Exit statuses.
constexpr int kExitDecoded = 0;
constexpr int kExitRejected = 1;
constexpr int kExitUsage = 2;
constexpr int kExitNotAuthentic = 3;  // with --require-authentic

// Runs the whole program; returns the exit status.
int Main(int argc, char **argv);

}  // namespace cpdump

#endif  // CPDUMP_CPDUMP_H
