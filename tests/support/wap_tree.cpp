#include "wap_tree.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "tqslist.h"

namespace waptree {
namespace {

enum Kind { kString, kList, kChars, kVendorPair };

struct Field {
    size_t offset;
    const char *name;
    Kind kind;
};

#define S(type, field, name) \
    { offsetof(type, field), name, kString }
#define L(type, field, name) \
    { offsetof(type, field), name, kList }
#define C(type) \
    { offsetof(type, ptCharacterList), nullptr, kChars }

const std::vector<Field> kPxLogical = {
    S(tqsWapPxLogical, pszProxyId, "PROXY-ID"),
    S(tqsWapPxLogical, pszProxyPw, "PROXY-PW"),
    S(tqsWapPxLogical, pszPpgAuthType, "PPGAUTH-TYPE"),
    S(tqsWapPxLogical, pszProxyProviderId, "PROXY-PROVIDER-ID"),
    S(tqsWapPxLogical, pszName, "NAME"),
    S(tqsWapPxLogical, pszTrust, "TRUST"),
    S(tqsWapPxLogical, pszMaster, "MASTER"),
    S(tqsWapPxLogical, pszStartPage, "STARTPAGE"),
    S(tqsWapPxLogical, pszReserved1, "?1"),
    S(tqsWapPxLogical, pszReserved2, "?2"),
    S(tqsWapPxLogical, pszReserved3, "?3"),
    S(tqsWapPxLogical, pszReserved4, "?4"),
    S(tqsWapPxLogical, pszReserved5, "?5"),
    L(tqsWapPxLogical, ptDomainList, "DOMAIN"),
    C(tqsWapPxLogical),
};
const std::vector<Field> kPxAuthInfo = {
    S(tqsWapPxAuthInfo, pszPxAuthType, "PXAUTH-TYPE"),
    S(tqsWapPxAuthInfo, pszPxAuthId, "PXAUTH-ID"),
    S(tqsWapPxAuthInfo, pszPxAuthPw, "PXAUTH-PW"),
};
const std::vector<Field> kPort = {
    S(tqsWapPort, pszPortNbr, "PORTNBR"),
    L(tqsWapPort, ptServiceList, "SERVICE"),
};
const std::vector<Field> kPxPhysical = {
    S(tqsWapPxPhysical, pszPhysicalProxyId, "PHYSICAL-PROXY-ID"),
    S(tqsWapPxPhysical, pszPxAddr, "PXADDR"),
    S(tqsWapPxPhysical, pszPxAddrType, "PXADDRTYPE"),
    S(tqsWapPxPhysical, pszPxAddrFqdn, "PXADDR-FQDN"),
    S(tqsWapPxPhysical, pszWspVersion, "WSP-VERSION"),
    S(tqsWapPxPhysical, pszPushEnabled, "PUSHENABLED"),
    S(tqsWapPxPhysical, pszPullEnabled, "PULLENABLED"),
    L(tqsWapPxPhysical, ptToNapIdList, "TO-NAPID"),
    L(tqsWapPxPhysical, ptDomainList, "DOMAIN"),
    C(tqsWapPxPhysical),
};
const std::vector<Field> kNapDef = {
    S(tqsWapNapDef, pszNapId, "NAPID"),
    S(tqsWapNapDef, pszName, "NAME"),
    S(tqsWapNapDef, pszInternet, "INTERNET"),
    S(tqsWapNapDef, pszNapAddress, "NAP-ADDRESS"),
    S(tqsWapNapDef, pszNapAddrType, "NAP-ADDRTYPE"),
    S(tqsWapNapDef, pszCallType, "CALLTYPE"),
    S(tqsWapNapDef, pszLocalAddr, "LOCAL-ADDR"),
    S(tqsWapNapDef, pszLocalAddrType, "LOCAL-ADDRTYPE"),
    S(tqsWapNapDef, pszLinkSpeed, "LINKSPEED"),
    S(tqsWapNapDef, pszDnLinkSpeed, "DNLINKSPEED"),
    S(tqsWapNapDef, pszLinger, "LINGER"),
    S(tqsWapNapDef, pszDeliveryErrSdu, "DELIVERY-ERR-SDU"),
    S(tqsWapNapDef, pszDeliveryOrder, "DELIVERY-ORDER"),
    S(tqsWapNapDef, pszTrafficClass, "TRAFFIC-CLASS"),
    S(tqsWapNapDef, pszMaxSduSize, "MAX-SDU-SIZE"),
    S(tqsWapNapDef, pszMaxBitrateUplink, "MAX-BITRATE-UPLINK"),
    S(tqsWapNapDef, pszMaxBitrateDnlink, "MAX-BITRATE-DNLINK"),
    S(tqsWapNapDef, pszReserved1, "?1"),
    S(tqsWapNapDef, pszReserved2, "?2"),
    S(tqsWapNapDef, pszReserved3, "?3"),
    S(tqsWapNapDef, pszReserved4, "?4"),
    S(tqsWapNapDef, pszReserved5, "?5"),
    S(tqsWapNapDef, pszReserved6, "?6"),
    S(tqsWapNapDef, pszMaxNumRetry, "MAX-NUM-RETRY"),
    S(tqsWapNapDef, pszFirstRetryTimeout, "FIRST-RETRY-TIMEOUT"),
    S(tqsWapNapDef, pszReregThreshold, "REREG-THRESHOLD"),
    S(tqsWapNapDef, pszTBit, "T-BIT"),
    S(tqsWapNapDef, pszInit, "INIT"),
    L(tqsWapNapDef, ptDnsAddrList, "DNS-ADDR"),
    L(tqsWapNapDef, ptBearerList, "BEARER"),
    C(tqsWapNapDef),
};
const std::vector<Field> kNapAuthInfo = {
    S(tqsWapNapAuthInfo, pszAuthType, "AUTHTYPE"),         S(tqsWapNapAuthInfo, pszAuthName, "AUTHNAME"),
    S(tqsWapNapAuthInfo, pszAuthSecret, "AUTHSECRET"),     S(tqsWapNapAuthInfo, pszReserved1, "?1"),
    L(tqsWapNapAuthInfo, ptAuthEntityList, "AUTH-ENTITY"),
};
const std::vector<Field> kValidity = {
    S(tqsWapValidity, pszCountry, "COUNTRY"),
    S(tqsWapValidity, pszNetwork, "NETWORK"),
    S(tqsWapValidity, pszSid, "SID"),
    S(tqsWapValidity, pszSoc, "SOC"),
    S(tqsWapValidity, pszValidUntil, "VALIDUNTIL"),
};
const std::vector<Field> kAppAddr = {
    S(tqsWapAppAddr, pszAddr, "ADDR"),
    S(tqsWapAppAddr, pszAddrType, "ADDRTYPE"),
    C(tqsWapAppAddr),
};
const std::vector<Field> kResource = {
    S(tqsWapResource, pszUri, "URI"),
    S(tqsWapResource, pszName, "NAME"),
    S(tqsWapResource, pszAAccept, "AACCEPT"),
    S(tqsWapResource, pszAAuthType, "AAUTHTYPE"),
    S(tqsWapResource, pszAAuthName, "AAUTHNAME"),
    S(tqsWapResource, pszAAuthSecret, "AAUTHSECRET"),
    S(tqsWapResource, pszAAuthData, "AAUTHDATA"),
    S(tqsWapResource, pszStartPage, "STARTPAGE"),
};
const std::vector<Field> kAppAuth = {
    S(tqsWapAppAuth, pszAAuthLevel, "AAUTHLEVEL"), S(tqsWapAppAuth, pszAAuthType, "AAUTHTYPE"),
    S(tqsWapAppAuth, pszAAuthName, "AAUTHNAME"),   S(tqsWapAppAuth, pszAAuthSecret, "AAUTHSECRET"),
    S(tqsWapAppAuth, pszAAuthData, "AAUTHDATA"),
};
const std::vector<Field> kApplication = {
    S(tqsWapApplication, pszAppId, "APPID"),
    S(tqsWapApplication, pszProviderId, "PROVIDER-ID"),
    S(tqsWapApplication, pszFrom, "FROM"),
    S(tqsWapApplication, pszName, "NAME"),
    S(tqsWapApplication, pszAAccept, "AACCEPT"),
    S(tqsWapApplication, pszAProtocol, "APROTOCOL"),
    S(tqsWapApplication, pszInternet, "INTERNET"),
    S(tqsWapApplication, pszXcapAuidDcs, "XCAP_AUID_DCS"),
    S(tqsWapApplication, pszXcapAuidPms, "XCAP_AUID_PMS"),
    S(tqsWapApplication, pszXcapAuidCdms, "XCAP_AUID_CDMS"),
    S(tqsWapApplication, pszXcapImeiHeader, "XCAP_IMEI_HEADER"),
    S(tqsWapApplication, pszXcapTidHeader, "XCAP_TID_HEADER"),
    L(tqsWapApplication, ptToProxyList, "TO-PROXY"),
    L(tqsWapApplication, ptToNapIdList, "TO-NAPID"),
    L(tqsWapApplication, ptAddrList, "ADDR"),
    C(tqsWapApplication),
};
const std::vector<Field> kBootstrap = {
    S(tqsWapBootstrap, pszName, "NAME"),           S(tqsWapBootstrap, pszCountry, "COUNTRY"),
    S(tqsWapBootstrap, pszProvUrl, "PROVURL"),     S(tqsWapBootstrap, pszContextAllow, "CONTEXT-ALLOW"),
    L(tqsWapBootstrap, ptProxyIdList, "PROXY-ID"), L(tqsWapBootstrap, ptNetworkList, "NETWORK"),
};
const std::vector<Field> kVendorConfig = {
    S(tqsWapVendorConfig, pszName, "NAME"),
    {offsetof(tqsWapVendorConfig, pszParmName), nullptr, kVendorPair},
};
const std::vector<Field> kClientIdentity = {
    S(tqsWapClientIdentity, pszClientId, "CLIENT-ID"),
};
const std::vector<Field> kAccess = {
    L(tqsWapAccess, ptRuleList, "RULE"),        L(tqsWapAccess, ptAppIdList, "APPID"),
    L(tqsWapAccess, ptPortNbrList, "PORTNBR"),  L(tqsWapAccess, ptDomainList, "DOMAIN"),
    L(tqsWapAccess, ptToNapIdList, "TO-NAPID"), L(tqsWapAccess, ptToProxyList, "TO-PROXY"),
};
const std::vector<Field> kRoaming = {
    S(tqsWapRoaming, pszSyncAllowed, "SYNC-ALLOWED"),
    S(tqsWapRoaming, pszSyncDefault, "SYNC-DEFAULT"),
};
const std::vector<Field> kWifi = {
    S(tqsWapWifi, pszNetSsid, "NETSSID"),
    S(tqsWapWifi, pszSecMode, "SECMODE"),
    S(tqsWapWifi, pszEapMethod, "EAPMETHOD"),
    S(tqsWapWifi, pszEapType, "EAPTYPE"),
    S(tqsWapWifi, pszUserName, "USERNAME"),
    S(tqsWapWifi, pszAnonUserName, "ANONUSERNAME"),
    S(tqsWapWifi, pszPassword, "PASSWORD"),
    S(tqsWapWifi, pszCaCert, "CACERT"),
    S(tqsWapWifi, pszUserCert, "USERCERT"),
    S(tqsWapWifi, pszPhase1, "PHASE1"),
    S(tqsWapWifi, pszAuthAlgorithm, "AUTHALGORITHM"),
    S(tqsWapWifi, pszPriority, "PRIORITY"),
};
#undef S
#undef L
#undef C

struct Slot {
    const char *type;
    const std::vector<Field> *fields;
};

const Slot kSlots[17] = {
    {"PXLOGICAL", &kPxLogical},
    {"PXAUTHINFO", &kPxAuthInfo},
    {"PORT", &kPort},
    {"PXPHYSICAL", &kPxPhysical},
    {"NAPDEF", &kNapDef},
    {"NAPAUTHINFO", &kNapAuthInfo},
    {"VALIDITY", &kValidity},
    {"APPADDR", &kAppAddr},
    {"RESOURCE", &kResource},
    {"APPAUTH", &kAppAuth},
    {"APPLICATION", &kApplication},
    {"BOOTSTRAP", &kBootstrap},
    {"VENDORCONFIG", &kVendorConfig},
    {"CLIENTIDENTITY", &kClientIdentity},
    {"ACCESS", &kAccess},
    {"ROAMING", &kRoaming},
    {"WI-FI", &kWifi},
};

std::string Value(const char *psz) {
    if (psz == nullptr) return "(null)";
    const unsigned char *p = reinterpret_cast<const unsigned char *>(psz);
    if (p[0] > 0x80) {
        char buf[8];
        std::snprintf(buf, sizeof buf, "<0x%02X>", p[0]);
        return buf;
    }
    return psz;
}

std::vector<Node> FromList(const TqsList *ptList);

Node FromCharacter(const tqsWapCharacter *ptCharacter) {
    Node node;
    if (ptCharacter == nullptr) {
        node.type = "(none)";
        return node;
    }
    const void *const *slots = reinterpret_cast<const void *const *>(ptCharacter);
    for (int i = 0; i < 17; ++i) {
        if (slots[i] == nullptr) continue;
        if (!node.type.empty()) node.type += "+";
        node.type += kSlots[i].type;
        const char *base = static_cast<const char *>(slots[i]);
        for (const Field &f : *kSlots[i].fields) {
            const void *p = *reinterpret_cast<const void *const *>(base + f.offset);
            if (p == nullptr) continue;
            switch (f.kind) {
                case kString:
                    node.parms.push_back(std::string(f.name) + "=" + Value(static_cast<const char *>(p)));
                    break;
                case kList:
                    for (TqsListNode *n = static_cast<const TqsList *>(p)->ptHead; n != nullptr;
                         n = n->ptNext) {
                        node.parms.push_back(std::string(f.name) + "=" +
                                             Value(static_cast<const char *>(n->pItem)));
                    }
                    break;
                case kChars: {
                    std::vector<Node> kids = FromList(static_cast<const TqsList *>(p));
                    node.children.insert(node.children.end(), kids.begin(), kids.end());
                    break;
                }
                case kVendorPair: {
                    const char *value =
                        *reinterpret_cast<const char *const *>(base + f.offset + sizeof(void *));
                    node.parms.push_back(Value(static_cast<const char *>(p)) + "=" +
                                         (value ? Value(value) : ""));
                    break;
                }
            }
        }
    }
    if (node.type.empty()) node.type = "(untyped)";
    return node;
}

std::vector<Node> FromList(const TqsList *ptList) {
    std::vector<Node> out;
    if (ptList == nullptr) return out;
    for (TqsListNode *n = ptList->ptHead; n != nullptr; n = n->ptNext) {
        out.push_back(FromCharacter(static_cast<const tqsWapCharacter *>(n->pItem)));
    }
    return out;
}

// ---- XML ----------------------------------------------------------------

std::string Unescape(const std::string &s) {
    std::string out;
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] != '&') {
            out += s[i];
            continue;
        }
        size_t semi = s.find(';', i);
        std::string ent = s.substr(i + 1, semi - i - 1);
        if (ent == "amp")
            out += '&';
        else if (ent == "lt")
            out += '<';
        else if (ent == "gt")
            out += '>';
        else if (ent == "quot")
            out += '"';
        else if (ent == "apos")
            out += '\'';
        else if (!ent.empty() && ent[0] == '#') {
            unsigned long code =
                ent[1] == 'x' ? std::stoul(ent.substr(2), nullptr, 16) : std::stoul(ent.substr(1));
            if (code < 0x80) {
                out += static_cast<char>(code);
            } else if (code < 0x800) {
                out += static_cast<char>(0xC0 | (code >> 6));
                out += static_cast<char>(0x80 | (code & 0x3F));
            } else {
                out += static_cast<char>(0xE0 | (code >> 12));
                out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
                out += static_cast<char>(0x80 | (code & 0x3F));
            }
        }
        i = semi;
    }
    return out;
}

