#include "sms.h"

#include <algorithm>
#include <cstdio>

namespace cpcommon {
namespace {

std::string Hex2(unsigned v) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "0x%02X", v);
    return buf;
}

// A bounded read cursor; every failed read leaves a reason in `error`.
class Reader {
   public:
    Reader(const Bytes &bytes, std::size_t at) : bytes_(bytes), at_(at) {}

    bool Byte(std::uint8_t *b, const char *what) {
        if (at_ >= bytes_.size()) return Fail(std::string("ends before the ") + what);
        *b = bytes_[at_++];
        return true;
    }
    bool Take(std::size_t n, Bytes *out, const char *what) {
        if (bytes_.size() - at_ < n) return Fail(std::string("ends inside the ") + what);
        out->assign(bytes_.begin() + static_cast<std::ptrdiff_t>(at_),
                    bytes_.begin() + static_cast<std::ptrdiff_t>(at_ + n));
        at_ += n;
        return true;
    }
    bool Skip(std::size_t n, const char *what) {
        Bytes ignored;
        return Take(n, &ignored, what);
    }
    bool Fail(std::string why) {
        error = std::move(why);
        return false;
    }
    std::size_t Left() const { return bytes_.size() - at_; }

    std::string error;

   private:
    const Bytes &bytes_;
    std::size_t at_;
};

bool ReadAddress(Reader &r, SmsAddress *a, const char *what) {
    if (!r.Byte(&a->digits, what) || !r.Byte(&a->type, what)) return false;
    if (a->digits > 20) return r.Fail(std::string(what) + " of " + std::to_string(a->digits) + " digits");
    return r.Take((a->digits + 1u) / 2, &a->octets, what);
}

// The information elements of the user data header that a push needs.
bool ReadUserDataHeader(const Bytes &udh, SmsSegment *s, std::string *error) {
    for (std::size_t i = 0; i < udh.size();) {
        if (udh.size() - i < 2 || udh.size() - i - 2 < udh[i + 1]) {
            *error = "user data header element " + Hex2(udh[i]) + " runs past the header";
            return false;
        }
        const unsigned char iei = udh[i], length = udh[i + 1];
        const unsigned char *v = udh.data() + i + 2;
        const struct { unsigned char iei, length; } kSizes[] = {{0x00, 3}, {0x08, 4}, {0x05, 4}, {0x04, 2}};
        for (const auto &known : kSizes) {
            if (iei == known.iei && length != known.length) {
                *error = "user data header element " + Hex2(iei) + " of " + std::to_string(length) +
                         " bytes, not " + std::to_string(known.length);
                return false;
            }
        }
        if (iei == 0x00 || iei == 0x08) {
            s->concatenated = true;
            s->ref16 = iei == 0x08;
            s->ref = s->ref16 ? static_cast<std::uint16_t>(v[0] << 8 | v[1]) : v[0];
            s->total = v[length - 2];
            s->seq = v[length - 1];
            if (s->total == 0 || s->seq == 0 || s->seq > s->total) {
                *error = "segment number " + std::to_string(s->seq) + " of " + std::to_string(s->total) +
                         " is out of range";
                return false;
            }
        } else if (iei == 0x05 || iei == 0x04) {
            s->has_ports = true;
            s->dst_port = iei == 0x05 ? static_cast<std::uint16_t>(v[0] << 8 | v[1]) : v[0];
            s->src_port = iei == 0x05 ? static_cast<std::uint16_t>(v[2] << 8 | v[3]) : v[1];
        }
        i += 2u + length;
    }
    if (s->has_ports && s->dst_port != kWapPushPort && s->dst_port != kWapPushSecurePort) {
        *error = "destination port " + std::to_string(s->dst_port) + " is not a WAP push port (2948 or 2949)";
        return false;
    }
    return true;
}

// How far a reading got, so that of two failed readings the further one speaks.
struct Attempt {
    bool ok = false;
    int stage = 0;
    std::string error;
    SmsSegment segment;
};

Attempt ParseFrom(const Bytes &tpdu, std::size_t start) {
    Attempt a;
    Reader r(tpdu, start);
    SmsSegment &s = a.segment;
    auto fail = [&](std::string why) {
        a.error = why.empty() ? r.error : std::move(why);
        return a;
    };
    std::uint8_t first = 0;
    if (!r.Byte(&first, "first octet")) return fail("");
    const unsigned type = first & 0x03;
    if (type > 1)
        return fail("message type " + std::to_string(type) + " is neither SMS-DELIVER nor SMS-SUBMIT");
    s.kind = type == 0 ? SmsKind::kDeliver : SmsKind::kSubmit;
    ++a.stage;
    std::uint8_t ignored = 0;
    if (s.kind == SmsKind::kSubmit && !r.Byte(&ignored, "message reference")) return fail("");
    if (!ReadAddress(r, &s.address,
                     s.kind == SmsKind::kDeliver ? "originating address" : "destination address") ||
        !r.Byte(&s.pid, "protocol identifier") || !r.Byte(&s.dcs, "data coding scheme"))
        return fail("");
    ++a.stage;
    if (s.kind == SmsKind::kDeliver) {
        if (!r.Skip(7, "time stamp")) return fail("");
    } else {
        static constexpr std::size_t kValidity[] = {0, 7, 1, 7};  // by TP-VPF
        if (!r.Skip(kValidity[first >> 3 & 0x03], "validity period")) return fail("");
    }
    std::uint8_t length = 0;
    if (!r.Byte(&length, "user data length")) return fail("");
    ++a.stage;
    // 8-bit data counts octets; with any other coding the length would not
    // match the bytes, so the coding is judged first.
    if (!EightBitCoding(s.dcs))
        return fail("data coding " + Hex2(s.dcs) + " is not 8-bit data; only 8-bit SMS carry a WAP push");
    if (r.Left() != length) {
        return fail("user data length " + std::to_string(length) + ", but " + std::to_string(r.Left()) +
                    " bytes follow");
    }
    ++a.stage;
    Bytes ud;
    r.Take(length, &ud, "user data");
    std::size_t header = 0;
    if (first & 0x40) {
        if (ud.empty() || ud[0] + 1u > ud.size()) return fail("user data header longer than the user data");
        header = ud[0] + 1u;
        std::string why;
        if (!ReadUserDataHeader(Bytes(ud.begin() + 1, ud.begin() + static_cast<std::ptrdiff_t>(header)), &s,
                                &why))
            return fail(why);
    }
    s.data.assign(ud.begin() + static_cast<std::ptrdiff_t>(header), ud.end());
    a.ok = true;
    return a;
}

