#include "verdict.h"

#include <cstdio>

#include "textout.h"

namespace cpdump {

std::string Hex(std::uint64_t v, int width) {
    char buf[24];
    std::snprintf(buf, sizeof buf, "0x%0*llX", width, static_cast<unsigned long long>(v));
    return buf;
}

std::string ExplainHeaderRejection(const Bytes &pdu) {
    if (pdu.size() < 2) {
        return "not a WSP push PDU (too short: " + std::to_string(pdu.size()) +
               (pdu.size() == 1 ? " byte)" : " bytes)");
    }
    if (pdu[1] != 0x06) return "not a WSP push PDU (PDU type " + Hex(pdu[1]) + ")";
    if (pdu.size() < 3) return "truncated push header (no header length)";
    if (pdu.size() < 3u + pdu[2]) {
        return "truncated push header (header length " + std::to_string(pdu[2]) + ", but only " +
               std::to_string(pdu.size() - 3) + " bytes follow it)";
    }
    std::size_t at = 3;
    if (at < pdu.size() && pdu[at] == 0x1F) at += 2;
    if (at >= pdu.size()) return "unknown content type (none before the end of the PDU)";
    const unsigned char b = pdu[at];
    if (b <= 0x1F || b >= 0x80) return "unknown content type (" + Hex(b) + ")";
    std::string text;
    for (std::size_t i = at; i < pdu.size() && pdu[i] != 0; ++i) text += static_cast<char>(pdu[i]);
    return "unknown content type (\"" + EscapeJson(text) + "\")";
}

std::string ExplainBodyRejection(const WbxmlFacts &facts, const Diagnosis &d, long body_start) {
    if (!facts.header_ok) return "malformed WBXML (the document header is cut short)";
    if (d.status == TQS_ERROR_WBXML_DIFFERENT_VERSION) {
        std::string why = "not a provisioning document (public id " + Hex(facts.public_id);
        if (facts.public_id == 0 && !facts.literal.empty())
            why += ", literal \"" + EscapeJson(facts.literal) + "\"";
        return why + ")";
    }
    if (d.status == TQS_ERROR_WBXML_UNKNOWN_ELEMENT || d.status == TQS_ERROR_WBXML_NO_MORE_DATA) {
        std::string where = "byte " + std::to_string(d.offset);
        if (body_start >= 0) where += " (PDU byte " + std::to_string(body_start + d.offset) + ")";
        if (d.at_end) return "malformed WBXML: the body ends at " + where + ", inside " + d.path;
        const std::string byte = Hex(d.byte) + (d.token != nullptr ? std::string(" (") + d.token + ")" : "");
        return "malformed WBXML at body " + where + ", in " + d.path + ": " + byte + " is read as " + d.what;
    }
    if (d.status != TQS_OK) {
        const char *name = tqsResultName(d.status);
        return "malformed WBXML (status " + (name != nullptr ? std::string(name) : Hex(d.status, 1)) + ")";
    }
    if (d.empty_document) return "empty provisioning document (no characteristics)";
    return "the document yields no provisioning context";
}

}  // namespace cpdump
