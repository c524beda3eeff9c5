// Printing the library's records: the provisioning context as JSON and the
// document tree as provisioning XML. Both walk the records' field lists
// (tqsClientProvFields.h), so the key order is the record's field order.
#ifndef CPDUMP_RECORDS_H
#define CPDUMP_RECORDS_H

#include <string>

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxml.h"
#include "textout.h"

namespace cpdump {

// The eight chains of the root, each under its characteristic name, every
// record with its strings, string lists, child records and the values the
// application receives through the composite getters ("app").
void WriteContextJson(JsonWriter &json, const tqsClientProvCtx &ctx);

// <wap-provisioningdoc> with one <characteristic> per tree record and one
// <parm> per filled field (per item for lists), nested as in the document.
void WriteTreeXml(std::string *out, const tqsWapDoc *doc);

}  // namespace cpdump

#endif  // CPDUMP_RECORDS_H
