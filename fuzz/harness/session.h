// One parse session as the Java side drives it, through the fake VM: the
// natives' registration, the header queries, every context getter with
// record numbers around the real counts, and the NAPDEF cursor. Each call
// checks what the library promises there and aborts with a message when a
// promise is broken. Shared by the pipeline target and the allocation
// failure sweep.
#ifndef TQOMACP_FUZZ_SESSION_H
#define TQOMACP_FUZZ_SESSION_H

#include <cstdint>

#include "fake_jni.h"
#include "leak_accounting.h"

namespace fuzz {

// What a session leaves allocated besides the kept blocks noted by address,
// in this order: the header record of a refused content type, every body copy
// (neither reachable from outside the session), and what the decoder leaves
// of a failing characteristic and of overwritten values (any block of the
// decoder and list units).
extern const Site kSessionKeptSites[4];

// Registers the natives through `jvm` (JNI_OnLoad) and checks that these are
// the 85, the getters below among them. The calls below go through `jvm`.
void StartSession(fakejni::FakeJvm *jvm);

// Calls the getters (only the NAPDEF ones with napDefOnly). Results are held
// to the getters' promises: counts, array lengths, end marks, null out of
// range; after an injected allocation failure a string may also be null in
// range.
void SweepGetters(bool napDefOnly = false);

// The header queries answer -1 when there is no header.
void CheckHeaderQueries(bool expectHeader);

// Moves the NAPDEF cursor to a record number picked by `choice` and checks
// the count afterwards; the records cut off are noted as kept.
void MoveNapDefCursor(uint8_t choice);

// Reports a broken promise of `what` called with `args`, and aborts.
[[noreturn]] void Fail(const char *what, const char *why, const int *args, int arity);

}  // namespace fuzz

#endif  // TQOMACP_FUZZ_SESSION_H
