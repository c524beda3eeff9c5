#include "diagnosis.h"

#include <cstdlib>
#include <string_view>

#include "tokens.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqstrace.h"
#include "verdict.h"

namespace cpdump {
namespace {

// Where the refused byte stands relative to the read position.
enum class At { kPeeked, kRead };

// The decoder's refusal lines, most specific first. In the words, {id} is
// the byte's tag id, {type} the open characteristic, {expected} the byte the
// attribute check wanted.
struct Refusal {
    std::string_view prefix;
    std::string_view suffix;  // the line must also end so; empty: any end
    At at;
    const char *words;
    bool token = true;  // the byte stands where a token goes (not a page number)
};
constexpr Refusal kRefusals[] = {
    {"tqsClientProvWbxmlDecoderCharacter[", "", At::kPeeked,
     "a tag (id {id}) that no characteristic holds: only parm, characteristic and END may follow"},
    {"tqsClientProvWbxmlDecoderCharacterAttribute[", "", At::kPeeked,
     "an attribute that is no characteristic type"},
    {"tqsClientProvWbxmlDecoderCharacter : nesting", "", At::kRead,
     "a characteristic nested deeper than the decoder follows"},
    {"Tag Code = CHARACTER ATTR TYPE", "", At::kPeeked,
     "a parm in a characteristic whose inline type is neither ROAMING nor WI-FI"},
    {"DecoderParam : Tag Code [", "", At::kPeeked,
     "neither the value attribute (0x06) nor END after the parm name"},
    {"nId:", "", At::kRead, "another attribute than the {expected} that must stand there"},
    {"tqsClientProvWbxmlDecoderParamNapDef : Tag Code", "", At::kPeeked,
     "a parm name{name} that {type} does not have"},
    {"tqsClientProvWbxmlDecoderParam", "]", At::kPeeked, "a parm name{name} that {type} does not have"},
    {"Unknown Element[", "", At::kPeeked, "a tag (id {id}) that cannot begin the document"},
    {"Tag Code [", "", At::kPeeked,
     "a tag (id {id}) that the document element cannot hold: only characteristics"},
    {"[Error] [tqsClientProvWbxmlDecoderCheckAttrVersion]", "", At::kRead,
     "an attribute of the document element other than its version"},
    {"tqsClientProvWbxmlDecoderAttributeWapDocVersion[", "", At::kPeeked,
     "neither the version's text nor END after the version attribute"},
    {"ERROR::TQS_CODE_PAGE_UNKNOWN", "", At::kRead, "a code page other than 0 and 1", false},
    {"[Error] [tqsClientProvWbxmlDecoderGetString] nRet [0]", "", At::kRead,
     "a byte inside a text that is neither a string nor a value token the decoder knows"},
};
// Raised by the decoder without a line of its own: the tag read where the
// list of nested characteristics goes on is no characteristic.
constexpr Refusal kNotACharacteristic = {"", "", At::kRead,
                                         "a tag (id {id}) where the decoder reads the next characteristic: "
                                         "after one it takes only characteristics "
                                         "up to the END of {type}"};
// Also raised without a line: a characteristic nested in one that takes none.
constexpr std::string_view kNestRefusal = " is Not Support Chiled ";
constexpr Refusal kNoNesting = {"", "", At::kPeeked, "a characteristic nested in {type}, which holds none"};

// WBXML's global tokens, by low bits 0..4 and the two high bits.
constexpr const char *kGlobalTokens[5][4] = {
    {"SWITCH_PAGE", "EXT_I_0", "EXT_T_0", "EXT_0"},      {"END", "EXT_I_1", "EXT_T_1", "EXT_1"},
    {"ENTITY", "EXT_I_2", "EXT_T_2", "EXT_2"},           {"STR_I", "PI", "STR_T", "OPAQUE"},
    {"LITERAL", "LITERAL_C", "LITERAL_A", "LITERAL_AC"},
};

// The characteristics whose parm bytes read as page-1 names.
constexpr std::string_view kPage1Types[] = {"APPLICATION", "APPADDR", "APPAUTH", "RESOURCE", "ACCESS"};

bool StartsWith(std::string_view line, std::string_view prefix) {
    return line.substr(0, prefix.size()) == prefix;
}

// The hex number after `marker` in `line` ("0x" optional); -1 when none.
int HexAfter(std::string_view line, std::string_view marker) {
    const std::size_t at = line.find(marker);
    if (at == std::string_view::npos) return -1;
    const std::string rest(line.substr(at + marker.size()));
    char *end = nullptr;
    const long value = std::strtol(rest.c_str(), &end, 16);
    return end == rest.c_str() ? -1 : static_cast<int>(value);
}

// Text between `marker` and the line's last ']'.
std::string NameAfter(std::string_view line, std::string_view marker) {
    const std::size_t at = line.find(marker) + marker.size();
    const std::size_t end = line.rfind(']');
    return end == std::string_view::npos || end < at ? std::string() : std::string(line.substr(at, end - at));
}

void Replace(std::string *text, std::string_view key, const std::string &value) {
    for (std::size_t at; (at = text->find(key)) != std::string::npos;) text->replace(at, key.size(), value);
}

class TraceReader {
   public:
    void Line(std::string_view line) {
        ++index_;
        if (line == "tqsClientProvWbxmlDecoderCharacter") {
            levels_.push_back({});
            return;
        }
        if (const int byte = HexAfter(line, "Read Byte["); byte >= 0) return Read(byte);
        if (StartsWith(line, "[CP_DBG]tqsClientProvWbxmlDecoderCurElement")) return Event(At::kPeeked);
        if (line == "TQS_WBXML_TAG_SWITCH_PAGE0" || line == "TQS_WBXML_TAG_SWITCH_PAGE1") {
            page_ = line.back() - '0';
            return;
        }
        if (line == "tqsClientProvWbxmlDecoderCharacterAttribute" && !levels_.empty()) {
            levels_.back().attributes = true;
            return;
        }
        if (StartsWith(line, "tqsClientProvWbxmlDecoderCharacter :: "))
            return Opened(HexAfter(line, "nAttrId["));
        if (StartsWith(line, "String::[")) {
            if (!levels_.empty()) levels_.pop_back();
            parm_.clear();
            return;
        }
        if (const int tag = HexAfter(line, "DecoderParam : nTag = ["); tag >= 0) {
            const char *name = ParmName(static_cast<unsigned char>(tag), Page1Parms());
            parm_ = name != nullptr ? name : Hex(static_cast<unsigned>(tag));
            return;
        }
        if (line.find("NameString] nTagID [") != std::string_view::npos) {
            parm_ = "(a parm named by a string)";
            return;
        }
        if (line.find("NameString] pszName [") != std::string_view::npos)
            return Named(NameAfter(line, "pszName ["));
        if (line.find(kNestRefusal) != std::string_view::npos) return Refused(kNoNesting, line);
        for (const Refusal &r : kRefusals) {
            if (StartsWith(line, r.prefix) && line.size() >= r.suffix.size() &&
                line.substr(line.size() - r.suffix.size()) == r.suffix)
                return Refused(r, line);
        }
    }

