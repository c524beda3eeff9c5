#include "cpdump.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string_view>

#include "records.h"
#include "sample.h"
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
    "  --xml          print the decoded document tree as provisioning XML\n"
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
    "2 usage or file error.\n";

struct Options {
    bool header_only = false;
    bool body = false;
    bool xml = false;
    bool trace = false;
    bool leaks = false;
    bool help = false;
    bool version = false;
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
            if (!known) return "unknown option '" + std::string(arg) + "'";
            continue;
        }
        if (o->have_input)
            return "more than one input given ('" + o->input + "' and '" + std::string(arg) + "')";
        o->have_input = true;
        o->input = arg;
    }
    if (o->header_only && (o->body || o->xml)) return "--header-only cannot be combined with --body or --xml";
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

// Decodes a body into a tree and back out, for the decoder's verdict.
void Redecode(const unsigned char *body, std::uint32_t length, WbxmlFacts *facts) {
    tqsWbxmlDecoder *decoder = nullptr;
    tqsWapDoc *doc = nullptr;
    facts->status = tqsClientProvWbxmlInitDecoder(&decoder, body, length);
    if (facts->status == TQS_OK) facts->status = tqsClientProvWbxmlDecoder(decoder, &doc);
    facts->empty_document = doc == nullptr || doc->ptCharacterList == nullptr;
    tqsClientProvWbxmlDeleteWapDoc(doc);
    tqsClientProvWbxmlDeleteDecoder(decoder);
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
        if (const char *name = SecName(h.nSEC)) json.String("secName", name);
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

class Run {
   public:
    explicit Run(const Options &o) : o_(o) {}

    int Go(const Bytes &input) {
        if (o_.leaks) {
            out_.DivertLibraryStdout();
            tqsMemStartMemCheck();
        }
        if (o_.trace) tqcTraceSetSink(TraceToStderr);
        const int status = Decode(input);
        if (o_.trace) tqcTraceSetSink(nullptr);
        if (o_.leaks) ReportLeaks();
        return status;
    }

   private:
    int Reject(const std::string &why) {
        std::fprintf(stderr, "cpdump: %s\n", why.c_str());
        return kExitRejected;
    }

    int Decode(const Bytes &input) {
        const SmlPushHeader *header = nullptr;
        const unsigned char *body = input.data();
        std::uint32_t body_length = static_cast<std::uint32_t>(input.size());
        if (!o_.body) {
            header = smlpushHdlrParsingWSPHeader(input.data(), input.size());
            if (header == nullptr) return Reject(ExplainHeaderRejection(input));
            body = header->pBody;
            body_length = static_cast<std::uint32_t>(header->nBodyLen);
        }
        std::string text;
        JsonWriter json(&text);
        json.BeginObject();
        if (header != nullptr) WriteHeaderJson(json, *header);
        if (o_.header_only) {
            json.EndObject();
            json.Finish();
            out_.Write(text);
            ReleaseHeader(header);
            return kExitDecoded;
        }
        const int status =
            o_.xml ? DecodeTree(body, body_length) : DecodePipeline(json, &text, body, body_length);
        ReleaseHeader(header);
        return status;
    }

    // What the parse session does with mode 2: the decoder main (decoder,
    // context construction, tree release), then the context release.
    int DecodePipeline(JsonWriter &json, const std::string *text, const unsigned char *body,
                       std::uint32_t length) {
        tqsClientProvCtx *ctx = tqsClinetProvWbxmlDecoderMain(body, length);
        ToolSide tool_side(o_.trace);
        WbxmlFacts facts = ReadWbxmlHeader(body, length);
        if (ctx == nullptr) {
            Redecode(body, length, &facts);
            return Reject(ExplainBodyRejection(facts));
        }
        WriteWbxmlJson(json, facts);
        WriteContextJson(json, *ctx);
        json.EndObject();
        json.Finish();
        out_.Write(*text);
        tqsClientProvCtxDelectContext(ctx);
        return kExitDecoded;
    }

    // The decoder main's steps done one by one, so the tree can be printed
    // before the context is built from it and it is released.
    int DecodeTree(const unsigned char *body, std::uint32_t length) {
        tqsWbxmlDecoder *decoder = nullptr;
        tqsWapDoc *doc = nullptr;
        TqsResult status = tqsClientProvWbxmlInitDecoder(&decoder, body, length);
        if (status == TQS_OK) status = tqsClientProvWbxmlDecoder(decoder, &doc);
        tqsClientProvWbxmlDeleteDecoder(decoder);
        tqsClientProvCtx *ctx = status == TQS_OK ? tqsClientProvCtxMakeContext(doc) : nullptr;
        std::string xml;
        if (ctx != nullptr) WriteTreeXml(&xml, doc);
        const bool empty_document = doc == nullptr || doc->ptCharacterList == nullptr;
        tqsClientProvWbxmlDeleteWapDoc(doc);
        if (ctx == nullptr) {
            ToolSide tool_side(o_.trace);
            WbxmlFacts facts = ReadWbxmlHeader(body, length);
            facts.status = status;
            facts.empty_document = empty_document;
            return Reject(ExplainBodyRejection(facts));
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
    Output out_;
};

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
    Bytes input;
    if (o.have_input) {
        std::string error;
        if (!LoadPdu(o.input, &input, &error)) {
            std::fprintf(stderr, "cpdump: %s\n", error.c_str());
            return kExitUsage;
        }
    } else {
        input = SamplePush();
        // The sample's body alone, for --body: it starts after the header block.
        if (o.body) input.erase(input.begin(), input.begin() + 3 + input[2]);
    }
    return Run(o).Go(input);
}

}  // namespace cpdump
