// cpdump as a person runs it: the built binary on corpus samples, every
// option, every rejection, hex and binary input, and damaged pushes.
//
// Golden outputs live in golden/, hand-made inputs in inputs/; after a
// deliberate change of the output, regenerate the golden files with
// CPDUMP_UPDATE_GOLDEN=1 and review the diff.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "shell_run.h"
#include "sms_encode.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;
using Args = std::vector<std::string>;
using shellrun::ReadFile;
using shellrun::Result;

const fs::path kCorpus = CPDUMP_CORPUS_DIR;
const fs::path kGolden = fs::path(CPDUMP_TEST_DIR) / "golden";
const fs::path kInputs = fs::path(CPDUMP_TEST_DIR) / "inputs";

Bytes ReadBytes(const fs::path &path) {
    const std::string s = ReadFile(path);
    return Bytes(s.begin(), s.end());
}

Result RunCpdump(const Args &args, const Bytes &in = {}) {
    std::string command = "'" CPDUMP_BINARY "'";
    for (const std::string &a : args) command += " '" + a + "'";
    return shellrun::Shell(command, std::string(in.begin(), in.end()));
}

std::string Corpus(const std::string &relative) {
    return (kCorpus / relative).string();
}

Bytes Push(Bytes body) {
    body.insert(body.begin(), {0x01, 0x06, 0x03, 0xB6, 0x91, 0x80});
    return body;
}

// The checked-in outputs of whole pushes, bodies, the built-in sample and the summaries.
TEST(GoldenOutput, MatchesCheckedInOutput) {
    const std::string wifi = (kInputs / "wifi-roaming-body.hex").string();
    const struct {
        const char *name;  // file under golden/
        Args args;
    } goldens[] = {
        // Whole PDUs with the sources' own headers.
        {"ws-bank-userpin.json", {Corpus("ws-bank-userpin.pdu")}},
        {"ws-bank-userpin.header.json", {"--header-only", Corpus("ws-bank-userpin.pdu")}},
        {"br-claro-portal-charset.json", {Corpus("br-claro-portal-charset.pdu")}},
        {"ph-smart-mms-netwpin.json", {Corpus("ph-smart-mms-netwpin.pdu")}},
        {"ph-smart-mms-netwpin.xml", {"--xml", Corpus("ph-smart-mms-netwpin.pdu")}},
        {"vn-mobifone-vtv.json", {Corpus("vn-mobifone-vtv.pdu")}},
        // Bodies wrapped into PDUs by the corpus script.
        {"gaia-tef-movistar.json", {Corpus("pdus/gaia-tef-movistar.mac.pdu")}},
        {"gaia-tef-movistar.xml", {"--xml", Corpus("pdus/gaia-tef-movistar.pdu")}},
        {"moz-cht-emome-codepage1.json", {"--body", Corpus("moz-cht-emome-codepage1.wbxml")}},
        {"moz-cht-emome-codepage1.xml", {"--body", "--xml", Corpus("moz-cht-emome-codepage1.wbxml")}},
        {"sfos-sonera.json", {"--body", Corpus("sfos-sonera.wbxml")}},
        {"gaia-tef-yahoo-email.json", {"--body", Corpus("gaia-tef-yahoo-email.wbxml")}},
        {"cpc-omadm.json", {"--body", Corpus("cpc-omadm.wbxml")}},
        {"letai-mms.json", {"--body", Corpus("letai-mms.wbxml")}},
        {"lg-apn-strtable-auto.json", {"--body", Corpus("lg-apn-strtable-auto.wbxml")}},
        {"own-identity-vendor-access.json", {"--body", Corpus("own/identity-vendor-access.wbxml")}},
        {"own-identity-vendor-access.xml", {"--xml", "--body", Corpus("own/identity-vendor-access.wbxml")}},
        {"own-literal-pubid-opaque.json", {"--body", Corpus("own/literal-pubid-opaque.wbxml")}},
        // Hand-made: WI-FI and ROAMING (the corpus sample with them is refused).
        {"wifi-roaming-body.json", {"--body", wifi}},
        {"wifi-roaming-body.xml", {"--body", "--xml", wifi}},
        // The built-in sample.
        {"sample.json", {}},
        {"sample.xml", {"--xml"}},
        {"sample.summary.txt", {"--summary", "--pin=1234"}},
        {"sfos-sonera.summary.txt", {"--summary", "--body", Corpus("sfos-sonera.wbxml")}},
        {"ws-bank-userpin.summary.txt", {"--summary", "--pin=1234", Corpus("ws-bank-userpin.pdu")}},
    };
    for (const auto &g : goldens) {
        SCOPED_TRACE(g.name);
        const Result r = RunCpdump(g.args);
        EXPECT_EQ(r.exit, 0) << r.err;
        EXPECT_EQ(r.err, "");
        const fs::path golden = kGolden / g.name;
        if (std::getenv("CPDUMP_UPDATE_GOLDEN") != nullptr) std::ofstream(golden, std::ios::binary) << r.out;
        EXPECT_EQ(r.out, ReadFile(golden));
    }
}

