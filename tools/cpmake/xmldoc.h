// Reading a provisioning document in its XML form (wap-provisioningdoc,
// characteristic type=, parm name= value=) into a plain tree.
#ifndef CPMAKE_XMLDOC_H
#define CPMAKE_XMLDOC_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cpmake {

struct Node {
    enum class Kind { kDocument, kCharacteristic, kParm };
    Kind kind = Kind::kDocument;
    std::string name;                  // characteristic type or parm name
    std::optional<std::string> value;  // parm value, or the document's version
    std::vector<Node> children;        // in document order
    int line = 0;                      // where the element starts, 1-based
    int column = 0;
};

struct XmlError {
    int line = 0;
    int column = 0;
    std::string message;
};

// Parses `text` into `doc`. On failure fills `error` with the position and
// the reason and returns false. Elements other than the three of the
// provisioning vocabulary are an error; unknown attributes are not, they are
// reported through `warnings` as "LINE:COL: text".
bool ParseXml(std::string_view text, Node *doc, XmlError *error, std::vector<std::string> *warnings);

}  // namespace cpmake

#endif  // CPMAKE_XMLDOC_H
