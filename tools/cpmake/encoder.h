// WBXML 1.3 encoding of a provisioning document (public id 0x0B, UTF-8).
#ifndef CPMAKE_ENCODER_H
#define CPMAKE_ENCODER_H

#include <string>
#include <vector>

#include "xmldoc.h"

namespace cpmake {

using Bytes = std::vector<unsigned char>;

struct EncodeOptions {
    // Strings used more than once go into the string table and are referenced
    // from there; otherwise every string is inline.
    bool string_table = false;
};

// The WBXML body. Names without a token are written as inline names; those
// the handset does not know by their text either are reported in `warnings`
// as "LINE:COL: warning: text" (when `warnings` is not null).
Bytes EncodeBody(const Node &doc, const EncodeOptions &options, std::vector<std::string> *warnings);

// Appends a WBXML multi-byte integer.
void AppendMbUint32(Bytes &out, unsigned long value);

}  // namespace cpmake

#endif  // CPMAKE_ENCODER_H
