#!/usr/bin/env bash
# One manifest on several machines: GNU parallel over ssh, with two servers of this test's own on free ports of this
# machine, and the script for Slurm arrays.
#   print_farm.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
declare -A server_of=()
stop() { # HOST: ends its server
  kill "${server_of[$1]}" 2>/dev/null
  wait "${server_of[$1]}" 2>/dev/null
  unset "server_of[$1]"
}
# shellcheck disable=SC2317
finish() {
  local host
  for host in "${!server_of[@]}"; do stop "$host"; done
  clean_up
}
trap finish EXIT

needs_programs parallel ssh ssh-keygen /usr/sbin/sshd

mkdir in out
for i in 1 2 3; do printf 'Text number %s.\n' $i >in/$i.txt; done
for ((i = 1; i <= 13; ++i)); do
  printf '{"input": "in/%s.txt", "output": "out/%s.pdf", "dpi": %s}\n' $((i % 3 + 1)) $i $((100 + i))
done >jobs.jsonl
small=(--paper 80x60mm --margin 5)
"$tool" print --manifest jobs.jsonl "${small[@]}" -q || fail "the manifest on this machine"
mv out expected

lines_of() { # REPORT: the lines of the manifest in it
  sed 's/.*"line":\([0-9]*\),.*/\1/' "$1" | sort -n | tr '\n' ' '
}

# A Slurm array of five tasks that count from 0 in steps of 2; each prints its share, and again nothing.
mkdir out
for ((task = 0; task <= 8; task += 2)); do
  for printed in 1 0; do
    SLURM_ARRAY_TASK_ID=$task SLURM_ARRAY_TASK_MIN=0 SLURM_ARRAY_TASK_MAX=8 SLURM_ARRAY_TASK_STEP=2 \
      SLURM_ARRAY_TASK_COUNT=5 SLURM_CPUS_PER_TASK=2 QNVTOOL=$tool \
      bash "$root/examples/print_array.slurm" jobs.jsonl "${small[@]}" >stdout 2>stderr ||
      fail "task $task of the array: $(cat stderr)"
    share=$((task < 6 ? 3 : 2))
    grep -qF "$share jobs: $((share * printed)) printed, $((share - share * printed)) printed before" stdout ||
      fail "task $task printed: $(tail -n 1 stdout)"
  done
done
[ "$(lines_of jobs.report-2-of-5.jsonl)" = "2 7 12 " ] || fail "task 2 of the array: $(cat jobs.report-2-of-5.jsonl)"
[ "$(lines_of jobs.report-5-of-5.jsonl)" = "5 10 " ] || fail "task 5 of the array: $(cat jobs.report-5-of-5.jsonl)"
diff -r out expected || fail "pages of the array"
SLURM_ARRAY_TASK_ID=1 QNVTOOL=$tool bash "$root/examples/print_array.slurm" jobs.jsonl >stdout 2>stderr &&
  fail "a job that is no array"
grep -qF 'sbatch --array=1-N' stderr || fail "a job that is no array: $(cat stderr)"
# Some tasks of an array again, which have to know how many there were.
some_tasks() { # MIN MAX COUNT ID
  SLURM_ARRAY_TASK_MIN=$1 SLURM_ARRAY_TASK_MAX=$2 SLURM_ARRAY_TASK_COUNT=$3 SLURM_ARRAY_TASK_ID=$4 QNVTOOL=$tool \
    bash "$root/examples/print_array.slurm" jobs.jsonl "${small[@]}" >stdout 2>stderr
}
for list in '2 2 1 2' '1 5 3 5' '2 3 2 3'; do
  # shellcheck disable=SC2086
  some_tasks $list && fail "some tasks of an array: $list"
  grep -qF 'SHARDS=N sbatch --array=LIST' stderr || fail "some tasks of an array: $list: $(cat stderr)"
done
rm out/2.pdf
SHARDS=5 some_tasks 2 2 1 2 || fail "the second of five tasks"
grep -qF '3 jobs: 0 printed, 3 printed before' stdout && fail "the second of five tasks printed before"
[ "$(lines_of jobs.report-2-of-5.jsonl)" = "2 2 7 12 " ] || fail "the second of five: $(cat jobs.report-2-of-5.jsonl)"
diff -r out expected || fail "pages of the second of five tasks"
rm -rf out jobs.report* && mkdir out