TEST(Options, HelpAndVersion) {
    Result r = RunCpdump({"--help"});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out.rfind("Usage: cpdump [OPTION]... [FILE|-]\n", 0), 0u) << r.out;
    for (const char *option : {"--header-only", "--body", "--sms", "--pin", "--imsi", "--require-authentic",
                               "--xml", "--summary", "--trace", "--leaks", "--version"})
        EXPECT_NE(r.out.find(option), std::string::npos) << option;
    r = RunCpdump({"--version"});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out.rfind("cpdump ", 0), 0u);
    EXPECT_EQ(r.err, "");
}

TEST(Options, UsageAndFileErrorsExitWithTwo) {
    const std::vector<Args> cases = {
        {"--frobnicate"},
        {Corpus("ws-bank-userpin.pdu"), Corpus("mihini-dm-bootstrap.pdu")},
        {"--header-only", "--body"},
        {"--header-only", "--xml"},
        {"--summary", "--xml"},
        {"--body", "--pin=1234"},
        {"--sms", "--body", Corpus("ws-bank-userpin.pdu")},
        {"--sms"},
        {"--imsi", "46692310314525x"},
        {"--pin"},
        {"/nonexistent/push.pdu"},
        {kCorpus.string()},  // a folder
    };
    for (const auto &args : cases) {
        const Result r = RunCpdump(args);
        EXPECT_EQ(r.exit, 2) << args[0];
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(r.err.rfind("cpdump: ", 0), 0u) << r.err;
    }
    const Result odd = RunCpdump({"-"}, Bytes{'0', '1', ' ', '0'});
    EXPECT_EQ(odd.exit, 2);
    EXPECT_NE(odd.err.find("odd number of hex digits"), std::string::npos) << odd.err;
}

// Tracing and the leak report go to standard error and leave the output alone.
TEST(Options, TraceAndLeaksGoToStandardError) {
    const std::string pdu = Corpus("ws-bank-userpin.pdu"), plain = RunCpdump({pdu}).out;
    const Result trace = RunCpdump({"--trace", pdu}), leaks = RunCpdump({"--leaks", pdu});
    ASSERT_EQ(trace.exit, 0);
    ASSERT_EQ(leaks.exit, 0) << leaks.err;
    EXPECT_EQ(trace.out, plain);
    EXPECT_EQ(leaks.out, plain);
    EXPECT_NE(trace.err.find("tqsClinetProvWbxmlDecoderMain\n"), std::string::npos) << trace.err;
    EXPECT_GT(std::count(trace.err.begin(), trace.err.end(), '\n'), 100);
    // The tracker's own lines: the body copy of the push header is never
    // released, the header record is.
    EXPECT_NE(leaks.err.find("Filename:jni/src/ClientProv/tqspushhandler Line:167"), std::string::npos);
    EXPECT_EQ(leaks.err.find("tqspushhandler Line:51"), std::string::npos) << leaks.err;
}

// The built-in sample's body decodes as the tail of the whole sample push.
TEST(Options, BodyAloneDecodesLikeThePush) {
    const Result push = RunCpdump({}), body = RunCpdump({"--body"});
    ASSERT_EQ(body.exit, 0) << body.err;
    const std::size_t at = push.out.find("  \"wbxml\"");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(body.out, "{\n" + push.out.substr(at));
}

std::string ToHex(const Bytes &bytes) {
    std::string out;
    for (unsigned char b : bytes) out += {"0123456789abcdef"[b >> 4], "0123456789abcdef"[b & 0x0F]};
    return out;
}

