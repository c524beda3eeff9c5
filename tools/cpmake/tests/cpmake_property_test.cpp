// Random valid provisioning documents: every characteristic type in its place
// of the hierarchy, repeated parms, tokens of both attribute pages, values as
// tokens and as strings. Each is encoded (with and without a string table),
// decoded by the library into its tree, printed as cpdump prints it, read
// back and compared with what was generated. libwbxml decodes each as well,
// for the tokens' meaning by the standard tables (the library ignores the
// page of a value token).
//
//   cpmake_property_test --write-seeds DIR [COUNT]
// writes COUNT generated documents (default 40) as fuzz seeds instead:
// bodies under DIR/wbxml_tree, pushes under DIR/pipeline.
#include <gtest/gtest.h>
#include <wbxml/wbxml.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "encoder.h"
#include "push.h"
#include "records.h"
#include "tokens.h"
#include "tqomacp_jni_names.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "xmldoc.h"

namespace cpmake {
namespace {

// Where each type may stand; "" is the document.
const std::map<std::string, std::vector<std::string>> kChildren = {
    {"", {"PXLOGICAL", "NAPDEF", "BOOTSTRAP", "CLIENTIDENTITY", "VENDORCONFIG", "APPLICATION", "ACCESS", "WI-FI"}},
    {"PXLOGICAL", {"PXAUTHINFO", "PORT", "PXPHYSICAL"}},
    {"PXPHYSICAL", {"PORT"}},
    {"NAPDEF", {"NAPAUTHINFO", "VALIDITY"}},
    {"APPLICATION", {"APPADDR", "APPAUTH", "RESOURCE", "ROAMING"}},
    {"APPADDR", {"PORT"}},
};

// Every text the library reads back from a value token: the decoder's and
// the bearer names.
const std::vector<std::string> &TokenTexts() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> t;
        for (int code = 0x80; code <= 0xFF; ++code) {
            char *text = nullptr;
            if (tqsClientProvWbxmlDecoderGetParamTokenVal(static_cast<std::uint8_t>(code), &text) == 0) t.push_back(text);
            tqsMemFree_debug(text);
        }
        for (int i = 0; i < TQS_JNI_BEARER_CODES; ++i) t.push_back(tqsJniCodeNames[TQS_JNI_SERVICE_NAMES + i].name);
        return t;
    }();
    return texts;
}

std::string XmlText(const Node &n, int depth = 0);

// A decoded body as the tree cpdump prints, or "" when the library refuses it.
std::string DecodeToXml(const Bytes &body) {
    tqsWbxmlDecoder *decoder = nullptr;
    tqsWapDoc *doc = nullptr;
    std::string xml;
    if (tqsClientProvWbxmlInitDecoder(&decoder, body.data(), static_cast<std::uint32_t>(body.size())) == 0 &&
        tqsClientProvWbxmlDecoder(decoder, &doc) == 0) {
        cpdump::WriteTreeXml(&xml, doc);
    }
    tqsClientProvWbxmlDeleteWapDoc(doc);
    tqsClientProvWbxmlDeleteDecoder(decoder);
    return xml;
}

// The body as libwbxml reads it, by the standard token tables.
std::string LibwbxmlXml(const Bytes &body) {
    WBXMLConvWBXML2XML *conv = nullptr;
    WB_UTINY *xml = nullptr;
    WB_ULONG length = 0;
    std::string text;
    if (wbxml_conv_wbxml2xml_create(&conv) == WBXML_OK &&
        wbxml_conv_wbxml2xml_run(conv, const_cast<WB_UTINY *>(body.data()), static_cast<WB_ULONG>(body.size()),
                                 &xml, &length) == WBXML_OK) {
        text.assign(reinterpret_cast<const char *>(xml), length);
    }
    std::free(xml);
    wbxml_conv_wbxml2xml_destroy(conv);
    return text;
}

Node Parse(const std::string &xml) {
    Node doc;
    XmlError error;
    std::vector<std::string> warnings;
    EXPECT_TRUE(ParseXml(xml, &doc, &error, &warnings)) << error.message << "\n" << xml;
    return doc;
}

Node Characteristic(const std::string &type, std::vector<Node> parms = {}) {
    Node c{Node::Kind::kCharacteristic, type, {}, std::move(parms)};
    return c;
}
Node Parm(const std::string &name, const std::string &value) {
    return Node{Node::Kind::kParm, name, value, {}};
}
Node Document(std::vector<Node> children) {
    return Node{Node::Kind::kDocument, "", {}, std::move(children)};
}

