#!/usr/bin/python3
"""What a definition costs from Python: parameter set, settings and waveform of a single wave of 16 samples.

    PYTHONPATH=build/bench/python bench/python_overhead.py RESULTS.json

The result has the form of the other benchmarks, whose BM_DefineSmall is the same in C++."""
import json
import statistics
import sys
import time

from qarv_wave import Single, define

CALLS = 20000
REPETITIONS = 15


def nanoseconds_of_a_call():
    begin = time.process_time_ns()
    for _ in range(CALLS):
        define(Single(period=0.001, peak_level=2.0, edge_time=0.01, nsamp=16), fsamp=10000.0, tol_upper_rat=0.1,
               tol_lower_rat=-0.1)
    return (time.process_time_ns() - begin) / CALLS


def main():
    nanoseconds_of_a_call()
    median = statistics.median(nanoseconds_of_a_call() for _ in range(REPETITIONS))
    run = {"run_name": "Python_DefineSmall", "aggregate_name": "median", "cpu_time": median, "time_unit": "ns"}
    with open(sys.argv[1], "w", encoding="utf-8") as file:
        json.dump({"benchmarks": [run]}, file)
    print(f"{median:.0f} ns a definition")


main()
