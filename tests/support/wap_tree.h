// Test helpers around the decoded provisioning tree (tqsWapDoc): a readable
// dump in document terms, and the provisioning XML read into the same form.
#ifndef TQOMACP_TESTS_WAP_TREE_H
#define TQOMACP_TESTS_WAP_TREE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tqsClientProvWbxml.h"

namespace waptree {

// One characteristic: its type, its parms as "NAME=value" (in the order the
// record's fields are laid out; list items in document order) and its nested
// characteristics.
struct Node {
    std::string type;
    std::vector<std::string> parms;
    std::vector<Node> children;
};

// The tree as nodes. Values print as stored: text up to its zero, a raw
// one-byte token value as "<0xNN>"; kept fields (INIT, FROM, XCAP_*,
// VENDORCONFIG's parm name/value) are included.
std::vector<Node> FromTree(const tqsWapDoc *ptDoc);

// The characteristics and parms of a provisioning XML document, in document order.
std::vector<Node> FromXml(const std::string &xml);

// Indented text, one line per characteristic and parm; parms sorted by name
// (stable) so that both sources compare regardless of field layout.
std::string Render(const std::vector<Node> &nodes);

}  // namespace waptree

#endif  // TQOMACP_TESTS_WAP_TREE_H
