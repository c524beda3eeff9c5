// Walkers over the document tree and the provisioning context that note (via
// fuzz::Kept) the exact blocks the release routines leave allocated on
// purpose, and that read every string they pass (so the sanitizers check that
// each is a terminated, live block).
//
// The release routines themselves are wrapped at link time
// (-Wl,--wrap=tqsClientProvWbxmlDeleteWapDoc etc., see kept_blocks.cpp): the
// wrapper walks the record before the library releases it. That covers the
// releases inside the decoder and the parse session, which the targets cannot
// see from outside.
#ifndef TQOMACP_FUZZ_KEPT_BLOCKS_H
#define TQOMACP_FUZZ_KEPT_BLOCKS_H

#include <string>
#include <vector>

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxml.h"

namespace fuzz {

// Kept blocks of a characteristic and everything nested in it.
void NoteKeptInCharacter(const tqsWapCharacter *character);
void NoteKeptInDoc(const tqsWapDoc *doc);
// Kept blocks of a context (Wi-Fi chain, ROAMING chains, XCAP strings, INIT).
void NoteKeptInContext(const tqsClientProvCtx *ctx);
// Every block of one NAPDEF record and what hangs below it, not its ptNext:
// what tqomacp_SetPxNapDefIndex cuts off the chain.
void NoteWholeNapDef(const tqsCtxNapDef *napDef);
// Every string of a context, kept ones included, in walk order.
void ContextStrings(const tqsClientProvCtx *ctx, std::vector<std::string> *out);

}  // namespace fuzz

#endif  // TQOMACP_FUZZ_KEPT_BLOCKS_H
