// The cpmake program: options, encoding, the push and the output forms.
#ifndef CPMAKE_CPMAKE_H
#define CPMAKE_CPMAKE_H

namespace cpmake {

// Runs the whole program; returns the exit status.
int Main(int argc, char **argv);

}  // namespace cpmake

#endif  // CPMAKE_CPMAKE_H
