// Writing a WAP push as SMS: SMS-DELIVER or SMS-SUBMIT TPDUs with 8-bit data,
// WDP port addressing to 2948 and, when one SMS is not enough, concatenation.
#ifndef CPCOMMON_SMS_ENCODE_H
#define CPCOMMON_SMS_ENCODE_H

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "sms.h"

namespace cpcommon {

// WDP source port of connectionless WSP.
constexpr std::uint16_t kWspSourcePort = 9200;

// "+4915112345678" (international) or "12345" (unknown type); false for
// anything else or more than 20 digits.
bool AddressFromNumber(std::string_view number, SmsAddress *address);

// The push cut into segments of at most `max_user_data` octets of user data
// each, header included (140 fits one SMS). False when it needs more than 255.
bool SegmentPush(const Bytes &pdu, SmsKind kind, const SmsAddress &address, std::uint8_t ref,
                 std::size_t max_user_data, std::vector<SmsSegment> *segments, std::string *error);

// One TPDU, without an SMSC field. A DELIVER carries `when` as its service
// centre time stamp (UTC); a SUBMIT has no validity period.
Bytes EncodeTpdu(const SmsSegment &segment, std::time_t when);

}  // namespace cpcommon

#endif  // CPCOMMON_SMS_ENCODE_H
