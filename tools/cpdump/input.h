// Reading one push PDU from a file or standard input, as raw bytes or as hex text.
#ifndef CPDUMP_INPUT_H
#define CPDUMP_INPUT_H

#include <cstdint>
#include <string>
#include <vector>

namespace cpdump {

using Bytes = std::vector<unsigned char>;

// Inputs larger than this are refused: a push PDU travels in a few SMS and is
// never near it.
constexpr std::size_t kMaxInputSize = 16u * 1024u * 1024u;

enum class HexVerdict {
    kNotHex,  // some byte is outside the hex-text alphabet: the input is binary
    kHex,     // decoded into bytes
    kBroken,  // looks like hex text but cannot be decoded (odd digit count)
};

// Hex text: hex digit pairs, optionally separated by blanks, tabs, colons and
// line breaks, each group optionally starting with "0x". A binary push never
// looks like this: its second byte (the PDU type 0x06) and a WBXML body's
// first byte (the version, 0x01 to 0x03) are control bytes.
HexVerdict DecodeHexText(const Bytes &text, Bytes *out, std::string *error);

// Reads the whole of `path` ("-" for standard input). False with a message in
// `error` when it cannot be read.
bool ReadAll(const std::string &path, Bytes *out, std::string *error);

// Hex detection on what ReadAll gave for `path`: hex text decoded, anything
// else taken as binary. False when it looks like hex but is broken.
bool HexOrBinary(const Bytes &raw, const std::string &path, Bytes *out, std::string *error);

// SMS as a modem prints them: one TPDU in hex a line. Lines of modem talk
// ("+CMGL: ...", "AT+CMGL=4", "OK") and blank lines are passed over.
bool ReadTpduLines(const Bytes &text, std::vector<Bytes> *tpdus, std::string *error);

// The WSP push carried by the TPDUs of `text`, their segments joined. With
// `wap_ports_only`, each must be addressed to a WAP push port (what lets the
// form be recognised without being named).
bool PduFromSms(const Bytes &text, bool wap_ports_only, Bytes *pdu, std::string *error);

}  // namespace cpdump

#endif  // CPDUMP_INPUT_H
