#include "wap_tree.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
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

// The value of attribute `name` in the text of a start tag (the corpus XML
// has no entities).
bool Attribute(const std::string &tag, const std::string &name, std::string *value) {
    for (size_t pos = tag.find(name); pos != std::string::npos; pos = tag.find(name, pos + 1)) {
        size_t eq = tag.find_first_not_of(" \t\r\n", pos + name.size());
        if (pos == 0 || !std::isspace(static_cast<unsigned char>(tag[pos - 1])) || eq == std::string::npos ||
            tag[eq] != '=')
            continue;
        size_t q = tag.find_first_of("\"'", eq);
        *value = tag.substr(q + 1, tag.find(tag[q], q + 1) - q - 1);
        return true;
    }
    return false;
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
    std::vector<Node> roots;
    std::vector<Node *> stack;
    size_t pos = 0;
    while ((pos = xml.find('<', pos)) != std::string::npos) {
        if (xml.compare(pos, 4, "<!--") == 0) {
            pos = xml.find("-->", pos) + 3;
            continue;
        }
        size_t end = xml.find('>', pos);
        std::string tag = xml.substr(pos + 1, end - pos - 1);
        pos = end + 1;
        if (tag.empty() || tag[0] == '?' || tag[0] == '!') continue;
        bool closing = tag[0] == '/';
        bool selfClosing = tag.back() == '/';
        std::string name = tag.substr(closing ? 1 : 0, tag.find_first_of(" \t\r\n/", 1) - (closing ? 1 : 0));
        if (name == "characteristic") {
            if (closing) {
                if (!stack.empty()) stack.pop_back();
                continue;
            }
            Node node;
            Attribute(tag, "type", &node.type);
            std::vector<Node> &siblings = stack.empty() ? roots : stack.back()->children;
            siblings.push_back(node);
            if (!selfClosing) stack.push_back(&siblings.back());
        } else if (name == "parm" && !closing && !stack.empty()) {
            std::string parmName, value;
            Attribute(tag, "name", &parmName);
            stack.back()->parms.push_back(Attribute(tag, "value", &value) ? parmName + "=" + value
                                                                          : parmName);
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
