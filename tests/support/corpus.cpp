#include "corpus.h"

#include <glob.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace corpus {

std::string Dir() {
    return TQOMACP_CORPUS_DIR;
}

static std::string Path(const std::string &path) {
    if (!path.empty() && path[0] == '/') return path;
    return Dir() + "/" + path;
}

std::vector<unsigned char> Read(const std::string &path) {
    std::ifstream in(Path(path), std::ios::binary);
    if (!in) {
        ADD_FAILURE() << "cannot read corpus file " << Path(path);
        return {};
    }
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> List(const std::string &pattern) {
    std::vector<std::string> paths;
    glob_t found{};
    if (glob(Path(pattern).c_str(), 0, nullptr, &found) == 0) {
        for (size_t i = 0; i < found.gl_pathc; ++i) paths.emplace_back(found.gl_pathv[i]);
    }
    globfree(&found);
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace corpus
