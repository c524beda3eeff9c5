#include "encoder.h"

#include <map>

#include "wbxml_tokens.h"

namespace cpmake {
namespace {

// WBXML global tokens and tag bits.
constexpr unsigned char kSwitchPage = 0x00;
constexpr unsigned char kEnd = 0x01;
constexpr unsigned char kStrI = 0x03;
constexpr unsigned char kStrT = 0x83;
constexpr unsigned char kHasAttributes = 0x80;
constexpr unsigned char kHasContent = 0x40;

// Tags and the attribute tokens that are the same on both pages.
constexpr unsigned char kTagDocument = 0x05;
constexpr unsigned char kTagCharacteristic = 0x06;
constexpr unsigned char kTagParm = 0x07;
constexpr unsigned char kAttrName = 0x05;
constexpr unsigned char kAttrValue = 0x06;
constexpr unsigned char kAttrVersion = 0x45;
constexpr unsigned char kAttrVersion10 = 0x46;
constexpr unsigned char kAttrType = 0x50;

constexpr unsigned char kVersion13 = 0x03;
constexpr unsigned char kPublicIdProv = 0x0B;
constexpr unsigned char kCharsetUtf8 = 0x6A;

std::string Where(const Node &n) {
    return std::to_string(n.line) + ":" + std::to_string(n.column) + ": warning: ";
}

// One walk over the document; run twice when a string table is wanted: the
// first run only counts the strings, the second writes.
class Writer {
   public:
    Writer(const std::map<std::string, unsigned long> *table, std::vector<std::string> *warnings)
        : table_(table), warnings_(warnings) {}

    void Document(const Node &doc) {
        const bool content = !doc.children.empty();
        const bool version = doc.value.has_value();
        Byte(kTagDocument | (content ? kHasContent : 0) | (version ? kHasAttributes : 0));
        if (version) {
            if (*doc.value == "1.0") {
                Byte(kAttrVersion10);
            } else {
                // Always inline: the handset accepts no table reference here.
                Byte(kAttrVersion);
                Inline(*doc.value);
            }
            Byte(kEnd);
        }
        for (const Node &child : doc.children) Element(child);
        if (content) Byte(kEnd);
    }

    std::map<std::string, int> counts;  // strings seen, for the table
    Bytes out;

   private:
    void Element(const Node &n) { n.kind == Node::Kind::kParm ? Parm(n) : Characteristic(n); }

    // Always with content, even when empty: the handset drops a
    // characteristic without it, and loses its place in the stream.
    void Characteristic(const Node &n) {
        Byte(kTagCharacteristic | kHasContent | kHasAttributes);
        const std::optional<Token> type = FindType(n.name);
        Named(type, n, kAttrType, "characteristic type");
        Byte(kEnd);
        for (const Node &child : n.children) Element(child);
        Byte(kEnd);
    }

    void Parm(const Node &n) {
        Byte(kTagParm | kHasAttributes);
        const std::optional<Token> name = FindParm(n.name);
        Named(name, n, kAttrName, "parm name");
        if (n.value) {
            Byte(kAttrValue);
            if (const unsigned char token = ValueToken(n.name, *n.value, page_)) {
                Byte(token);
            } else {
                String(*n.value);
            }
        }
        Byte(kEnd);
    }

    // A name's token on a page that defines it, or the generic attribute
    // followed by the name as a string.
    void Named(const std::optional<Token> &token, const Node &n, unsigned char generic, const char *what) {
        if (token && token->code != 0) {
            Page(token->pages);
            Byte(token->code);
            return;
        }
        if (!token && warnings_ != nullptr) {
            warnings_->push_back(Where(n) + what + " \"" + n.name +
                                 "\" has no token; written as an inline name");
        }
        Byte(generic);
        String(n.name);
    }

    void Page(unsigned char pages) {
        if (pages & (page_ == 0 ? kPage0 : kPage1)) return;
        page_ = (pages & kPage0) ? 0 : 1;
        Byte(kSwitchPage);
        Byte(page_);
    }

    void String(const std::string &text) {
        ++counts[text];
        if (table_ != nullptr) {
            if (auto it = table_->find(text); it != table_->end()) {
                Byte(kStrT);
                AppendMbUint32(out, it->second);
                return;
            }
        }
        Inline(text);
    }

    void Inline(const std::string &text) {
        Byte(kStrI);
        out.insert(out.end(), text.begin(), text.end());
        Byte(0);
    }

    void Byte(unsigned char b) { out.push_back(b); }

    const std::map<std::string, unsigned long> *table_;
    std::vector<std::string> *warnings_;
    unsigned char page_ = 0;
};

}  // namespace

void AppendMbUint32(Bytes &out, unsigned long value) {
    unsigned char groups[5];
    int n = 0;
    do {
        groups[n++] = value & 0x7F;
        value >>= 7;
    } while (value != 0 && n < 5);
    while (n > 1) out.push_back(groups[--n] | 0x80);
    out.push_back(groups[0]);
}

Bytes EncodeBody(const Node &doc, const EncodeOptions &options, std::vector<std::string> *warnings) {
    Writer plain(nullptr, warnings);
    plain.Document(doc);

    Bytes table;
    std::map<std::string, unsigned long> index;
    if (options.string_table) {
        for (const auto &[text, count] : plain.counts) {
            if (count < 2) continue;
            index[text] = table.size();
            table.insert(table.end(), text.begin(), text.end());
            table.push_back(0);
        }
    }

    Bytes body = {kVersion13, kPublicIdProv, kCharsetUtf8};
    AppendMbUint32(body, table.size());
    body.insert(body.end(), table.begin(), table.end());
    if (index.empty()) {
        body.insert(body.end(), plain.out.begin(), plain.out.end());
    } else {
        std::vector<std::string> again;  // the same warnings a second time
        Writer referenced(&index, &again);
        referenced.Document(doc);
        body.insert(body.end(), referenced.out.begin(), referenced.out.end());
    }
    return body;
}

}  // namespace cpmake
