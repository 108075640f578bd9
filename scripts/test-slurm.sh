#!/usr/bin/env bash
# Tries `--engine slurm` with a real Slurm: scripts/test-slurm.sh [PROGRAM [--batch]]. Starts a
# controller and two nodes on this machine, without systemd and without munge, in a folder of their own; makes
# 40 recordings while one of the nodes is killed, and without --batch searches for parameters, too; compares
# everything byte for byte with `--jobs 2`. Takes half a minute. Needs the packages slurmctld, slurmd and slurm-client.
set -euo pipefail
program=$(realpath "${1:-$(dirname "$0")/../build/release/bin/grouptracker}")
parameters=$(realpath "$(dirname "$0")/../samples/parameters/walking.txt")
work=$(mktemp -d)
export SLURM_CONF=$work/slurm.conf
PATH=$PATH:/usr/sbin:/sbin
left=left$$ right=right$$

# The processes that know the configuration of this run.
startedHere() {
  grep -lsz "^SLURM_CONF=$SLURM_CONF\$" /proc/[0-9]*/environ | cut -d/ -f3
}

# Everything that was started here: by the numbers that it wrote itself, then by its environment.
endSlurm() {
  local file process
  for file in "$work"/*.pid; do
    [ ! -e "$file" ] || kill "$(cat "$file")" 2> /dev/null || true
  done
  for ((i = 0; i < 50; ++i)); do
    ls "$work"/*.pid > /dev/null 2>&1 || break
    sleep 0.1
  done
  for process in $(startedHere); do
    kill -9 "$process" 2> /dev/null || true
  done
  rm -rf "$work"
}
trap endSlurm EXIT

# Three ports that nobody listens at.
freePorts() {
  python3 -c '
import socket
sockets = [socket.socket() for _ in range(3)]
for one in sockets:
    one.bind(("127.0.0.1", 0))
print(*(one.getsockname()[1] for one in sockets))'
}

writeConfiguration() {
  local controller first second
  read -r controller first second < <(freePorts)
  cat > "$SLURM_CONF" << END
ClusterName=test
SlurmctldHost=$(hostname -s)(127.0.0.1)
SlurmctldPort=$controller
AuthType=auth/none
AuthInfo=cred_expire=5
CredType=cred/none
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool.%n
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/%n.pid
SlurmctldLogFile=$work/slurmctld.log
SlurmdLogFile=$work/%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SlurmdTimeout=5
KillWait=1
ReturnToService=2
MailProg=/bin/true
NodeName=$left NodeHostName=$(hostname -s) NodeAddr=127.0.0.1 Port=$first CPUs=1
NodeName=$right NodeHostName=$(hostname -s) NodeAddr=127.0.0.1 Port=$second CPUs=1
PartitionName=all Nodes=ALL Default=YES
END
}

startSlurm() {
  mkdir "$work/state" "$work/spool.$left" "$work/spool.$right"
  slurmctld -c -f "$SLURM_CONF"
  slurmd -N "$left" -f "$SLURM_CONF"
  slurmd -N "$right" -f "$SLURM_CONF"
  for ((i = 0; i < 100; ++i)); do
    [ "$(sinfo -h -o %T -t idle -N | wc -l)" -lt 2 ] || return 0
    sleep 0.2
  done
  sinfo >&2
  return 1
}

# The processes that work for a node.
processesOf() {
  grep -lsz "^SLURMD_NODENAME=$1\$" /proc/[0-9]*/environ | cut -d/ -f3
}

# A node goes as when its power fails: first those who would tell.
killNode() {
  local process parents=()
  for process in $(processesOf "$1"); do
    # It may be gone by now.
    parents+=("$(awk '/^PPid/ { print $2 }' "/proc/$process/status" 2> /dev/null || echo none)")
  done
  kill -9 "$(cat "$work/$1.pid")"
  rm "$work/$1.pid"
  for process in "${parents[@]}" $(processesOf "$1"); do
    if grep -qsz -e "^SLURMD_NODENAME=$1\$" "/proc/$process/environ" ||
      [[ $(cat "/proc/$process/comm" 2> /dev/null) == slurmstepd* ]]; then
      kill -9 "$process" 2> /dev/null || true
    fi
  done
}

# Forty recordings of four scenes, one of which is damaged in the middle.
makeManifest() {
  local scene i
  for scene in 1 2 3 4; do
    "$program" simulate --people 15 --frames 150 --seed "$scene" --quiet --output "scene$scene"
  done
  sed -i '75s/.*/damaged/' scene4/scene.jsonl
  echo "name,input,truth,calibration,frames,events" > manifest.csv
  for ((i = 1; i <= 40; ++i)); do
    scene=scene$((i % 4 + 1))
    echo "r$i,$scene/scene.jsonl,$scene/truth.jsonl,$scene/calibration.yml,:$((150 - i / 4)),events.jsonl"
  done >> manifest.csv
}

# The rows of a summary without seconds and megabytes.
withoutCosts() {
  sed -E 's/,[0-9]+\.[0-9]{2},[0-9]+\.[0-9],/,/'
}

# What was made, and the summary, but for what tells of time and memory.
compare() {
  diff -r --exclude result.json "$1/recordings" "$2/recordings"
  diff <(withoutCosts < "$1/summary.csv") <(withoutCosts < "$2/summary.csv")
}

tryBatch() {
  local batch status=0
  "$program" batch manifest.csv --output here --jobs 2 --quiet 2> here.txt || [ $? = 6 ]
  "$program" batch manifest.csv --output there --engine slurm --chunk 4 --slurm-option mem=0 2> there.txt &
  batch=$!
  until [ "$(find there/recordings -name result.json 2> /dev/null | wc -l)" -ge 4 ] &&
    [ -n "$(processesOf "$right")" ]; do
    kill -0 "$batch"
    sleep 0.02
  done
  killNode "$right"
  echo "node killed after $(find there/recordings -name result.json | wc -l) recordings"
  wait "$batch" || status=$?
  [ "$status" = 6 ]
  cat there.txt
  grep -iq "requeue" slurmctld.log
  compare here there
  [ "$(grep -c ',done,' there/summary.csv)" = 30 ]
}

tryTune() {
  local scenes=(scene1/scene.jsonl:scene1/truth.jsonl scene2/scene.jsonl:scene2/truth.jsonl)
  local tune=("$program" tune "${scenes[@]}" --base "$parameters" --calibration scene1/calibration.yml
    --trials 12 --quiet)
  "${tune[@]}" --output here.txt --log here.csv --jobs 2 > here.out
  "${tune[@]}" --output there.txt --log there.csv --engine slurm --chunk 6 > there.out
  diff here.txt there.txt
  diff <(sort here.csv) <(sort there.csv)
  diff <(sed 's/here\.txt/there.txt/' here.out) there.out
}

writeConfiguration
startSlurm
cd "$work"
makeManifest
tryBatch
[ "${2:-}" = --batch ] || tryTune
echo "Slurm makes the same bytes as --jobs 2"
