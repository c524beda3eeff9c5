#include "summary.h"

#include <initializer_list>
#include <string_view>
#include <utility>

#include "textout.h"
#include "tokens.h"

namespace cpdump {
namespace {

// The application ids that handsets know by name.
constexpr std::pair<std::string_view, const char *> kAppNames[] = {
    {"w2", "browser"},
    {"w4", "MMS"},
    {"w5", "data synchronisation"},
    {"w7", "device management"},
    {"25", "SMTP"},
    {"110", "POP3"},
    {"143", "IMAP4"},
    {"554", "streaming"},
};

std::string Value(const char *stored) {
    return stored == nullptr ? std::string() : EscapeJson(DisplayValue(stored));
}

std::string Chain(const tqsCtxStrNode *node) {
    std::string text;
    for (; node != nullptr; node = node->ptNext) {
        if (node->pszStr == nullptr) continue;
        if (!text.empty()) text += ", ";
        text += Value(node->pszStr);
    }
    return text;
}

// "9201 CO-WSP; 9203 CO-SEC-WSP"
std::string Ports(const tqsCtxPort *port) {
    std::string text;
    for (; port != nullptr; port = port->ptNext) {
        std::string one = Value(port->pszPortNbr);
        const std::string services = Chain(port->ptService);
        if (!services.empty()) one += (one.empty() ? "" : " ") + services;
        if (one.empty()) continue;
        if (!text.empty()) text += "; ";
        text += one;
    }
    return text;
}

class Lines {
   public:
    explicit Lines(std::string *out) : out_(out) {}

    // `what` `id` "`name`", each part only when there is one.
    void Head(std::string what, const std::string &id, const char *name) {
        if (!id.empty()) what += " " + id;
        if (name != nullptr) what += " \"" + Value(name) + "\"";
        *out_ += what + "\n";
    }
    // "  label value, label value": empty values left out, nothing when all are.
    void Detail(std::initializer_list<std::pair<std::string_view, std::string>> parts) {
        std::string line;
        for (const auto &[label, value] : parts) {
            if (value.empty()) continue;
            line += line.empty() ? "  " : ", ";
            line += label.empty() ? value : std::string(label) + " " + value;
        }
        if (!line.empty()) *out_ += line + "\n";
    }

    void Login(const char *type, const char *user, const char *password) {
        Detail({{"login", Value(type)}, {"user", Value(user)}, {"password", Value(password)}});
    }

   private:
    std::string *out_;
};

void AccessPoints(Lines &lines, const tqsCtxNapDef *nap) {
    for (; nap != nullptr; nap = nap->ptNext) {
        lines.Head("Access point", Value(nap->pszNapId), nap->pszName);
        // The address type names the address: "APN internet", "E164 +3161234".
        const std::string type = Value(nap->pszNapAddrType);
        lines.Detail({{"bearer", Chain(nap->ptBearer)},
                      {type.empty() ? "address" : type, Value(nap->pszNapAddress)},
                      {"DNS", Chain(nap->ptDnsAddr)}});
        for (const tqsCtxNapAuthInfo *a = nap->ptNapAuthInfo; a != nullptr; a = a->ptNext)
            lines.Login(a->pszAuthType, a->pszAuthName, a->pszAuthSecret);
    }
}

void Proxies(Lines &lines, const tqsCtxPxLogical *px) {
    for (; px != nullptr; px = px->ptNext) {
        lines.Head("Proxy", Value(px->pszProxyId), px->pszName);
        for (const tqsCtxPxPhysical *p = px->ptPxPhysical; p != nullptr; p = p->ptNext)
            lines.Detail({{"address", Value(p->pszPxAddr)},
                          {"port", Ports(p->ptPort)},
                          {"via access point", Chain(p->ptToNapId)}});
        lines.Detail({{"port", Ports(px->ptPort)}, {"start page", Value(px->pszStartPage)}});
        for (const tqsCtxPxAuthInfo *a = px->ptPxAuthInfo; a != nullptr; a = a->ptNext)
            lines.Login(a->pszPxAuthType, a->pszPxAuthId, a->pszPxAuthPw);
    }
}

void Applications(Lines &lines, const tqsCtxApplication *app) {
    for (; app != nullptr; app = app->ptNext) {
        std::string id = Value(app->pszAppId);
        for (const auto &[appid, name] : kAppNames) {
            if (app->pszAppId != nullptr && appid == app->pszAppId) id += std::string(" (") + name + ")";
        }
        lines.Head("Application", id, app->pszName);
        lines.Detail({{"provider", Value(app->pszProviderId)},
                      {"via proxy", Chain(app->ptToProxy)},
                      {"via access point", Chain(app->ptToNapId)},
                      {"address", Chain(app->ptToAddr)}});
        for (const tqsCtxAppAddr *a = app->ptAppAddr; a != nullptr; a = a->ptNext)
            lines.Detail({{"address", Value(a->pszAddr)}, {"port", Ports(a->ptPort)}});
        for (const tqsCtxAppAuth *a = app->ptAppAuth; a != nullptr; a = a->ptNext)
            lines.Detail({{"login", Value(a->pszAAuthLevel)},
                          {"type", Value(a->pszAAuthType)},
                          {"user", Value(a->pszAAuthName)},
                          {"password", Value(a->pszAAuthSecret)}});
        for (const tqsCtxResource *r = app->ptResource; r != nullptr; r = r->ptNext)
            lines.Detail({{"resource", Value(r->pszUri) +
                                           (r->pszName != nullptr ? " \"" + Value(r->pszName) + "\"" : "") +
                                           (r->pszStartPage != nullptr ? " (start page)" : "")}});
    }
}

template <typename T>
int Count(const T *record) {
    int n = 0;
    for (; record != nullptr; record = record->ptNext) ++n;
    return n;
}

}  // namespace

void WriteSummary(std::string *out, const tqsClientProvCtx &ctx) {
    Lines lines(out);
    AccessPoints(lines, ctx.ptNapDef);
    Proxies(lines, ctx.ptPxLogical);
    Applications(lines, ctx.ptApplication);
    for (const tqsCtxBootstrap *b = ctx.ptBootstrap; b != nullptr; b = b->ptNext) {
        lines.Head("Bootstrap", "", b->pszName);
        lines.Detail({{"proxy", Chain(b->ptProxyId)},
                      {"network", Chain(b->ptNetwork)},
                      {"provisioning URL", Value(b->pszProvUrl)}});
    }
    // What a settings dialog does not show, counted.
    const std::pair<int, const char *> others[] = {
        {ctx.ptClientIdent != nullptr, "client identity"},
        {Count(ctx.ptVenderConfig), "vendor configuration"},
        {Count(ctx.ptAccess), "access rule"},
        {Count(ctx.ptWifi), "Wi-Fi network"},
    };
    std::string also;
    for (const auto &[n, what] : others) {
        if (n == 0) continue;
        also += (also.empty() ? "Also: " : ", ") + std::to_string(n) + " " + what;
    }
    if (!also.empty()) *out += also + "\n";
}

}  // namespace cpdump
