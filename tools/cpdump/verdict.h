// The verdict on a refused push, in words a person understands: the library
// only says "null", so the reasons are read off the bytes and the decoder.
#ifndef CPDUMP_VERDICT_H
#define CPDUMP_VERDICT_H

#include <cstdint>
#include <string>

#include "diagnosis.h"
#include "input.h"
#include "tqstypes.h"

namespace cpdump {

// "0x0B": a code as the messages and the JSON show it.
std::string Hex(std::uint64_t v, int width = 2);

// What the decoder pieces report about a body.
struct WbxmlFacts {
    bool header_ok = false;
    std::uint8_t version = 0;
    std::uint32_t public_id = 0;
    std::uint32_t charset = 0;
    std::uint32_t string_table_length = 0;
    std::string literal;  // string table start, for a literal public identifier
};

// Why the header parser refused a PDU.
std::string ExplainHeaderRejection(const Bytes &pdu);

// Why the decoder main refused a body, and where: `body_start` is the body's
// offset in the PDU, negative when there is no PDU around it.
std::string ExplainBodyRejection(const WbxmlFacts &facts, const Diagnosis &diagnosis, long body_start);

}  // namespace cpdump

#endif  // CPDUMP_VERDICT_H