std::string SegmentNumbers(const std::vector<unsigned> &numbers) {
    std::string text;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0) text += i + 1 == numbers.size() ? " and " : ", ";
        text += std::to_string(numbers[i]);
    }
    return text;
}

// The first respect in which `b` belongs to another message than `a`; empty
// when they belong to the same one.
std::string Difference(const SmsSegment &a, const SmsSegment &b) {
    if (a.kind != b.kind) return "SMS-DELIVER and SMS-SUBMIT";
    if (a.address != b.address) return "another address";
    if (!a.concatenated || !b.concatenated) return "a whole message and a segment";
    if (a.ref16 != b.ref16 || a.ref != b.ref)
        return "reference " + std::to_string(b.ref) + ", not " + std::to_string(a.ref);
    if (a.total != b.total) return std::to_string(b.total) + " segments, not " + std::to_string(a.total);
    if (a.has_ports && b.has_ports && (a.dst_port != b.dst_port || a.src_port != b.src_port))
        return "other ports";
    return {};
}

}  // namespace

bool EightBitCoding(std::uint8_t dcs) {
    if ((dcs & 0xC0) == 0x00 || (dcs & 0xC0) == 0x40) return (dcs & 0x2C) == 0x04;  // uncompressed, 8-bit
    if ((dcs & 0xF0) == 0xF0) return (dcs & 0x04) != 0;
    return false;
}

bool ParseTpdu(const Bytes &tpdu, SmsSegment *out, std::string *error) {
    const Attempt bare = ParseFrom(tpdu, 0);
    // The SMSC field: a length byte counting the type of address and the digits.
    const bool smsc_fits = !tpdu.empty() && tpdu[0] <= 11 && tpdu[0] + 1u < tpdu.size();
    const Attempt smsc = smsc_fits ? ParseFrom(tpdu, tpdu[0] + 1u) : Attempt{};
    const Attempt &best = smsc.ok || (!bare.ok && smsc.stage > bare.stage) ? smsc : bare;
    if (!best.ok) {
        *error = best.error;
        return false;
    }
    *out = best.segment;
    return true;
}

bool JoinSegments(const std::vector<SmsSegment> &segments, Bytes *message, std::string *error) {
    if (segments.empty()) {
        *error = "no SMS given";
        return false;
    }
    const SmsSegment &first = segments[0];
    if (segments.size() == 1 && !first.concatenated) {
        *message = first.data;
        return true;
    }
    if (!first.concatenated) {
        *error = "SMS 1 is a whole message, yet " + std::to_string(segments.size()) + " SMS were given";
        return false;
    }
    std::vector<std::size_t> place(first.total + 1u, 0);  // the 1-based SMS that holds each segment
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const SmsSegment &s = segments[i];
        const std::string other = i == 0 ? std::string() : Difference(first, s);
        if (!other.empty()) {
            *error =
                "SMS " + std::to_string(i + 1) + " belongs to another message than SMS 1 (" + other + ")";
            return false;
        }
        if (place[s.seq] != 0) {
            *error = "SMS " + std::to_string(i + 1) + " repeats segment " + std::to_string(s.seq) + " of " +
                     std::to_string(s.total) + " (SMS " + std::to_string(place[s.seq]) + ")";
            return false;
        }
        place[s.seq] = i + 1;
    }
    std::vector<unsigned> missing;
    for (unsigned seq = 1; seq <= first.total; ++seq) {
        if (place[seq] == 0) missing.push_back(seq);
    }
    if (!missing.empty()) {
        *error = std::string(missing.size() == 1 ? "segment " : "segments ") + SegmentNumbers(missing) +
                 " of " + std::to_string(first.total) + (missing.size() == 1 ? " is" : " are") + " missing";
        return false;
    }
    message->clear();
    for (unsigned seq = 1; seq <= first.total; ++seq) {
        const Bytes &data = segments[place[seq] - 1].data;
        message->insert(message->end(), data.begin(), data.end());
    }
    return true;
}

}  // namespace cpcommon
