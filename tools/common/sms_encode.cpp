#include "sms_encode.h"

namespace cpcommon {
namespace {

constexpr std::uint8_t kUdhi = 0x40;
constexpr std::uint8_t kDeliverNoMoreMessages = 0x04;  // TP-MTI 0, TP-MMS set
constexpr std::uint8_t kSubmit = 0x01;                 // TP-MTI 1, no validity period
constexpr std::uint8_t kEightBit = 0x04;
constexpr std::size_t kPortsElement = 6;   // 05 04 dst dst src src
constexpr std::size_t kConcatElement = 5;  // 00 03 ref total seq

std::uint8_t SemiOctets(int value) {
    return static_cast<std::uint8_t>((value % 10) << 4 | (value / 10 % 10));
}

}  // namespace

bool AddressFromNumber(std::string_view number, SmsAddress *address) {
    SmsAddress a;
    a.type = 0x81;
    if (!number.empty() && number[0] == '+') {
        a.type = 0x91;
        number.remove_prefix(1);
    }
    if (number.empty() || number.size() > 20) return false;
    for (std::size_t i = 0; i < number.size(); ++i) {
        const char c = number[i];
        if (c < '0' || c > '9') return false;
        if (i % 2 == 0) {
            a.octets.push_back(static_cast<unsigned char>(0xF0 | (c - '0')));
        } else {
            a.octets.back() = static_cast<unsigned char>((a.octets.back() & 0x0F) | (c - '0') << 4);
        }
    }
    a.digits = static_cast<std::uint8_t>(number.size());
    *address = a;
    return true;
}

bool SegmentPush(const Bytes &pdu, SmsKind kind, const SmsAddress &address, std::uint8_t ref,
                 std::size_t max_user_data, std::vector<SmsSegment> *segments, std::string *error) {
    const std::size_t single = max_user_data > 1 + kPortsElement ? max_user_data - 1 - kPortsElement : 0;
    const bool concatenated = pdu.size() > single;
    const std::size_t room = concatenated && max_user_data > 1 + kPortsElement + kConcatElement
                                 ? max_user_data - 1 - kPortsElement - kConcatElement
                                 : single;
    if (room == 0) {
        *error = "no room for data in " + std::to_string(max_user_data) + " octets of user data";
        return false;
    }
    const std::size_t count = pdu.empty() ? 1 : (pdu.size() + room - 1) / room;
    if (count > 255) {
        *error = "the push needs " + std::to_string(count) + " SMS; at most 255 can be joined";
        return false;
    }
    segments->clear();
    for (std::size_t i = 0; i < count; ++i) {
        SmsSegment s;
        s.kind = kind;
        s.address = address;
        s.dcs = kEightBit;
        s.has_ports = true;
        s.dst_port = kWapPushPort;
        s.src_port = kWspSourcePort;
        s.concatenated = concatenated;
        s.ref = ref;
        s.total = static_cast<std::uint8_t>(count);
        s.seq = static_cast<std::uint8_t>(i + 1);
        const std::size_t end = std::min(pdu.size(), (i + 1) * room);
        s.data.assign(pdu.begin() + static_cast<std::ptrdiff_t>(i * room),
                      pdu.begin() + static_cast<std::ptrdiff_t>(end));
        segments->push_back(std::move(s));
    }
    return true;
}

Bytes EncodeTpdu(const SmsSegment &s, std::time_t when) {
    Bytes udh;
    if (s.has_ports) {
        udh.insert(
            udh.end(),
            {0x05, 0x04, static_cast<unsigned char>(s.dst_port >> 8), static_cast<unsigned char>(s.dst_port),
             static_cast<unsigned char>(s.src_port >> 8), static_cast<unsigned char>(s.src_port)});
    }
    if (s.concatenated) {
        if (s.ref16) {
            udh.insert(udh.end(), {0x08, 0x04, static_cast<unsigned char>(s.ref >> 8)});
        } else {
            udh.insert(udh.end(), {0x00, 0x03});
        }
        udh.insert(udh.end(), {static_cast<unsigned char>(s.ref), s.total, s.seq});
    }
    const bool deliver = s.kind == SmsKind::kDeliver;
    Bytes t = {
        static_cast<unsigned char>((deliver ? kDeliverNoMoreMessages : kSubmit) | (udh.empty() ? 0 : kUdhi))};
    if (!deliver) t.push_back(0);  // message reference: the modem sets its own
    t.insert(t.end(), {s.address.digits, s.address.type});
    t.insert(t.end(), s.address.octets.begin(), s.address.octets.end());
    t.insert(t.end(), {s.pid, s.dcs});
    if (deliver) {
        std::tm utc{};
        gmtime_r(&when, &utc);
        for (int v : {utc.tm_year % 100, utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec})
            t.push_back(SemiOctets(v));
        t.push_back(0);  // time zone: UTC
    }
    t.push_back(static_cast<unsigned char>((udh.empty() ? 0 : 1 + udh.size()) + s.data.size()));
    if (!udh.empty()) {
        t.push_back(static_cast<unsigned char>(udh.size()));
        t.insert(t.end(), udh.begin(), udh.end());
    }
    t.insert(t.end(), s.data.begin(), s.data.end());
    return t;
}

}  // namespace cpcommon