// MACs the corpus sources gave (SOURCES.md "verified"; ws-bank-userpin's is in its summary golden) and
// wrong credentials; the header alone is enough to check a MAC, even of a push whose body is refused.
TEST(Authentication, KnownMacsAndWrongCredentials) {
    const struct {
        std::string pdu;
        Args credentials;
        std::string result;
    } cases[] = {
        {"mihini-dm-bootstrap.pdu", {"--pin=1234"}, "authentic"},
        {"br-claro-portal-charset.pdu", {"--pin=1234"}, "authentic"},
        {"pdus/lg-otaf-manual.mac.pdu", {"--pin=1234", "--imsi=001010123456789"}, "authentic"},
        {"ws-bank-userpin.pdu", {"--pin=1235"}, "not authentic"},
        {"ph-smart-mms-netwpin.pdu", {"--pin=1234"}, "credential missing"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.pdu + " " + c.credentials[0]);
        Args args = c.credentials;
        args.insert(args.end(), {"--header-only", "--require-authentic", Corpus(c.pdu)});
        const Result r = RunCpdump(args);
        EXPECT_NE(r.out.find("\"result\": \"" + c.result + "\""), std::string::npos) << r.out;
        const bool authentic = c.result == "authentic";
        EXPECT_EQ(r.exit, authentic ? 0 : 3);
        EXPECT_EQ(r.err, authentic ? "" : "cpdump: the push is not authentic (" + c.result + ")\n");
    }
}

// The PDU as TPDUs in hex, in segment order, optionally behind an SMSC address.
std::vector<std::string> Tpdus(const Bytes &pdu, std::size_t max_user_data, bool submit, bool smsc,
                               bool ports = true) {
    using namespace cpcommon;
    SmsAddress address;
    AddressFromNumber("+31628870634", &address);
    std::vector<SmsSegment> segments;
    std::string error;
    EXPECT_TRUE(SegmentPush(pdu, submit ? SmsKind::kSubmit : SmsKind::kDeliver, address, 0x18, max_user_data,
                            &segments, &error))
        << error;
    std::vector<std::string> tpdus;
    for (SmsSegment &s : segments) {
        s.has_ports = ports;
        tpdus.push_back((smsc ? "07911326040000F0" : "") + ToHex(EncodeTpdu(s, 0)));
    }
    return tpdus;
}

// Every corpus PDU: refused with where and why, one line each, as recorded
// in golden/refused.txt; cut into segments of several sizes, shuffled, as
// DELIVER and SUBMIT, with and without the SMSC address, named by --sms or
// recognised, it gives the same output, refusals included, as the PDU itself.
TEST(CorpusPdus, RefusalsAsRecordedAndTheSameOutputFromSms) {
    std::vector<fs::path> pdus;
    for (const auto &entry : fs::recursive_directory_iterator(kCorpus))
        if (entry.path().extension() == ".pdu") pdus.push_back(entry.path());
    std::sort(pdus.begin(), pdus.end());
    EXPECT_EQ(pdus.size(), 85u);
    std::mt19937 random(2948);
    const std::size_t sizes[] = {140, 79, 42};
    int cut = 0;
    std::string refused;
    for (const fs::path &path : pdus) {
        const Result whole = RunCpdump({path.string()});
        ASSERT_TRUE(whole.exit == 0 || whole.exit == 1) << path;
        if (whole.exit == 1) refused += fs::relative(path, kCorpus).string() + ": " + whole.err;
        const Bytes pdu = ReadBytes(path);
        for (std::size_t k = 0; k < std::size(sizes); ++k) {
            SCOPED_TRACE(path.string() + " in segments of " + std::to_string(sizes[k]));
            std::vector<std::string> tpdus = Tpdus(pdu, sizes[k], k == 1, k != 0);
            std::shuffle(tpdus.begin(), tpdus.end(), random);
            cut += tpdus.size() > 1;
            std::string text;
            for (const std::string &t : tpdus) text += t + "\n";
            const Result r =
                RunCpdump(k == 2 ? Args{"-"} : Args{"--sms", "-"}, Bytes(text.begin(), text.end()));
            EXPECT_EQ(r.exit, whole.exit);
            EXPECT_EQ(r.out, whole.out);
            EXPECT_EQ(r.err, whole.err);
        }
    }
    EXPECT_GT(cut, 200);
    const fs::path golden = kGolden / "refused.txt";
    if (std::getenv("CPDUMP_UPDATE_GOLDEN") != nullptr) std::ofstream(golden, std::ios::binary) << refused;
    EXPECT_EQ(refused, ReadFile(golden));
}

