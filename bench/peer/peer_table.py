#!/usr/bin/env python3
"""Turns the JSON output of peer_bench into Markdown tables.

The first table has one row per workload: knmime's throughput over the fastest peer's (above
1: knmime is faster), which peer that is, and knmime's throughput over a memcpy of the same
input measured in the same run; rows marked "forgiving" are knmime's forgiving reader and
decoders on the same workload. Then the growth from 16 to 64 nested levels, the allocation
counts, every throughput in MB/s (10^6 input bytes per second), and any library whose result
failed its check (those have no figures). With repetitions, the medians are used.

    peer_bench --benchmark_repetitions=3 --benchmark_out=peer.json --benchmark_out_format=json
    bench/peer/peer_table.py peer.json
"""

import json
import sys

OWN = ("knmime", "knmime-forgiving")

# (workload, operation, input) in the order of the first table.
WORKLOADS = [
    ("parse+walk 2,000 typical 2–8 KB messages", "Walk", "typical"),
    ("parse+walk one message with 20,000 header fields", "Walk", "headers"),
    ("parse+walk multipart nested 16 levels", "Walk", "nested16"),
    ("parse+walk multipart nested 64 levels", "Walk", "nested64"),
    ("parse+walk 33 MB, 40 base64 attachments", "Walk", "large"),
    ("print 2,000 typical messages", "Print", "typical"),
    ("print 20,000 header fields", "Print", "headers"),
    ("base64 encode 16 MiB random bytes", "Base64Encode", "random16M"),
    ("base64 decode (of knmime's encoding)", "Base64Decode", "base64-16M"),
    ("quoted-printable encode 16 MiB of text", "QuotedPrintableEncode", "text16M"),
    ("quoted-printable decode (of knmime's encoding)", "QuotedPrintableDecode", "qp-16M"),
]

FORGIVING = {"Walk": "forgiving reader", "Base64Decode": "forgiving decoder",
             "QuotedPrintableDecode": "forgiving decoder"}


def summaries(runs):
    """{run name: run}, the median aggregate where there is one, else the first single run;
    plus {run name: error message} and {run name: label}."""
    medians, singles, errors, labels = {}, {}, {}, {}
    for run in runs:
        name = run["run_name"]
        if run.get("error_occurred"):
            errors.setdefault(name, run.get("error_message", ""))
            continue
        if run.get("label"):
            labels.setdefault(name, run["label"])
        if run.get("run_type") == "aggregate":
            if run.get("aggregate_name") == "median":
                medians[name] = run
        else:
            singles.setdefault(name, run)
    return {**singles, **medians}, errors, labels


def ratio(value):
    return f"{value:.2f}" if value is not None else "-"


def main(path):
    with open(path) as file:
        report = json.load(file)
    runs, errors, labels = summaries(report["benchmarks"])

    def rate(name):
        run = runs.get(name)
        return run.get("bytes_per_second") if run else None

    libraries = []
    for name in list(runs) + list(errors):
        parts = name.split("/")
        if len(parts) == 3 and parts[1] not in libraries:
            libraries.append(parts[1])
    peers = [lib for lib in libraries if lib not in OWN]

    print("| workload | knmime ÷ fastest peer | fastest peer | knmime ÷ memcpy |")
    print("|---|---|---|---|")
    for workload, operation, source in WORKLOADS:
        floor = rate(f"BM_Memcpy/{source}")
        rates = {lib: rate(f"BM_{operation}/{lib}/{source}") for lib in libraries}
        measured = [peer for peer in peers if rates.get(peer)]
        fastest = max(measured, key=lambda peer: rates[peer]) if measured else None
        for own in OWN:
            mine = rates.get(own)
            if own != "knmime" and not mine:
                continue
            label = workload if own == "knmime" else f"… {FORGIVING.get(operation, own)}"
            versus = mine / rates[fastest] if mine and fastest else None
            memcpy = mine / floor if mine and floor else None
            failed = [peer for peer in peers if f"BM_{operation}/{peer}/{source}" in errors]
            fastest_cell = (fastest or "-") + (f" ({', '.join(failed)} failed)" if failed and own == "knmime" else "")
            cells = [label, ratio(versus) if mine else "failed", fastest_cell, f"{memcpy:.3f}" if memcpy else "-"]
            print("| " + " | ".join(cells) + " |")

    # The cost of nesting: processor time per run of the 64-level message over the 16-level one.
    print("\n| nested 16 → 64 levels, parse+walk | time 64 ÷ time 16 | time per byte, 64 ÷ 16 |")
    print("|---|---|---|")
    for lib in libraries:
        small, large = runs.get(f"BM_Walk/{lib}/nested16"), runs.get(f"BM_Walk/{lib}/nested64")
        if not small or not large:
            continue
        growth = large["cpu_time"] / small["cpu_time"]
        per_byte = small["bytes_per_second"] / large["bytes_per_second"]
        print(f"| {lib} | {growth:.2f} | {per_byte:.2f} |")
    memcpy16, memcpy64 = runs.get("BM_Memcpy/nested16"), runs.get("BM_Memcpy/nested64")
    if memcpy16 and memcpy64:
        size = (memcpy64["bytes_per_second"] * memcpy64["cpu_time"]) / (memcpy16["bytes_per_second"] * memcpy16["cpu_time"])
        print(f"| (input size) | {size:.2f} | 1.00 |")

    counted = [lib for lib in libraries if any("allocs/msg" in run for name, run in runs.items()
                                                if name.split("/")[1:2] == [lib])]
    if counted:
        print("\n| allocations (operator new calls) | " + " | ".join(counted) + " |")
        print("|---|" + "---|" * len(counted))
        for text, counter, source in (("per typical message", "allocs/msg", "typical"),
                                      ("per header field, 20,000-field message", "allocs/field", "headers")):
            for operation, what in (("Parse", "parse"), ("Walk", "parse+walk")):
                cells = []
                for lib in counted:
                    run = runs.get(f"BM_{operation}/{lib}/{source}")
                    cells.append(f"{run[counter]:.1f}" if run and counter in run else "-")
                print(f"| {text}, {what} | " + " | ".join(cells) + " |")
        uncounted = [lib for lib in libraries if lib not in counted]
        if uncounted:
            print(f"\nNot counted: {', '.join(uncounted)} (allocates through malloc, not operator new).")

    print("\n| operation | input | memcpy MB/s | " + " | ".join(f"{lib} MB/s" for lib in libraries) + " |")
    print("|---|---|---|" + "---|" * len(libraries))
    seen = []
    for name in list(runs) + list(errors):
        parts = name.split("/")
        if len(parts) == 3 and (parts[0], parts[2]) not in seen:
            seen.append((parts[0], parts[2]))
    for operation, source in seen:
        floor = rate(f"BM_Memcpy/{source}")
        cells = [operation[3:], source, f"{floor / 1e6:,.0f}" if floor else "-"]
        for lib in libraries:
            name = f"{operation}/{lib}/{source}"
            own = rate(name)
            if own:
                cells.append(f"{own / 1e6:,.1f}" + (f" ({labels[name]})" if name in labels else ""))
            else:
                cells.append("failed" if name in errors else "-")
        print("| " + " | ".join(cells) + " |")

    for name, message in errors.items():
        print(f"\n{name}: {message}")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: peer_table.py <peer_bench JSON output>")
    main(sys.argv[1])
