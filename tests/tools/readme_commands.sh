#!/usr/bin/env bash
# Runs the commands of README.md's section on printing as they stand, in a folder that looks like a clone after ./demo.
#   readme_commands.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
set -e

mkdir -p build/linux-x64/bin out
ln -s "$tool" build/linux-x64/bin/qnvtool
ln -s "$root/examples" examples
"$tool" make-picture photo out/photo.bmp --width 90 --height 60
"$tool" make-picture map out/map.bmp --width 65 --height 44

sed -n '/^## Printing pages/,/^## The/ s/^    //p' "$root/README.md" >commands
[ "$(wc -l <commands)" -ge 5 ] || { echo "only $(wc -l <commands) commands in README.md" >&2; exit 1; }
set -x
. ./commands
{ set +x; } 2>/dev/null

for file in page-01.png page-02.png gray.pgm tags.png overlay.png image.png scaled.png each/photo.pdf each/sample.pdf; do
  [ -s "out/$file" ] || { echo "README.md's commands left no out/$file" >&2; exit 1; }
done
finish_test