    Diagnosis Finish(TqsResult status, const unsigned char *body, std::uint32_t length,
                     std::uint32_t consumed) {
        Diagnosis d;
        d.status = status;
        std::string path;
        for (const Level &level : levels_) path.append(path.empty() ? "" : "/").append(level.Name());
        if (!parm_.empty()) path += (path.empty() ? "" : "/") + parm_;
        d.path = path.empty() ? "the document" : path;
        const bool refused = refusal_ != nullptr && refusal_index_ >= event_index_;
        if (consumed >= length && (status == TQS_ERROR_WBXML_NO_MORE_DATA || !refused)) {
            d.at_end = true;
            d.offset = length;
            return d;
        }
        const At at = refused ? refusal_->at : event_;
        d.offset = at == At::kRead && consumed > 0 ? consumed - 1 : consumed;
        if (d.offset >= length) {  // nothing there to show: it ran out
            d.at_end = true;
            d.offset = length;
            return d;
        }
        const unsigned char byte = d.byte = body[d.offset];
        if ((!refused || refusal_->token) && (byte & 0x3F) < 5)
            d.token = kGlobalTokens[byte & 0x3F][byte >> 6];
        d.what = refused ? refusal_->words : "a byte the decoder does not expect there";
        Replace(&d.what, "{id}", Hex(byte & 0x3F));
        Replace(&d.what, "{type}", levels_.empty() ? "the document" : levels_.back().Name());
        Replace(&d.what, "{expected}", Hex(static_cast<unsigned>(expected_ < 0 ? 0 : expected_)));
        const char *name = ParmName(byte, Page1Parms());
        Replace(&d.what, "{name}", name != nullptr ? std::string(" (") + name + ")" : "");
        return d;
    }

