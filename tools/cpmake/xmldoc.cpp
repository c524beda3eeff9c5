#include "xmldoc.h"

#include <expat.h>

#include <cstring>

namespace cpmake {
namespace {

struct ElementRule {
    const char *element;
    Node::Kind kind;
    const char *name_attr;   // required; null for the document
    const char *value_attr;  // optional
};

constexpr ElementRule kElements[] = {
    {"wap-provisioningdoc", Node::Kind::kDocument, nullptr, "version"},
    {"characteristic", Node::Kind::kCharacteristic, "type", nullptr},
    {"parm", Node::Kind::kParm, "name", "value"},
};

struct State {
    XML_Parser parser;
    Node *doc;
    std::vector<Node *> open;  // path from the document to the current element
    XmlError error;
    bool failed = false;
    std::vector<std::string> *warnings;

    int Line() const { return static_cast<int>(XML_GetCurrentLineNumber(parser)); }
    int Column() const { return static_cast<int>(XML_GetCurrentColumnNumber(parser)) + 1; }

    void Fail(std::string message) {
        if (failed) return;
        failed = true;
        error = {Line(), Column(), std::move(message)};
        XML_StopParser(parser, XML_FALSE);
    }
    void Warn(const std::string &message) {
        warnings->push_back(std::to_string(Line()) + ":" + std::to_string(Column()) +
                            ": warning: " + message);
    }
};

const ElementRule *FindRule(const char *element) {
    for (const ElementRule &rule : kElements) {
        if (std::strcmp(rule.element, element) == 0) return &rule;
    }
    return nullptr;
}

void XMLCALL OnStart(void *data, const XML_Char *element, const XML_Char **attrs) {
    auto *st = static_cast<State *>(data);
    const ElementRule *rule = FindRule(element);
    if (rule == nullptr) return st->Fail(std::string("unknown element <") + element + ">");
    const bool at_root = st->open.empty();
    if (at_root != (rule->kind == Node::Kind::kDocument)) {
        return st->Fail(at_root ? std::string("the document element must be <wap-provisioningdoc>, not <") +
                                      element + ">"
                                : "<wap-provisioningdoc> inside the document");
    }
    Node *parent = at_root ? nullptr : st->open.back();
    if (parent != nullptr && parent->kind == Node::Kind::kParm) {
        return st->Fail(std::string("<") + element + "> inside a <parm>");
    }
    Node *node = st->doc;
    if (parent != nullptr) node = &parent->children.emplace_back();
    node->kind = rule->kind;
    node->line = st->Line();
    node->column = st->Column();
    bool named = rule->name_attr == nullptr;
    for (const XML_Char **a = attrs; *a != nullptr; a += 2) {
        if (rule->name_attr != nullptr && std::strcmp(a[0], rule->name_attr) == 0) {
            node->name = a[1];
            named = true;
        } else if (rule->value_attr != nullptr && std::strcmp(a[0], rule->value_attr) == 0) {
            node->value = a[1];
        } else {
            st->Warn(std::string("attribute ") + a[0] + " of <" + element + "> ignored");
        }
    }
    if (!named) return st->Fail(std::string("<") + element + "> without " + rule->name_attr + "=");
    st->open.push_back(node);
}

void XMLCALL OnEnd(void *data, const XML_Char *) {
    // Expat still closes an empty element whose start was refused.
    auto *st = static_cast<State *>(data);
    if (!st->failed) st->open.pop_back();
}

void XMLCALL OnText(void *data, const XML_Char *text, int len) {
    auto *st = static_cast<State *>(data);
    for (int i = 0; i < len; ++i) {
        if (std::strchr(" \t\r\n", text[i]) == nullptr) {
            st->Warn("text content ignored");
            return;
        }
    }
}

}  // namespace

bool ParseXml(std::string_view text, Node *doc, XmlError *error, std::vector<std::string> *warnings) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    State st{parser, doc, {}, {}, false, warnings};
    *doc = Node{};
    XML_SetUserData(parser, &st);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    const bool ok = XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
    if (!ok && !st.failed) {
        st.error = {st.Line(), st.Column(), XML_ErrorString(XML_GetErrorCode(parser))};
        st.failed = true;
    }
    XML_ParserFree(parser);
    if (st.failed) *error = st.error;
    return !st.failed;
}

}  // namespace cpmake
