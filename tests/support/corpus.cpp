#include "corpus.h"

#include <glob.h>
#include <sys/stat.h>

#include <cstdlib>

#include <algorithm>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace corpus {

namespace {

bool IsDir(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The environment's TQOMACP_CORPUS_DIR, else the configured folder, else the
// first shared/corpus found walking up from the source tree (worktrees sit
// deeper than the main checkout).
std::string Find() {
    if (const char *env = std::getenv("TQOMACP_CORPUS_DIR"); env != nullptr && *env != '\0') return env;
    if (IsDir(TQOMACP_CORPUS_DIR)) return TQOMACP_CORPUS_DIR;
    std::string dir = TQOMACP_SOURCE_DIR;
    while (!dir.empty()) {
        if (IsDir(dir + "/shared/corpus")) return dir + "/shared/corpus";
        size_t slash = dir.find_last_of('/');
        if (slash == std::string::npos) break;
        dir.resize(slash);
    }
    return TQOMACP_CORPUS_DIR;
}

}  // namespace

std::string Dir() {
    static const std::string dir = Find();
    return dir;
}

std::string Path(const std::string &path) {
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
