#include "records.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tokens.h"
#include "tqsClientProvFields.h"
#include "tqomacp_jni_names.h"
#include "tqslist.h"

namespace cpdump {
namespace {

namespace rec = tqs::detail;

template <typename T = char>
const T *PointerAt(const void *record, std::size_t offset) {
    const T *p;
    __builtin_memcpy(&p, static_cast<const char *>(record) + offset, sizeof p);
    return p;
}

// A record's rows in the memory order of its tree record (&rec::Field::tree)
// or of its context record (&rec::Field::ctx); rows without such a field are left out.
std::vector<const rec::Field *> InOrder(rec::Kind kind, std::uint16_t rec::Field::*offset) {
    const rec::RecordInfo &r = rec::Info(kind);
    std::vector<const rec::Field *> rows;
    for (const rec::Field &f : std::span(r.fields, r.count))
        if (f.*offset != rec::kNoOffset) rows.push_back(&f);
    std::sort(rows.begin(), rows.end(),
              [&](const rec::Field *a, const rec::Field *b) { return a->*offset < b->*offset; });
    return rows;
}

// ---- Context records.

// A stored value the application receives mapped, and which mapping.
struct AppElement {
    rec::Kind kind;
    const char *key;
    std::size_t offset;
    tqsJniMapping mapping;
};

// The values the composite getters hand the application instead of the stored ones.
constexpr AppElement kAppElements[] = {
    {rec::Kind::PxPhysical, "PXADDRTYPE", offsetof(tqsCtxPxPhysical, pszPxAddrType),
     TQS_JNI_MAP_PX_ADDR_TYPE},
    {rec::Kind::NapDef, "NAP-ADDRTYPE", offsetof(tqsCtxNapDef, pszNapAddrType), TQS_JNI_MAP_NAP_ADDR_TYPE},
    {rec::Kind::NapAuthInfo, "AUTHTYPE", offsetof(tqsCtxNapAuthInfo, pszAuthType), TQS_JNI_MAP_AUTH_TYPE},
    {rec::Kind::AppAuth, "AAUTHLEVEL", offsetof(tqsCtxAppAuth, pszAAuthLevel), TQS_JNI_MAP_AAUTH_LEVEL},
};

const AppElement *AppOf(rec::Kind kind) {
    for (const AppElement &app : kAppElements)
        if (app.kind == kind) return &app;
    return nullptr;
}

void WriteApp(JsonWriter &json, const AppElement &app, const void *record) {
    json.BeginObject("app");
    const char *element = nullptr;
    if (const char *stored = PointerAt(record, app.offset)) {
        if (!tqsJniMapElement(app.mapping, stored, &element)) {
            // No element is written for it: CALLTYPE lands in its place and
            // every later element of the array moves one index down.
            json.Null(app.key);
            json.Bool("elementsShifted", true);
        } else if (element != nullptr) {
            json.String(app.key, element);
        } else {
            json.Null(app.key);
        }
    }
    json.EndObject();
}

void WriteCtxRecord(JsonWriter &json, rec::Kind kind, const void *record);

void WriteCtxChain(JsonWriter &json, rec::Kind kind, const void *head) {
    const rec::RecordInfo &r = rec::Info(kind);
    json.BeginArray(r.type);
    for (const void *p = head; p != nullptr; p = PointerAt<void>(p, r.next)) WriteCtxRecord(json, kind, p);
    json.EndArray();
}

void WriteCtxRecord(JsonWriter &json, rec::Kind kind, const void *record) {
    json.BeginObject();
    // The application's view sits right after the record's own strings.
    const AppElement *app = AppOf(kind);
    for (const rec::Field *f : InOrder(kind, &rec::Field::ctx)) {
        if (app != nullptr && !rec::IsString(f->fill)) {
            WriteApp(json, *app, record);
            app = nullptr;
        }
        const void *p = PointerAt<void>(record, f->ctx);
        if (p == nullptr) continue;
        if (rec::IsString(f->fill)) {
            json.String(f->name, DisplayValue(static_cast<const char *>(p)));
        } else if (rec::IsList(f->fill)) {
            json.BeginArray(f->name);
            for (auto *n = static_cast<const tqsCtxStrNode *>(p); n != nullptr; n = n->ptNext) {
                if (n->pszStr != nullptr) {
                    json.String(DisplayValue(n->pszStr));
                } else {
                    json.Null();
                }
            }
            json.EndArray();
        } else {
            WriteCtxChain(json, f->child, p);
        }
    }
    if (app != nullptr) WriteApp(json, *app, record);
    json.EndObject();
}

// ---- Document tree records.

void XmlIndent(std::string *out, int depth) {
    out->append(static_cast<std::size_t>(depth) * 2, ' ');
}

void XmlParm(std::string *out, int depth, std::string_view name, const char *value) {
    XmlIndent(out, depth);
    *out += "<parm name=\"" + EscapeXml(name) + "\"";
    if (value != nullptr) *out += " value=\"" + EscapeXml(DisplayValue(value)) + "\"";
    *out += "/>\n";
}

void XmlCharacteristics(std::string *out, int depth, const TqsList *list);

void XmlCharacteristic(std::string *out, int depth, const tqsWapCharacter *ch) {
    std::size_t slot = 0;
    const void *record = nullptr;
    for (; slot < rec::kSlotCount && record == nullptr; ++slot)
        record = PointerAt<void>(ch, slot * sizeof(void *));
    XmlIndent(out, depth);
    if (record == nullptr) {
        *out += "<characteristic/>\n";  // a characteristic that selected no record
        return;
    }
    const auto kind = static_cast<rec::Kind>(slot - 1);
    const rec::RecordInfo &r = rec::Info(kind);
    *out += "<characteristic type=\"" + std::string(r.type) + "\">\n";
    for (const rec::Field *f : InOrder(kind, &rec::Field::tree)) {
        const void *p = PointerAt<void>(record, f->tree);
        if (p == nullptr || f->fill == rec::Fill::PairValue) continue;
        if (f->fill == rec::Fill::PairName) {
            // VENDORCONFIG: a parm whose name and value are the two strings in a row.
            XmlParm(out, depth + 1, static_cast<const char *>(p),
                    PointerAt(record, f->tree + sizeof(void *)));
        } else if (rec::IsString(f->fill)) {
            XmlParm(out, depth + 1, f->name, static_cast<const char *>(p));
        } else {
            for (auto *n = static_cast<const TqsList *>(p)->ptHead; n != nullptr; n = n->ptNext)
                XmlParm(out, depth + 1, f->name, static_cast<const char *>(n->pItem));
        }
    }
    if (r.characterList != rec::kNoOffset)
        XmlCharacteristics(out, depth + 1, PointerAt<TqsList>(record, r.characterList));
    XmlIndent(out, depth);
    *out += "</characteristic>\n";
}

void XmlCharacteristics(std::string *out, int depth, const TqsList *list) {
    if (list == nullptr) return;
    for (const TqsListNode *n = list->ptHead; n != nullptr; n = n->ptNext) {
        if (n->pItem != nullptr)
            XmlCharacteristic(out, depth, static_cast<const tqsWapCharacter *>(n->pItem));
    }
}

}  // namespace

void WriteContextJson(JsonWriter &json, const tqsClientProvCtx &ctx) {
    json.BeginObject("context");
    for (const rec::Field *f : InOrder(rec::Kind::Root, &rec::Field::ctx)) {
        const rec::RecordInfo &child = rec::Info(f->child);
        const void *head = PointerAt<void>(&ctx, f->ctx);
        if (child.next != rec::kNoOffset) {
            WriteCtxChain(json, f->child, head);
        } else if (head == nullptr) {  // CLIENTIDENTITY: one record, not a chain
            json.Null(child.type);
        } else {
            json.Key(child.type);
            WriteCtxRecord(json, f->child, head);
        }
    }
    json.EndObject();
}

void WriteTreeXml(std::string *out, const tqsWapDoc *doc) {
    const TqsList *top = doc != nullptr ? doc->ptCharacterList : nullptr;
    if (top == nullptr || top->ptHead == nullptr) {
        *out += "<wap-provisioningdoc/>\n";
        return;
    }
    *out += "<wap-provisioningdoc>\n";
    XmlCharacteristics(out, 1, top);
    *out += "</wap-provisioningdoc>\n";
}

}  // namespace cpdump