# Two ssh servers, as two machines that share a folder. Run by root, the server wants a folder that the service makes.
[ "$(id -u)" -ne 0 ] || mkdir -p /run/sshd
ssh-keygen -q -t ed25519 -N '' -f key || fail "ssh-keygen"
ssh-keygen -q -t ed25519 -N '' -f host_key || fail "ssh-keygen"
cp key.pub authorized_keys
start() { # HOST
  local attempt port wait
  for ((attempt = 0; attempt < 20; ++attempt)); do
    port=$((20000 + RANDOM % 40000))
    cat >"sshd_$1" <<SETTINGS
ListenAddress 127.0.0.1:$port
HostKey $work/host_key
AuthorizedKeysFile $work/authorized_keys
PidFile none
StrictModes no
PermitRootLogin prohibit-password
PasswordAuthentication no
KbdInteractiveAuthentication no
SetEnv QNV_HOST=$1
SETTINGS
    /usr/sbin/sshd -D -e -f "sshd_$1" 2>"sshd_$1.log" &
    server_of[$1]=$!
    for ((wait = 0; wait < 100; ++wait)); do
      if grep -q 'Server listening' "sshd_$1.log"; then
        printf 'Host %s\n  HostName 127.0.0.1\n  Port %s\n' "$1" "$port" >>hosts.conf
        return 0
      fi
      kill -0 "${server_of[$1]}" 2>/dev/null || break
      sleep 0.05
    done
    stop "$1"
  done
  echo "no ssh server: $(cat "sshd_$1.log")" >&2
  exit 1
}
start left
start right
cat >ssh.conf <<SETTINGS
Include $work/hosts.conf
Host *
  IdentityFile $work/key
  IdentitiesOnly yes
  StrictHostKeyChecking no
  UserKnownHostsFile $work/known_hosts
  LogLevel ERROR
SETTINGS

# Tells which machine printed.
cat >qnvtool <<SCRIPT
#!/usr/bin/env bash
echo "\${QNV_HOST:-none}" >>"$work/hosts.log"
exec "$tool" "\$@"
SCRIPT
chmod +x qnvtool
export PARALLEL_HOME=$work/parallel
mkdir -p "$PARALLEL_HOME"
farm() { # OPTION...: four shares on the two machines, one at a time on each
  rm -f hosts.log
  parallel --will-cite --ssh "ssh -F $work/ssh.conf" -S 1/left,1/right --jobs 1 --workdir "$work" --retries 2 "$@" \
    ./qnvtool print --manifest jobs.jsonl --shard '{}/4' --report 'report-{}.jsonl' --keep-going "${small[@]}" \
    ::: 1 2 3 4 >stdout 2>stderr </dev/null || fail "parallel $*: $(cat stderr)"
}
printed() { grep -oE '[0-9]+ jobs: [0-9]+ printed' stdout | awk '{ sum += $3 } END { print sum + 0 }'; }

farm
[ "$(printed)" -eq 13 ] || fail "the farm printed $(printed) jobs: $(cat stdout)"
[ "$(sort -u hosts.log | tr '\n' ' ')" = "left right " ] || fail "printed by $(sort hosts.log | uniq -c)"
[ "$(lines_of report-1.jsonl)" = "1 5 9 13 " ] || fail "share 1: $(cat report-1.jsonl)"
diff -r out expected || fail "pages of the farm"
farm
[ "$(printed)" -eq 0 ] || fail "the farm printed $(printed) jobs again"
[ "$(wc -l <hosts.log)" -eq 4 ] || fail "$(wc -l <hosts.log) shares were looked at again"

# A machine is lost: the other one prints what is missing.
stop right
rm out/2.pdf out/3.pdf out/7.pdf
farm --filter-hosts
[ "$(printed)" -eq 3 ] || fail "after a loss $(printed) jobs were printed: $(cat stdout stderr)"
[ "$(sort -u hosts.log)" = left ] || fail "printed by $(sort hosts.log | uniq -c)"
diff -r out expected || fail "pages after a loss"
finish_test
