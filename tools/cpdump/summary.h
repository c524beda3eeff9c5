// A short view of a decoded push for a person: what a settings dialog would
// show of each access point, proxy and application.
#ifndef CPDUMP_SUMMARY_H
#define CPDUMP_SUMMARY_H

#include <string>

#include "tqsClientProvCtx.h"

namespace cpdump {

// Appends one heading line per record with its key values indented below.
void WriteSummary(std::string *out, const tqsClientProvCtx &ctx);

}  // namespace cpdump

#endif  // CPDUMP_SUMMARY_H
