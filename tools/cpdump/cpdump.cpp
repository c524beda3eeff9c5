#include "cpdump.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>

#include "pushkey.h"
#include "diagnosis.h"
#include "records.h"
#include "sample.h"
#include "sms.h"
#include "summary.h"
#include "textout.h"
#include "tokens.h"
#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "tqspushhandler.h"
#include "tqstrace.h"
#include "verdict.h"

#ifndef CPDUMP_VERSION
#define CPDUMP_VERSION "dev"
#endif

namespace cpdump {
namespace {

constexpr char kUsage[] =
    "Usage: cpdump [OPTION]... [FILE|-]\n"
    "Decode one OMA Client Provisioning push (WSP push header + WBXML provisioning\n"
    "document) with the tqomacp library and print what a handset makes of it, as JSON.\n"
    "\n"
    "FILE holds the PDU as binary or as hex text (blanks, colons, line breaks and\n"
    "0x prefixes allowed; detected automatically); '-' reads standard input.\n"
    "Without FILE a built-in sample push is decoded.\n"
    "\n"
    "Options:\n"
    "  --header-only  decode the push header only (the parser's mode 1)\n"
    "  --body         the input is a WBXML body without push header\n"
    "  --sms          the input is SMS-DELIVER or SMS-SUBMIT TPDUs in hex, one a\n"
    "                 line, with or without the SMSC address, in any order; their\n"
    "                 segments are joined (recognised without the option when\n"
    "                 each is addressed to the WAP push port)\n"
    "  --pin PIN      check the MAC with the user's PIN (USERPIN, USERNETWPIN)\n"
    "  --imsi IMSI    check the MAC with the SIM's IMSI (NETWPIN, USERNETWPIN)\n"
    "  --require-authentic  exit with status 3 unless the MAC checks out\n"
    "  --xml          print the decoded document tree as provisioning XML\n"
    "  --summary      print a short view for a person instead of JSON\n"
    "  --trace        write the library's trace lines to standard error\n"
    "  --leaks        track allocations and report, on standard error, the blocks\n"
    "                 still allocated after the parse result has been released\n"
    "  --help         show this help and exit\n"
    "  --version      show the version and exit\n"
    "\n"
    "Values appear as stored. A stored one-byte value token is shown by its name\n"
    "(\"APN\", \"GSM-GPRS\"), or as \"0xNN\" when the library has no name for it;\n"
    "bytes that are not UTF-8 appear as \\xNN. Under \"app\", a record shows what\n"
    "the Java application receives for its address type, AUTHTYPE or AAUTHLEVEL.\n"
    "\n"
    "Exit status: 0 decoded, 1 message rejected (the reason on standard error),\n"
    "2 usage or file error, 3 not authentic (with --require-authentic).\n";

struct Options {
    bool header_only = false;
    bool body = false;
    bool xml = false;
    bool trace = false;
    bool leaks = false;
    bool help = false;
    bool version = false;
    bool sms = false;
    bool summary = false;
    bool require_authentic = false;
    cpcommon::Credentials credentials;
    bool have_input = false;
    std::string input;
};

// Returns an empty string, or what is wrong with the command line.
std::string ParseOptions(int argc, char **argv, Options *o) {
    static constexpr struct {
        const char *name;
        bool Options::*flag;
    } kFlags[] = {
        {"--header-only", &Options::header_only},
        {"--body", &Options::body},
        {"--xml", &Options::xml},
        {"--trace", &Options::trace},
        {"--leaks", &Options::leaks},
        {"--help", &Options::help},
        {"-h", &Options::help},
        {"--version", &Options::version},
        {"--sms", &Options::sms},
        {"--summary", &Options::summary},
        {"--require-authentic", &Options::require_authentic},
    };
    static constexpr struct {
        const char *name;
        std::optional<std::string> cpcommon::Credentials::*value;
    } kValues[] = {
        {"--pin", &cpcommon::Credentials::pin},
        {"--imsi", &cpcommon::Credentials::imsi},
    };
    bool options_done = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (!options_done && arg == "--") {
            options_done = true;
            continue;
        }
        if (!options_done && arg.size() > 1 && arg[0] == '-') {
            bool known = false;
            for (const auto &f : kFlags) {
                if (arg == f.name) o->*f.flag = known = true;
            }
            for (const auto &v : kValues) {
                const std::string_view name = v.name;
                if (arg.substr(0, name.size()) != name) continue;
                if (arg.size() > name.size() && arg[name.size()] != '=') continue;
                known = true;
                if (arg.size() > name.size()) {
                    o->credentials.*v.value = std::string(arg.substr(name.size() + 1));
                } else if (i + 1 < argc) {
                    o->credentials.*v.value = std::string(argv[++i]);
                } else {
                    return "option '" + std::string(name) + "' needs a value";
                }
            }
            if (!known) return "unknown option '" + std::string(arg) + "'";
            continue;
        }
        if (o->have_input)
            return "more than one input given ('" + o->input + "' and '" + std::string(arg) + "')";
        o->have_input = true;
        o->input = arg;
    }
    if (o->header_only && (o->body || o->xml)) return "--header-only cannot be combined with --body or --xml";
    if (o->summary && (o->header_only || o->xml))
        return "--summary cannot be combined with --header-only or --xml";
    if (o->body && (o->sms || o->credentials.pin || o->credentials.imsi || o->require_authentic))
        return "--body leaves out the push header that --sms, --pin, --imsi and --require-authentic need";
    if (o->sms && !o->have_input) return "--sms needs an input";
    if (o->credentials.imsi && !cpcommon::ValidImsi(*o->credentials.imsi))
        return "an IMSI is 1 to 15 digits, not '" + *o->credentials.imsi + "'";
    return {};
}

void TraceToStderr(const char *line) {
    std::fputs(line, stderr);
    const std::size_t n = std::strlen(line);
    if (n == 0 || line[n - 1] != '\n') std::fputc('\n', stderr);
}

// The tool's own runs of decoder pieces (header facts, failure diagnosis) stay
// out of what the options show: no trace lines, and no blocks in the leak
// report (tracking is paused, so what the decoder keeps on purpose is not
// counted twice).
class ToolSide {
   public:
    explicit ToolSide(bool tracing) : tracing_(tracing), tracking_(bMemCheck) {
        if (tracing_) tqcTraceSetSink(nullptr);
        bMemCheck = 0;
    }
    ~ToolSide() {
        bMemCheck = tracking_;
        if (tracing_) tqcTraceSetSink(TraceToStderr);
    }