   private:
    struct Level {
        std::string type;
        bool attributes = false;  // its attribute list is being read
        bool open = false;        // its content is being read
        std::string Name() const { return type.empty() ? "characteristic" : type; }
    };

    void Event(At at) {
        event_ = at;
        event_index_ = index_;
    }

    // The first tag read after a characteristic's entry decides whether one
    // opens: the decoder refuses another id and returns at once without content.
    void Read(int byte) {
        Event(At::kRead);
        if (levels_.empty() || levels_.back().open || levels_.back().attributes) return;
        if ((byte & 0x3F) != 0x06) {
            levels_.pop_back();
            refusal_ = &kNotACharacteristic;
            refusal_index_ = index_;
        } else if ((byte & 0x40) == 0) {
            levels_.pop_back();
        } else {
            levels_.back().open = true;
        }
    }

    // A round of the characteristic's loop: the first names its type, every
    // one starts a new parm.
    void Opened(int attr) {
        parm_.clear();
        if (levels_.empty()) return;
        Level &level = levels_.back();
        if (level.attributes && level.type.empty() && attr >= 0) {
            const char *name = TypeName(static_cast<unsigned char>(attr), static_cast<unsigned char>(page_));
            level.type = name != nullptr ? name : Hex(static_cast<unsigned>(attr));
        }
        level.attributes = false;
    }

    // A name given as a string: the inline type while the attributes are
    // read, else the parm's.
    void Named(std::string name) {
        if (!levels_.empty() && levels_.back().attributes) {
            levels_.back().type = std::move(name);
        } else {
            parm_ = std::move(name);
        }
    }

    void Refused(const Refusal &r, std::string_view line) {
        refusal_ = &r;
        refusal_index_ = index_;
        if (r.prefix == "nId:") expected_ = HexAfter(line, "nId:");
        if (r.at == At::kRead && StartsWith(r.prefix, "tqsClientProvWbxmlDecoderCharacter") &&
            !levels_.empty())
            levels_.pop_back();  // too deep: it never opened
    }

    bool Page1Parms() const {
        if (levels_.empty()) return false;
        for (std::string_view type : kPage1Types) {
            if (levels_.back().type == type) return true;
        }
        return false;
    }

    std::vector<Level> levels_;
    std::string parm_;
    int page_ = 0;
    long index_ = 0;
    At event_ = At::kPeeked;
    long event_index_ = -1;
    const Refusal *refusal_ = nullptr;
    long refusal_index_ = -1;
    int expected_ = -1;
};

std::vector<std::string> *g_capture = nullptr;

void Capture(const char *line) {
    if (g_capture != nullptr) g_capture->emplace_back(line);
}

}  // namespace

Diagnosis ReadTrace(const std::vector<std::string> &lines, TqsResult status, const unsigned char *body,
                    std::uint32_t length, std::uint32_t consumed) {
    TraceReader reader;
    for (const std::string &line : lines) {
        std::string_view view = line;
        while (!view.empty() && view.back() == '\n') view.remove_suffix(1);
        reader.Line(view);
    }
    // A read position past the body (an OPAQUE length that runs into the
    // padding) counts as its end.
    return reader.Finish(status, body, length, consumed < length ? consumed : length);
}

Diagnosis Diagnose(const unsigned char *body, std::uint32_t length) {
    std::vector<std::string> lines;
    const TqcTraceSink previous = ptTqcTraceSink;
    g_capture = &lines;
    tqcTraceSetSink(Capture);
    tqsWbxmlDecoder *decoder = nullptr;
    tqsWapDoc *doc = nullptr;
    TqsResult status = tqsClientProvWbxmlInitDecoder(&decoder, body, length);
    if (status == TQS_OK) status = tqsClientProvWbxmlDecoder(decoder, &doc);
    const std::uint32_t consumed = decoder != nullptr ? tqsClientProvWbxmlDecoderDecodingSize(decoder) : 0;
    tqsClientProvWbxmlDeleteDecoder(decoder);
    tqcTraceSetSink(previous);
    g_capture = nullptr;
    Diagnosis d = ReadTrace(lines, status, body, length, consumed);
    d.empty_document = status == TQS_OK && (doc == nullptr || doc->ptCharacterList == nullptr);
    tqsClientProvWbxmlDeleteWapDoc(doc);
    return d;
}

}  // namespace cpdump
