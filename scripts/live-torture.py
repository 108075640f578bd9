#!/usr/bin/env python3
"""Shows that no line is lost on its way to a broker that is killed again and again.

Tracks people in real time and publishes their groups by a broker of its own; kills the broker (kill -9)
at random moments and keeps it away, kills the tracker now and then as well, and compares at the end what a
listener got with what the tracker wrote into files: every line and event once, in order, without a gap in the
counters. Fails, too, when the tracker does not keep up with the rate.

    scripts/live-torture.py build/release/bin/grouptracker --kills 10 --away 30 --tracker-kills 3
"""

import argparse
import json
import math
import os
import random
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time


MOST_LAG = 2.0  # seconds that the tracker may be behind at the end


def free_port():
    with socket.socket() as place:
        place.bind(("127.0.0.1", 0))
        return place.getsockname()[1]


class Broker:
    """A broker that forgets nobody who has subscribed."""

    def __init__(self, folder):
        self.port = free_port()
        self.conf = os.path.join(folder, "broker.conf")
        with open(self.conf, "w") as conf:
            conf.write(f"listener {self.port} 127.0.0.1\nallow_anonymous true\nuser root\n"
                       f"persistence true\npersistence_location {folder}/\nlog_dest none\n"
                       "max_queued_messages 0\nmax_inflight_messages 0\n")
        self.program = shutil.which("mosquitto", path=os.environ["PATH"] + ":/usr/sbin")
        self.start()

    def start(self):
        self.process = subprocess.Popen([self.program, "-c", self.conf])
        for _ in range(200):
            with socket.socket() as probe:
                if probe.connect_ex(("127.0.0.1", self.port)) == 0:
                    return
            time.sleep(0.05)
        sys.exit("the broker does not start")

    def kill(self):
        self.process.kill()
        self.process.wait()


class Tracker:
    """The program under test, which gets a message at each tick of a clock."""

    def __init__(self, options, folder, port):
        self.options, self.folder, self.port = options, folder, port
        self.frame = 0
        self.lives = 0
        self.lock = threading.Lock()
        self.is_ending = False
        self.lag = 0.0  # seconds by which the latest message was late
        self.start()
        self.thread = threading.Thread(target=self.feed)
        self.thread.start()

    def start(self):
        self.lives += 1
        self.process = subprocess.Popen(
            [self.options.program, "run", "-", "--publish", f"mqtt://127.0.0.1:{self.port}/groups",
             "--spool", os.path.join(self.folder, "groups.spool"), "--rate", str(self.options.rate),
             "--look-ahead", "1", "--output", os.path.join(self.folder, f"groups{self.lives}.jsonl"),
             "--events", os.path.join(self.folder, f"events{self.lives}.jsonl"),
             "--diagnostics", "none", "--mobile-dump", "none"], stdin=subprocess.PIPE)

    def kill(self):
        with self.lock:
            self.process.kill()
            self.process.wait()
            self.start()

    def message(self, due):
        people = []
        for person in range(self.options.people):
            pair, side = divmod(person, 2)
            guest = int(self.frame / self.options.rate + 7 * pair) // 20  # another every 20 s
            angle = 0.1 * pair + 0.02 * self.frame / self.options.rate
            people.append({"id": f"guest-{person}-{guest}", "x": round((5 + pair) * math.cos(angle), 3),
                           "y": round((5 + pair) * math.sin(angle) + 0.6 * side, 3)})
        text = {"time": round(due, 3), "frame": self.frame, "people": people}
        return (json.dumps(text) + "\n").encode()

    def feed(self):
        start = time.time()
        while not self.is_ending:
            self.frame += 1
            due = start + self.frame / self.options.rate
            time.sleep(max(0.0, due - time.time()))
            with self.lock:
                self.process.stdin.write(self.message(due))
                self.process.stdin.flush()
            self.lag = time.time() - due

    def end(self):
        self.is_ending = True
        self.thread.join()
        self.process.stdin.close()
        return self.process.wait(60)

    def lines(self, kind):
        """All whole lines of that kind that any life has written."""
        for life in range(1, self.lives + 1):
            with open(os.path.join(self.folder, f"{kind}{life}.jsonl")) as file:
                yield from (line.strip() for line in file if line.endswith("}\n"))


