#!/bin/bash
# SPDX-License-Identifier: MIT
# Measures the library beside its peers, what it takes of memory on every target, and of instructions
# on the ARMs.
#
#   scripts/benchmark.sh [--twice] [Google Benchmark options]
#
# Installs what is missing, but for Qt, which is large: qtbase5-dev.
set -euo pipefail
cd "$(dirname "$0")/.."
sizes=$(scripts/check-code-size.sh) || { echo "$sizes"; exit 1; }
build/bench/bench/mm2d_bench "$@"
echo
echo "$sizes"
echo
scripts/count-instructions.sh
