#!/usr/bin/env bash
# What is seen on a terminal: no binary data, a progress line that fits, completion of options.
#   terminal_use.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
needs_programs python3

"$tool" make-picture map map.bmp --width 60 --height 40 || fail "make-picture"
cat >terminal.py <<'CODE'
"""terminal.py COLUMNS STREAM COMMAND...: runs a command whose standard output or error is a terminal of so many
columns, and writes what the terminal gets. Without COMMAND a shell reads what is typed from standard input: each line
is typed without an end, and what follows in the line is shown after a mark."""
import fcntl, os, pty, select, struct, subprocess, sys, termios
columns, stream, command = int(sys.argv[1]), sys.argv[2], sys.argv[3:]
master, slave = pty.openpty()
fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack('HHHH', 24, columns, 0, 0))

def read(seconds=None):
    said = b''
    while select.select([master], [], [], seconds)[0]:
        try:
            more = os.read(master, 4096)
        except OSError:
            break
        if not more:
            break
        said += more
    return said

if command:
    child = subprocess.Popen(command, stdin=subprocess.DEVNULL, **{stream: slave})
    os.close(slave)
    sys.stdout.buffer.write(read())
    sys.exit(child.wait())
child = subprocess.Popen(['bash', '--norc', '--noprofile', '-i'], stdin=slave, stdout=slave, stderr=slave,
                         start_new_session=True, env={**os.environ, 'PS1': '', 'TERM': 'dumb', 'INPUTRC': '/dev/null'})
os.close(slave)
os.write(master, b'. ./completion; echo ready\n')
said = b''
while said.count(b'ready') < 2:
    said += read(0.1)
for line in sys.stdin:
    os.write(master, line.rstrip('\n').encode() + b'\t#')  # the mark shows that the key was used
    said = b''
    while b'#' not in said:
        said += read(0.1)
    print(said.decode().replace('\a', '').split('\n')[-1])
    os.write(master, b'\x15')  # empties the line
    while read(0.2):
        pass
child.kill()
CODE

# Binary data.
for command in "print map.bmp -o -" "make-picture map -" "print map.bmp -o - --format pdf"; do
  # shellcheck disable=SC2086
  said=$(python3 terminal.py 80 stdout "$tool" $command 2>&1)
  code=$?
  [ $code -eq 1 ] && [ "$said" = "qnvtool: -: standard output is a terminal; redirect it or name a file" ] ||
    fail "$command on a terminal: $code $said"
done

# Progress: these pages take longer than the second after which progress is shown.
for columns in 20 49 50 80; do
  python3 terminal.py $columns stderr "$tool" print map.bmp map.bmp map.bmp --dpi 900 --crop --compression 9 --jobs 1 \
    -o page.png >progress || fail "print at $columns columns"
  tr '\r' '\n' <progress | sed 's/\x1b\[K//g' | sort -u | grep . >lines
  grep -qE '^(\[#+\.*\] )? *[0-9]+%  page [123] of 3' lines || fail "$columns columns: no progress: $(cat lines)"
  awk -v columns=$columns 'length($0) >= columns { print; bad = 1 } END { exit bad }' lines || fail "$columns columns are too few"
  case $columns in
    20) ! grep -q '\[' lines || fail "a bar in 20 columns: $(cat lines)" ;;
    *) ! grep -v '^\[' lines || fail "no bar in $columns columns" ;;
  esac
  [ "$(tail -c 4 progress)" = $'\r\x1b[K' ] || fail "the last line is not erased: $(tail -c 10 progress | od -c)"
done

# Completion, in the shell that completes. A blank behind a word says that it is complete.
if [ "$(basename "$tool")" = qnvtool ]; then
  PATH=$(dirname "$tool"):$PATH
  "$tool" --generate completion >completion || fail "--generate completion"
  mkdir -p empty
  while IFS='|' read -r typed shown; do
    printf '%s\n' "$typed" >>typed
    printf '%s#\n' "$shown" >>expected
  done <<'WORDS'
qnvtool pri|qnvtool print 
qnvtool print --device=g|qnvtool print --device=gray 
qnvtool print --device=d|qnvtool print --device=dual 
qnvtool print --device c|qnvtool print --device color 
qnvtool print --device=scaled-|qnvtool print --device=scaled-gray:
qnvtool print --device scaled-|qnvtool print --device scaled-gray:
qnvtool print --device=x|qnvtool print --device=x
qnvtool print --paper=le|qnvtool print --paper=letter 
qnvtool print --printer ipps|qnvtool print --printer ipps://
qnvtool print map|qnvtool print map.bmp 
qnvtool make-picture ph|qnvtool make-picture photo 
WORDS
  python3 terminal.py 200 shell <typed >completed
  diff expected completed >differences || fail "completion: $(cat differences)"
fi
finish_test