   private:
    bool tracing_;
    unsigned char tracking_;
};

// Where the tool's own output goes. The leak tracker prints with printf; with
// --leaks the process's standard output is pointed at standard error so those
// lines stay off the JSON, which is written to a saved copy of the real one.
class Output {
   public:
    void DivertLibraryStdout() {
        std::fflush(stdout);
        fd_ = dup(STDOUT_FILENO);
        if (fd_ < 0) {
            fd_ = STDOUT_FILENO;
            return;
        }
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    void Write(const std::string &text) {
        std::fflush(stdout);
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t n = write(fd_, text.data() + done, text.size() - done);
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
    }

   private:
    int fd_ = STDOUT_FILENO;
};

// Reads the WBXML header of a body with the decoder's own reader.
WbxmlFacts ReadWbxmlHeader(const unsigned char *body, std::uint32_t length) {
    WbxmlFacts facts;
    tqsWbxmlDecoder *decoder = nullptr;
    if (tqsClientProvWbxmlInitDecoder(&decoder, body, length) != TQS_OK || decoder == nullptr) return facts;
    facts.header_ok = tqsClientProvWbxmlDecoderWbxmlHeader(decoder, &facts.version, &facts.public_id,
                                                           &facts.charset) == TQS_OK;
    facts.string_table_length = decoder->nStrSize;
    if (facts.public_id == 0 && decoder->pStringTable != nullptr) {
        facts.literal = reinterpret_cast<const char *>(decoder->pStringTable);
    }
    tqsClientProvWbxmlDeleteDecoder(decoder);
    return facts;
}

void WriteHeaderJson(JsonWriter &json, const SmlPushHeader &h) {
    json.BeginObject("pushHeader");
    json.String("contentType", Hex(h.nContentType));
    if (const char *name = ContentTypeName(h.nContentType)) json.String("contentTypeName", name);
    json.Number("headerLength", h.nHeaderLen);
    json.Number("bodyLength", h.nBodyLen);
    if (h.nSEC == 0) {
        json.Null("sec");
    } else {
        json.String("sec", Hex(h.nSEC));
        if (const char *name = cpcommon::SecName(h.nSEC)) json.String("secName", name);
    }
    json.Number("macLength", h.nMACLen);
    if (h.nMACLen == 0) {
        json.Null("mac");
    } else {
        json.String("mac", std::string_view(h.szMAC, strnlen(h.szMAC, sizeof h.szMAC)));
    }
    json.EndObject();
}

void WriteWbxmlJson(JsonWriter &json, const WbxmlFacts &facts) {
    json.BeginObject("wbxml");
    json.String("version",
                std::to_string((facts.version >> 4) + 1) + "." + std::to_string(facts.version & 0x0F));
    json.String("publicId", Hex(facts.public_id));
    json.Number("charset", facts.charset);
    json.Number("stringTableLength", facts.string_table_length);
    json.EndObject();
}

// The SEC method as the verdict names it: its name, its code when it has no
// name, null when the header has none.
std::optional<std::string> Method(const SmlPushHeader &h) {
    if (h.nSEC == 0) return std::nullopt;
    const char *name = cpcommon::SecName(h.nSEC);
    return name != nullptr ? std::string(name) : Hex(h.nSEC);
}

cpcommon::Authentication Authenticate(const SmlPushHeader &h, const cpcommon::Credentials &credentials) {
    return cpcommon::Authenticate(h.nSEC, std::string_view(h.szMAC, strnlen(h.szMAC, sizeof h.szMAC)),
                                  h.pBody, h.nBodyLen, credentials);
}

void WriteAuthenticationJson(JsonWriter &json, const SmlPushHeader &h, cpcommon::Authentication result) {
    json.BeginObject("authentication");
    if (const auto method = Method(h)) {
        json.String("method", *method);
    } else {
        json.Null("method");
    }
    json.String("result", cpcommon::AuthenticationText(result));
    json.EndObject();
}

// True when the library's header parser takes `pdu` for a push.
bool IsPush(const Bytes &pdu) {
    const SmlPushHeader *h = smlpushHdlrParsingWSPHeader(pdu.data(), pdu.size());
    if (h == nullptr) return false;
    tqsMemFree_debug(h->pBody);
    tqsMemFree_debug(const_cast<SmlPushHeader *>(h));
    return true;
}

// Where the input came from, for the hints on a refusal.
struct Source {
    const Bytes *raw = nullptr;  // the file as read; null for the built-in sample
    bool from_sms = false;
};

class Run {
   public:
    Run(const Options &o, const Source &source) : o_(o), source_(source) {}

