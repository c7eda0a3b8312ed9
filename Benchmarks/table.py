# SPDX-License-Identifier: MIT
"""Makes one table of what the benchmarks measured: ours beside a peer, in one run.

    table.py FOLDER_OF_PROGRAMS JSON_FILE

Each figure is the best of its repetitions, which come in random order: the machine's clock wanders, so only what was
measured side by side compares. An aim that is missed is marked; it does not make the run fail.
"""

import json
import os
import subprocess
import sys

KIT = ["BaseSliderView", "SplitSliderView", "ProgressSliderView"]


def measure(program, ratio):
    """The best figures of all benchmarks at that many device pixels for a point, by name."""
    environment = dict(os.environ, QT_SCALE_FACTOR=str(ratio), LC_ALL="C.UTF-8")
    result = subprocess.run(
        [program, "--benchmark_repetitions=15", "--benchmark_enable_random_interleaving=true",
         "--benchmark_format=json"],
        env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=900)
    if result.returncode != 0:
        sys.exit(f"{program} failed:\n{result.stderr}")
    best = {}
    for run in json.loads(result.stdout)["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        name = "/".join(run["name"].split("/")[:2])
        for key, value in (("time", run["real_time"]), ("bytes", run.get("bytes")),
                           ("allocations", run.get("allocations"))):
            if value is not None:
                best[name, key] = min(value, best.get((name, key), value))
    return best


def rows_at(ratio, best):
    """Rows: name, ours, peer, what they are measured in, and the largest ratio that is aimed at (None: no aim)."""
    at = f"ratio {ratio}"
    rows = []
    for what, text, unit, aim in (("repaint", "full repaint", "time", 1.0), ("drag", "drag step", "time", 0.5)):
        for slider in KIT:
            if (f"{what}/{slider}", unit) not in best:
                continue  # the base class takes no events by itself
            rows.append((f"{text}, {slider} / QSlider, {at}", best[f"{what}/{slider}", unit],
                         best[f"{what}/QSlider", unit], "us", aim))
        rows.append((f"{text}, empty widget / QSlider, {at}", best[f"{what}/empty widget", unit],
                     best[f"{what}/QSlider", unit], "us", None))
    for slider in KIT:
        rows.append((f"memory, {slider} / QSlider, {at}", best[f"memory/{slider}", "bytes"],
                     best["memory/QSlider", "bytes"], "bytes", 2.0))
    for slider in KIT[1:]:
        rows.append((f"allocations in a drag step, {slider}, {at}", best[f"drag/{slider}", "allocations"], None, "", 0))
    return rows


def rows_of_dialogs(best):
    sheet, dialog = "ZRLoadingWndCtl", "QProgressDialog"
    pairs = [("opening and closing the progress sheet / QProgressDialog", f"open/{sheet}", f"open/{dialog}"),
             ("one update of the progress, painted / QProgressDialog", f"update/{sheet}", f"update/{dialog}"),
             ("longest wait of an event, 1,000 updates a second / QProgressDialog", f"wait/{sheet}", f"wait/{dialog}")]
    pairs += [(f"an alert with {count} actions / QMessageBox", f"alert {count}/ZRAlert", f"alert {count}/QMessageBox")
              for count in (1, 5, 50)]
    pairs.append(("loading ZRLoadingWndCtl.xib / a .ui file of the same", "load/ZRLoadingWndCtl.xib", "load/.ui file"))
    return [(name, best[ours, "time"], best[peer, "time"], "us", None) for name, ours, peer in pairs]


def rows_of_folders(best):
    def row(text, ours, peer, aim=None, times=1):
        return text, best[ours, "time"], times * best[peer, "time"], "us", aim
    rows = [row(f"restoring {count:,} folders / the system's calls", f"restore {count}/trusted folders",
                f"restore {count}/system calls", 2.0) for count in (100, 1000, 10000)]
    rows.append(row("restoring 10,000 folders / 100 times restoring 100", "restore 10000/trusted folders",
                    "restore 100/trusted folders", 1.25, 100))
    rows.append(row("launch with 10,000 folders / with none, until a click is answered", "launch/10000", "launch/0", 1.1))
    rows.append(row("longest wait of an event while 10,000 folders are restored / idle", "wait/10000", "wait/0"))
    rows.append(row("adding the 10,001st folder / storing the list anew", "add/trusted folder", "add/rewriting the list"))
    rows += [row(f"synchronize, {text} / write, flush, rename", f"synchronize {count}/user defaults",
                 f"synchronize {count}/plain file") for count, text in ((0, "one number"), (10000, "and 10,000 folders"))]
    rows.append(row("two changes of pane, painted / QStackedWidget", "switch/preferences window", "switch/QStackedWidget"))
    return rows


def main():
    folder, target = sys.argv[1:]
    table = []
    measured = [rows_at(ratio, measure(os.path.join(folder, "slider_benchmarks"), ratio)) for ratio in (1, 2)]
    measured.append(rows_of_dialogs(measure(os.path.join(folder, "dialog_benchmarks"), 1)))
    measured.append(rows_of_folders(measure(os.path.join(folder, "folder_benchmarks"), 1)))
    for rows in measured:
        for name, ours, peer, unit, aim in rows:
            quotient = ours / peer if peer else None
            reached = None if aim is None else (ours if quotient is None else quotient) <= aim
            table.append({"name": name, "ours": ours, "peer": peer, "unit": unit, "ratio": quotient, "aim": aim,
                          "reached": reached})
    with open(target, "w", encoding="utf-8") as file:
        json.dump(table, file, indent=1)

    width = max(len(row["name"]) for row in table)
    number = lambda value, unit: "" if value is None else f"{value:.0f} {unit}" if unit == "bytes" else f"{value:.2f} {unit}"
    print(f"{'name':{width}}  {'ours':>12}  {'peer':>12}  {'ratio':>6}  aim")
    for row in table:
        aim = "" if row["aim"] is None else f"<= {row['aim']:g}" + ("" if row["reached"] else "  missed")
        ratio = "" if row["ratio"] is None else f"{row['ratio']:.2f}"
        print(f"{row['name']:{width}}  {number(row['ours'], row['unit']):>12}  "
              f"{number(row['peer'], row['unit']):>12}  {ratio:>6}  {aim}".rstrip())


main()
