// The measured inputs: the three benchmark documents and the corpus samples,
// each held both as a WSP push PDU and as its WBXML body.
#ifndef TQOMACP_BENCH_FIXTURES_H
#define TQOMACP_BENCH_FIXTURES_H

#include <string>
#include <vector>

namespace bench {

struct Sample {
    std::string name;                 // "typical", "corpus/sfos-sonera", ...
    std::vector<unsigned char> pdu;   // the whole push PDU handed to the parser
    std::vector<unsigned char> body;  // the WBXML body (what the peer decodes)
};

// small, typical and large, in that order.
std::vector<Sample> BenchDocuments();

// typical's content repeated n times for each n of {1, 2, 4, 8, 16}, named
// "typical-xN": cut from large (encoded without a string table, so every
// repetition is the same bytes and large itself is typical-x29).
std::vector<Sample> ScaledDocuments();

// Every top-level and own/ sample of the corpus directory (.wbxml bodies are
// wrapped with WrapInPush, .pdu files kept as they are); negative/ is left out.
// Empty when the folder is missing.
std::vector<Sample> CorpusSamples(const std::string &dir);

// Wraps a body the way the corpus's make-pdus.sh builds its .mac.pdu files:
// length-quoted content type 0xB6, SEC USERPIN, a 40-character MAC text.
std::vector<unsigned char> WrapInPush(const std::vector<unsigned char> &body);

// The body of a whole PDU: the bytes after the header block its length byte announces.
std::vector<unsigned char> BodyOfPdu(const std::vector<unsigned char> &pdu);

}  // namespace bench

#endif