    int Go(const Bytes &input) {
        if (o_.leaks) {
            out_.DivertLibraryStdout();
            tqsMemStartMemCheck();
        }
        if (o_.trace) tqcTraceSetSink(TraceToStderr);
        int status = Decode(input);
        if (o_.trace) tqcTraceSetSink(nullptr);
        if (o_.leaks) ReportLeaks();
        if (status == kExitDecoded && o_.require_authentic && auth_ != cpcommon::Authentication::kAuthentic) {
            std::fprintf(stderr, "cpdump: the push is not authentic (%s)\n",
                         cpcommon::AuthenticationText(auth_));
            status = kExitNotAuthentic;
        }
        return status;
    }

   private:
    int Reject(const std::string &why, const Bytes &input) {
        std::fprintf(stderr, "cpdump: %s%s\n", why.c_str(), Hint(input).c_str());
        return kExitRejected;
    }

    // The decoder's refusal with where it stopped, from a second run of it.
    int RejectBody(const WbxmlFacts &facts, const Bytes &input, const unsigned char *body,
                   std::uint32_t length) {
        const Diagnosis d = Diagnose(body, length);
        return Reject(ExplainBodyRejection(facts, d, o_.body ? -1 : 3L + input[2]), input);
    }

    // What the refused input looks like instead, when the options did not say.
    std::string Hint(const Bytes &input) {
        if (o_.body || o_.sms || source_.raw == nullptr || source_.from_sms) return {};
        ToolSide tool_side(o_.trace);
        const WbxmlFacts facts = ReadWbxmlHeader(input.data(), static_cast<std::uint32_t>(input.size()));
        if (facts.header_ok && facts.version <= 0x03 &&
            (facts.public_id == 0x0B || facts.literal == "-//WAPFORUM//DTD PROV 1.0//EN"))
            return "; it looks like a WBXML body without push header: try --body";
        std::vector<Bytes> tpdus;
        std::string ignored;
        if (!ReadTpduLines(*source_.raw, &tpdus, &ignored)) return {};
        for (const Bytes &tpdu : tpdus) {
            cpcommon::SmsSegment segment;
            if (!cpcommon::ParseTpdu(tpdu, &segment, &ignored)) return {};
        }
        return "; it looks like SMS TPDUs: try --sms";
    }

