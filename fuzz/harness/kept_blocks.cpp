#include "kept_blocks.h"

#include <cstring>
#include <string>
#include <vector>

#include "leak_accounting.h"
#include "tqslist.h"

namespace fuzz {
namespace {

// Every tree and context record is a run of pointer fields. A layout names
// the kind of each field, in memory order:
//   s  owned string, released by the release routines
//   k  owned string the release routines leave allocated
//   l  tree list of owned strings          c  tree list of characteristics
//   n  context chain of string nodes       r  context chain of child records
//   R  context chain the release routines leave allocated, whole
//   x  ptNext of a context chain
//   F  as k, and converting it leaves one unreachable context copy of the
//      text behind (APPLICATION FROM is copied twice, the second copy
//      replacing the first, which stays even when the second one fails)
struct Layout {
    const char *kinds;
    const Layout *children[8];  // record layouts of the r/R fields, in order
};

// --- document tree ---------------------------------------------------------
constexpr Layout kWapPxLogical{"ssssssssssssslc", {}};
constexpr Layout kWapPxAuthInfo{"sss", {}};
constexpr Layout kWapPort{"sl", {}};
constexpr Layout kWapPxPhysical{"sssssssllc", {}};
constexpr Layout kWapNapDef{
    "sssssssssssssssssssssssssss"
    "k"
    "llc",
    {}};
constexpr Layout kWapNapAuthInfo{"ssssl", {}};
constexpr Layout kWapValidity{"sssss", {}};
constexpr Layout kWapAppAddr{"ssc", {}};
constexpr Layout kWapResource{"ssssssss", {}};
constexpr Layout kWapAppAuth{"sssss", {}};
constexpr Layout kWapApplication{
    "ssFssss"
    "kkkkk"
    "lllc",
    {}};
constexpr Layout kWapBootstrap{"ssssll", {}};
constexpr Layout kWapVendorConfig{"skk", {}};
constexpr Layout kWapClientIdentity{"s", {}};
constexpr Layout kWapAccess{"llllll", {}};
constexpr Layout kWapRoaming{"kk", {}};
constexpr Layout kWapWifi{"ssssssssssss", {}};

// Record layout of each tqsWapCharacter slot; ROAMING (slot 15) is never
// released, record and strings.
const Layout *const kCharacterSlots[] = {
    &kWapPxLogical,   &kWapPxAuthInfo, &kWapPort,         &kWapPxPhysical,     &kWapNapDef,
    &kWapNapAuthInfo, &kWapValidity,   &kWapAppAddr,      &kWapResource,       &kWapAppAuth,
    &kWapApplication, &kWapBootstrap,  &kWapVendorConfig, &kWapClientIdentity, &kWapAccess,
    &kWapRoaming,     &kWapWifi,
};
constexpr int kRoamingSlot = 15;
static_assert(sizeof(kCharacterSlots) / sizeof(kCharacterSlots[0]) ==
              sizeof(tqsWapCharacter) / sizeof(void *));

// --- context -----------------------------------------------------------------
constexpr Layout kCtxPxAuthInfo{"sssx", {}};
constexpr Layout kCtxPort{"snx", {}};
constexpr Layout kCtxPxPhysical{"sssssssnnrx", {&kCtxPort}};
constexpr Layout kCtxPxLogical{"sssssssssssssnrrrx", {&kCtxPxAuthInfo, &kCtxPort, &kCtxPxPhysical}};
constexpr Layout kCtxNapAuthInfo{"ssssnx", {}};
constexpr Layout kCtxValidity{"sssssx", {}};
constexpr Layout kCtxNapDef{"sssssssssssssssssssssssssssknnrrx", {&kCtxNapAuthInfo, &kCtxValidity}};
constexpr Layout kCtxBootstrap{"ssssnnx", {}};
constexpr Layout kCtxClientIdent{"s", {}};
constexpr Layout kCtxVenderConfig{"sssx", {}};
constexpr Layout kCtxAppAddr{"ssrx", {&kCtxPort}};
constexpr Layout kCtxAppAuth{"sssssx", {}};
constexpr Layout kCtxResource{"ssssssssx", {}};
constexpr Layout kCtxRoaming{"ssx", {}};
constexpr Layout kCtxApplication{
    "sssssssk"
    "kkkknnnrrrRx",
    {&kCtxAppAddr, &kCtxAppAuth, &kCtxResource, &kCtxRoaming}};
constexpr Layout kCtxAccess{"nnnnnnx", {}};
constexpr Layout kCtxWifi{"ssssssssssssx", {}};
// The root's Wi-Fi chain is never released.
constexpr Layout kCtxRoot{"rrrrrrrR",
                          {&kCtxPxLogical, &kCtxNapDef, &kCtxBootstrap, &kCtxClientIdent, &kCtxVenderConfig,
                           &kCtxApplication, &kCtxAccess, &kCtxWifi}};

constexpr std::size_t Fields(const Layout &l) {
    return std::char_traits<char>::length(l.kinds);
}
static_assert(Fields(kWapPxLogical) * sizeof(void *) == sizeof(tqsWapPxLogical));
static_assert(Fields(kWapPort) * sizeof(void *) == sizeof(tqsWapPort));
static_assert(Fields(kWapPxPhysical) * sizeof(void *) == sizeof(tqsWapPxPhysical));
static_assert(Fields(kWapNapDef) * sizeof(void *) == sizeof(tqsWapNapDef));
static_assert(Fields(kWapNapAuthInfo) * sizeof(void *) == sizeof(tqsWapNapAuthInfo));
static_assert(Fields(kWapAppAddr) * sizeof(void *) == sizeof(tqsWapAppAddr));
static_assert(Fields(kWapApplication) * sizeof(void *) == sizeof(tqsWapApplication));
static_assert(Fields(kWapBootstrap) * sizeof(void *) == sizeof(tqsWapBootstrap));
static_assert(Fields(kWapVendorConfig) * sizeof(void *) == sizeof(tqsWapVendorConfig));
static_assert(Fields(kWapAccess) * sizeof(void *) == sizeof(tqsWapAccess));
static_assert(Fields(kWapRoaming) * sizeof(void *) == sizeof(tqsWapRoaming));
static_assert(Fields(kWapWifi) * sizeof(void *) == sizeof(tqsWapWifi));
static_assert(Fields(kCtxPxAuthInfo) * sizeof(void *) == sizeof(tqsCtxPxAuthInfo));
static_assert(Fields(kCtxPort) * sizeof(void *) == sizeof(tqsCtxPort));
static_assert(Fields(kCtxPxPhysical) * sizeof(void *) == sizeof(tqsCtxPxPhysical));
static_assert(Fields(kCtxPxLogical) * sizeof(void *) == sizeof(tqsCtxPxLogical));
static_assert(Fields(kCtxNapAuthInfo) * sizeof(void *) == sizeof(tqsCtxNapAuthInfo));
static_assert(Fields(kCtxValidity) * sizeof(void *) == sizeof(tqsCtxValidity));
static_assert(Fields(kCtxNapDef) * sizeof(void *) == sizeof(tqsCtxNapDef));
static_assert(Fields(kCtxBootstrap) * sizeof(void *) == sizeof(tqsCtxBootstrap));
static_assert(Fields(kCtxClientIdent) * sizeof(void *) == sizeof(tqsCtxClientIdent));
static_assert(Fields(kCtxVenderConfig) * sizeof(void *) == sizeof(tqsCtxVenderConfig));
static_assert(Fields(kCtxAppAddr) * sizeof(void *) == sizeof(tqsCtxAppAddr));
static_assert(Fields(kCtxAppAuth) * sizeof(void *) == sizeof(tqsCtxAppAuth));
static_assert(Fields(kCtxResource) * sizeof(void *) == sizeof(tqsCtxResource));
static_assert(Fields(kCtxRoaming) * sizeof(void *) == sizeof(tqsCtxRoaming));
static_assert(Fields(kCtxApplication) * sizeof(void *) == sizeof(tqsCtxApplication));
static_assert(Fields(kCtxAccess) * sizeof(void *) == sizeof(tqsCtxAccess));
static_assert(Fields(kCtxWifi) * sizeof(void *) == sizeof(tqsCtxWifi));
static_assert(Fields(kCtxRoot) * sizeof(void *) == sizeof(tqsClientProvCtx));
static_assert(sizeof(tqsCtxStrNode) == 2 * sizeof(void *));

const char kCtxUnit[] = "jni/src/ClientProv/tqsClientProvCtx";
volatile std::size_t g_sink = 0;

void *Field(const void *record, std::size_t i) {
    void *value;
    std::memcpy(&value, static_cast<const char *>(record) + i * sizeof(void *), sizeof value);
    return value;
}

// Set while ContextStrings walks: strings are collected, nothing is noted.
std::vector<std::string> *g_collect = nullptr;

// Reads the whole string, so that ASan sees an unterminated or freed one.
void Touch(const void *text) {
    if (text == nullptr) return;
    g_sink = g_sink + std::strlen(static_cast<const char *>(text));
    if (g_collect != nullptr) g_collect->emplace_back(static_cast<const char *>(text));
}

void Note(const void *block) {
    if (g_collect == nullptr) Kept(block);
}

void KeepString(const void *text) {
    Touch(text);
    Note(text);
}

// --- tree ----------------------------------------------------------------------
void WalkCharacter(const tqsWapCharacter *character, bool keepAll);

void WalkTreeList(const TqsList *list, bool characters, bool keepAll) {
    if (list == nullptr) return;
    if (keepAll) Note(list);
    for (const TqsListNode *node = list->ptHead; node != nullptr; node = node->ptNext) {
        if (keepAll) Note(node);
        if (characters) {
            WalkCharacter(static_cast<const tqsWapCharacter *>(node->pItem), keepAll);
        } else if (keepAll) {
            KeepString(node->pItem);
        } else {
            Touch(node->pItem);
        }
    }
}

void WalkTreeRecord(const void *record, const Layout &layout, bool keepAll) {
    if (record == nullptr) return;
    if (keepAll) Note(record);
    for (std::size_t i = 0; layout.kinds[i] != '\0'; ++i) {
        void *value = Field(record, i);
        switch (layout.kinds[i]) {
            case 's':
                keepAll ? KeepString(value) : Touch(value);
                break;
            case 'k':
                KeepString(value);
                break;
            case 'F':
                KeepString(value);
                KeptCopyOf(static_cast<const char *>(value), kCtxUnit);
                break;
            case 'l':
                WalkTreeList(static_cast<const TqsList *>(value), false, keepAll);
                break;
            case 'c':
                WalkTreeList(static_cast<const TqsList *>(value), true, keepAll);
                break;
        }
    }
}

void WalkCharacter(const tqsWapCharacter *character, bool keepAll) {
    if (character == nullptr) return;
    if (keepAll) Note(character);
    for (int slot = 0; slot < static_cast<int>(sizeof(kCharacterSlots) / sizeof(void *)); ++slot) {
        const void *record = Field(character, static_cast<std::size_t>(slot));
        if (record == nullptr) continue;
        WalkTreeRecord(record, *kCharacterSlots[slot], keepAll || slot == kRoamingSlot);
    }
}

// --- context ---------------------------------------------------------------------
void WalkCtxChain(const void *head, const Layout &layout, bool keepAll);

void WalkStrNodes(const tqsCtxStrNode *node, bool keepAll) {
    for (; node != nullptr; node = node->ptNext) {
        if (keepAll) {
            Note(node);
            KeepString(node->pszStr);
        } else {
            Touch(node->pszStr);
        }
    }
}

// One record; children through their own chains. Returns the ptNext field
// index, or -1 for a record without a chain.
int WalkCtxRecord(const void *record, const Layout &layout, bool keepAll) {
    if (keepAll) Note(record);
    int next = -1;
    int child = 0;
    for (std::size_t i = 0; layout.kinds[i] != '\0'; ++i) {
        void *value = Field(record, i);
        switch (layout.kinds[i]) {
            case 's':
                keepAll ? KeepString(value) : Touch(value);
                break;
            case 'k':
                KeepString(value);
                break;
            case 'n':
                WalkStrNodes(static_cast<const tqsCtxStrNode *>(value), keepAll);
                break;
            case 'r':
                WalkCtxChain(value, *layout.children[child++], keepAll);
                break;
            case 'R':
                WalkCtxChain(value, *layout.children[child++], true);
                break;
            case 'x':
                next = static_cast<int>(i);
                break;
        }
    }
    return next;
}

void WalkCtxChain(const void *head, const Layout &layout, bool keepAll) {
    for (const void *record = head; record != nullptr;) {
        const int next = WalkCtxRecord(record, layout, keepAll);
        record = next < 0 ? nullptr : Field(record, static_cast<std::size_t>(next));
    }
}

}  // namespace

void NoteKeptInCharacter(const tqsWapCharacter *character) {
    WalkCharacter(character, false);
}

void NoteKeptInDoc(const tqsWapDoc *doc) {
    if (doc != nullptr) WalkTreeList(doc->ptCharacterList, true, false);
}

void NoteKeptInContext(const tqsClientProvCtx *ctx) {
    if (ctx != nullptr) WalkCtxRecord(ctx, kCtxRoot, false);
}

void ContextStrings(const tqsClientProvCtx *ctx, std::vector<std::string> *out) {
    g_collect = out;
    NoteKeptInContext(ctx);
    g_collect = nullptr;
}

void NoteWholeNapDef(const tqsCtxNapDef *napDef) {
    if (napDef != nullptr) WalkCtxRecord(napDef, kCtxNapDef, true);
}

}  // namespace fuzz

