#!/usr/bin/env bash
# Prints a manifest as an array of a real Slurm, with examples/print_array.slurm: munged, slurmctld and slurmd of this
# script's own run on free ports of this machine, as the user who calls it, and end with it.
#   scripts/check_slurm.sh [BUILD-TREE]    build/linux-x64 by default
# Installs Slurm where it is missing.
here=$(dirname "$(dirname "$(realpath "${BASH_SOURCE[0]}")")")
"$here/scripts/setup.sh" slurm >&2 || exit 1
set -- "${1:-$here/build/linux-x64}/bin/qnvtool" "${1:-$here/build/linux-x64}/bin"
. "$here/tests/support/shell_test.sh"
PATH=$PATH:/usr/sbin

# An installed Slurm has its files elsewhere and is not touched.
stop() {
  local name
  for name in slurmd slurmctld munged; do
    [ -n "${daemon[$name]-}" ] || continue
    kill "${daemon[$name]}" 2>/dev/null
    wait "${daemon[$name]}" 2>/dev/null
  done
}
# shellcheck disable=SC2317
finish() {
  [ -z "${SLURM_CONF-}" ] || scancel --quiet --user="$(id -un)" 2>/dev/null
  stop
  clean_up
}
declare -A daemon=()
trap finish EXIT

begin() { # PROGRAM ARGUMENT...: it stays in the foreground
  "$@" >"$1.log" 2>&1 &
  daemon[$1]=$!
}
wait_for() { # SECONDS WHAT COMMAND...
  local i seconds=$1 what=$2
  shift 2
  for ((i = 0; i < seconds * 10; ++i)); do
    "$@" >/dev/null 2>&1 && return
    sleep 0.1
  done
  tail -n 5 ./*.log >&2
  fail "$what"
  finish_test
}

mkdir slurm slurm/state slurm/spool
chmod 755 "$work"
head -c 1024 /dev/urandom >slurm/key
chmod 600 slurm/key
begin munged --foreground --key-file "$work/slurm/key" --socket "$work/slurm/munge.socket" \
  --pid-file "$work/slurm/munged.pid" --log-file "$work/slurm/munged.log" --seed-file "$work/slurm/munge.seed"
wait_for 10 "munged" munge --no-input --socket "$work/slurm/munge.socket"

# Three tasks of two processors at a time, whatever this machine has.
start_slurm() {
  local port=$((20000 + RANDOM % 40000)) user
  user=$(id -un)
  cat >slurm/slurm.conf <<SETTINGS
ClusterName=check
SlurmctldHost=$(hostname -s)(127.0.0.1)
SlurmctldPort=$port
SlurmdPort=$((port + 1))
SlurmUser=$user
SlurmdUser=$user
AuthType=auth/munge
AuthInfo=socket=$work/slurm/munge.socket
CredType=cred/munge
StateSaveLocation=$work/slurm/state
SlurmdSpoolDir=$work/slurm/spool
SlurmctldPidFile=$work/slurm/slurmctld.pid
SlurmdPidFile=$work/slurm/slurmd.pid
SlurmctldLogFile=$work/slurmctld.log
SlurmdLogFile=$work/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SwitchType=switch/none
MpiDefault=none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerParameters=batch_sched_delay=0,sched_min_interval=0
SlurmdParameters=config_overrides
ReturnToService=2
NodeName=$(hostname -s) NodeAddr=127.0.0.1 CPUs=6
PartitionName=all Nodes=ALL Default=YES MaxTime=INFINITE State=UP
SETTINGS
  export SLURM_CONF=$work/slurm/slurm.conf
  begin slurmctld -D
  wait_for 20 "slurmctld" scontrol ping
  begin slurmd -D
  # shellcheck disable=SC2317
  is_idle() { [ "$(sinfo -h -o %T)" = idle ]; }
  wait_for 20 "slurmd" is_idle
}
start_slurm

# Texts and pictures; the folder of the program is not in PATH, as on most machines.
mkdir in out expected
for i in 1 2 3; do printf '# Text %s\n\nSome words of it.\n' $i >in/$i.txt; done
"$tool" make-picture photo in/photo.bmp --width 300 --height 200 || fail "make-picture"
for ((i = 1; i <= 11; ++i)); do
  ending=png
  [ $((i % 2)) -eq 0 ] || ending=pdf
  printf '{"input": ["in/%s.txt", "in/photo.bmp"], "output": "out/%s.%s"}\n' $((i % 3 + 1)) $i $ending
done >jobs.jsonl
"$tool" print --manifest jobs.jsonl --dpi 100 --report one.jsonl -q || fail "the manifest in one run"
rm -rf expected && mv out expected && mkdir out

script=$root/examples/print_array.slurm
dpi=100
export QNVTOOL=$tool
sbatch --test-only --array=1-3 "$script" jobs.jsonl --dpi 100 2>stderr || fail "sbatch --test-only: $(cat stderr)"
# shellcheck disable=SC2317
ended() { [ -z "$(squeue -h -j "$1" 2>/dev/null)" ]; }
states() { # JOB: of its tasks
  scontrol -o show job "$1" | sed 's/.* JobState=\([A-Z]*\) .*/\1/' | sort | uniq -c | tr -s ' \n' ' '
}
array() { # ARGUMENT...: runs the array to its end and prints its number
  local id
  id=$(sbatch --parsable "$@" "$script" jobs.jsonl --dpi $dpi) || fail "sbatch $*"
  wait_for 60 "the array $* does not end" ended "$id"
  echo "$id"
}

