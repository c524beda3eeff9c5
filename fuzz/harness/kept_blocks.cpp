#include "kept_blocks.h"

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "leak_accounting.h"
#include "tqsClientProvFields.h"
#include "tqslist.h"

namespace fuzz {
namespace {

namespace rec = tqs::detail;

// Every tree and context record is a run of pointer fields. A layout names
// the kind of each field, in memory order, as the record's field list has it:
//   s  owned string, released by the release routines
//   k  owned string the release routines leave allocated
//   l  tree list of owned strings          c  tree list of characteristics
//   n  context chain of string nodes       r  context chain of child records
//   R  context chain the release routines leave allocated, whole
//   x  ptNext of a context chain
//   F  as k, and converting it leaves one unreachable context copy of the
//      text behind (APPLICATION FROM is copied twice, the second copy
//      replacing the first, which stays even when the second one fails)
constexpr std::size_t kMaxFields = 40;
struct Layout {
    char kinds[kMaxFields + 1];
    rec::Kind children[8];  // kinds of the r/R fields, in order
};

constexpr Layout TreeLayout(const rec::RecordInfo &r) {
    Layout l{};
    for (std::size_t i = 0; i < r.count; ++i) {
        const rec::Field &f = r.fields[i];
        if (f.tree == rec::kNoOffset) continue;
        char kind = rec::IsList(f.fill) ? 'l' : 's';
        if (kind == 's' && f.treeRule == rec::TreeRule::Keep)
            kind = f.copy == rec::CopyRule::Twice ? 'F' : 'k';
        l.kinds[f.tree / sizeof(void *)] = kind;
    }
    if (r.characterList != rec::kNoOffset) l.kinds[r.characterList / sizeof(void *)] = 'c';
    return l;
}

constexpr Layout CtxLayout(const rec::RecordInfo &r) {
    Layout l{};
    for (std::size_t i = 0; i < r.count; ++i) {
        const rec::Field &f = r.fields[i];
        const char released = f.release != 0 ? 1 : 0;
        l.kinds[f.ctx / sizeof(void *)] = rec::IsString(f.fill) ? (released ? 's' : 'k')
                                          : rec::IsList(f.fill) ? 'n'
                                                                : (released ? 'r' : 'R');
    }
    if (r.next != rec::kNoOffset) l.kinds[r.next / sizeof(void *)] = 'x';
    std::size_t child = 0;
    for (std::size_t off = 0; off < r.ctxSize; off += sizeof(void *)) {
        for (std::size_t i = 0; i < r.count; ++i) {
            if (r.fields[i].fill == rec::Fill::Child && r.fields[i].ctx == off)
                l.children[child++] = r.fields[i].child;
        }
    }
    return l;
}

// By rec::Kind, the root last.
constexpr std::size_t kKinds = std::size(rec::kRecords);
template <Layout (*Make)(const rec::RecordInfo &)>
constexpr std::array<Layout, kKinds> AllLayouts() {
    std::array<Layout, kKinds> all{};
    for (std::size_t k = 0; k < kKinds; ++k) all[k] = Make(rec::kRecords[k]);
    return all;
}
constexpr std::array<Layout, kKinds> kTreeLayouts = AllLayouts<TreeLayout>();
constexpr std::array<Layout, kKinds> kCtxLayouts = AllLayouts<CtxLayout>();

const Layout &TreeOf(rec::Kind k) {
    return kTreeLayouts[static_cast<std::size_t>(k)];
}
const Layout &CtxOf(rec::Kind k) {
    return kCtxLayouts[static_cast<std::size_t>(k)];
}

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

// --- either ----------------------------------------------------------------------
// One tree or context record; children through their own lists and chains.
// Returns the ptNext field index, or -1 for a record without a chain.
int WalkRecord(const void *record, const Layout &layout, bool keepAll) {
    if (record == nullptr) return -1;
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
            case 'n':
                WalkStrNodes(static_cast<const tqsCtxStrNode *>(value), keepAll);
                break;
            case 'r':
                WalkCtxChain(value, CtxOf(layout.children[child++]), keepAll);
                break;
            case 'R':
                WalkCtxChain(value, CtxOf(layout.children[child++]), true);
                break;
            case 'x':
                next = static_cast<int>(i);
                break;
        }
    }
    return next;
}

void WalkCharacter(const tqsWapCharacter *character, bool keepAll) {
    if (character == nullptr) return;
    if (keepAll) Note(character);
    for (std::size_t slot = 0; slot < rec::kSlotCount; ++slot) {
        // A record the tree never releases is kept whole (ROAMING).
        WalkRecord(Field(character, slot), kTreeLayouts[slot],
                   keepAll || rec::kRecords[slot].treeRule == rec::TreeRule::Keep);
    }
}

void WalkCtxChain(const void *head, const Layout &layout, bool keepAll) {
    for (const void *record = head; record != nullptr;) {
        const int next = WalkRecord(record, layout, keepAll);
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
    if (ctx != nullptr) WalkRecord(ctx, CtxOf(rec::Kind::Root), false);
}

void ContextStrings(const tqsClientProvCtx *ctx, std::vector<std::string> *out) {
    g_collect = out;
    NoteKeptInContext(ctx);
    g_collect = nullptr;
}

void NoteWholeNapDef(const tqsCtxNapDef *napDef) {
    if (napDef != nullptr) WalkRecord(napDef, CtxOf(rec::Kind::NapDef), true);
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
    fuzz::WalkRecord(record, fuzz::TreeOf(tqs::detail::Kind::NapDef), false);
    return __real_tqsClientProvWbxmlDeleteNapDef(record);
}

uint32_t __wrap_tqsClientProvWbxmlDeleteApplication(tqsWapApplication *record) {
    fuzz::WalkRecord(record, fuzz::TreeOf(tqs::detail::Kind::Application), false);
    return __real_tqsClientProvWbxmlDeleteApplication(record);
}

uint32_t __wrap_tqsClientProvWbxmlDeleteVendorConfig(tqsWapVendorConfig *record) {
    fuzz::WalkRecord(record, fuzz::TreeOf(tqs::detail::Kind::VendorConfig), false);
    return __real_tqsClientProvWbxmlDeleteVendorConfig(record);
}

void __wrap_tqsClientProvCtxDelectContext(tqsClientProvCtx *ctx) {
    fuzz::NoteKeptInContext(ctx);
    __real_tqsClientProvCtxDelectContext(ctx);
}
}  // extern "C"