enum class Repeat { kNone, kList, kJoin };

// Which parms the library keeps in each type, and what it makes of a parm
// given twice, asked of the library itself one small document at a time.
const std::map<std::string, std::map<std::string, Repeat>> &Catalogue() {
    static const auto catalogue = [] {
        std::map<std::string, std::map<std::string, Repeat>> c;
        auto decoded = [](const std::string &type, std::vector<Node> parms) {
            return DecodeToXml(EncodeBody(Document({Characteristic(type, std::move(parms))}), {}, nullptr));
        };
        for (const auto &[parent, types] : kChildren) {
            for (const std::string &type : types) {
                for (std::size_t i = 0; i < ParmCount(); ++i) {
                    const std::string name(ParmName(i));
                    const std::string line = "<parm name=\"" + name + "\" value=\"";
                    if (decoded(type, {Parm(name, "ab")}).find(line + "ab\"/>") == std::string::npos) continue;
                    const std::string twice = decoded(type, {Parm(name, "ab"), Parm(name, "cd")});
                    const auto has = [&](const char *v) { return twice.find(line + v + "\"/>") != std::string::npos; };
                    c[type][name] = has("abcd")              ? Repeat::kJoin
                                    : has("ab") && has("cd") ? Repeat::kList
                                                             : Repeat::kNone;
                }
            }
        }
        return c;
    }();
    return catalogue;
}

class Generator {
   public:
    explicit Generator(unsigned seed) : rng_(seed) {}

    Node Document() {
        Node doc = cpmake::Document({});
        const int version = Pick(3);
        if (version > 0) doc.value = version == 1 ? "1.0" : "1.1";
        Fill(&doc, "", 0);
        return doc;
    }

   private:
    int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }

    std::string Text() {
        static const char *const kPieces[] = {"a", "q", "Z", "7", " ", "-", "/", ".", ":", "&", "<", ">",
                                              "\"", "'", "\xC3\xA9", "\xE4\xB8\xAD", "NAP", "http://x"};
        std::string s = "v";  // a lower-case start: never a token text by chance
        for (int n = Pick(12); n > 0; --n) s += kPieces[Pick(std::size(kPieces))];
        return s;
    }

    void Fill(Node *node, const std::string &type, int depth) {
        if (!type.empty()) Parms(node, type);
        const auto allowed = kChildren.find(type);
        if (allowed == kChildren.end() || depth > 3) return;
        for (int n = Pick(depth == 0 ? 5 : 3) + (depth == 0); n > 0; --n) {
            const std::string &child = allowed->second[Pick(allowed->second.size())];
            Node c = Characteristic(child);
            Fill(&c, child, depth + 1);
            node->children.push_back(std::move(c));
        }
    }

    void Parms(Node *node, const std::string &type) {
        const auto &known = Catalogue().at(type);
        std::vector<std::string> names;
        for (const auto &entry : known) names.push_back(entry.first);
        std::set<std::string> used;
        bool vendor_parm = false;
        for (int n = Pick(6); n > 0; --n) {
            const std::string &name = names[Pick(names.size())];
            const Repeat repeat = known.at(name);
            bool first = used.insert(name).second;
            if (!first && repeat == Repeat::kNone) continue;
            // A VENDORCONFIG keeps one parm written by name, whatever its name.
            if (type == "VENDORCONFIG" && FindParm(name)->code == 0 && std::exchange(vendor_parm, true)) continue;
            for (int t = repeat == Repeat::kNone ? 0 : Pick(3); t >= 0; --t, first = false) {
                // A token only as a first value: tokens joined to a value take separators.
                const bool token = first && Pick(3) == 0;
                node->children.push_back(
                    Parm(name, token ? TokenTexts()[Pick(TokenTexts().size())] : Pick(8) ? Text() : ""));
            }
        }
    }

    std::mt19937 rng_;
};

