#!/usr/bin/env bash
# Builds the project and decodes the built-in sample push with cpdump.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset default >/dev/null
cmake --build --preset default -j"$(nproc)" --target cpdump >/dev/null
exec ./build/default/tools/cpdump/cpdump "$@"