bool Attribute(const std::string &tag, const std::string &name, std::string *value) {
    size_t pos = 0;
    while ((pos = tag.find(name, pos)) != std::string::npos) {
        size_t after = pos + name.size();
        bool startOk = pos > 0 && (tag[pos - 1] == ' ' || tag[pos - 1] == '\t' || tag[pos - 1] == '\n' ||
                                   tag[pos - 1] == '\r');
        size_t eq = tag.find_first_not_of(" \t\r\n", after);
        if (startOk && eq != std::string::npos && tag[eq] == '=') {
            size_t q = tag.find_first_of("\"'", eq);
            size_t end = tag.find(tag[q], q + 1);
            *value = Unescape(tag.substr(q + 1, end - q - 1));
            return true;
        }
        pos = after;
    }
    return false;
}

}  // namespace

std::vector<Node> FromTree(const tqsWapDoc *ptDoc) {
    return ptDoc != nullptr ? FromList(ptDoc->ptCharacterList) : std::vector<Node>{};
}

std::vector<Node> FromXml(const std::string &xml) {
    std::vector<Node> roots;
    std::vector<Node *> stack;
    // Element names compare case-insensitively (one negative sample spells "Parm").
    auto lower = [](std::string s) {
        std::transform(s.begin(), s.end(), s.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return s;
    };
    size_t pos = 0;
    while ((pos = xml.find('<', pos)) != std::string::npos) {
        if (xml.compare(pos, 4, "<!--") == 0) {
            pos = xml.find("-->", pos) + 3;
            continue;
        }
        size_t end = xml.find('>', pos);
        std::string tag = xml.substr(pos + 1, end - pos - 1);
        pos = end + 1;
        if (tag.empty() || tag[0] == '?' || tag[0] == '!') continue;
        bool closing = tag[0] == '/';
        bool selfClosing = tag.back() == '/';
        std::string name =
            lower(tag.substr(closing ? 1 : 0, tag.find_first_of(" \t\r\n/", 1) - (closing ? 1 : 0)));
        if (name == "characteristic") {
            if (closing) {
                if (!stack.empty()) stack.pop_back();
                continue;
            }
            Node node;
            Attribute(tag, "type", &node.type);
            std::vector<Node> &siblings = stack.empty() ? roots : stack.back()->children;
            siblings.push_back(node);
            if (!selfClosing) stack.push_back(&siblings.back());
        } else if (name == "parm" && !closing && !stack.empty()) {
            std::string parmName, value;
            Attribute(tag, "name", &parmName);
            if (Attribute(tag, "value", &value)) {
                stack.back()->parms.push_back(parmName + "=" + value);
            } else {
                stack.back()->parms.push_back(parmName);
            }
        }
    }
    return roots;
}

namespace {
void RenderInto(const std::vector<Node> &nodes, int depth, std::string *out) {
    for (const Node &n : nodes) {
        out->append(static_cast<size_t>(depth) * 2, ' ').append(n.type).append("\n");
        std::vector<std::string> parms = n.parms;
        std::stable_sort(parms.begin(), parms.end(), [](const std::string &a, const std::string &b) {
            return a.substr(0, a.find('=')) < b.substr(0, b.find('='));
        });
        for (const std::string &p : parms)
            out->append(static_cast<size_t>(depth) * 2 + 2, ' ').append(p).append("\n");
        RenderInto(n.children, depth + 1, out);
    }
}
}  // namespace

std::string Render(const std::vector<Node> &nodes) {
    std::string out;
    RenderInto(nodes, 0, &out);
    return out;
}

}  // namespace waptree
