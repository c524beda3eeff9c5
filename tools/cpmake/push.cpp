#include "push.h"

namespace cpmake {
namespace {

constexpr unsigned char kPduPush = 0x06;
constexpr unsigned char kLengthQuote = 0x1F;
constexpr unsigned char kConnectivityWbxml = 0xB6;
constexpr unsigned char kParamSec = 0x91;
constexpr unsigned char kParamMac = 0x92;

}  // namespace

Bytes WrapPush(const Bytes &body, const PushOptions &options) {
    Bytes value = {kConnectivityWbxml};
    // Room for all of it up front: gcc 12 at -O3 flags the inserts below with a
    // false -Wstringop-overflow otherwise.
    value.reserve(4 + options.mac.size());
    if (options.sec) value.insert(value.end(), {kParamSec, *options.sec});
    if (!options.mac.empty()) {
        value.push_back(kParamMac);
        value.insert(value.end(), options.mac.begin(), options.mac.end());
        value.push_back(0);
    }
    Bytes header;
    if (value.size() > 1) {
        header.push_back(kLengthQuote);
        AppendMbUint32(header, value.size());
    }
    header.insert(header.end(), value.begin(), value.end());

    Bytes pdu = {options.tid, kPduPush};
    AppendMbUint32(pdu, header.size());
    pdu.insert(pdu.end(), header.begin(), header.end());
    pdu.insert(pdu.end(), body.begin(), body.end());
    return pdu;
}

}  // namespace cpmake
