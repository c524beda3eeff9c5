// The tools' command-line tests run a binary as a person does: one shell
// command line in a scratch folder, standard input from a string, the exit
// status and both output streams back.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace shellrun {

struct Result {
    int exit = -1;  // -1, or 128 + signal (the shell's way) when a crash ended it
    std::string out, err;
};

inline std::string ReadFile(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Runs `command` in this test binary's scratch folder, removed at exit.
inline Result Shell(const std::string &command, const std::string &in = "") {
    static const struct Dir {
        std::filesystem::path path = [] {
            char tmpl[] = "/tmp/cptool-test-XXXXXX";
            return std::filesystem::path(mkdtemp(tmpl));
        }();
        ~Dir() {
            std::error_code ec;
            std::filesystem::remove_all(path, ec);
        }
    } scratch;
    const std::filesystem::path &dir = scratch.path;
    std::ofstream(dir / "in", std::ios::binary) << in;
    const int status = std::system(("cd " + dir.string() + " && (" + command + ") <in >out 2>err").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(dir / "out"), ReadFile(dir / "err")};
}

}  // namespace shellrun
