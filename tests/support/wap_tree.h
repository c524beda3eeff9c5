// Test helpers around the decoded provisioning tree (tqsWapDoc): the field
// layout of its records (from their field lists), a readable dump in document
// terms, and the provisioning XML read into the same form.
#ifndef TQOMACP_TESTS_WAP_TREE_H
#define TQOMACP_TESTS_WAP_TREE_H

#include <set>
#include <string>
#include <vector>

#include "tqsClientProvWbxml.h"

namespace waptree {

// One pointer field of a record.
struct Field {
    // kList: a list of strings; kChars: a list of nested characteristics.
    enum Kind { kString, kList, kChars, kPairName, kPairValue } kind;
    std::string name;  // parm name of a string or list
    bool kept;         // the release leaves the block allocated
};

// The record of one tqsWapCharacter slot. VENDORCONFIG keeps its inline parm's
// name and value (kPairName, kPairValue), shown as "name=value".
struct Slot {
    std::string type;
    std::vector<Field> fields;
    bool recordKept;  // ROAMING: the release leaves the record itself
};

// In tqsWapCharacter order.
const std::vector<Slot> &Slots();

// One characteristic: its type, its parms as "NAME=value" (in the order the
// record's fields are laid out; list items in document order) and its nested
// characteristics.
struct Node {
    std::string type;
    std::vector<std::string> parms;
    std::vector<Node> children;
};

// The tree as nodes. Values print as stored: text up to its zero, a raw
// one-byte token value as "<0xNN>"; kept fields are included.
std::vector<Node> FromTree(const tqsWapDoc *ptDoc);

// Addresses in the tree that the release leaves allocated (kept fields and
// ROAMING records).
std::set<void *> Kept(const tqsWapDoc *ptDoc);

// The characteristics and parms of a provisioning XML document, in document order.
std::vector<Node> FromXml(const std::string &xml);

// Indented text, one line per characteristic and parm; parms sorted by name
// (stable) so that both sources compare regardless of field layout.
std::string Render(const std::vector<Node> &nodes, int depth = 0);

}  // namespace waptree

#endif  // TQOMACP_TESTS_WAP_TREE_H
