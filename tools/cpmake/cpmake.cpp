#include "cpmake.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "encoder.h"
#include "input.h"
#include "push.h"
#include "pushkey.h"
#include "sms_encode.h"
#include "xmldoc.h"

#ifndef CPMAKE_VERSION
#define CPMAKE_VERSION "dev"
#endif

namespace cpmake {
namespace {

constexpr char kUsage[] =
    "Usage: cpmake [OPTION]... [FILE|-]\n"
    "Build an OMA Client Provisioning push (WSP push header + WBXML provisioning\n"
    "document) from the document's XML form, as cpdump --xml prints it.\n"
    "\n"
    "FILE is the XML document; '-' or no FILE reads standard input.\n"
    "\n"
    "Options:\n"
    "  -o FILE            write to FILE instead of standard output\n"
    "  --hex              write hex text instead of binary\n"
    "  --sms[=KIND]       write SMS TPDUs in hex, one per line, each after the SMSC\n"
    "                     field 00 as a modem takes them; KIND deliver (default)\n"
    "                     or submit\n"
    "  --sms-address NUM  originating (deliver) or destination (submit) number,\n"
    "                     default +10000000000\n"
    "  --sms-size N       octets of user data per SMS, header included (default 140)\n"
    "  --body             write only the WBXML body, without the push header\n"
    "  --wrap             FILE is a WBXML body already (binary or hex): only wrap it\n"
    "  --string-table     put strings that occur more than once in the string table\n"
    "  --tid N            transaction id, 0 to 255 (default 1)\n"
    "  --sec METHOD       SEC parameter: NETWPIN, USERPIN, USERNETWPIN, USERPINMAC or\n"
    "                     a number; without --pin or --imsi no MAC is written\n"
    "  --pin PIN          sign the body: USERPIN, or USERNETWPIN with --imsi\n"
    "  --imsi IMSI        sign the body: NETWPIN, or USERNETWPIN with --pin\n"
    "  --help             show this help and exit\n"
    "  --version          show the version and exit\n"
    "\n"
    "Characteristic types and parm names without a token are written as inline\n"
    "names, with a warning unless the handset knows them by name (WI-FI, INIT ...).\n"
    "A value goes out as a value token where the handset's library turns that token\n"
    "back into the same text; otherwise as a string.\n"
    "\n"
    "Exit status: 0 written, 2 usage, file or XML error.\n";

constexpr int kExitOk = 0;
constexpr int kExitError = 2;

struct Options {
    std::string input = "-";
    std::string output;
    bool hex = false;
    bool sms = false;
    cpcommon::SmsKind sms_kind = cpcommon::SmsKind::kDeliver;
    std::string sms_address = "+10000000000";
    unsigned long sms_size = 140;
    bool body_only = false;
    bool wrap = false;
    bool string_table = false;
    unsigned long tid = 1;
    std::optional<std::uint8_t> sec;
    cpcommon::Credentials credentials;
    bool help = false;
    bool version = false;
};

bool Number(std::string_view text, unsigned long max, unsigned long *out) {
    if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string_view::npos)
        return false;
    *out = std::strtoul(std::string(text).c_str(), nullptr, 10);
    return *out <= max;
}

// Returns an empty string, or what is wrong with the command line.
std::string ParseOptions(int argc, char **argv, Options *o) {
    static constexpr struct {
        const char *name;
        bool Options::*flag;
    } kFlags[] = {
        {"--hex", &Options::hex},         {"--body", &Options::body_only},
        {"--wrap", &Options::wrap},       {"--string-table", &Options::string_table},
        {"--help", &Options::help},       {"-h", &Options::help},
        {"--version", &Options::version},
    };
    bool have_input = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        auto value = [&](std::string *out) {
            if (i + 1 >= argc) return false;
            *out = argv[++i];
            return true;
        };
        std::string v;
        bool known = false;
        for (const auto &f : kFlags) {
            if (arg == f.name) o->*f.flag = known = true;
        }
        if (known) continue;
        if (arg == "--sms" || arg == "--sms=deliver" || arg == "--sms=submit") {
            o->sms = true;
            if (arg == "--sms=submit") o->sms_kind = cpcommon::SmsKind::kSubmit;
        } else if (arg == "-o" || arg == "--sms-address" || arg == "--sms-size" || arg == "--tid" ||
                   arg == "--sec" || arg == "--pin" || arg == "--imsi") {
            if (!value(&v)) return std::string(arg) + " needs a value";
            if (arg == "-o") {
                o->output = v;
            } else if (arg == "--sms-address") {
                o->sms_address = v;
            } else if (arg == "--sms-size") {
                if (!Number(v, 140, &o->sms_size)) return "--sms-size takes 1 to 140";
            } else if (arg == "--tid") {
                if (!Number(v, 255, &o->tid)) return "--tid takes 0 to 255";
            } else if (arg == "--sec") {
                std::uint8_t sec = 0;
                unsigned long n = 0;
                if (cpcommon::SecFromName(v, &sec)) {
                    o->sec = sec;
                } else if (Number(v, 255, &n)) {
                    o->sec = static_cast<std::uint8_t>(n);
                } else {
                    return "unknown SEC method '" + v + "'";
                }
            } else if (arg == "--pin") {
                o->credentials.pin = v;
            } else {
                if (!cpcommon::ValidImsi(v)) return "an IMSI is 1 to 15 digits, not '" + v + "'";
                o->credentials.imsi = v;
            }
        } else if (arg.size() > 1 && arg[0] == '-') {
            return "unknown option '" + std::string(arg) + "'";
        } else if (have_input) {
            return "more than one input given ('" + o->input + "' and '" + std::string(arg) + "')";
        } else {
            have_input = true;
            o->input = arg;
        }
    }
    const bool signing = o->credentials.pin || o->credentials.imsi;
    if (o->body_only && (o->sms || o->sec || signing || o->wrap))
        return "--body writes no push header: it takes no --sms, --sec, --pin, --imsi or --wrap";
    if (o->hex && o->sms) return "--hex and --sms are two different outputs";
    if (o->wrap && o->string_table) return "--string-table needs an XML input";
    if (signing && !o->sec) {
        o->sec = o->credentials.pin && o->credentials.imsi ? cpcommon::kSecUserNetwPin
                 : o->credentials.pin                      ? cpcommon::kSecUserPin
                                                           : cpcommon::kSecNetwPin;
    }
    return {};
}

