#include "cpdump.h"

// The library leaves some blocks allocated on purpose (the body copy of the
// push header, WI-FI and ROAMING records, ...); --leaks reports them. A
// sanitizer build must not turn that designed behaviour into a failing exit.
extern "C" const char *__asan_default_options() {
    return "detect_leaks=0";
}

int main(int argc, char **argv) {
    return cpdump::Main(argc, argv);
}
