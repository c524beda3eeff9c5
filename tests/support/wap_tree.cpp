#include "wap_tree.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <regex>
#include <span>

#include "tqsClientProvFields.h"
#include "tqslist.h"

namespace waptree {
namespace {

std::string Value(const void *p) {
    const unsigned char *text = static_cast<const unsigned char *>(p);
    if (text[0] <= 0x80) return reinterpret_cast<const char *>(text);
    char buf[8];
    std::snprintf(buf, sizeof buf, "<0x%02X>", text[0]);
    return buf;
}

void *const *Fields(const void *record) {
    return static_cast<void *const *>(record);
}

TqsListNode *Head(const void *list) {
    return list != nullptr ? static_cast<const TqsList *>(list)->ptHead : nullptr;
}

// The characteristics of a list as nodes; what the release leaves allocated goes to `kept`.
std::vector<Node> FromList(const TqsList *ptList, std::set<void *> *kept) {
    std::vector<Node> out;
    for (TqsListNode *n = Head(ptList); n != nullptr; n = n->ptNext) {
        Node &node = out.emplace_back();
        void *const *records = Fields(n->pItem);
        for (size_t i = 0; records != nullptr && i < Slots().size(); ++i) {
            if (records[i] == nullptr) continue;
            const Slot &slot = Slots()[i];
            node.type += (node.type.empty() ? "" : "+") + slot.type;
            if (slot.recordKept) kept->insert(records[i]);
            void *const *fields = Fields(records[i]);
            for (size_t f = 0; f < slot.fields.size(); ++f) {
                const Field &field = slot.fields[f];
                void *p = fields[f];
                if (p == nullptr) continue;
                if (field.kept) kept->insert(p);
                if (field.kind == Field::kString) node.parms.push_back(field.name + "=" + Value(p));
                if (field.kind == Field::kPairName)
                    node.parms.push_back(Value(p) + "=" +
                                         (fields[f + 1] != nullptr ? Value(fields[f + 1]) : ""));
                for (TqsListNode *item = field.kind == Field::kList ? Head(p) : nullptr; item != nullptr;
                     item = item->ptNext)
                    node.parms.push_back(field.name + "=" + Value(item->pItem));
                if (field.kind != Field::kChars) continue;
                std::vector<Node> kids = FromList(static_cast<const TqsList *>(p), kept);
                node.children.insert(node.children.end(), kids.begin(), kids.end());
            }
        }
        if (node.type.empty()) node.type = records == nullptr ? "(none)" : "(untyped)";
    }
    return out;
}

}  // namespace

const std::vector<Slot> &Slots() {
    namespace rec = tqs::detail;
    static const std::vector<Slot> slots = [] {
        std::vector<Slot> out;
        for (const rec::RecordInfo &r : std::span(rec::kRecords, rec::kSlotCount)) {
            Slot &slot = out.emplace_back(Slot{r.type, {}, r.treeRule == rec::TreeRule::Keep});
            slot.fields.assign(r.treeSize / sizeof(void *), Field{Field::kChars, "", false});
            for (const rec::Field &f : std::span(r.fields, r.count)) {
                if (f.tree == rec::kNoOffset) continue;
                Field &field = slot.fields[f.tree / sizeof(void *)];
                field.kind = rec::IsList(f.fill)              ? Field::kList
                             : f.fill == rec::Fill::PairName  ? Field::kPairName
                             : f.fill == rec::Fill::PairValue ? Field::kPairValue
                                                              : Field::kString;
                if (field.kind == Field::kString || field.kind == Field::kList) field.name = f.name;
                field.kept = slot.recordKept || f.treeRule == rec::TreeRule::Keep;
            }
        }
        return out;
    }();
    return slots;
}

std::vector<Node> FromTree(const tqsWapDoc *ptDoc) {
    std::set<void *> kept;
    return ptDoc != nullptr ? FromList(ptDoc->ptCharacterList, &kept) : std::vector<Node>{};
}

std::set<void *> Kept(const tqsWapDoc *ptDoc) {
    std::set<void *> kept;
    if (ptDoc != nullptr) FromList(ptDoc->ptCharacterList, &kept);
    return kept;
}

std::vector<Node> FromXml(const std::string &xml) {
    // A comment, or a characteristic or parm tag: closing mark, name, attributes,
    // self-closing mark (the corpus XML has no entities).
    static const std::regex kTag(R"(<!--[\s\S]*?-->|<(/?)(characteristic|parm)(\s[^>]*?)?(/?)>)");
    static const std::regex kAttribute(R"re(\s(\w+)\s*=\s*(["'])([\s\S]*?)\2)re");
    std::vector<Node> roots;
    std::vector<Node *> stack;
    for (std::sregex_iterator tag(xml.begin(), xml.end(), kTag), end; tag != end; ++tag) {
        const std::string closing = (*tag)[1], name = (*tag)[2], text = (*tag)[3];
        std::map<std::string, std::string> attributes;
        for (std::sregex_iterator a(text.begin(), text.end(), kAttribute); a != end; ++a)
            attributes.emplace((*a)[1], (*a)[3]);
        if (name == "characteristic" && !closing.empty()) {
            if (!stack.empty()) stack.pop_back();
        } else if (name == "characteristic") {
            std::vector<Node> &siblings = stack.empty() ? roots : stack.back()->children;
            siblings.push_back(Node{attributes["type"], {}, {}});
            if ((*tag)[4].length() == 0) stack.push_back(&siblings.back());
        } else if (name == "parm" && closing.empty() && !stack.empty()) {
            const auto value = attributes.find("value");
            stack.back()->parms.push_back(attributes["name"] +
                                          (value != attributes.end() ? "=" + value->second : ""));
        }
    }
    return roots;
}

std::string Render(const std::vector<Node> &nodes, int depth) {
    std::string out;
    for (const Node &n : nodes) {
        out.append(static_cast<size_t>(depth) * 2, ' ').append(n.type).append("\n");
        std::vector<std::string> parms = n.parms;
        std::stable_sort(parms.begin(), parms.end(), [](const std::string &a, const std::string &b) {
            return a.substr(0, a.find('=')) < b.substr(0, b.find('='));
        });
        for (const std::string &p : parms)
            out.append(static_cast<size_t>(depth) * 2 + 2, ' ').append(p + "\n");
        out += Render(n.children, depth + 1);
    }
    return out;
}

}  // namespace waptree
