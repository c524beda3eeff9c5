// MAC keys against the corpus's known answers, the verdicts, and the SMS
// reader against the tests' own writer and against damaged TPDUs.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "pushkey.h"
#include "sms.h"
#include "sms_encode.h"

namespace cpcommon {
namespace {

Credentials Imsi(const char *imsi) {
    return {std::nullopt, imsi};
}

// An odd number of digits is in the NETWPIN known answers below.
TEST(MacKey, EvenImsiAndValidity) {
    EXPECT_EQ(ImsiKey("1234"), (Bytes{0x11, 0x32, 0xF4}));  // 1 before, F after
    for (const char *bad : {"", "1234567890123456", "46692310314525a", "+466923"})
        EXPECT_FALSE(ValidImsi(bad)) << bad;
}

// SOURCES.md "verified" NETWPIN rows of the bodies as the table's first and
// last digits (moz-empty-doc-netwpin's is whole below; USERPIN MACs of whole
// PDUs go through cpdump, and cpmake's test rebuilds the USERPIN 1234 .mac.pdu).
TEST(MacKey, CorpusKnownAnswers) {
    const struct {
        const char *body, *imsi, *head, *tail;
    } cases[] = {
        {"apnprov-ref-myapn.wbxml", "001010123456789", "BB9603D3", "01DA695F"},
        {"apnprov-hiweb.wbxml", "432129951539038", "346A77EC", "63F0E9EB"},
    };
    for (const auto &c : cases) {
        std::ifstream in(std::string(CPCOMMON_CORPUS_DIR) + "/" + c.body, std::ios::binary);
        const Bytes body(std::istreambuf_iterator<char>(in), {});
        ASSERT_FALSE(body.empty()) << c.body;
        Bytes key;
        ASSERT_EQ(MacKey(kSecNetwPin, Imsi(c.imsi), &key), KeyStatus::kOk);
        const std::string mac = MacText(key, body.data(), body.size());
        ASSERT_EQ(mac.size(), 40u);
        EXPECT_EQ(mac.substr(0, 8), c.head) << c.body;
        EXPECT_EQ(mac.substr(40 - std::strlen(c.tail)), c.tail) << c.body;
    }
}

// The CLI tests show the other ways to a verdict: no credentials, a wrong MAC,
// a missing MAC and a missing IMSI.
TEST(Authenticate, EveryVerdict) {
    const Bytes body = {0x03, 0x0B, 0x6A, 0x00, 0x45, 0x01};  // moz-empty-doc-netwpin
    const std::string netwpin = "1AF545FE2823DC9347064450F90FF1BBF957E146";
    // USERNETWPIN: IMSI key then "1234", by an independent HMAC.
    const std::string usernetwpin = "3DBC50BB7BACAE901461F5ECCB0ADB1F71B58D02";
    const std::string lower = "1af545fe2823dc9347064450f90ff1bbf957e146";
    const Credentials both = {"1234", "466923103145252"};
    const struct {
        std::uint64_t sec;
        std::string mac;
        Credentials credentials;
        Authentication result;
    } cases[] = {
        {kSecNetwPin, netwpin, Imsi("466923103145252"), Authentication::kAuthentic},
        {kSecNetwPin, lower, Imsi("466923103145252"), Authentication::kAuthentic},
        {kSecNetwPin, netwpin.substr(0, 39), Imsi("466923103145252"), Authentication::kNotAuthentic},
        {kSecUserNetwPin, usernetwpin, both, Authentication::kAuthentic},
        {0, netwpin, both, Authentication::kNotSigned},
        {kSecUserPinMac, netwpin, both, Authentication::kUnsupported},
        {kSecUserPin, netwpin, Imsi("466923103145252"), Authentication::kCredentialMissing},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(Authenticate(c.sec, c.mac, body.data(), body.size(), c.credentials), c.result)
            << std::hex << c.sec << " " << c.mac << " " << AuthenticationText(c.result);
    }
    std::uint8_t sec = 0;
    EXPECT_TRUE(SecFromName("usernetwpin", &sec));
    EXPECT_EQ(sec, kSecUserNetwPin);
    EXPECT_FALSE(SecFromName("USERPI", &sec));
}

TEST(Sms, EightBitCodingOnly) {
    for (std::uint8_t dcs : {0x04, 0x14, 0x44, 0xF4, 0xF5}) EXPECT_TRUE(EightBitCoding(dcs)) << int(dcs);
    for (std::uint8_t dcs : {0x00, 0x08, 0x24, 0x0C, 0xC4, 0xD4, 0xF0, 0xF1})
        EXPECT_FALSE(EightBitCoding(dcs)) << int(dcs);
}

// `message` as the encoder cuts it, WAP push ports and concatenation in each.
std::vector<SmsSegment> Segments(const Bytes &message, std::size_t max_user_data, SmsKind kind) {
    SmsAddress address;
    AddressFromNumber("+31628870634", &address);
    std::vector<SmsSegment> segments;
    std::string error;
    EXPECT_TRUE(SegmentPush(message, kind, address, 0x18, max_user_data, &segments, &error)) << error;
    return segments;
}

// What the corpus round trip through cpdump does not write: 16-bit references
// and a SUBMIT's validity period; read back field for field and joined from the
// last segment to the first.
TEST(Sms, WrittenSegmentsReadBackAndJoinInAnyOrder) {
    Bytes message(300);
    for (std::size_t i = 0; i < message.size(); ++i) message[i] = static_cast<unsigned char>(i * 7);
    std::vector<SmsSegment> written = Segments(message, 140, SmsKind::kSubmit), read;
    ASSERT_EQ(written.size(), 3u);
    for (auto it = written.rbegin(); it != written.rend(); ++it) {
        it->ref16 = true;
        it->ref = 0x1234;
        Bytes tpdu = EncodeTpdu(*it, 0);
        tpdu[0] |= 0x10;  // a one-byte relative validity period after the DCS
        tpdu.insert(tpdu.begin() + 4 + (tpdu[2] + 1) / 2 + 2, 0xA7);
        SmsSegment s;
        std::string error;
        ASSERT_TRUE(ParseTpdu(tpdu, &s, &error)) << error;
        EXPECT_EQ(s, *it);
        read.push_back(s);
    }
    Bytes joined;
    std::string error;
    ASSERT_TRUE(JoinSegments(read, &joined, &error)) << error;
    EXPECT_EQ(joined, message);
}

// A 7-bit data coding is refused in cpdump's CLI test (ModemCapturesAndBrokenSegmentSets).
TEST(Sms, DamagedTpduSaysWhy) {
    const SmsSegment good = Segments(Bytes(10, 0xAB), 140, SmsKind::kDeliver)[0];
    const Bytes tpdu = EncodeTpdu(good, 0);  // UDH at 19: 06 05 04 0B 84 23 F0
    auto with = [&](std::size_t at, unsigned char value) {
        Bytes t = tpdu;
        t[at] = value;
        return t;
    };
    SmsSegment concat = good;
    concat.concatenated = true;
    concat.total = 2;
    Bytes bad_seq = EncodeTpdu(concat, 0);
    bad_seq[bad_seq.size() - 11] = 0;  // its sequence number
    const struct {
        Bytes tpdu;
        const char *error;
    } cases[] = {
        {with(0, 0x06), "message type 2 is neither SMS-DELIVER nor SMS-SUBMIT"},
        {with(18, 0x20), "user data length 32, but 17 bytes follow"},  // the UDL
        {Bytes(tpdu.begin(), tpdu.begin() + 12), "ends inside the time stamp"},
        {with(22, 0x80), "destination port 32900 is not a WAP push port (2948 or 2949)"},
        {with(21, 0x03), "user data header element 0x05 of 3 bytes, not 4"},
        {with(21, 0x05), "user data header element 0x05 runs past the header"},
        {with(19, 0x20), "user data header longer than the user data"},
        {bad_seq, "segment number 0 of 2 is out of range"},
    };
    for (const auto &c : cases) {
        SmsSegment s;
        std::string error;
        EXPECT_FALSE(ParseTpdu(c.tpdu, &s, &error)) << c.error;
        EXPECT_EQ(error, c.error);
    }
}

// A set missing one segment, and one repeating a segment, are in cpdump's CLI test.
TEST(Sms, JoinRefusesForeignRepeatedAndMissingSegments) {
    const std::vector<SmsSegment> three = Segments(Bytes(30, 1), 22, SmsKind::kDeliver);
    std::vector<SmsSegment> other_ref = three, other_kind = three;
    other_ref[2].ref = 0x19;
    other_kind[1].kind = SmsKind::kSubmit;
    const std::vector<SmsSegment> whole = Segments(Bytes(5, 1), 22, SmsKind::kDeliver);
    const struct {
        std::vector<SmsSegment> segments;
        const char *error;
    } cases[] = {
        {{}, "no SMS given"},
        {{three[1]}, "segments 1 and 3 of 3 are missing"},
        {other_ref, "SMS 3 belongs to another message than SMS 1 (reference 25, not 24)"},
        {other_kind, "SMS 2 belongs to another message than SMS 1 (SMS-DELIVER and SMS-SUBMIT)"},
        {{three[0], whole[0]}, "SMS 2 belongs to another message than SMS 1 (a whole message and a segment)"},
        {{whole[0], three[0]}, "SMS 1 is a whole message, yet 2 SMS were given"},
    };
    for (const auto &c : cases) {
        Bytes joined;
        std::string error;
        EXPECT_FALSE(JoinSegments(c.segments, &joined, &error)) << c.error;
        EXPECT_EQ(error, c.error);
    }
}

}  // namespace
}  // namespace cpcommon