std::string Hex(const Bytes &bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (unsigned char b : bytes) {
        text += kDigits[b >> 4];
        text += kDigits[b & 0x0F];
    }
    return text;
}

int Error(const std::string &message) {
    std::fprintf(stderr, "cpmake: %s\n", message.c_str());
    return kExitError;
}

// The body from the input: the XML encoded, or with --wrap the bytes as given.
bool MakeBody(const Options &o, Bytes *body, std::string *error) {
    Bytes input;
    if (!cpdump::ReadAll(o.input, &input, error)) return false;
    if (o.wrap) return cpdump::HexOrBinary(input, o.input, body, error);
    Node doc;
    XmlError xml;
    std::vector<std::string> warnings;
    const std::string name = o.input == "-" ? "<stdin>" : o.input;
    const bool parsed = ParseXml(std::string_view(reinterpret_cast<const char *>(input.data()), input.size()),
                                 &doc, &xml, &warnings);
    if (parsed) *body = EncodeBody(doc, {o.string_table}, &warnings);
    for (const std::string &w : warnings) std::fprintf(stderr, "cpmake: %s:%s\n", name.c_str(), w.c_str());
    if (!parsed) {
        *error =
            name + ":" + std::to_string(xml.line) + ":" + std::to_string(xml.column) + ": " + xml.message;
        return false;
    }
    return true;
}

bool Sign(const Options &o, const Bytes &body, PushOptions *push, std::string *error) {
    if (!o.credentials.pin && !o.credentials.imsi) return true;
    Bytes key;
    switch (cpcommon::MacKey(*o.sec, o.credentials, &key)) {
        case cpcommon::KeyStatus::kOk:
            push->mac = cpcommon::MacText(key, body.data(), body.size());
            return true;
        case cpcommon::KeyStatus::kCredentialMissing:
            *error = std::string("SEC ") + cpcommon::SecName(*o.sec) + " needs " +
                     (o.credentials.pin ? "--imsi as well" : "--pin as well");
            return false;
        default:
            *error =
                "cannot sign for SEC " + std::to_string(*o.sec) + " (only NETWPIN, USERPIN, USERNETWPIN)";
            return false;
    }
}

bool Render(const Options &o, const Bytes &pdu, std::string *out, std::string *error) {
    if (o.hex) {
        *out = Hex(pdu) + "\n";
    } else if (!o.sms) {
        out->assign(pdu.begin(), pdu.end());
    } else {
        cpcommon::SmsAddress address;
        if (!cpcommon::AddressFromNumber(o.sms_address, &address)) {
            *error = "--sms-address takes up to 20 digits, optionally after '+', not '" + o.sms_address + "'";
            return false;
        }
        std::vector<cpcommon::SmsSegment> segments;
        if (!cpcommon::SegmentPush(pdu, o.sms_kind, address, static_cast<std::uint8_t>(o.tid), o.sms_size,
                                   &segments, error))
            return false;
        const std::time_t now = std::time(nullptr);
        for (const auto &s : segments) *out += "00" + Hex(cpcommon::EncodeTpdu(s, now)) + "\n";
    }
    return true;
}

bool WriteOutput(const std::string &path, const std::string &data, std::string *error) {
    FILE *f = path.empty() ? stdout : std::fopen(path.c_str(), "wb");
    if (f == nullptr) {
        *error = "cannot write '" + path + "'";
        return false;
    }
    const bool ok = std::fwrite(data.data(), 1, data.size(), f) == data.size();
    const bool closed = path.empty() ? std::fflush(f) == 0 : std::fclose(f) == 0;
    if (!ok || !closed)
        *error = "cannot write '" + (path.empty() ? std::string("standard output") : path) + "'";
    return ok && closed;
}

}  // namespace

int Main(int argc, char **argv) {
    Options o;
    if (const std::string problem = ParseOptions(argc, argv, &o); !problem.empty()) {
        std::fprintf(stderr, "cpmake: %s\nTry 'cpmake --help'.\n", problem.c_str());
        return kExitError;
    }
    if (o.help) return std::fputs(kUsage, stdout), kExitOk;
    if (o.version) return std::printf("cpmake %s\n", CPMAKE_VERSION), kExitOk;

    std::string error;
    Bytes body;
    if (!MakeBody(o, &body, &error)) return Error(error);
    PushOptions push;
    push.tid = static_cast<unsigned char>(o.tid);
    push.sec = o.sec;
    if (!Sign(o, body, &push, &error)) return Error(error);
    const Bytes pdu = o.body_only ? body : WrapPush(body, push);
    std::string out;
    if (!Render(o, pdu, &out, &error) || !WriteOutput(o.output, out, &error)) return Error(error);
    return kExitOk;
}

}  // namespace cpmake