// Modem output as captured, and what is wrong with a set of TPDUs.
TEST(SmsInput, ModemCapturesAndBrokenSegmentSets) {
    const Bytes pdu = ReadBytes(kCorpus / "ws-bank-userpin.pdu");
    const std::vector<std::string> tpdus = Tpdus(pdu, 140, false, true);
    ASSERT_EQ(tpdus.size(), 4u);
    // AT+CMGL output: SMSC addresses, segments out of order, modem talk around them.
    const std::string capture = ReadFile(kInputs / "ws-bank-userpin-sms.txt");
    std::string seven_bit = tpdus[0];
    seven_bit.replace(2 * (8 + 10), 2, "00");  // DCS after the SMSC (8 bytes), GSM 7-bit
    // Without WAP port addressing nothing says what the SMS hold.
    std::string unaddressed;
    for (const std::string &t : Tpdus(pdu, 140, false, true, false)) unaddressed += t + "\n";
    const Result expected = RunCpdump({Corpus("ws-bank-userpin.pdu")});
    const struct {
        bool named;  // --sms
        std::string in, err;
    } cases[] = {
        {false, capture, ""},
        {true, tpdus[0] + "\n" + tpdus[2] + "\n" + tpdus[3], "segment 2 of 4 is missing"},
        {true, tpdus[1] + "\n" + tpdus[0] + "\n" + tpdus[1], "SMS 3 repeats segment 2 of 4 (SMS 1)"},
        {true, seven_bit, "SMS 1: data coding 0x00 is not 8-bit data; only 8-bit SMS carry a WAP push"},
        {true, "0102 zz\n", "line 1 is no TPDU in hex"},
        {true, "OK\n", "no TPDU in the input"},
        {false, unaddressed, "not a WSP push PDU (PDU type 0x91); it looks like SMS TPDUs: try --sms"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.in);
        const Result r = RunCpdump(c.named ? Args{"--sms", "-"} : Args{"-"}, Bytes(c.in.begin(), c.in.end()));
        EXPECT_EQ(r.exit, c.err.empty() ? 0 : 1);
        EXPECT_EQ(r.out, c.err.empty() ? expected.out : "");
        EXPECT_EQ(r.err, c.err.empty() ? "" : "cpdump: " + c.err + "\n");
    }
}

// A document of `characteristics` in a push without MAC.
Bytes Doc(Bytes characteristics) {
    characteristics.insert(characteristics.begin(), {0x03, 0x0B, 0x6A, 0x00, 0xC5, 0x46, 0x01});
    characteristics.push_back(0x01);
    return Push(characteristics);
}

// The header reasons themselves are pinned in the unit test, the refusals of
// corpus pushes in golden/refused.txt (CorpusPdus.RefusalsAsRecordedAndTheSameOutputFromSms).
TEST(Rejection, EveryReasonIsOneLineInWords) {
    auto refused = [](const Args &args, const Bytes &in, const std::string &line) {
        SCOPED_TRACE(line);
        const Result r = RunCpdump(args, in);
        EXPECT_EQ(r.exit, 1);
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(r.err, "cpdump: " + line + "\n");
    };
    const struct {
        bool body;  // --body
        Bytes in;
        const char *line;
    } inputs[] = {
        {false, Push({0x03, 0x01, 0x6A, 0x00, 0x45, 0x01}), "not a provisioning document (public id 0x01)"},
        {true, Bytes{0x03, 0x00, 0x00, 0x6A, 0x04, 'a', '/', 'b', 0x00, 0x45, 0x01},
         "not a provisioning document (public id 0x00, literal \"a/b\")"},
        {false, Push({}), "malformed WBXML (the document header is cut short)"},
        // Where the decoder stops and why.
        {false, Doc({0xC6, 0x00, 0x02, 0x55, 0x01, 0x01}),
         "malformed WBXML at body byte 9 (PDU byte 15), in characteristic: 0x02 is read as a code page other "
         "than 0 and 1"},
        {false, Doc({0xC6, 0x4F, 0x01, 0x01}),
         "malformed WBXML at body byte 8 (PDU byte 14), in characteristic: 0x4F is read as an attribute that "
         "is no characteristic type"},
        {false, Doc({0xC6, 0x56, 0x01, 0xC6, 0x53, 0x01, 0x01, 0x01}),
         "malformed WBXML at body byte 10 (PDU byte 16), in BOOTSTRAP: 0xC6 is read as a characteristic "
         "nested in BOOTSTRAP, which holds none"},
        {false, Doc({0x87, 0x07, 0x06, 0x03, 'A', 0x00, 0x01}),
         "malformed WBXML at body byte 7 (PDU byte 13), in the document: 0x87 is read as a tag (id 0x07) "
         "that the document element cannot hold: only characteristics"},
        {false, Doc({0xC6, 0x55, 0x01, 0x87, 0x11, 0x03, 'A', 0x00, 0x01, 0x01}),
         "malformed WBXML at body byte 12 (PDU byte 18), in NAPDEF/NAPID: 0x03 (STR_I) is read as neither "
         "the value attribute (0x06) nor END after the parm name"},
    };
    for (const auto &c : inputs) refused(c.body ? Args{"--body", "-"} : Args{"-"}, c.in, c.line);
    const struct {
        Args args;
        const char *line;
    } files[] = {
        {{"--xml", "--body", Corpus("negative/moz-vendorconfig-truncated.wbxml")},
         "malformed WBXML: the body ends at byte 16, inside the document"},
        // A hint at what the input is instead (SMS TPDUs: ModemCapturesAndBrokenSegmentSets).
        {{Corpus("sfos-dna-1.wbxml")},
         "not a WSP push PDU (PDU type 0x0B); it looks like a WBXML body without push header: try --body"},
    };
    for (const auto &c : files) refused(c.args, {}, c.line);
}

