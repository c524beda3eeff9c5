// The peer and the two physical references that every document is measured
// against in the same run.
#ifndef TQOMACP_BENCH_PEER_H
#define TQOMACP_BENCH_PEER_H

#include <cstddef>

namespace bench {

// libwbxml: decode the WBXML body into its tree and destroy the tree.
// Returns false when libwbxml refuses the body.
bool PeerTreeDecode(const unsigned char *body, size_t length);

// Copies the body; the lower bound of touching every byte once.
void RefMemcpy(unsigned char *dest, const unsigned char *body, size_t length);

// One pass counting bytes >= 0x80, as the compiler builds it (vectorised on x86-64).
size_t RefScan(const unsigned char *body, size_t length);

// The same pass kept to one byte per step, the shape of a byte-at-a-time decoder.
size_t RefScanScalar(const unsigned char *body, size_t length);

}  // namespace bench

#endif
