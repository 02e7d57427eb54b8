#!/usr/bin/env python3
"""Turns the JSON output of peer_bench into a Markdown table: per input and operation the
throughput of every library in MB/s (10^6 input bytes per second) and its ratio to knmime
(above 1: faster than knmime), with the memcpy floor per input. With repetitions, the
medians are used.

    peer_bench --benchmark_repetitions=3 --benchmark_out=peer.json --benchmark_out_format=json
    bench/peer/peer_table.py peer.json
"""

import json
import sys


def throughputs(runs):
    """{name: bytes per second}, preferring the median aggregate over single runs."""
    medians, singles = {}, {}
    for run in runs:
        rate = run.get("bytes_per_second")
        if rate is None or run.get("error_occurred"):
            continue
        if run.get("run_type") == "aggregate":
            if run.get("aggregate_name") == "median":
                medians[run["run_name"]] = rate
        else:
            singles.setdefault(run["run_name"], rate)
    return medians or singles


def main(path):
    with open(path) as file:
        report = json.load(file)
    rates = throughputs(report["benchmarks"])
    errors = {run["run_name"]: run.get("error_message", "") for run in report["benchmarks"] if run.get("error_occurred")}

    inputs, libraries = [], ["knmime"]
    for name in list(rates) + list(errors):
        parts = name.split("/")
        if parts[0] == "BM_Memcpy":
            if parts[1] not in inputs:
                inputs.append(parts[1])
        elif parts[1] not in libraries:
            libraries.append(parts[1])
    peers = libraries[1:]

    print("| input | operation | memcpy MB/s | " + " | ".join(f"{lib} MB/s" for lib in libraries) + " | " +
          " | ".join(f"{peer}/knmime" for peer in peers) + " |")
    print("|" + "---|" * (3 + len(libraries) + len(peers)))
    for source in inputs:
        floor = rates.get(f"BM_Memcpy/{source}")
        for operation in ("Parse", "Print", "Walk"):
            cells = [source, operation.lower(), f"{floor / 1e6:,.0f}" if floor else "-"]
            own = {lib: rates.get(f"BM_{operation}/{lib}/{source}") for lib in libraries}
            cells += [f"{own[lib] / 1e6:,.1f}" if own[lib] else "failed" for lib in libraries]
            base = own["knmime"]
            cells += [f"{own[peer] / base:.2f}" if own[peer] and base else "-" for peer in peers]
            print("| " + " | ".join(cells) + " |")
    for name, message in errors.items():
        print(f"\n{name}: {message}")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: peer_table.py <peer_bench JSON output>")
    main(sys.argv[1])
