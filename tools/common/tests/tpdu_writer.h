// The tests' own TPDU writer: the few lines of encoding that let them feed
// the reader every shape it accepts.
#ifndef CPCOMMON_TESTS_TPDU_WRITER_H
#define CPCOMMON_TESTS_TPDU_WRITER_H

#include <vector>

#include "sms.h"

namespace cpcommon::test {

// `segment` as a TPDU, optionally behind the SMSC address +31 624 000 000.
inline Bytes WriteTpdu(const SmsSegment &s, bool smsc) {
    Bytes udh;
    if (s.has_ports)
        udh.insert(
            udh.end(),
            {0x05, 0x04, static_cast<unsigned char>(s.dst_port >> 8), static_cast<unsigned char>(s.dst_port),
             static_cast<unsigned char>(s.src_port >> 8), static_cast<unsigned char>(s.src_port)});
    if (s.concatenated && s.ref16)
        udh.insert(udh.end(), {0x08, 0x04, static_cast<unsigned char>(s.ref >> 8),
                               static_cast<unsigned char>(s.ref), s.total, s.seq});
    if (s.concatenated && !s.ref16)
        udh.insert(udh.end(), {0x00, 0x03, static_cast<unsigned char>(s.ref), s.total, s.seq});
    Bytes t;
    if (smsc) t = {0x07, 0x91, 0x13, 0x26, 0x04, 0x00, 0x00, 0xF0};
    const bool deliver = s.kind == SmsKind::kDeliver;
    // DELIVER: no more messages; SUBMIT: relative validity period.
    t.push_back(static_cast<unsigned char>((deliver ? 0x04 : 0x11) | (udh.empty() ? 0 : 0x40)));
    if (!deliver) t.push_back(0x2A);  // message reference
    t.insert(t.end(), {s.address.digits, s.address.type});
    t.insert(t.end(), s.address.octets.begin(), s.address.octets.end());
    t.insert(t.end(), {s.pid, s.dcs});
    if (deliver) {
        t.insert(t.end(), {0x52, 0x11, 0x21, 0x10, 0x54, 0x32, 0x04});  // time stamp
    } else {
        t.push_back(0xA7);  // one day
    }
    t.push_back(static_cast<unsigned char>(udh.size() + (udh.empty() ? 0 : 1) + s.data.size()));
    if (!udh.empty()) t.push_back(static_cast<unsigned char>(udh.size()));
    t.insert(t.end(), udh.begin(), udh.end());
    t.insert(t.end(), s.data.begin(), s.data.end());
    return t;
}

// `message` cut into segments of at most `size` bytes, WAP push port and
// concatenation in each (none for a message that fits one).
inline std::vector<SmsSegment> Split(const Bytes &message, std::size_t size, SmsKind kind,
                                     bool ref16 = false) {
    std::vector<SmsSegment> out;
    const std::size_t total = (message.size() + size - 1) / size;
    for (std::size_t i = 0; i < total; ++i) {
        SmsSegment s;
        s.kind = kind;
        s.address = {11, 0x91, {0x13, 0x26, 0x88, 0x07, 0x36, 0xF4}};
        s.has_ports = true;
        s.dst_port = kWapPushPort;
        s.src_port = 9200;
        s.concatenated = total > 1;
        s.ref16 = ref16;
        s.ref = ref16 ? 0x1234 : 0x18;
        s.total = static_cast<std::uint8_t>(total);
        s.seq = static_cast<std::uint8_t>(i + 1);
        const auto from = message.begin() + static_cast<std::ptrdiff_t>(i * size);
        s.data.assign(from, from + static_cast<std::ptrdiff_t>(std::min(size, message.size() - i * size)));
        out.push_back(s);
    }
    return out;
}

}  // namespace cpcommon::test

#endif  // CPCOMMON_TESTS_TPDU_WRITER_H
