// Provisioning context: construction from the document tree, conversion
// rules and release.
#include "tqsClientProvCtx.h"
