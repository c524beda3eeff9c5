// Private to the decoder: what each characteristic is to it. Per slot of
// tqsWapCharacter the record's size, where nested characteristics go and its
// parm handler; per parm handler the descriptor that the one walker in the
// decoder runs (its traces and quirks), the parm bytes it accepts (built from
// the record's field list) and the fields inline-named parms go to.
#ifndef TQS_CLIENT_PROV_WBXML_HANDLERS_H
#define TQS_CLIENT_PROV_WBXML_HANDLERS_H

#include <stddef.h>
#include <stdint.h>

#include "tqsClientProvFields.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsClientProvWbxmlTokens.h"

namespace tqs::wbxml {

namespace rec = tqs::detail;

// ---- Characteristic slots ----------------------------------------------------

constexpr int kSlotRoaming = 15;
constexpr int kSlotWifi = 16;
constexpr uint16_t kNoNesting = 0xFFFF;

template <typename Record, TqsResult (*Handler)(tqsWbxmlDecoder *, Record *)>
TqsResult CallParm(tqsWbxmlDecoder *ptDecoder, void *pRecord) {
    return Handler(ptDecoder, static_cast<Record *>(pRecord));
}

// What a characteristic of each tqsWapCharacter slot is: its record size, where
// nested characteristics go (or the refusal traced), and its parm handler.
struct SlotInfo {
    uint32_t nFields;
    uint16_t nCharListOffset;
    const char *pszNestRefusal;
    TqsResult (*pfnParm)(tqsWbxmlDecoder *, void *);
};

#define TQS_FIELDS(type) static_cast<uint32_t>(sizeof(type) / sizeof(void *))
#define TQS_NESTS(type) static_cast<uint16_t>(offsetof(type, ptCharacterList)), nullptr
#define TQS_PARM(type, fn) CallParm<type, fn>
// The refusals name other characteristics than the one refusing (PORT,
// VALIDITY and NAPAUTHINFO share BOOTSTRAP's PORT line, PXAUTHINFO
// RESOURCE's): the trace lines are the system's own and are kept as they are.
constexpr char kRefusePort[] = "BOOTSTRAP is Not Support Chiled PORT.";
constexpr char kRefuseResource[] = "RESOURCE is Not Support Chiled CHARACTER.";
constexpr SlotInfo kSlots[] = {
    {TQS_FIELDS(tqsWapPxLogical), TQS_NESTS(tqsWapPxLogical),
     TQS_PARM(tqsWapPxLogical, tqsClientProvWbxmlDecoderParamPxlogical)},
    {TQS_FIELDS(tqsWapPxAuthInfo), kNoNesting, kRefuseResource,
     TQS_PARM(tqsWapPxAuthInfo, tqsClientProvWbxmlDecoderParamPxAuthInfo)},
    {TQS_FIELDS(tqsWapPort), kNoNesting, kRefusePort,
     TQS_PARM(tqsWapPort, tqsClientProvWbxmlDecoderParamPort)},
    {TQS_FIELDS(tqsWapPxPhysical), TQS_NESTS(tqsWapPxPhysical),
     TQS_PARM(tqsWapPxPhysical, tqsClientProvWbxmlDecoderParamPxPhysical)},
    {TQS_FIELDS(tqsWapNapDef), TQS_NESTS(tqsWapNapDef),
     TQS_PARM(tqsWapNapDef, tqsClientProvWbxmlDecoderParamNapDef)},
    {TQS_FIELDS(tqsWapNapAuthInfo), kNoNesting, kRefusePort,
     TQS_PARM(tqsWapNapAuthInfo, tqsClientProvWbxmlDecoderParamNapAuthInfo)},
    {TQS_FIELDS(tqsWapValidity), kNoNesting, kRefusePort,
     TQS_PARM(tqsWapValidity, tqsClientProvWbxmlDecoderParamValidity)},
    {TQS_FIELDS(tqsWapAppAddr), TQS_NESTS(tqsWapAppAddr),
     TQS_PARM(tqsWapAppAddr, tqsClientProvWbxmlDecoderParamAppAddr)},
    {TQS_FIELDS(tqsWapResource), kNoNesting, kRefuseResource,
     TQS_PARM(tqsWapResource, tqsClientProvWbxmlDecoderParamResource)},
    {TQS_FIELDS(tqsWapAppAuth), kNoNesting, "APPAUTH is Not Support Chiled CHARACTER.",
     TQS_PARM(tqsWapAppAuth, tqsClientProvWbxmlDecoderParamAppAuth)},
    {TQS_FIELDS(tqsWapApplication), TQS_NESTS(tqsWapApplication),
     TQS_PARM(tqsWapApplication, tqsClientProvWbxmlDecoderParamApplication)},
    {TQS_FIELDS(tqsWapBootstrap), kNoNesting, "BOOTSTRAP is Not Support Chiled CHARACTER.",
     TQS_PARM(tqsWapBootstrap, tqsClientProvWbxmlDecoderParamBootstrap)},
    {TQS_FIELDS(tqsWapVendorConfig), kNoNesting, "VENDORCONFIG is Not Support Chiled CHARACTER.",
     TQS_PARM(tqsWapVendorConfig, tqsClientProvWbxmlDecoderParamVendorConfig)},
    {TQS_FIELDS(tqsWapClientIdentity), kNoNesting, "BOOTSTRAP is Not Support Chiled CLIENTIDENTITY.",
     TQS_PARM(tqsWapClientIdentity, tqsClientProvWbxmlDecoderParamClientIdentity)},
    {TQS_FIELDS(tqsWapAccess), kNoNesting, "BOOTSTRAP is Not Support Chiled ACCESS.",
     TQS_PARM(tqsWapAccess, tqsClientProvWbxmlDecoderParamAccess)},
    {TQS_FIELDS(tqsWapRoaming), kNoNesting, nullptr,
     TQS_PARM(tqsWapRoaming, tqsClientProvWbxmlDecoderParamRoaming)},
    {TQS_FIELDS(tqsWapWifi), kNoNesting, nullptr, TQS_PARM(tqsWapWifi, tqsClientProvWbxmlDecoderParamWifi)},
};
#undef TQS_FIELDS
#undef TQS_NESTS
#undef TQS_PARM
static_assert(sizeof(kSlots) / sizeof(kSlots[0]) * sizeof(void *) == sizeof(tqsWapCharacter));

// Slot created by the type tokens 0x51..0x5B on attribute page 0 and page 1.
constexpr uint8_t kFirstTypeToken = 0x51;
constexpr uint8_t kTypeSlots[][2] = {
    {0, 0},    // 0x51 PXLOGICAL
    {3, 3},    // 0x52 PXPHYSICAL
    {2, 2},    // 0x53 PORT
    {6, 6},    // 0x54 VALIDITY
    {4, 10},   // 0x55 NAPDEF / APPLICATION
    {11, 7},   // 0x56 BOOTSTRAP / APPADDR
    {12, 9},   // 0x57 VENDORCONFIG / APPAUTH
    {13, 13},  // 0x58 CLIENTIDENTITY
    {1, 8},    // 0x59 PXAUTHINFO / RESOURCE
    {5, 5},    // 0x5A NAPAUTHINFO
    {14, 14},  // 0x5B ACCESS
};
constexpr uint8_t kLastTypeToken = kFirstTypeToken + sizeof(kTypeSlots) / sizeof(kTypeSlots[0]) - 1;

// Slot of a type token on a page, or -1 (no type, or the inline type 0x50).
inline int TypeSlot(uint8_t nAttrId, uint8_t nPage) {
    if (nAttrId < kFirstTypeToken || nAttrId > kLastTypeToken) return -1;
    return kTypeSlots[nAttrId - kFirstTypeToken][nPage == 1 ? 1 : 0];
}

// ---- Parm tables: each handler's bytes, built from its record's fields -----

enum class ParmKind : uint8_t {
    kSingle,       // value into a string field
    kList,         // value as one more item of a string list
    kLenientList,  // kList whose failure is only traced
    kName,         // name written as a string: the characteristic's name-string handler
    kComma,        // 0x90 after a value: join the next value with a comma
    kStartPage,    // kSingle; no value marks the record as the start page
};

struct ParmEntry {
    uint8_t nByte;
    ParmKind eKind;
    uint16_t nOffset;
    const char *pszLabel;  // traced before the value is read, or null
};

// Entry of each parm byte: its position in the table + 1, 0 for an unknown byte.
struct ParmIndex {
    uint8_t nSlot[256];
};

template <size_t N>
struct ParmTable {
    ParmEntry atEntries[N];
    ParmIndex tIndex;
};

constexpr ParmKind ReaderOf(rec::Fill eFill) {
    switch (eFill) {
        case rec::Fill::StartPage:
            return ParmKind::kStartPage;
        case rec::Fill::List:
            return ParmKind::kList;
        case rec::Fill::LenientList:
            return ParmKind::kLenientList;
        default:
            return ParmKind::kSingle;
    }
}

// A record with a field filled by an inline-named parm takes the name attribute.
constexpr bool ReadsInlineName(rec::Fill eFill) {
    return eFill == rec::Fill::Named || eFill == rec::Fill::PairName;
}

template <rec::Kind K>
constexpr size_t ParmCount() {
    size_t n = 0;
    bool bName = false;
    for (const rec::Field &f : rec::Record<K>::kFields) {
        n += (f.token != 0) + (f.fill == rec::Fill::Joined);
        bName = bName || ReadsInlineName(f.fill);
    }
    return n + bName;
}

// bLabelled: the handler traces each parm's label before it reads the parm.
template <rec::Kind K, bool bLabelled = false>
constexpr ParmTable<ParmCount<K>()> MakeParmTable() {
    ParmTable<ParmCount<K>()> t{};
    size_t n = 0;
    auto add = [&](uint8_t nByte, ParmKind eKind, uint16_t nOffset, const char *pszLabel) {
        t.atEntries[n] = ParmEntry{nByte, eKind, nOffset, bLabelled ? pszLabel : nullptr};
        t.tIndex.nSlot[nByte] = static_cast<uint8_t>(++n);
    };
    bool bName = false;
    for (const rec::Field &f : rec::Record<K>::kFields) {
        if (f.token != 0) add(f.token, ReaderOf(f.fill), f.tree, f.label);
        if (f.fill == rec::Fill::Joined) add(kTokComma, ParmKind::kComma, f.tree, nullptr);
        bName = bName || ReadsInlineName(f.fill);
    }
    if (bName) add(kTokNameAttr, ParmKind::kName, 0, rec::kParmLabel<"">);
    return t;
}

constexpr auto kPxLogicalParms = MakeParmTable<rec::Kind::PxLogical>();
constexpr auto kPxAuthInfoParms = MakeParmTable<rec::Kind::PxAuthInfo>();
constexpr auto kPortParms = MakeParmTable<rec::Kind::Port>();
constexpr auto kPxPhysicalParms = MakeParmTable<rec::Kind::PxPhysical>();
constexpr auto kNapDefParms = MakeParmTable<rec::Kind::NapDef>();
constexpr auto kNapAuthInfoParms = MakeParmTable<rec::Kind::NapAuthInfo>();
constexpr auto kValidityParms = MakeParmTable<rec::Kind::Validity>();
constexpr auto kApplicationParms = MakeParmTable<rec::Kind::Application, true>();
constexpr auto kAppAddrParms = MakeParmTable<rec::Kind::AppAddr>();
constexpr auto kAppAuthParms = MakeParmTable<rec::Kind::AppAuth>();
constexpr auto kResourceParms = MakeParmTable<rec::Kind::Resource, true>();
constexpr auto kBootstrapParms = MakeParmTable<rec::Kind::Bootstrap>();
constexpr auto kVendorConfigParms = MakeParmTable<rec::Kind::VendorConfig>();
constexpr auto kClientIdentityParms = MakeParmTable<rec::Kind::ClientIdentity>();
constexpr auto kAccessParms = MakeParmTable<rec::Kind::Access>();
constexpr auto kRoamingParms = MakeParmTable<rec::Kind::Roaming>();
constexpr auto kWifiParms = MakeParmTable<rec::Kind::Wifi>();
static_assert(kAppAuthParms.tIndex.nSlot[kTokComma] != 0 && kResourceParms.tIndex.nSlot[kTokComma] == 0,
              "0x90 joins in APPAUTH only");
static_assert(kNapDefParms.tIndex.nSlot[kTokNameAttr] != 0 && kPxLogicalParms.tIndex.nSlot[kTokNameAttr] == 0,
              "inline names where a field takes them");

// ---- Parm handler descriptors ----------------------------------------------

enum ParmTraces : uint8_t {
    kTraceNone = 0,
    kTraceEndCode = 1,   // "...ParamPxlogical Error Code:%d" at the end
    kTraceIdAround = 2,  // nId before each dispatch and the error summary at the end
    kTraceIdAfter = 4,   // nId after each dispatch
};

using NameHandler = TqsResult (*)(tqsWbxmlDecoder *, void *, uint8_t);

template <typename Record, TqsResult (*Handler)(tqsWbxmlDecoder *, Record *, uint8_t)>
TqsResult CallName(tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTag) {
    return Handler(ptDecoder, static_cast<Record *>(pRecord), nTag);
}

// The vendor variant takes the two fields it fills, not the record.
inline TqsResult CallVendorName(tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTag) {
    tqsWapVendorConfig *ptRecord = static_cast<tqsWapVendorConfig *>(pRecord);
    return tqsClientProvWbxmlDecoderParamVendorNameString(ptDecoder, &ptRecord->pszParmName,
                                                          &ptRecord->pszParmValue, nTag);
}

struct ParmHandler {
    const char *pszName;  // traced on entry
    const ParmEntry *ptEntries;
    const ParmIndex *ptIndex;
    NameHandler pfnName = nullptr;  // byte 0x05: the characteristic's name-string handler
    // Whose name the second line for an unknown byte carries ("%s[%x]"); null:
    // the handler's own. NAPDEF traces one line of its own instead.
    const char *pszUnknownOwner = nullptr;
    bool bNapDefUnknownLine = false;
    bool bNeedsRecord = true;          // 2 for a null record
    bool bRawPeekAfterSwitch = false;  // after SWITCH_PAGE peek the raw byte again (RESOURCE, APPAUTH)
    uint8_t nTraces = kTraceNone;
};

// k<Kind>Handler: the descriptor of the entry point tqsClientProvWbxmlDecoderParam<name>,
// which is also the name it traces on entry; its parm table is k<Kind>Parms;
// the quirks follow as designated initializers.
#define TQS_PARM_HANDLER(name, Kind, ...)                                                     \
    constexpr ParmHandler k##Kind##Handler{.pszName = "tqsClientProvWbxmlDecoderParam" #name, \
                                           .ptEntries = k##Kind##Parms.atEntries,             \
                                           .ptIndex = &k##Kind##Parms.tIndex __VA_OPT__(, ) __VA_ARGS__};

TQS_PARM_HANDLER(Pxlogical, PxLogical, .nTraces = kTraceEndCode)
TQS_PARM_HANDLER(PxAuthInfo, PxAuthInfo, .nTraces = kTraceIdAround)
TQS_PARM_HANDLER(Port, Port)
TQS_PARM_HANDLER(PxPhysical, PxPhysical)
TQS_PARM_HANDLER(NapDef, NapDef,
                 .pfnName = CallName<tqsWapNapDef, tqsClientProvWbxmlDecoderParamNapNameString>,
                 .bNapDefUnknownLine = true)
TQS_PARM_HANDLER(NapAuthInfo, NapAuthInfo)
TQS_PARM_HANDLER(Validity, Validity)
TQS_PARM_HANDLER(Application, Application,
                 .pfnName = CallName<tqsWapApplication, tqsClientProvWbxmlDecoderParamAppNameString>,
                 .nTraces = kTraceIdAfter)
TQS_PARM_HANDLER(AppAddr, AppAddr)
TQS_PARM_HANDLER(AppAuth, AppAuth, .bRawPeekAfterSwitch = true)
TQS_PARM_HANDLER(Resource, Resource, .bRawPeekAfterSwitch = true)
TQS_PARM_HANDLER(Bootstrap, Bootstrap)
TQS_PARM_HANDLER(VendorConfig, VendorConfig, .pfnName = CallVendorName)
TQS_PARM_HANDLER(ClientIdentity, ClientIdentity)
TQS_PARM_HANDLER(Access, Access)
// ROAMING traces its own name as "...ParamRoming", and ROAMING and WI-FI
// trace ACCESS's name for an unknown byte: the system's own lines, kept so.
TQS_PARM_HANDLER(Roming, Roaming,
                 .pfnName = CallName<tqsWapRoaming, tqsClientProvWbxmlDecoderParamRoamingNameString>,
                 .pszUnknownOwner = "tqsClientProvWbxmlDecoderParamAccess", .bNeedsRecord = false)
TQS_PARM_HANDLER(Wifi, Wifi, .pfnName = CallName<tqsWapWifi, tqsClientProvWbxmlDecoderParamWifiNameString>,
                 .pszUnknownOwner = "tqsClientProvWbxmlDecoderParamAccess", .bNeedsRecord = false)
#undef TQS_PARM_HANDLER

// ---- Inline-named parms ----------------------------------------------------

struct NameTarget {
    const char *pszName;
    uint16_t nOffset;
};

template <rec::Kind K>
constexpr size_t NamedCount() {
    size_t n = 0;
    for (const rec::Field &f : rec::Record<K>::kFields) n += f.fill == rec::Fill::Named;
    return n;
}

// The fields an inline-named parm is read into, by name, in field order.
template <rec::Kind K>
struct NameTargets {
    NameTarget at[NamedCount<K>()];
};

template <rec::Kind K>
constexpr NameTargets<K> MakeNameTargets() {
    NameTargets<K> t{};
    size_t n = 0;
    for (const rec::Field &f : rec::Record<K>::kFields)
        if (f.fill == rec::Fill::Named) t.at[n++] = NameTarget{f.name, f.tree};
    return t;
}

constexpr auto kAppTargets = MakeNameTargets<rec::Kind::Application>();
constexpr auto kRoamingTargets = MakeNameTargets<rec::Kind::Roaming>();
constexpr auto kWifiTargets = MakeNameTargets<rec::Kind::Wifi>();

}  // namespace tqs::wbxml

#endif  // TQS_CLIENT_PROV_WBXML_HANDLERS_H
