#!/usr/bin/env python3
"""Many captures, worked through by Dask: how many messages of each type, and how many of them bad, in one table.

    many_captures.py FOLDER                        all cores of this machine
    many_captures.py --workers 1 FOLDER            so many processes
    many_captures.py --scheduler tcp://HOST:8786 FOLDER    a cluster, whose workers see the same folder and have the module

Each file is a task of its own: a worker decodes it and sends back a small table. What is done with a file is the function
`summary` and knows nothing of Dask, so Spark takes it as well: `sparkContext.parallelize(files).flatMap(summary)`.
"""

import argparse
import collections
import pathlib
import time

import ldp


def summary(path):
    """(file, type, lsrId, good, bad) for each type of messages of each speaker in a capture."""
    counts, damaged = collections.Counter(), ""
    try:
        for message in ldp.read(path):
            counts[str(message.get("type", "bad PDU")), str(message["lsrId"]), "fault" not in message] += 1
    except ldp.CaptureError as error:  # what was read before it counts; one bad file is no reason to stop
        damaged = str(error)
    rows = sorted({(kind, lsr) for kind, lsr, _ in counts})
    table = [(path, kind, lsr, counts[kind, lsr, True], counts[kind, lsr, False]) for kind, lsr in rows]
    return table + [(path, "damaged: " + damaged, "", 0, 0)] * bool(damaged)


def timed(path):
    """The same, and how much processor time it took."""
    begin = time.process_time()
    return summary(path), time.process_time() - begin


def main():
    import pandas
    from distributed import Client, LocalCluster

    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--workers", type=int, help="processes on this machine; default: one for each core")
    parser.add_argument("--scheduler", help="address of a cluster's scheduler")
    arguments = parser.parse_args()
    files = sorted(str(path) for path in arguments.folder.rglob("*.pcap*"))
    cluster = arguments.scheduler or LocalCluster(n_workers=arguments.workers, threads_per_worker=1, dashboard_address=None)
    with Client(cluster) as client:
        begin = time.monotonic()
        tables, times = zip(*client.gather(client.map(timed, files, pure=False))) if files else ((), ())
        seconds = time.monotonic() - begin
    if not arguments.scheduler:
        cluster.close()
    table = pandas.DataFrame([row for rows in tables for row in rows], columns=["file", "type", "lsrId", "good", "bad"])
    print(table.groupby("type")[["good", "bad"]].sum().to_string())
    messages = table.good.sum() + table.bad.sum()
    print(f"\n{len(files)} captures, {messages} messages in {seconds:.2f} s, {sum(times):.2f} s of processor time")


if __name__ == "__main__":
    main()
