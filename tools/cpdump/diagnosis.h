// Where and why the library refused a body: the decoder is run once more over
// it with its trace captured; its read position says where it stopped, and
// its own trace lines say in which characteristic and parm, and what it took
// the byte there for.
#ifndef CPDUMP_DIAGNOSIS_H
#define CPDUMP_DIAGNOSIS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tqstypes.h"

namespace cpdump {

struct Diagnosis {
    TqsResult status = TQS_OK;
    bool empty_document = false;  // decoded, but without a characteristic list
    std::uint32_t offset = 0;     // in the body: the byte refused, or its length when it ran out
    bool at_end = false;          // the body ran out there
    unsigned char byte = 0;       // the byte refused
    const char *token = nullptr;  // its name when it is one of WBXML's global tokens
    std::string path;             // characteristic types, then the parm: "PXLOGICAL/PXPHYSICAL/PXADDR"
    std::string what;             // what the decoder took the byte for, in words
};

// Reads the trace lines of a decode that ended with `status`; `consumed` is
// the decoder's read position when it gave up, `length` the body's size.
Diagnosis ReadTrace(const std::vector<std::string> &lines, TqsResult status, const unsigned char *body,
                    std::uint32_t length, std::uint32_t consumed);

// Decodes `body` with the library, trace captured, and reads the trace. The
// caller's trace sink is put back afterwards.
Diagnosis Diagnose(const unsigned char *body, std::uint32_t length);

}  // namespace cpdump

#endif  // CPDUMP_DIAGNOSIS_H
