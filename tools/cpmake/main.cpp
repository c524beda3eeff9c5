#include "cpmake.h"

int main(int argc, char **argv) {
    return cpmake::Main(argc, argv);
}
