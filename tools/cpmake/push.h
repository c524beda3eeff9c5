// The connectionless WSP push PDU around a provisioning body.
#ifndef CPMAKE_PUSH_H
#define CPMAKE_PUSH_H

#include <optional>
#include <string>

#include "encoder.h"

namespace cpmake {

struct PushOptions {
    unsigned char tid = 1;
    std::optional<unsigned char> sec;  // the SEC parameter's value (0x80 NETWPIN ...)
    std::string mac;                   // the MAC parameter's text; empty for none
};

// Transaction id, PDU type Push, header length, content type
// application/vnd.wap.connectivity-wbxml, SEC and MAC, then the body. With
// parameters the content type takes the general form (length quote, length).
Bytes WrapPush(const Bytes &body, const PushOptions &options);

}  // namespace cpmake

#endif  // CPMAKE_PUSH_H