    int Decode(const Bytes &input) {
        const SmlPushHeader *header = nullptr;
        const unsigned char *body = input.data();
        std::uint32_t body_length = static_cast<std::uint32_t>(input.size());
        std::string text;
        JsonWriter json(&text);
        json.BeginObject();
        if (!o_.body) {
            header = smlpushHdlrParsingWSPHeader(input.data(), input.size());
            if (header == nullptr) return Reject(ExplainHeaderRejection(input), input);
            body = header->pBody;
            body_length = static_cast<std::uint32_t>(header->nBodyLen);
            auth_ = Authenticate(*header, o_.credentials);
            WriteHeaderJson(json, *header);
            WriteAuthenticationJson(json, *header, auth_);
        }
        if (o_.summary) {
            text.clear();
            if (header != nullptr)
                text = "Authentication: " + Method(*header).value_or("none") + ", " +
                       cpcommon::AuthenticationText(auth_) + "\n";
        }
        if (o_.header_only) {
            json.EndObject();
            json.Finish();
            out_.Write(text);
            ReleaseHeader(header);
            return kExitDecoded;
        }
        const int status = o_.xml ? DecodeTree(input, body, body_length)
                                  : DecodePipeline(json, &text, input, body, body_length);
        ReleaseHeader(header);
        return status;
    }

    // What the parse session does with mode 2: the decoder main (decoder,
    // context construction, tree release), then the context release.
    int DecodePipeline(JsonWriter &json, std::string *text, const Bytes &input, const unsigned char *body,
                       std::uint32_t length) {
        tqsClientProvCtx *ctx = tqsClinetProvWbxmlDecoderMain(body, length);
        ToolSide tool_side(o_.trace);
        WbxmlFacts facts = ReadWbxmlHeader(body, length);
        if (ctx == nullptr) return RejectBody(facts, input, body, length);
        if (o_.summary) {
            WriteSummary(text, *ctx);
        } else {
            WriteWbxmlJson(json, facts);
            WriteContextJson(json, *ctx);
            json.EndObject();
            json.Finish();
        }
        out_.Write(*text);
        tqsClientProvCtxDelectContext(ctx);
        return kExitDecoded;
    }

