#include "fixtures.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace bench {
namespace {

#include "documents.inc"

std::vector<unsigned char> Bytes(const unsigned char *p, size_t n) {
    return {p, p + n};
}

Sample FromBody(std::string name, std::vector<unsigned char> body) {
    Sample s{std::move(name), WrapInPush(body), {}};
    s.body = std::move(body);
    return s;
}

std::vector<unsigned char> ReadFile(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

std::vector<Sample> BenchDocuments() {
    return {FromBody("small", Bytes(k_small, sizeof k_small)),
            FromBody("typical", Bytes(k_typical, sizeof k_typical)),
            FromBody("large", Bytes(k_large, sizeof k_large))};
}

std::vector<Sample> ScaledDocuments() {
    // large: WBXML header and the document tag with its version (7 bytes), 29
    // repetitions, the document's END.
    const size_t kHead = 7, kTail = 1, kRepeats = 29;
    const size_t unit = (sizeof k_large - kHead - kTail) / kRepeats;
    std::vector<Sample> out;
    for (size_t n : {1, 2, 4, 8, 16}) {
        std::vector<unsigned char> body(k_large, k_large + kHead + n * unit);
        body.push_back(k_large[sizeof k_large - 1]);
        out.push_back(FromBody("typical-x" + std::to_string(n), std::move(body)));
    }
    return out;
}

std::vector<unsigned char> WrapInPush(const std::vector<unsigned char> &body) {
    static const char kMac[] = "0123456789ABCDEF0123456789ABCDEF01234567";
    const unsigned char ctLen = 1 + 2 + 1 + (sizeof kMac - 1) + 1;  // B6, 91 81, 92, MAC, 00
    std::vector<unsigned char> pdu = {
        0x01, 0x06, static_cast<unsigned char>(2 + ctLen), 0x1F, ctLen, 0xB6, 0x91, 0x81, 0x92};
    for (char ch : kMac) pdu.push_back(static_cast<unsigned char>(ch));  // with its terminating zero
    pdu.insert(pdu.end(), body.begin(), body.end());
    return pdu;
}

std::vector<unsigned char> BodyOfPdu(const std::vector<unsigned char> &pdu) {
    if (pdu.size() < 3 || pdu.size() < 3u + pdu[2]) return {};
    return {pdu.begin() + 3 + pdu[2], pdu.end()};
}

std::vector<Sample> CorpusSamples(const std::string &dir) {
    namespace fs = std::filesystem;
    std::vector<Sample> out;
    std::error_code ec;
    for (const char *sub : {"", "own"}) {
        fs::path folder = fs::path(dir) / sub;
        std::vector<fs::path> files;
        for (const auto &entry : fs::directory_iterator(folder, ec))
            if (entry.is_regular_file()) files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const auto &path : files) {
            std::string name =
                std::string("corpus/") + (*sub ? std::string(sub) + "/" : "") + path.stem().string();
            if (path.extension() == ".wbxml") {
                out.push_back(FromBody(name, ReadFile(path)));
            } else if (path.extension() == ".pdu") {
                Sample s{name, ReadFile(path), {}};
                s.body = BodyOfPdu(s.pdu);
                out.push_back(std::move(s));
            }
        }
    }
    return out;
}

}  // namespace bench
