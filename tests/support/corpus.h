// Access to the sample corpus (TQOMACP_CORPUS_DIR): read a sample's bytes and
// list samples by glob pattern. Relative paths and patterns are taken from the
// corpus folder, e.g. corpus::Read("pdus/cpc-email.pdu"), corpus::List("*.pdu").
#ifndef TQOMACP_TESTS_SUPPORT_CORPUS_H
#define TQOMACP_TESTS_SUPPORT_CORPUS_H

#include <string>
#include <vector>

namespace corpus {

// The corpus folder, as configured (TQOMACP_CORPUS_DIR).
std::string Dir();
// The whole file; a missing or unreadable file records a test failure and gives an empty vector.
std::vector<unsigned char> Read(const std::string &path);
// Absolute paths matching the pattern, sorted; empty when none match.
std::vector<std::string> List(const std::string &pattern);

}  // namespace corpus

#endif  // TQOMACP_TESTS_SUPPORT_CORPUS_H
