// SMS transport of a WAP push: reading SMS-DELIVER and SMS-SUBMIT TPDUs
// (8-bit data, user data header with WAP ports and concatenation) and joining
// the segments of one message. The segment record is also what an encoder
// fills to write TPDUs.
#ifndef CPCOMMON_SMS_H
#define CPCOMMON_SMS_H

#include <cstdint>
#include <string>
#include <vector>

#include "pushkey.h"

namespace cpcommon {

// WDP ports of connectionless WSP: plain and secure push.
constexpr std::uint16_t kWapPushPort = 2948;
constexpr std::uint16_t kWapPushSecurePort = 2949;

enum class SmsKind { kDeliver, kSubmit };

// An address field as it stands in the TPDU.
struct SmsAddress {
    std::uint8_t digits = 0;   // the length byte: count of semi-octets
    std::uint8_t type = 0x91;  // type of address (0x91 international)
    Bytes octets;              // two semi-octets a byte, the first in the low nibble
    bool operator==(const SmsAddress &) const = default;
};

struct SmsSegment {
    SmsKind kind = SmsKind::kDeliver;
    SmsAddress address;  // originator of a DELIVER, destination of a SUBMIT
    std::uint8_t pid = 0;
    std::uint8_t dcs = 0x04;
    bool has_ports = false;  // IEI 0x05 (or 0x04)
    std::uint16_t dst_port = 0, src_port = 0;
    bool concatenated = false;  // IEI 0x00 or 0x08
    bool ref16 = false;         // the reference is 16-bit (IEI 0x08)
    std::uint16_t ref = 0;
    std::uint8_t total = 1, seq = 1;  // seq counts from 1
    Bytes data;                       // user data after the header
    bool operator==(const SmsSegment &) const = default;
};

// True when the data coding scheme announces 8-bit data, the only coding a
// binary WAP push can travel in.
bool EightBitCoding(std::uint8_t dcs);

// Reads one TPDU, with or without the SMSC address in front (the form that
// accounts for every byte wins; when both do, the one with the SMSC address,
// which is how modems print them). Refuses other message types, any coding
// but 8-bit, a broken user data header and WDP ports other than 2948/2949.
bool ParseTpdu(const Bytes &tpdu, SmsSegment *out, std::string *error);

// Joins the user data of the segments of one message in segment order,
// whatever order they are given in. A single segment without concatenation is
// a whole message. Missing, repeated or foreign segments are refused, naming
// the SMS by its 1-based place in `segments`.
bool JoinSegments(const std::vector<SmsSegment> &segments, Bytes *message, std::string *error);

}  // namespace cpcommon

#endif  // CPCOMMON_SMS_H
