#!/usr/bin/env bash
# Prints the levels of row kernels that src/raster/rows/levels.h lists, lowest first, one a line: its name, a tab, and
# the compiler options of its files.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# Other processors have a list of their own that repeats the level plain.
sed -n 's/^.*X(\([a-z0-9]*\), k[A-Za-z0-9]*, "\([^"]*\)".*/\1\t\2/p' src/raster/rows/levels.h | awk '!seen[$1]++'
