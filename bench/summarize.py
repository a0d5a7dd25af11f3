#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints how ours compares with the peers, from the results of one run of scripts/bench.

    bench/summarize.py [--markdown] FILE.json...

A ratio is ours to the peer's, of the medians of the repetitions; below 1 ours is faster or
smaller. Behind it stands the range in which it falls nine times of ten when the repetitions are
drawn anew: where the target lies in that range, the run cannot tell, and the verdict has a "?". A limit without a
peer is for the fastest repetition.
"""
import argparse
import json
import random
import statistics
import sys

LENGTHS = ["8", "24", "200"]
STORES = ["10", "1000", "100000"]
FILES = ["1000", "100000", "1000000"]
THREADS = ["1", "2", "4"]
PERIODS = ["1", "10"]
PAIRS = ["0", "1"]
ENTRIES = ["10000", "100000"]
ITEMS = ["1", "100"]
TREE_PEERS = ["inotify", "inotifywait", "QFileSystemWatcher", "GFileMonitor"]
TREE_OURS = ["ula", "ula watcher"]
KEYS = {"10": "10", "1000": "1k", "10000": "10k", "100000": "100k", "1000000": "1M"}
# What waits for a disk, or for a program.
WAITING = ("replace", "processors", "memory/", "limits", "import/", "list/", "listFirst/",
           "getFromFile/", "addToFile/", "getFromService/", "addToService/", "showProgress/",
           "clearProgress/", "claim")
# The counters of a benchmark that is about more than one amount.
DISTRIBUTION = ("p50_ns", "p99_ns", "longest_ns", "drift_ns")
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}

# Topic, ours, peer (None: the target is an amount of ours), sizes, target (None: none set).
COMPARISONS = [
    ("copy a shared string", "copy/ula", "copy/counted", LENGTHS, 1.0),
    ("copy a shared string", "copy/ula", "copy/QByteArray", LENGTHS, None),
    ("copy a shared string", "copy/ula", "copy/std::string", LENGTHS, None),
    ("copy a literal", "copyLiteral/ula", None, ["24"], 3),
    ("substring", "substring/ula", None, LENGTHS, 20),
    ("find in a sorted map of 1,000", "find1000/ula", "find1000/std::string", LENGTHS, 1.0),
    ("copy a map of 1,000", "copyMap1000/ula", "copyMap1000/counted", LENGTHS, None),
    ("get int", "getInt/ula", "getInt/absl::btree_map", STORES, 1.0),
    ("get int", "getInt/ula", "getInt/QSettings", STORES, 0.5),
    ("get int", "getInt/ula", "getInt/GKeyFile", STORES, 0.5),
    ("get int", "getInt/ula", "getInt/std::map", STORES, None),
    ("get int", "getInt/ula", "getInt/absl::flat_hash_map", STORES, None),
    ("get string", "getString/ula", "getString/absl::btree_map", STORES, 1.0),
    ("get string", "getString/ula", "getString/QSettings", STORES, 0.5),
    ("get string", "getString/ula", "getString/GKeyFile", STORES, 0.5),
    ("get string", "getString/ula", "getString/std::map", STORES, None),
    ("get string", "getString/ula", "getString/absl::flat_hash_map", STORES, None),
    ("set int", "setInt/ula", "setInt/absl::btree_map", STORES, None),
    ("set int", "setInt/ula", "setInt/QSettings", STORES, None),
    ("load a file", "load/ula", "load/rapidxml+map", FILES, 0.8),
    ("load a file", "load/ula", "load/pugixml+map", FILES, None),
    ("load a file", "load/ula", "load/QSettings", FILES, None),
    ("load a file", "load/ula", "load/GKeyFile", FILES, None),
    ("save, no sync", "save/ula", "save/string+write", FILES, 0.6),
    ("replace durably", "replace/ula", "replace/QSaveFile", FILES[:2], 1.1),
    ("replace durably", "replace/ula", "replace/QSaveFile+folder", FILES[:2], None),
    ("load a property list", "loadList/ula", "loadList/libplist", FILES[:2], 0.5),
    ("load a property list", "loadList/ula", "loadList/GNUstep", FILES[:2], 1.1),
    ("save one, no sync", "saveList/ula", "saveList/libplist", FILES[:2], 0.5),
    ("save one, no sync", "saveList/ula", "saveList/GNUstep", FILES[:2], 1.1),
    ("text to objects", "readObjects/ula", "readObjects/GNUstep", FILES[:2], 1.1),
    ("objects to text", "writeObjects/ula", "writeObjects/GNUstep", FILES[:2], 1.1),
    ("emit to 0 slots", "emit/ula", "emit/snapshot", ["0"], 1.3),
    ("emit to 1 slot", "emit/ula", "emit/snapshot", ["1"], 1.3),
    ("emit to 8 slots", "emit/ula", "emit/snapshot", ["8"], 1.3),
    ("emit to 1 slot", "emit/ula", "emit/sigc", ["1"], None),
    ("emit to 1 slot", "emit/ula", "emit/Qt", ["1"], None),
    ("emit to 1 slot", "emit/ula", "emit/Signals2", ["1"], None),
    ("connect and disconnect", "connect/ula", "connect/Signals2", [""], None),
    ("bytes per key, filled", "bytes/ula", "bytes/QSettings", [""], None),
    ("bytes per key, filled", "bytes/ula", "bytes/std::map", [""], None),
    ("bytes per key, from a file", "bytesLoaded/ula", "bytes/QSettings", [""], None),
    ("allocations of a get int", "allocationsGetInt/ula", None, [""], 0),
    ("allocations of a get string", "allocationsGetString/ula", None, [""], 0),
    ("allocations of a copy", "allocationsCopy/ula", None, [""], 0),
    ("allocations of a substring", "allocationsSubstring/ula", None, [""], 0),
    ("allocations of an emit", "allocationsEmit/ula", None, [""], 0),
    ("a job queued and run", "post/ula", "post/uv", THREADS, 1.3),
    ("a job of five words", "postWords/ula", "postWords/uv", THREADS, 1.3),
    ("a job queued and run", "post/ula", "post/Qt", THREADS, 0.25),
    ("a job of five words", "postWords/ula", "postWords/Qt", THREADS, 0.25),
    ("a job queued and run", "post/ula", "post/eventfd", THREADS, None),
    ("a job of five words", "postWords/ula", "postWords/eventfd", THREADS, None),
    ("a job queued and run", "post/ula", "post/asio", THREADS, None),
    ("a job of five words", "postWords/ula", "postWords/asio", THREADS, None),
    ("a job queued and run", "post/ula", "post/GLib", THREADS, None),
    ("a job of five words", "postWords/ula", "postWords/GLib", THREADS, None),
    ("round trip, half below", "roundTrip.p50/ula", "roundTrip.p50/Qt", [""], 1.0),
    ("round trip, half below", "roundTrip.p50/ula", "roundTrip.p50/ping-pong", [""], 1.2),
    ("round trip, half below", "roundTrip.p50/ula", "roundTrip.p50/eventfd", [""], 1.2),
    ("round trip, half below", "roundTrip.p50/ula", "roundTrip.p50/uv", [""], None),
    ("round trip, half below", "roundTrip.p50/ula", "roundTrip.p50/asio", [""], None),
    ("round trip, half below", "roundTrip.p50/ula", "roundTrip.p50/GLib", [""], None),
    ("round trip, 99 % below", "roundTrip.p99/ula", "roundTrip.p99/Qt", [""], None),
    ("round trip, 99 % below", "roundTrip.p99/ula", "roundTrip.p99/ping-pong", [""], None),
    ("allocations of a queued job", "allocationsCallAsync/ula", None, [""], 1),
    ("allocations, job of five words", "allocationsCallAsync/ula, five words", None, [""], 1),
    ("bytes per pending job", "bytesPendingJob/ula", "bytesPendingJob/GLib", [""], None),
    ("timer off its period, half below", "timer.p50/ula", "timer.p50/asio", PERIODS, 1.2),
    ("timer off its period, half below", "timer.p50/ula", "timer.p50/timerfd", PERIODS, None),
    ("timer off its period, half below", "timer.p50/ula", "timer.p50/uv", PERIODS, None),
    ("timer off its period, half below", "timer.p50/ula", "timer.p50/GLib", PERIODS, None),
    ("timer off its period, half below", "timer.p50/ula", "timer.p50/Qt", PERIODS, None),
    ("timer drift per call", "timer.drift/ula", None, PERIODS, 1000),
    ("timer drift per call", "timer.drift/ula", "timer.drift/asio", PERIODS, None),
    ("timer drift per call", "timer.drift/ula", "timer.drift/uv", PERIODS, None),
    ("compare two names", "compareNames/ula", "compareNames/ICU", PAIRS, 0.35),
    ("compare two names", "compareNames/ula", "compareNames/QCollator", PAIRS, None),
    ("sort names", "sortNames/ula", "sortNames/ICU keys", ["100000"], 0.65),
    ("sort names", "sortNames/ula", "sortNames/QCollator keys", ["100000"], None),
    ("sort names", "sortNames/ula", "sortNames/bytes", ["100000"], None),
    ("list all children", "children/ula", "children/plain record", ENTRIES, 1.0),
    ("list all children", "children/ula", "children/QDir", ENTRIES, 0.667),
    ("list all children", "children/ula", "children/GIO", ENTRIES, 0.333),
    ("list the visible folders", "folders/ula", "children/plain record", ENTRIES, 1.0),
    ("list the visible folders", "folders/ula", "children/QDir", ENTRIES, 0.667),
    ("list the visible folders", "folders/ula", "children/GIO", ENTRIES, 0.333),
    ("has a visible folder", "contains/ula", "contains/QDir", ENTRIES, None),
    ("find the home folder", "homeFolder/ula", None, [""], 20_000),
    ("find the home folder", "homeFolder/ula", "homeFolder/Qt", [""], None),
    ("find the temporary folder", "temporaryFolder/ula", None, [""], 20_000),
    ("find the temporary folder", "temporaryFolder/ula", "temporaryFolder/Qt", [""], None),
    ("find the documents", "documents/ula", None, [""], 20_000),
    ("find the documents", "documents/ula", "documents/Qt", [""], None),
    ("find the documents", "documents/ula", "documents/GLib", [""], None),
    ("find the application support", "applicationSupport/ula", None, [""], 20_000),
    ("find the application support", "applicationSupport/ula", "applicationSupport/Qt", [""], None),
    ("find a program's resources", "resources/ula", None, [""], 20_000),
    ("find a program's frameworks", "frameworks/ula", None, [""], 20_000),
    ("find a program's folder", "execution/ula", None, [""], 20_000),
    ("read a shooting date", "readDate/ula", "readDate/fixed chrono", [""], 1.5),
    ("read a shooting date", "readDate/ula", "readDate/strptime", [""], None),
    ("read a shooting date", "readDate/ula", "readDate/sscanf", [""], None),
    ("read a shooting date", "readDate/ula", "readDate/atoi", [""], None),
    ("read a shooting date", "readDate/ula", "readDate/date", [""], None),
    ("read a shooting date", "readDate/ula", "readDate/QDateTime", [""], None),
    ("read a shooting date strictly", "readDateStrictly/ula", "readDate/fixed chrono", [""], None),
    ("read a shooting date strictly", "readDateStrictly/ula", "readDate/strptime", [""], None),
    ("the same with zone, to UTC", "readDateWithZone/ula", "readDate/strptime", [""], None),
    ("describe the processors", "processors/ula", None, [""], 5_000_000),
    ("describe the processors", "processors/ula", "processors/lscpu", [""], None),
    ("describe the graphics", "graphics/ula", None, [""], None),
    ("size of the memory", "memory/ula", "memory/free", [""], None),
    ("usable processors", "limits/ula", "limits/nproc", [""], None),
    ("name of the language", "language/ula", "language/Qt", [""], None),
    ("code of the language", "languageCode/ula", "languageCode/Qt", [""], None),
    ("code of the language", "languageCode/ula", "languageCode/GLib", [""], None),
    ("code of the country", "country/ula", "country/Qt", [""], None),
    ("release of the system", "release/ula", "release/Qt", [""], None),
    ("release of the system", "release/ula", "release/GLib", [""], None),
    ("write to being told, half below", "watchDelay.p50/ula", "watchDelay.p50/polled inotify", [""], 1.1),
    ("write to being told, half below", "watchDelay.p50/ula", "watchDelay.p50/inotify", [""], None),
    ("write to being told, half below", "watchDelay.p50/ula", "watchDelay.p50/QFileSystemWatcher", [""], None),
    ("write to being told, half below", "watchDelay.p50/ula", "watchDelay.p50/GFileMonitor", [""], None),
    ("write to being told, longest", "watchDelay.longest/ula", None, [""], 105e6),
    ("a second of 1,000 idle watches", "watchIdle/ula", None, ["1000"], 2e6),
    ("a second of 1,000 idle watches", "watchIdle/ula", "watchIdle/polled inotify", ["1000"], None),
    ("a second of 1,000 idle watches", "watchIdle/ula", "watchIdle/QFileSystemWatcher", ["1000"], None),
    ("a second of 1,000 idle watches", "watchIdle/ula", "watchIdle/GFileMonitor", ["1000"], None),
    *[("watch 20,000 folders, set-up", "treeSetUp/" + ours, "treeSetUp/" + peer, [""],
       1.1 if peer == "inotify" else None) for ours in TREE_OURS for peer in TREE_PEERS],
    *[("the same, resident memory", "bytesTree/" + name, None, [""],
       3e6 if name in TREE_OURS else None) for name in TREE_OURS + TREE_PEERS],
    *[("changes lost of 100,000 at once", "treeLost/" + name, None, [""],
       0 if name in TREE_OURS else None) for name in TREE_OURS + TREE_PEERS],
    *[("the last of them told after", "treeLag/" + name, None, [""], None)
      for name in TREE_OURS + TREE_PEERS],
    *[("a single one told, half below", "treeDelay/" + name, None, [""], None)
      for name in TREE_OURS + TREE_PEERS],
    *[("the same, beyond 0.1 s", "treeDelayBeyond/" + ours, "treeDelay/inotify", [""], 1.3)
      for ours in TREE_OURS],
    ("sort names, comparing", "sortNames/ula compare", "sortNames/ICU compare", ["100000"], None),
    ("screen at a point", "screenAtPoint/ula", None, ["2"], 20000),
    ("screen at a point", "screenAtPoint/ula", "screenAtPoint/QGuiApplication", ["2"], None),
    ("working area at a point", "workingArea/ula", None, ["2"], 20000),
    ("all screens", "allScreens/ula", None, ["2"], 20000),
    ("number of a display", "displayID/ula", None, ["2"], 20000),
    ("get from the Secret Service", "getFromService/ula", "getFromService/libsecret", [""], 1.2),
    ("get from the Secret Service", "getFromService/ula", "getFromService/QtKeychain", [""], 1.0),
    ("add to the Secret Service", "addToService/ula", "addToService/libsecret", [""], None),
    ("add to the Secret Service", "addToService/ula", "addToService/QtKeychain", [""], None),
    ("get from the encrypted file", "getFromFile/ula", None, ITEMS, 200_000),
    ("add to it, durably", "addToFile/ula", None, ITEMS, 5_000_000),
    ("progress on the icon, an update", "showProgress/ula", None, [""], 5_000_000),
    ("progress on the icon, clearing", "clearProgress/ula", None, [""], None),
    ("the only one of 500 processes", "isUniqueAppInstance/ula", None, [""], 5_000_000),
    ("the only one of 500 processes", "isUniqueAppInstance/ula", "isUniqueAppInstance/links", [""], None),
    ("claim a guard, first", "claimFirst/ula", None, [""], None),
    ("claim a guard, second", "claimSecond/ula", None, [""], None),
    ("import, on the disk when done", "import/ula", "import/cp", ["500"], 1.2),
    ("import, on the disk when done", "import/ula", "import/cp+sync", ["500"], None),
    ("import, on the disk when done", "import/ula", "import/gphoto2", ["500"], 1.0),
    ("list a card", "list/ula", "list/gphoto2", ["10000"], 1.0),
    ("the first part of that list", "listFirst/ula", None, ["10000"], 1e9),
]


def amount(entry):
    """What the benchmark is about: a counter, or else nanoseconds: of the processor, which a busy
    machine disturbs less, but of the clock where a disk or a program is waited for."""
    for counter in ("bytes_per_key", "bytes_per_job", "allocations_per_call", "ns_per_job",
                    "ns_per_second"):
        if counter in entry:
            return entry[counter]
    clock = "real_time" if entry["name"].startswith(WAITING) else "cpu_time"
    return entry[clock] * NANOSECONDS[entry["time_unit"]]


def tree_amounts(task, who, entry):
    """Of one run with a tree. What is told without a loss has a delay."""
    if task == "setUp":
        return [("treeSetUp/" + who, entry["setup_ns"]),
                ("bytesTree/" + who, entry["bytes_resident"])]
    lost = 1 - entry["covered"]
    if task == "burst":
        return [("treeLost/" + who, lost), ("treeLag/" + who, entry["lag_ns"])]
    if lost > 0:
        return []
    return [("treeDelay/" + who, entry["p50_ns"]),
            ("treeDelayBeyond/" + who, entry["p50_ns"] - 0.1e9)]


def named_amounts(entry):
    """The amounts under their names; several where the benchmark is about a distribution."""
    name = entry["name"].split("/iterations:")[0].replace("/real_time", "")
    if name.startswith("watchTree."):
        return tree_amounts(*name.removeprefix("watchTree.").split("/"), entry)
    distribution = [counter for counter in DISTRIBUTION if counter in entry]
    if not distribution:
        return [(name, amount(entry))]
    topic, rest = name.split("/", 1)
    return [(f"{topic}.{counter[:-3]}/{rest}", entry[counter]) for counter in distribution]


def read(paths):
    """The amounts of all repetitions by the benchmark's name, and what failed."""
    amounts, errors = {}, []
    for path in paths:
        with open(path, encoding="utf-8") as file:
            entries = json.load(file)["benchmarks"]
        for entry in entries:
            if entry.get("error_occurred"):
                errors.append(f"{entry['name']}: {entry['error_message']}")
            elif entry.get("run_type") == "iteration":
                for name, value in named_amounts(entry):
                    amounts.setdefault(name, []).append(value)
    return amounts, sorted(set(errors))