// Link-time wrappers of the release routines (-Wl,--wrap=...): each walks the
// record for its kept blocks, then lets the library release it. Calls inside
// the release unit itself are not wrapped; the walk covers what they reach.
extern "C" {
uint32_t __real_tqsClientProvWbxmlDeleteWapDoc(tqsWapDoc *doc);
uint32_t __real_tqsClientProvWbxmlDeleteCharacter(tqsWapCharacter *character);
uint32_t __real_tqsClientProvWbxmlDeleteNapDef(tqsWapNapDef *record);
uint32_t __real_tqsClientProvWbxmlDeleteApplication(tqsWapApplication *record);
uint32_t __real_tqsClientProvWbxmlDeleteVendorConfig(tqsWapVendorConfig *record);
// Weak: targets that never release a context link without the context unit.
__attribute__((weak)) void __real_tqsClientProvCtxDelectContext(tqsClientProvCtx *ctx);

uint32_t __wrap_tqsClientProvWbxmlDeleteWapDoc(tqsWapDoc *doc) {
    fuzz::NoteKeptInDoc(doc);
    return __real_tqsClientProvWbxmlDeleteWapDoc(doc);
}

uint32_t __wrap_tqsClientProvWbxmlDeleteCharacter(tqsWapCharacter *character) {
    fuzz::NoteKeptInCharacter(character);
    return __real_tqsClientProvWbxmlDeleteCharacter(character);
}

uint32_t __wrap_tqsClientProvWbxmlDeleteNapDef(tqsWapNapDef *record) {
    fuzz::WalkTreeRecord(record, fuzz::kWapNapDef, false);
    return __real_tqsClientProvWbxmlDeleteNapDef(record);
}

uint32_t __wrap_tqsClientProvWbxmlDeleteApplication(tqsWapApplication *record) {
    fuzz::WalkTreeRecord(record, fuzz::kWapApplication, false);
    return __real_tqsClientProvWbxmlDeleteApplication(record);
}

uint32_t __wrap_tqsClientProvWbxmlDeleteVendorConfig(tqsWapVendorConfig *record) {
    fuzz::WalkTreeRecord(record, fuzz::kWapVendorConfig, false);
    return __real_tqsClientProvWbxmlDeleteVendorConfig(record);
}

void __wrap_tqsClientProvCtxDelectContext(tqsClientProvCtx *ctx) {
    fuzz::NoteKeptInContext(ctx);
    __real_tqsClientProvCtxDelectContext(ctx);
}
}  // extern "C"
