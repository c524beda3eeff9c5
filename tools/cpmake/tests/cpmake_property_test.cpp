// Random valid documents (every characteristic type in its place, repeated
// parms, both attribute pages, values as tokens and as strings), encoded with
// and without a string table. The library's decoder must give back what was
// generated, as cpdump prints its tree; libwbxml must too, by the standard
// token tables (the library ignores the page of a value token).
//
//   cpmake_property_test --write-seeds DIR [COUNT]
// writes COUNT generated documents (default 40) as fuzz seeds instead:
// bodies under DIR/wbxml_tree, pushes under DIR/pipeline, for a libFuzzer
// merge into fuzz/seeds.
#include <gtest/gtest.h>
#include <wbxml/wbxml.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>

#include "encoder.h"
#include "push.h"
#include "records.h"
#include "wbxml_tokens.h"
#include "tqomacp_jni_names.h"
#include "tqsClientProvWbxmlDecoder.h"

namespace cpmake {
namespace {

using Kind = Node::Kind;

// Where each type may stand; "" is the document.
const std::map<std::string, std::vector<std::string>> kChildren = {
    {"",
     {"PXLOGICAL", "NAPDEF", "BOOTSTRAP", "CLIENTIDENTITY", "VENDORCONFIG", "APPLICATION", "ACCESS",
      "WI-FI"}},
    {"PXLOGICAL", {"PXAUTHINFO", "PORT", "PXPHYSICAL"}},
    {"PXPHYSICAL", {"PORT"}},
    {"NAPDEF", {"NAPAUTHINFO", "VALIDITY"}},
    {"APPLICATION", {"APPADDR", "APPAUTH", "RESOURCE", "ROAMING"}},
    {"APPADDR", {"PORT"}},
};

// The body's tree as cpdump prints it, or "" when the library refuses it.
std::string LibraryXml(const Bytes &body) {
    tqsWbxmlDecoder *decoder = nullptr;
    tqsWapDoc *doc = nullptr;
    std::string xml;
    if (tqsClientProvWbxmlInitDecoder(&decoder, body.data(), static_cast<std::uint32_t>(body.size())) == 0 &&
        tqsClientProvWbxmlDecoder(decoder, &doc) == 0)
        cpdump::WriteTreeXml(&xml, doc);
    tqsClientProvWbxmlDeleteWapDoc(doc);
    tqsClientProvWbxmlDeleteDecoder(decoder);
    return xml;
}

std::string LibwbxmlXml(const Bytes &body) {
    WBXMLConvWBXML2XML *conv = nullptr;
    WB_UTINY *xml = nullptr;
    WB_ULONG length = 0;
    std::string text;
    if (wbxml_conv_wbxml2xml_create(&conv) == WBXML_OK &&
        wbxml_conv_wbxml2xml_run(conv, const_cast<WB_UTINY *>(body.data()), body.size(), &xml, &length) ==
            WBXML_OK)
        text.assign(reinterpret_cast<const char *>(xml), length);
    std::free(xml);
    wbxml_conv_wbxml2xml_destroy(conv);
    return text;
}

enum class Repeat { kNone, kList, kJoin };

// Which parms the library keeps in each type, and what it makes of a parm
// given twice: asked of the library itself, one small document at a time.
const std::map<std::string, std::map<std::string, Repeat>> &Catalogue() {
    static const auto catalogue = [] {
        std::map<std::string, std::map<std::string, Repeat>> c;
        for (const auto &[parent, types] : kChildren) {
            for (const std::string &type : types) {
                for (const std::string &name : ParmNames()) {
                    const std::string line = "<parm name=\"" + name + "\" value=\"";
                    auto decoded = [&](std::vector<Node> parms) {
                        Node doc;
                        doc.children.push_back({Kind::kCharacteristic, type, {}, std::move(parms)});
                        return LibraryXml(EncodeBody(doc, {}, nullptr));
                    };
                    const Node ab{Kind::kParm, name, "ab", {}}, cd{Kind::kParm, name, "cd", {}};
                    if (decoded({ab}).find(line + "ab\"/>") == std::string::npos) continue;
                    const std::string twice = decoded({ab, cd});
                    auto has = [&](const char *v) {
                        return twice.find(line + v + "\"/>") != std::string::npos;
                    };
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

// Every text the library reads back from a value token: the decoder's and
// the bearer names.
std::vector<std::string> TokenTexts() {
    std::vector<std::string> t;
    for (int code = 0x80; code <= 0xFF; ++code)
        if (!DecodedText(code).empty()) t.emplace_back(DecodedText(code));
    for (int i = 0; i < TQS_JNI_BEARER_CODES; ++i)
        t.push_back(tqsJniCodeNames[TQS_JNI_SERVICE_NAMES + i].name);
    return t;
}

struct Generator {
    std::mt19937 rng;
    std::vector<std::string> token_texts = TokenTexts();

    int Pick(std::size_t n) { return std::uniform_int_distribution<int>(0, static_cast<int>(n) - 1)(rng); }

    std::string Text() {
        static const char *const kPieces[] = {"a",   "Z",       "7", " ",        "-",
                                              "/",   ".",       ":", "&",        "<",
                                              ">",   "\"",      "'", "\xC3\xA9", "\xE4\xB8\xAD",
                                              "NAP", "http://x"};
        std::string s = "v";  // a lower-case start: never a token text by chance
        for (int n = Pick(12); n > 0; --n) s += kPieces[Pick(std::size(kPieces))];
        return s;
    }

    Node Document() {
        Node doc;
        if (const int v = Pick(3)) doc.value = v == 1 ? "1.0" : "1.1";
        Fill(&doc, 0);
        return doc;
    }

    void Fill(Node *node, int depth) {
        if (node->kind == Kind::kCharacteristic) Parms(node);
        const auto allowed = kChildren.find(node->name);
        for (int n = allowed == kChildren.end() ? 0 : Pick(depth == 0 ? 5 : 3) + (depth == 0); n > 0; --n) {
            Node &c = node->children.emplace_back(
                Node{Kind::kCharacteristic, allowed->second[Pick(allowed->second.size())], {}, {}});
            Fill(&c, depth + 1);
        }
    }

    void Parms(Node *node) {
        const auto &known = Catalogue().at(node->name);
        std::set<std::string> used;
        bool vendor_parm = false;
        for (int n = Pick(6); n > 0; --n) {
            const auto &[name, repeat] = *std::next(known.begin(), Pick(known.size()));
            bool first = used.insert(name).second;
            // A VENDORCONFIG keeps one parm written by name, whatever its name.
            const bool vendor = node->name == "VENDORCONFIG" && FindParm(name)->code == 0;
            if ((!first && repeat == Repeat::kNone) || (vendor && std::exchange(vendor_parm, true))) continue;
            for (int t = repeat == Repeat::kNone ? 0 : Pick(3); t >= 0; --t, first = false) {
                // Tokens only as a first value: a token joined to a value takes a separator.
                const bool token = first && Pick(3) == 0;
                node->children.push_back({Kind::kParm, name,
                                          token     ? token_texts[Pick(token_texts.size())]
                                          : Pick(8) ? Text()
                                                    : "",
                                          {}});
            }
        }
    }
};

// What cpdump's tree printing keeps of a document: per characteristic its
// type, each parm name's values in document order (joined where the library
// joins them) and its children in order.
std::string Canonical(const Node &n, bool join, int depth = 0) {
    std::map<std::string, std::vector<std::string>> parms;
    std::string children;
    for (const Node &c : n.children) {
        if (c.kind == Kind::kCharacteristic) {
            children += Canonical(c, join, depth + 1);
        } else if (auto &v = parms[c.name];
                   join && !v.empty() && Catalogue().at(n.name).at(c.name) == Repeat::kJoin) {
            v.back() += *c.value;
        } else {
            v.push_back(c.value.value_or("(none)"));
        }
    }
    std::string out = std::string(depth * 2, ' ') + n.name + "\n";
    for (const auto &[name, values] : parms)
        for (const std::string &v : values) out += std::string(depth * 2 + 2, ' ') + name + "=" + v + "\n";
    return out + children;
}

std::string CanonicalOf(const std::string &xml) {
    Node doc;
    XmlError error;
    std::vector<std::string> warnings;
    return ParseXml(xml, &doc, &error, &warnings) ? Canonical(doc, false) : "unreadable: " + error.message;
}

void CountTypes(const Node &n, std::set<std::string> *seen) {
    for (const Node &c : n.children)
        if (c.kind == Kind::kCharacteristic) seen->insert(c.name), CountTypes(c, seen);
}

TEST(CpmakeGenerated, DecodeToWhatWasGenerated) {
    std::set<std::string> types_seen;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        const Node doc = Generator{std::mt19937(seed)}.Document();
        CountTypes(doc, &types_seen);
        for (bool table : {false, true}) {
            SCOPED_TRACE("seed " + std::to_string(seed) + (table ? " with string table" : ""));
            std::vector<std::string> warnings;
            const Bytes body = EncodeBody(doc, {table}, &warnings);
            EXPECT_TRUE(warnings.empty()) << warnings.front();
            ASSERT_EQ(CanonicalOf(LibraryXml(body)), Canonical(doc, true));
            ASSERT_EQ(CanonicalOf(LibwbxmlXml(body)), Canonical(doc, false));
        }
    }
    EXPECT_EQ(types_seen.size(), 17u);
}

int WriteSeeds(const std::filesystem::path &dir, int count) {
    auto write = [](const std::filesystem::path &path, const Bytes &bytes) {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    };
    for (int i = 1; i <= count; ++i) {
        const Bytes body = EncodeBody(Generator{std::mt19937(100000 + i)}.Document(), {i % 2 == 0}, nullptr);
        const std::string name = "generated-" + std::to_string(i);
        write(dir / "wbxml_tree" / (name + ".wbxml"), body);
        write(dir / "pipeline" / (name + ".pdu"), WrapPush(body, {}));
    }
    std::printf("wrote %d generated documents under %s\n", count, dir.c_str());
    return 0;
}

}  // namespace
}  // namespace cpmake

// The library keeps some blocks of a decode on purpose (ROAMING and WI-FI
// records, names written by string); a sanitizer build must not fail on them.
extern "C" const char *__asan_default_options() {
    return "detect_leaks=0";
}

int main(int argc, char **argv) {
    if (argc >= 3 && std::strcmp(argv[1], "--write-seeds") == 0)
        return cpmake::WriteSeeds(argv[2], argc >= 4 ? std::atoi(argv[3]) : 40);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