    // The decoder main's steps done one by one, so the tree can be printed
    // before the context is built from it and it is released.
    int DecodeTree(const Bytes &input, const unsigned char *body, std::uint32_t length) {
        tqsWbxmlDecoder *decoder = nullptr;
        tqsWapDoc *doc = nullptr;
        TqsResult status = tqsClientProvWbxmlInitDecoder(&decoder, body, length);
        if (status == TQS_OK) status = tqsClientProvWbxmlDecoder(decoder, &doc);
        tqsClientProvWbxmlDeleteDecoder(decoder);
        tqsClientProvCtx *ctx = status == TQS_OK ? tqsClientProvCtxMakeContext(doc) : nullptr;
        std::string xml;
        if (ctx != nullptr) WriteTreeXml(&xml, doc);
        tqsClientProvWbxmlDeleteWapDoc(doc);
        if (ctx == nullptr) {
            ToolSide tool_side(o_.trace);
            return RejectBody(ReadWbxmlHeader(body, length), input, body, length);
        }
        tqsClientProvCtxDelectContext(ctx);
        out_.Write(xml);
        return kExitDecoded;
    }

    // As the session's release does: the record only, not its body copy.
    static void ReleaseHeader(const SmlPushHeader *header) {
        if (header != nullptr) tqsMemFree_debug(const_cast<SmlPushHeader *>(header));
    }

    void ReportLeaks() {
        std::size_t live = 0;
        if (ptMemCheckTable != nullptr) {
            for (std::size_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i)
                live += ptMemCheckTable[i].pAddress != nullptr;
        }
        std::fflush(stderr);
        tqsMemEndMemCheck();
        std::fflush(stdout);
        std::fprintf(stderr, "cpdump: %zu block%s still allocated after release\n", live,
                     live == 1 ? "" : "s");
    }

    const Options &o_;
    const Source &source_;
    Output out_;
    cpcommon::Authentication auth_ = cpcommon::Authentication::kNotChecked;
};

// The input as the options and its form say: SMS joined, hex decoded, or
// binary; false with the status to exit with.
bool LoadInput(const Options &o, Bytes *raw, Bytes *input, Source *source, int *status) {
    std::string error;
    if (!ReadAll(o.input, raw, &error)) {
        std::fprintf(stderr, "cpdump: %s\n", error.c_str());
        *status = kExitUsage;
        return false;
    }
    source->raw = raw;
    if (o.sms) {
        source->from_sms = true;
        if (PduFromSms(*raw, false, input, &error)) return true;
        std::fprintf(stderr, "cpdump: %s\n", error.c_str());
        *status = kExitRejected;
        return false;
    }
    const bool decoded = HexOrBinary(*raw, o.input, input, &error);
    // Without being told, SMS are recognised only where no push is seen.
    if (!o.body && (!decoded || !IsPush(*input))) {
        std::string ignored;
        if (PduFromSms(*raw, true, input, &ignored)) {
            source->from_sms = true;
            return true;
        }
    }
    if (decoded) return true;
    std::fprintf(stderr, "cpdump: %s\n", error.c_str());
    *status = kExitUsage;
    return false;
}

}  // namespace

int Main(int argc, char **argv) {
    Options o;
    const std::string usage_error = ParseOptions(argc, argv, &o);
    if (!usage_error.empty()) {
        std::fprintf(stderr, "cpdump: %s\nTry 'cpdump --help'.\n", usage_error.c_str());
        return kExitUsage;
    }
    if (o.help) {
        std::fputs(kUsage, stdout);
        return kExitDecoded;
    }
    if (o.version) {
        std::printf("cpdump %s\n", CPDUMP_VERSION);
        return kExitDecoded;
    }
    Bytes raw, input;
    Source source;
    if (o.have_input) {
        int status = kExitDecoded;
        if (!LoadInput(o, &raw, &input, &source, &status)) return status;
    } else {
        input = SamplePush();
        // The sample's body alone, for --body: it starts after the header block.
        if (o.body) input.erase(input.begin(), input.begin() + 3 + input[2]);
    }
    return Run(o, source).Go(input);
}

}  // namespace cpdump
