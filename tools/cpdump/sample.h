// The built-in sample push, decoded when cpdump is run without input.
#ifndef CPDUMP_SAMPLE_H
#define CPDUMP_SAMPLE_H

#include "input.h"

namespace cpdump {

// The whole PDU: push header with a USERPIN MAC, then the WBXML body.
const Bytes &SamplePush();

}  // namespace cpdump

#endif  // CPDUMP_SAMPLE_H
