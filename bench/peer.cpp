#include "peer.h"

#include <cstring>

#include <wbxml/wbxml.h>

// Debian's libwbxml2-dev installs only the conversion headers; the tree entry
// points are exported by the library all the same.
extern "C" {
typedef struct WBXMLTree_s WBXMLTree;
WBXMLError wbxml_tree_from_wbxml(WB_UTINY *wbxml, WB_ULONG wbxml_len, WBXMLLanguage lang,
                                 WBXMLCharsetMIBEnum charset, WBXMLTree **tree);
void wbxml_tree_destroy(WBXMLTree *tree);
}

namespace bench {

bool PeerTreeDecode(const unsigned char *body, size_t length) {
    WBXMLTree *tree = nullptr;
    // libwbxml takes a non-const pointer but does not write through it.
    WBXMLError err = wbxml_tree_from_wbxml(const_cast<WB_UTINY *>(body), static_cast<WB_ULONG>(length),
                                           WBXML_LANG_PROV10, WBXML_CHARSET_UNKNOWN, &tree);
    if (tree) wbxml_tree_destroy(tree);
    return err == WBXML_OK && tree != nullptr;
}

void RefMemcpy(unsigned char *dest, const unsigned char *body, size_t length) {
    memcpy(dest, body, length);
}

size_t RefScan(const unsigned char *body, size_t length) {
    size_t n = 0;
    for (size_t i = 0; i < length; ++i) n += body[i] >= 0x80;
    return n;
}

__attribute__((optimize("no-tree-vectorize"))) size_t RefScanScalar(const unsigned char *body,
                                                                    size_t length) {
    size_t n = 0;
    for (size_t i = 0; i < length; ++i) n += body[i] >= 0x80;
    return n;
}

}  // namespace bench
