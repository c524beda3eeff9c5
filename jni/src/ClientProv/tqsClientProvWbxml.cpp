// Decoder record creation and deletion; release of the document tree.
#include "tqsClientProvWbxml.h"

#include "smlbuffer.h"
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
    if (pBody != nullptr) {
        ptTmp = static_cast<tqsWbxmlDecoder *>(
            tqsMemAllocSetZero_debug(sizeof(tqsWbxmlDecoder) + 1, kUnitPath, __LINE__));
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
    // the append then refuses it.
    smlBufferCreate(&ptTmp->ptBuffer, nLength + 1);
    smlBufferAppendTail(ptTmp->ptBuffer, pBody, nLength);
    *pptDecoder = ptTmp;
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDeleteDecoder(tqsWbxmlDecoder *ptDecoder) {
    if (ptDecoder == nullptr) return TQS_ERROR_MISSING;
    tqsMemFree_debug(ptDecoder->pStringTable);
    ptDecoder->pStringTable = nullptr;
    smlBufferDelete(ptDecoder->ptBuffer);
    tqsMemFree_debug(ptDecoder);
    return TQS_OK;
}

// ---- Release of the tree ---------------------------------------------------
//
// Each record is described once by one letter per pointer field, in memory
// order: S owned string, L list of owned strings, C list of nested
// characteristics, K left allocated on purpose (the leak report shows it).

namespace {

constexpr char kShapePxLogical[] = "SSSSSSSSSSSSSLC";
constexpr char kShapePxAuthInfo[] = "SSS";
constexpr char kShapePort[] = "SL";
constexpr char kShapePxPhysical[] = "SSSSSSSLLC";
constexpr char kShapeNapDef[] = "SSSSSSSSSSSSSSSSSSSSSSSSSSSKLLC";
constexpr char kShapeNapAuthInfo[] = "SSSSL";
constexpr char kShapeValidity[] = "SSSSS";
constexpr char kShapeAppAddr[] = "SSC";
constexpr char kShapeResource[] = "SSSSSSSS";
constexpr char kShapeAppAuth[] = "SSSSS";
constexpr char kShapeApplication[] = "SSKSSSSKKKKKLLLC";
constexpr char kShapeBootstrap[] = "SSSSLL";
constexpr char kShapeVendorConfig[] = "SKK";
constexpr char kShapeClientIdentity[] = "S";
constexpr char kShapeAccess[] = "LLLLLL";
constexpr char kShapeWifi[] = "SSSSSSSSSSSS";

template <typename Record, size_t N>
constexpr bool ShapeFits(const char (&)[N]) {
    return (N - 1) * sizeof(void *) == sizeof(Record);
}
static_assert(ShapeFits<tqsWapPxLogical>(kShapePxLogical));
static_assert(ShapeFits<tqsWapPxAuthInfo>(kShapePxAuthInfo));
static_assert(ShapeFits<tqsWapPort>(kShapePort));
static_assert(ShapeFits<tqsWapPxPhysical>(kShapePxPhysical));
static_assert(ShapeFits<tqsWapNapDef>(kShapeNapDef));
static_assert(ShapeFits<tqsWapNapAuthInfo>(kShapeNapAuthInfo));
static_assert(ShapeFits<tqsWapValidity>(kShapeValidity));
static_assert(ShapeFits<tqsWapAppAddr>(kShapeAppAddr));
static_assert(ShapeFits<tqsWapResource>(kShapeResource));
static_assert(ShapeFits<tqsWapAppAuth>(kShapeAppAuth));
static_assert(ShapeFits<tqsWapApplication>(kShapeApplication));
static_assert(ShapeFits<tqsWapBootstrap>(kShapeBootstrap));
static_assert(ShapeFits<tqsWapVendorConfig>(kShapeVendorConfig));
static_assert(ShapeFits<tqsWapClientIdentity>(kShapeClientIdentity));
static_assert(ShapeFits<tqsWapAccess>(kShapeAccess));
static_assert(ShapeFits<tqsWapWifi>(kShapeWifi));

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
            case 'L':
                if (*ppField != nullptr)
                    tqsListDeleteNodeAllAndList(static_cast<TqsList *>(*ppField), nullptr);
                break;
            case 'C':
                if (*ppField != nullptr) {
                    tqsListDeleteNodeAllAndList(static_cast<TqsList *>(*ppField), ReleaseCharacterItem);
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
// (ROAMING) is never released.
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
static_assert(sizeof(kSlotRelease) / sizeof(kSlotRelease[0]) * sizeof(void *) == sizeof(tqsWapCharacter));

}  // namespace

extern "C" uint32_t tqsClientProvWbxmlDeleteWapDoc(tqsWapDoc *ptWapDoc) {
    if (ptWapDoc == nullptr) return 0;
    if (ptWapDoc->ptCharacterList != nullptr) {
        tqsListDeleteNodeAllAndList(ptWapDoc->ptCharacterList, ReleaseCharacterItem);
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
    return ReleaseRecord(ptRecord, kShapeAppAddr);
}

#define TQS_DEFINE_RELEASE(name, type, shape)  \
    extern "C" uint32_t name(type *ptRecord) { \
        return ReleaseRecord(ptRecord, shape); \
    }
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePxlogical, tqsWapPxLogical, kShapePxLogical)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePxAuthInfo, tqsWapPxAuthInfo, kShapePxAuthInfo)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePort, tqsWapPort, kShapePort)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeletePxphysical, tqsWapPxPhysical, kShapePxPhysical)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteNapDef, tqsWapNapDef, kShapeNapDef)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteNapAuthInfo, tqsWapNapAuthInfo, kShapeNapAuthInfo)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteValidity, tqsWapValidity, kShapeValidity)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteResource, tqsWapResource, kShapeResource)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteAppAuth, tqsWapAppAuth, kShapeAppAuth)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteApplication, tqsWapApplication, kShapeApplication)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteBootstrap, tqsWapBootstrap, kShapeBootstrap)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteVendorConfig, tqsWapVendorConfig, kShapeVendorConfig)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteClientIdentity, tqsWapClientIdentity, kShapeClientIdentity)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteAccess, tqsWapAccess, kShapeAccess)
TQS_DEFINE_RELEASE(tqsClientProvWbxmlDeleteWifi, tqsWapWifi, kShapeWifi)
#undef TQS_DEFINE_RELEASE