def spread(ours, peers, rounds=2000):
    """The 5 % and the 95 % quantile of the ratio when the repetitions are drawn anew."""
    draw = random.Random(1)

    def median(values):
        return statistics.median(draw.choices(values, k=len(values)))

    ratios = sorted(median(ours) / median(peers) for _ in range(rounds))
    return ratios[rounds // 20], ratios[-rounds // 20]


def verdict(value, low, high, target):
    if target is None:
        return ""
    word = "met" if value <= target else "missed"
    return word + (" ?" if low <= target < high else "")


def show(name, value):
    if name.startswith("bytesTree"):
        return f"{value / 1e6:.2f} MB"
    if name.startswith("treeLost"):
        return f"{100 * value:.3g} %"
    if name.startswith("bytes"):
        return f"{value:.0f} B"
    if name.startswith("allocations"):
        return f"{value:g}"
    for unit, factor in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if value >= factor:
            return f"{value / factor:.3g} {unit}"
    return f"{value:.3g} ns"


def size_label(name, size):
    if name.startswith(("copy", "substring", "find1000")):
        return size + " bytes"
    if name.startswith("post"):
        return size + (" thread" if size == "1" else " threads")
    if name.startswith("timer"):
        return size + " ms"
    if name.startswith(("children", "folders", "contains")):
        return KEYS[size] + " entries"
    if name.startswith(("tree", "bytesTree")):
        return name.split("/")[1]
    if name.startswith("watch"):
        return KEYS[size] + " files" if size else ""
    if name.startswith(("getFromFile", "addToFile")):
        return size + (" item" if size == "1" else " items")
    if name.startswith("import/"):
        return size + " pictures"
    if name.startswith(("list/", "listFirst/")):
        return KEYS[size] + " files"
    if name.startswith("compareNames"):
        return ["drawn at random", "neighbours"][int(size)]
    if name.startswith("sortNames"):
        return "100k names"
    return "" if name.startswith("emit") or not size else KEYS[size] + " keys"


def row(amounts, comparison, size):
    topic, ours, peer, _, target = comparison
    suffix = "/" + size if size else ""
    if ours + suffix not in amounts or (peer and peer + suffix not in amounts):
        return None
    mine = amounts[ours + suffix]
    value = statistics.median(mine)
    cells = [topic, size_label(ours, size), show(ours, value)]
    if peer is None:
        # No peer shares the disturbance of a busy machine, which can only add: the best counts.
        # Nothing excuses a loss.
        best = max(mine) if topic.startswith("changes lost") else min(mine)
        limit = "" if target is None else f"≤ {show(ours, target)}"
        return cells[:2] + [show(ours, best), "", "", "", limit, verdict(best, best, best, target)]
    theirs = amounts[peer + suffix]
    other = statistics.median(theirs)
    low, high = spread(mine, theirs)
    return cells + [f"{peer.split('/', 1)[1]} {show(peer, other)}", f"{value / other:.2f}",
                    f"{low:.2f}-{high:.2f}", "" if target is None else f"≤ {target:g}",
                    verdict(value / other, low, high, target)]


def without_row(amounts):
    """The names of what was measured and stands in no comparison."""
    shown = {name + ("/" + size if size else "") for _, ours, peer, sizes, _ in COMPARISONS
             for size in sizes for name in (ours, peer) if name}
    return sorted(amounts.keys() - shown)


HEAD = ["topic", "size", "ours", "peer", "ratio", "range", "target", ""]


def print_table(rows, markdown):
    if markdown:
        print("| " + " | ".join(HEAD) + " |")
        print("|---" * len(HEAD) + "|")
        for cells in rows:
            print("| " + " | ".join(cells) + " |")
        return
    widths = [max(len(cells[i]) for cells in [HEAD] + rows) for i in range(len(HEAD))]
    for cells in [HEAD] + rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(cells, widths)).rstrip())


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--markdown", action="store_true", help="a table for docs/performance.md")
    parser.add_argument("files", nargs="+", metavar="FILE.json")
    options = parser.parse_args()
    amounts, errors = read(options.files)
    rows = [row(amounts, comparison, size) for comparison in COMPARISONS for size in comparison[3]]
    rows = [cells for cells in rows if cells]
    print_table(rows, options.markdown)
    verdicts = [cells[-1] for cells in rows if cells[-1]]
    missed = sum(word.startswith("missed") for word in verdicts)
    print(f"\n{len(verdicts) - missed} of {len(verdicts)} targets met")
    if rest := without_row(amounts):
        print("measured, but in no row: " + ", ".join(rest))
    for error in errors:
        print("failed: " + error, file=sys.stderr)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
