// Decoder record creation and deletion; release of the document tree.
#include "tqsClientProvWbxml.h"

#include "smlbuffer.h"
#include "tqsClientProvFields.h"
#include "tqsClientProvWbxmlDecoderState.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "tqstrace.h"

static const char kUnitPath[] = "jni/src/ClientProv/tqsClientProvWbxml";

extern "C" TqsResult tqsClientProvWbxmlInitDecoder(tqsWbxmlDecoder **pptDecoder, const unsigned char *pBody,
                                                   uint32_t nLength) {
    tqcTrace("tqsClientProvWbxmlInitDecoder");
    if (pptDecoder == nullptr) return TQS_ERROR_MISSING;
    *pptDecoder = nullptr;
    tqsWbxmlDecoder *ptTmp = nullptr;
    if (pBody != nullptr) {  // line 19 in the leak report, as it has always been
        // The record with the decoder's private state beside it (tqsClientProvWbxmlDecoderState.h).
        ptTmp = static_cast<tqsWbxmlDecoder *>(
            tqsMemAllocSetZero_debug(sizeof(tqs::wbxml::DecoderState) + 1, kUnitPath, 19));
    }
    if (ptTmp == nullptr) {
        tqcTrace("[Error] [tqsClientProvWbxmlInitDecoder] ptTmp NULL");
        return TQS_ERROR_MISSING;
    }
    // The string readers rely on zero bytes after the copy of the body. One
    // byte of room more than the body gives them without the first append's
    // growth to twice the body + 256: from a body of ~400 bytes that block is
    // a large request, which makes glibc consolidate all its free lists first
    // (a fifth of a typical parse). A 4 GiB body wraps the capacity to 0 and
    // the append then refuses it. Neither result is checked: a decoder
    // without a buffer, or with an empty one, refuses the document it reads.
    (void)smlBufferCreate(&ptTmp->ptBuffer, nLength + 1);
    (void)smlBufferAppendTail(ptTmp->ptBuffer, pBody, nLength);
    *pptDecoder = ptTmp;
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDeleteDecoder(tqsWbxmlDecoder *ptDecoder) {
    if (ptDecoder == nullptr) return TQS_ERROR_MISSING;
    tqsMemFree_debug(ptDecoder->pStringTable);
    ptDecoder->pStringTable = nullptr;
    (void)smlBufferDelete(ptDecoder->ptBuffer);  // null when its creation failed: nothing to delete
    tqsMemFree_debug(ptDecoder);
    return TQS_OK;
}

// ---- Release of the tree ---------------------------------------------------
//
// Each record's shape, one letter per pointer field in memory order, comes
// from its field list: S owned string, L list of owned strings, C list of
// nested characteristics, K left allocated on purpose (the leak report shows it).
// The order of release and the kept fields are the system's own, fixed by its
// contract: do not "fix" them, the leak report and the traces would change.

namespace {

namespace rec = tqs::detail;

template <rec::Kind K>
struct Shape {
    char text[sizeof(typename rec::Record<K>::Wap) / sizeof(void *) + 1];
};

template <rec::Kind K>
constexpr Shape<K> MakeShape() {
    Shape<K> tShape{};
    for (const rec::Field &f : rec::Record<K>::kFields) {
        if (f.tree == rec::kNoOffset) continue;
        tShape.text[f.tree / sizeof(void *)] =
            rec::IsList(f.fill) ? 'L' : (f.treeRule == rec::TreeRule::Keep ? 'K' : 'S');
    }
    constexpr uint16_t nChars = rec::CharacterListOffset<typename rec::Record<K>::Wap>();
    if (nChars != rec::kNoOffset) tShape.text[nChars / sizeof(void *)] = 'C';
    return tShape;
}

template <rec::Kind K>
constexpr Shape<K> kShape = MakeShape<K>();

uint32_t ReleaseCharacterItem(void *pItem) {
    return tqsClientProvWbxmlDeleteCharacter(static_cast<tqsWapCharacter *>(pItem));
}

uint32_t ReleaseRecord(void *pRecord, const char *pszShape) {
    if (pRecord == nullptr) return 0;
    void **ppField = static_cast<void **>(pRecord);
    for (; *pszShape != '\0'; ++pszShape, ++ppField) {
        switch (*pszShape) {
            case 'S':
                tqsMemFree_debug(*ppField);
                break;
            case 'L':  // a list delete fails only for a null list, and none is passed
                if (*ppField != nullptr)
                    (void)tqsListDeleteNodeAllAndList(static_cast<TqsList *>(*ppField), nullptr);
                break;
            case 'C':
                if (*ppField != nullptr) {
                    (void)tqsListDeleteNodeAllAndList(static_cast<TqsList *>(*ppField), ReleaseCharacterItem);
                }
                break;
            default:  // 'K': kept
                continue;
        }
        *ppField = nullptr;
    }
    tqsMemFree_debug(pRecord);
    return 1;
}

template <typename Record, uint32_t (*Release)(Record *)>
uint32_t ReleaseSlot(void *pRecord) {
    return Release(static_cast<Record *>(pRecord));
}

// Release routine of each tqsWapCharacter slot, in slot order; slot 15
// (ROAMING) is never released, deliberately (the leak report lists it).
constexpr uint32_t (*kSlotRelease[])(void *) = {
    ReleaseSlot<tqsWapPxLogical, tqsClientProvWbxmlDeletePxlogical>,
    ReleaseSlot<tqsWapPxAuthInfo, tqsClientProvWbxmlDeletePxAuthInfo>,
    ReleaseSlot<tqsWapPort, tqsClientProvWbxmlDeletePort>,
    ReleaseSlot<tqsWapPxPhysical, tqsClientProvWbxmlDeletePxphysical>,
    ReleaseSlot<tqsWapNapDef, tqsClientProvWbxmlDeleteNapDef>,
    ReleaseSlot<tqsWapNapAuthInfo, tqsClientProvWbxmlDeleteNapAuthInfo>,
    ReleaseSlot<tqsWapValidity, tqsClientProvWbxmlDeleteValidity>,
    ReleaseSlot<tqsWapAppAddr, tqsClientProvWbxmlDeleteAppAddr>,
    ReleaseSlot<tqsWapResource, tqsClientProvWbxmlDeleteResource>,
    ReleaseSlot<tqsWapAppAuth, tqsClientProvWbxmlDeleteAppAuth>,
    ReleaseSlot<tqsWapApplication, tqsClientProvWbxmlDeleteApplication>,
    ReleaseSlot<tqsWapBootstrap, tqsClientProvWbxmlDeleteBootstrap>,
    ReleaseSlot<tqsWapVendorConfig, tqsClientProvWbxmlDeleteVendorConfig>,
    ReleaseSlot<tqsWapClientIdentity, tqsClientProvWbxmlDeleteClientIdentity>,
    ReleaseSlot<tqsWapAccess, tqsClientProvWbxmlDeleteAccess>,
    nullptr,
    ReleaseSlot<tqsWapWifi, tqsClientProvWbxmlDeleteWifi>,
};
constexpr bool SlotsFollowTheirKinds() {
    if (sizeof(kSlotRelease) / sizeof(kSlotRelease[0]) != rec::kSlotCount) return false;
    for (size_t i = 0; i < rec::kSlotCount; ++i) {
        if ((kSlotRelease[i] == nullptr) != (rec::kRecords[i].treeRule == rec::TreeRule::Keep)) return false;
    }
    return true;
}
static_assert(SlotsFollowTheirKinds(), "one routine per slot, none for the record kept on purpose");

}  // namespace

extern "C" uint32_t tqsClientProvWbxmlDeleteWapDoc(tqsWapDoc *ptWapDoc) {
    if (ptWapDoc == nullptr) return 0;
    if (ptWapDoc->ptCharacterList != nullptr) {
        (void)tqsListDeleteNodeAllAndList(ptWapDoc->ptCharacterList, ReleaseCharacterItem);  // not null
        ptWapDoc->ptCharacterList = nullptr;
    }
    tqsMemFree_debug(ptWapDoc);
    return 1;
}

extern "C" uint32_t tqsClientProvWbxmlDeleteCharacter(tqsWapCharacter *ptCharacter) {
    if (ptCharacter == nullptr) return 0;
    void **ppSlot = reinterpret_cast<void **>(ptCharacter);
    for (size_t i = 0; i < sizeof(kSlotRelease) / sizeof(kSlotRelease[0]); ++i) {
        if (kSlotRelease[i] == nullptr) continue;
        kSlotRelease[i](ppSlot[i]);
        ppSlot[i] = nullptr;
    }
    tqsMemFree_debug(ptCharacter);
    return 1;
}

extern "C" uint32_t tqsClientProvWbxmlDeleteAppAddr(tqsWapAppAddr *ptRecord) {
    // pszAddrType goes before pszAddr.
    if (ptRecord != nullptr) {
        tqsMemFree_debug(ptRecord->pszAddrType);
        ptRecord->pszAddrType = nullptr;
    }
    return ReleaseRecord(ptRecord, kShape<rec::Kind::AppAddr>.text);
}

#define TQS_DEFINE_RELEASE(name, type, kind)                          \
    extern "C" uint32_t name(type *ptRecord) {                        \
        return ReleaseRecord(ptRecord, kShape<rec::Kind::kind>.text); \
    }
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePxlogical, tqsWapPxLogical, PxLogical)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePxAuthInfo, tqsWapPxAuthInfo, PxAuthInfo)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePort, tqsWapPort, Port)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePxphysical, tqsWapPxPhysical, PxPhysical)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteNapDef, tqsWapNapDef, NapDef)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteNapAuthInfo, tqsWapNapAuthInfo, NapAuthInfo)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteValidity, tqsWapValidity, Validity)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteResource, tqsWapResource, Resource)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteAppAuth, tqsWapAppAuth, AppAuth)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteApplication, tqsWapApplication, Application)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteBootstrap, tqsWapBootstrap, Bootstrap)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteVendorConfig, tqsWapVendorConfig, VendorConfig)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteClientIdentity, tqsWapClientIdentity, ClientIdentity)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteAccess, tqsWapAccess, Access)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteWifi, tqsWapWifi, Wifi)
#undef TQS_DEFINE_RELEASE