# What a line of a report says of the job, without times.
jobs_of() { sed -E 's/"(seconds|time)":[0-9.]+/"\1":0/g' "$@" | sort; }

first=$(array --array=1-3)
[ "$(states "$first")" = " 3 COMPLETED " ] || fail "the array: $(states "$first") $(cat ./qnvprint-*.log)"
diff -r out expected || fail "pages of the array"
cmp <(jobs_of one.jsonl) <(jobs_of jobs.report-?-of-3.jsonl) || fail "reports of the array"
for number in 1 2 3; do
  log=qnvprint-$first-$number.log
  grep -q '4 printed\|3 printed' "$log" || fail "task $number: $(cat "$log")"
done

# The same again prints nothing; pages that are missing are printed by the task whose they are.
touch -d '2001-01-01' out/*
rm out/5.pdf
second=$(array --array=1-3)
diff -r out expected || fail "pages after the second array"
[ "$(find out -newermt '2002-01-01' -type f)" = out/5.pdf ] || fail "printed again: $(find out -newermt 2002-01-01)"
[ "$(states "$second")" = " 3 COMPLETED " ] || fail "the second array: $(states "$second")"

# Other numbers of tasks, steps and limits: each still has its own share.
rm -rf out jobs.report* && mkdir out
third=$(array --array=0-9:4%2)
[ "$(states "$third")" = " 3 COMPLETED " ] || fail "an array in steps: $(states "$third")"
diff -r out expected || fail "pages of an array in steps"
[ "$(wc -l <jobs.report-1-of-3.jsonl)" -eq 4 ] || fail "the first share of an array in steps"

# A task that fails says so to Slurm, and leaves the others alone.
rm -rf out jobs.report* && mkdir out
printf '{"input": "in/none.txt", "output": "out/none.png"}\n' >>jobs.jsonl
fourth=$(array --array=1-3)
[ "$(states "$fourth")" = " 2 COMPLETED 1 FAILED " ] || fail "a failing task: $(states "$fourth")"
grep -qF 'none.txt' qnvprint-"$fourth"-3.log || fail "the log of a failing task"
diff -r out expected || fail "pages beside a failing task"

# What is no array, or only some tasks of one, is refused by the script. With their number those tasks are run again.
for arguments in '' --array=2 --array=1,3,4; do
  # shellcheck disable=SC2086
  refused=$(array $arguments)
  states "$refused" | grep -qE '^ [13] FAILED $' || fail "array $arguments: $(states "$refused")"
done
rm out/2-0?.png out/9.pdf
export SHARDS=3
some=$(array --array=2-3)
unset SHARDS
[ "$(states "$some")" = " 1 COMPLETED 1 FAILED " ] || fail "two tasks of three: $(states "$some")"
diff -r out expected || fail "pages of two tasks of three"

# An array that is cancelled leaves whole files; the same array again prints the others.
head -n 11 jobs.jsonl >all && mv all jobs.jsonl
rm -rf out expected jobs.report* && mkdir out
dpi=600
"$tool" print --manifest jobs.jsonl --dpi $dpi -q || fail "the manifest at $dpi dpi"
mv out expected && mkdir out
cancelled=$(sbatch --parsable --array=1-3%1 "$script" jobs.jsonl --dpi $dpi)
# shellcheck disable=SC2317
has_line() { [ -s jobs.report-1-of-3.jsonl ]; }
wait_for 30 "no pages at $dpi dpi" has_line
scancel "$cancelled"
wait_for 30 "the cancelled array does not end" ended "$cancelled"
printed=$(find out -type f | wc -l)
[ "$printed" -lt "$(find expected -type f | wc -l)" ] || fail "the array was cancelled too late"
for page in out/*; do cmp "$page" "expected/${page#out/}" || fail "a piece of $page"; done
touch -d '2001-01-01' out/*
array --array=1-3 >again
diff -r out expected || fail "pages after a cancelled array"
old=$(find out ! -newermt '2002-01-01' -type f | wc -l)
[ "$old" -ge 1 ] || fail "none of the $printed pages before the cancellation was kept"

finish_test
