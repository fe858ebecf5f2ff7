#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when a C++ file of the tree is not formatted as .clang-format says, and names the places.
# clang-format -i mends them. The version is fixed, as others format a little differently.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh format
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format-14 --dry-run --Werror
echo "all C++ files are formatted"