TEST(DamagedInput, NeverCrashesAndAlwaysGivesAVerdict) {
    const char *seeds[] = {"ws-bank-userpin.pdu",        "ph-smart-mms-netwpin.pdu",
                           "pdus/own/wifi-roaming.pdu",  "pdus/own/identity-vendor-access.mac.pdu",
                           "pdus/gaia-tef-movistar.pdu", "pdus/cpc-email.pdu"};
    // Every way of running the tool sees damage: a body alone is damaged as a
    // body, and --leaks ends standard error with its report line.
    const Args modes[] = {{"-"},          {"--body", "-"},        {"-"},
                          {"--xml", "-"}, {"--header-only", "-"}, {"--leaks", "--xml", "--body", "-"}};
    std::mt19937 next(20261121);  // deterministic damage: every run sees the same inputs
    int decoded = 0;
    for (const char *seed : seeds) {
        const Bytes pdu = ReadBytes(kCorpus / seed);
        ASSERT_GT(pdu.size(), 3u + pdu[2]) << seed;
        for (int k = 0; k < 60; ++k) {
            const Args &args = modes[k % std::size(modes)];
            const bool body = std::find(args.begin(), args.end(), "--body") != args.end();
            Bytes damaged = body ? Bytes(pdu.begin() + 3 + pdu[2], pdu.end()) : pdu;
            const std::size_t size = damaged.size();
            std::string how;
            if (k % 4 == 0) {
                damaged.resize(next() % size);
                how = "cut to " + std::to_string(damaged.size());
            } else {
                const int flips = 1 + static_cast<int>(next() % 4);
                for (int f = 0; f < flips; ++f) {
                    const std::size_t at = next() % size;
                    damaged[at] ^= static_cast<unsigned char>(1 + next() % 255);
                    how += " flip@" + std::to_string(at);
                }
            }
            const Result r = RunCpdump(args, damaged);
            SCOPED_TRACE(std::string(seed) + ": " + args[0] + how);
            ASSERT_TRUE(r.exit == 0 || r.exit == 1) << "exit " << r.exit << "\n" << r.err;
            std::string err = r.err;
            if (args[0] == "--leaks") {
                const std::size_t report = err.rfind("cpdump: ");
                ASSERT_NE(report, std::string::npos) << err;
                EXPECT_NE(err.find("still allocated after release\n", report), std::string::npos) << err;
                // The rejection, if any, is the line before the tracker's output.
                err = r.exit == 1 ? err.substr(0, err.find('\n') + 1) : "";
            }
            if (r.exit == 1) {
                EXPECT_EQ(err.rfind("cpdump: ", 0), 0u) << err;
                EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
                EXPECT_EQ(r.out, "");
            } else {
                ++decoded;
                EXPECT_EQ(err, "");
            }
        }
    }
    // Flipping a byte inside a text value keeps a push decodable: both verdicts occur.
    EXPECT_GT(decoded, 0);
    EXPECT_LT(decoded, 60 * static_cast<int>(std::size(seeds)));
}

}  // namespace
