#!/usr/bin/env bash
# Shows groups while they happen: starts a broker on the loopback, replays a simulated square in real
# time as people messages, tracks them, and prints the events as they come:
# scripts/live-demo.sh [SECONDS] [PROGRAM], 60 seconds and the release build by default.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
program=${2:-}
rate=10  # messages per second

scripts/install.sh
if [ -z "$program" ]; then
  scripts/build.sh release --target grouptracker --target GroupTrackerProcessGroupTrackerPlugin
  program=build/release/bin/grouptracker
fi

work=$(mktemp -d)
started=()
finish() {
  [ ${#started[@]} -eq 0 ] || kill "${started[@]}" 2> /dev/null || true
  wait 2> /dev/null || true
  rm -rf "$work"
}
trap finish EXIT

port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
broker=mqtt://127.0.0.1:$port
printf 'listener %s 127.0.0.1\nallow_anonymous true\nset_tcp_nodelay true\nlog_dest none\n' "$port" > "$work/broker.conf"
PATH=$PATH:/usr/sbin mosquitto -c "$work/broker.conf" &
started+=($!)

"$program" simulate --seed 5 --people 30 --groups 2,3,2,4,3 --frames $((seconds * rate)) \
  --rate "$rate" --output "$work/scene" --quiet

# Each frame of the scene as a message, at its time.
replay() {
  python3 - "$work/scene/scene.jsonl" "$rate" << 'PYTHON'
import json, sys, time
start = time.time()
for number, line in enumerate(open(sys.argv[1])):
    scene = json.loads(line)
    places = {mobile["id"]: mobile["position"] for mobile in scene["mobiles"]}
    chains = {actor["id"]: actor["mobiles"] for actor in scene["actors"] if actor["mobiles"]}
    people = [{"id": f"guest-{person}", "x": places[chain[-1]][0], "y": places[chain[-1]][1]}
              for person, chain in chains.items()]
    due = start + number / float(sys.argv[2])
    time.sleep(max(0.0, due - time.time()))
    print(json.dumps({"time": round(due, 3), "frame": number + 1, "people": people}), flush=True)
PYTHON
}

echo "A square with 30 people for $seconds seconds; events as they come from $broker/groups/events:"
"$program" run "$broker/people" --publish "$broker/groups" --rate "$rate" --look-ahead 1 \
  --spool "$work/groups.spool" --diagnostics none --mobile-dump none &
tracker=$!
started+=("$tracker")
mosquitto_sub -h 127.0.0.1 -p "$port" -q 1 -t groups/events &
started+=($!)
sleep 1
replay | mosquitto_pub -h 127.0.0.1 -p "$port" -q 1 -t people -l
sleep 1
kill "$tracker"
wait "$tracker" || [ $? = 143 ]
echo "What holds at the end:"
mosquitto_sub -h 127.0.0.1 -p "$port" -C 1 -t groups/now