// A characteristic reduced to what cpdump's tree printing keeps: its type,
// the values of each parm name in document order (joined where the library
// joins them) and its children in order.
std::string Canonical(const Node &n, bool generated, int depth = 0) {
    std::map<std::string, std::vector<std::string>> parms;
    std::string children;
    for (const Node &c : n.children) {
        if (c.kind == Node::Kind::kCharacteristic) {
            children += Canonical(c, generated, depth + 1);
            continue;
        }
        auto &values = parms[c.name];
        const bool join = generated && Catalogue().at(n.name).at(c.name) == Repeat::kJoin;
        if (join && !values.empty()) {
            values.back() += *c.value;
        } else {
            values.push_back(c.value.value_or("(none)"));
        }
    }
    std::string out(depth * 2, ' ');
    out += n.name + "\n";
    for (const auto &[name, values] : parms) {
        for (const std::string &v : values) out += std::string(depth * 2 + 2, ' ') + name + "=" + v + "\n";
    }
    return out + children;
}

TEST(GeneratedDocuments, DecodeToWhatWasGenerated) {
    std::map<std::string, int> types_seen;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        const Node doc = Generator(seed).Document();
        const std::string expected = Canonical(doc, true);
        for (bool table : {false, true}) {
            SCOPED_TRACE("seed " + std::to_string(seed) + (table ? " with string table" : ""));
            std::vector<std::string> warnings;
            const Bytes body = EncodeBody(doc, {table}, &warnings);
            EXPECT_TRUE(warnings.empty()) << warnings.front();
            const std::string decoded = DecodeToXml(body);
            ASSERT_FALSE(decoded.empty()) << "refused:\n" << XmlText(doc);
            ASSERT_EQ(Canonical(Parse(decoded), false), expected) << XmlText(doc);
            ASSERT_EQ(Canonical(Parse(LibwbxmlXml(body)), false), Canonical(doc, false)) << XmlText(doc);
        }
        std::string text = XmlText(doc);
        for (const auto &[type, unused] : Catalogue()) {
            types_seen[type] += text.find("type=\"" + type + "\"") != std::string::npos;
        }
    }
    // Every type took part, and each can hold parms.
    EXPECT_EQ(types_seen.size(), 17u);
    for (const auto &[type, count] : types_seen) EXPECT_GT(count, 0) << type;
}

std::string Escape(const std::string &s) {
    std::string out;
    for (char c : s) {
        const char *e = c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '"' ? "&quot;" : nullptr;
        out += e != nullptr ? e : std::string(1, c);
    }
    return out;
}

std::string XmlText(const Node &n, int depth) {
    const std::string indent(depth * 2, ' ');
    if (n.kind == Node::Kind::kParm) {
        return indent + "<parm name=\"" + n.name + "\"" + (n.value ? " value=\"" + Escape(*n.value) + "\"" : "") +
               "/>\n";
    }
    const bool doc = n.kind == Node::Kind::kDocument;
    std::string out = indent + (doc ? "<wap-provisioningdoc" + (n.value ? " version=\"" + *n.value + "\"" : "")
                                    : "<characteristic type=\"" + n.name + "\"") + ">\n";
    for (const Node &c : n.children) out += XmlText(c, depth + 1);
    return out + indent + (doc ? "</wap-provisioningdoc>\n" : "</characteristic>\n");
}

int WriteSeeds(const std::filesystem::path &dir, int count) {
    namespace fs = std::filesystem;
    fs::create_directories(dir / "wbxml_tree");
    fs::create_directories(dir / "pipeline");
    for (int i = 1; i <= count; ++i) {
        const Node doc = Generator(100000u + static_cast<unsigned>(i)).Document();
        const Bytes body = EncodeBody(doc, {i % 2 == 0}, nullptr);
        const Bytes pdu = WrapPush(body, {});
        const std::string name = "generated-" + std::to_string(i);
        std::ofstream(dir / "wbxml_tree" / (name + ".wbxml"), std::ios::binary)
            .write(reinterpret_cast<const char *>(body.data()), static_cast<std::streamsize>(body.size()));
        std::ofstream(dir / "pipeline" / (name + ".pdu"), std::ios::binary)
            .write(reinterpret_cast<const char *>(pdu.data()), static_cast<std::streamsize>(pdu.size()));
    }
    std::printf("wrote %d generated documents under %s\n", count, dir.c_str());
    return 0;
}

}  // namespace
}  // namespace cpmake

int main(int argc, char **argv) {
    if (argc >= 3 && std::strcmp(argv[1], "--write-seeds") == 0) {
        return cpmake::WriteSeeds(argv[2], argc >= 4 ? std::atoi(argv[3]) : 40);
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