def parse():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("--kills", type=int, default=3, help="of the broker")
    parser.add_argument("--away", type=float, default=5.0, help="seconds without broker")
    parser.add_argument("--tracker-kills", type=int, default=1)
    parser.add_argument("--rate", type=float, default=25.0, help="frames per second")
    parser.add_argument("--people", type=int, default=50)
    parser.add_argument("--seed", type=int, default=1)
    return parser.parse_args()


def torment(options, broker, tracker):
    """Kills the broker so often, and the tracker at some moments between, broker there or not."""
    doomed = sorted(random.sample(range(options.kills), min(options.kills, options.tracker_kills)))
    for kill in range(options.kills):
        time.sleep(random.uniform(3.0, 8.0))
        broker.kill()
        if kill in doomed and kill % 2 == 0:
            tracker.kill()
        time.sleep(options.away)
        broker.start()
        if kill in doomed and kill % 2 == 1:
            time.sleep(random.uniform(0.0, 2.0))
            tracker.kill()
    time.sleep(7.0)  # longer than the tracker waits between attempts


def heard(path, topic):
    """All messages of a topic, in order."""
    with open(path) as file:
        words = (line.split(" ", 1) for line in file if line.endswith("}\n"))
        return [json.loads(payload) for where, payload in words if where == topic]


def await_all(path, tracker):
    """Waits until the listener has the last line."""
    last = json.loads(list(tracker.lines("groups"))[-1])["frame"]
    for _ in range(120):
        if any(line["frame"] == last for line in heard(path, "groups")[-2000:]):
            time.sleep(1.0)  # for its events
            return
        time.sleep(0.5)


def judge(messages, tracker, kind):
    first = {}
    for message in messages:
        if kind == "events":
            del message["time"]  # which the file does not tell
        first.setdefault(message.pop("sequence"), message)
    counters = list(first)
    published = [json.dumps(message, sort_keys=True) for message in first.values()]
    tracked = [json.dumps(json.loads(line), sort_keys=True) for line in tracker.lines(kind)]
    missing = set(tracked) - set(published)
    gaps = set(range(1, max(counters, default=0) + 1)) - set(counters)
    print(f"{kind}: {tracker.frame} frames sent, {len(tracked)} lines in files, {len(counters)} published, "
          f"{len(messages) - len(first)} of them repeated with the same counter; "
          f"{len(missing)} lines missing, {len(gaps)} gaps in the counters, "
          f"order {'kept' if counters == sorted(counters) else 'LOST'}")
    return not missing and not gaps and counters == sorted(counters) and len(tracked) > 0


def main():
    options = parse()
    random.seed(options.seed)
    with tempfile.TemporaryDirectory() as folder:
        broker = Broker(folder)
        path = os.path.join(folder, "heard.jsonl")
        with open(path, "w") as file:
            listener = subprocess.Popen(["mosquitto_sub", "-h", "127.0.0.1", "-p", str(broker.port),
                                         "-i", "listener", "-c", "-q", "1", "-F", "%t %p", "-t",
                                         "groups", "-t", "groups/events"],
                                        stdout=file, stderr=subprocess.DEVNULL)
        time.sleep(1.0)
        broker.process.send_signal(signal.SIGUSR1)  # has it write down who listens
        time.sleep(1.0)
        tracker = Tracker(options, folder, broker.port)
        try:
            torment(options, broker, tracker)
            status = tracker.end()
            await_all(path, tracker)
        finally:
            tracker.is_ending = True
            tracker.process.kill()
            listener.kill()
            broker.kill()
        is_good = status == 0 and tracker.lag < MOST_LAG
        print(f"the tracker ended with status {status}, {max(0.0, tracker.lag):.1f} s behind the rate")
        for kind, topic in (("groups", "groups"), ("events", "groups/events")):
            is_good = judge(heard(path, topic), tracker, kind) and is_good
    sys.exit(0 if is_good else 1)


if __name__ == "__main__":
    main()
