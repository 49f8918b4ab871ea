#!/usr/bin/env python3
"""Prints how the hot paths stand against their references, from one run of the benchmarks.

    bench_table.py RESULTS.json BASELINE.json PYTHON.json

A row compares medians of interleaved repetitions.  R is the reference's time over the library's, x the
library's over the reference's, ns nanoseconds a sample and line, us microseconds beyond the reference, B bytes
allocated over those of the three arrays, B/N the same for a sample."""
import json
import sys

DAMPING = "BM_SetDefDamping/method:{}/elements:{}/n:{}/descending:{}"

# what, kind, the library's benchmark, its reference, floor, goal
ROWS = [
    ("single wave, 1e4", "R", "BM_SetDefSingle/10000", "BM_Ref_ScalarSine/10000", 2.2, 3.0),
    ("single wave, 1e6", "R", "BM_SetDefSingle/1000000", "BM_Ref_ScalarSine/1000000", 1.6, 2.2),
    ("gradual wave, 1e4", "R", "BM_SetDefGradual/10000", "BM_Ref_ScalarSine/10000", 2.2, 3.0),
    ("gradual wave, 1e6", "R", "BM_SetDefGradual/1000000", "BM_Ref_ScalarSine/1000000", 1.6, 2.2),
    ("single wave, 1e4, baseline", "R0", "BM_SetDefSingle/10000", "BM_Ref_ScalarSine/10000", 1.5, 1.9),
    ("single wave, 1e6, baseline", "R0", "BM_SetDefSingle/1000000", "BM_Ref_ScalarSine/1000000", 1.2, 1.5),
    ("gradual wave, 1e4, baseline", "R0", "BM_SetDefGradual/10000", "BM_Ref_ScalarSine/10000", 1.5, 1.9),
    ("gradual wave, 1e6, baseline", "R0", "BM_SetDefGradual/1000000", "BM_Ref_ScalarSine/1000000", 1.2, 1.5),
    ("sine beat, 1e5", "R", "BM_SetDefSineBeat/100000", "BM_Ref_ScalarBeat/100000", 2.3, 3.2),
    ("burst, 1000 frames, 1e6, against a copy", "x", "BM_SetDefSineBurst1000Frames",
     "BM_Ref_Memcpy/3000000", 2.0, 1.3),
    ("damped sines, 40 x 16384, ascending", "R", DAMPING.format(1, 40, 16384, 0),
     "BM_Ref_ScalarDamped/40/16384", 2.2, 3.3),
    ("damped sines, 40 x 16384, descending", "R", DAMPING.format(1, 40, 16384, 1),
     "BM_Ref_ScalarDamped/40/16384", 1.9, 2.6),
    ("damped sines, 12 x 1e6, ascending", "R", DAMPING.format(1, 12, 1000000, 0),
     "BM_Ref_ScalarDamped/12/1000000", 8.0, 14.0),
    ("damped sines, 12 x 1e6, descending", "R", DAMPING.format(1, 12, 1000000, 1),
     "BM_Ref_ScalarDamped/12/1000000", 4.0, 5.0),
    ("wavelets, 40 x 16384", "R", DAMPING.format(3, 40, 16384, 0), "BM_Ref_ScalarWavelets/40/16384", 2.0, 3.0),
    *((f"planned transform, {n}", "R", f"BM_FftPlanForward/{n}", f"BM_Ref_FftwExecute/{n}", floor, goal)
      for n, floor, goal in [*((1 << i, 0.5, 0.8) for i in range(10, 17)), (1 << 20, 0.8, 1.5),
                             (1000000, 0.8, 1.1), (1000, 0.35, 0.65), (2560, 0.35, 0.65),
                             (10007, 0.9, 1.6), (65537, 0.9, 1.6)]),
    *((f"single transform, {n}", "R", f"BM_WaveRfft/{n}", f"BM_Ref_FftwExecute/{n}", 0.35, 0.65)
      for n in (1 << 12, 1 << 14, 1 << 16)),
    *((f"compensation, type {t}, in transforms", "x", f"BM_SetDefCompensated/type:{t}",
       "BM_Ref_FftwExecute/8192", floor, goal)
      for t, floor, goal in [(1, 200, 100), (2, 200, 100), (3, 200, 100), (4, 700, 350)]),
    ("compensation, slowest reference case", "x", "BM_SlowestReferenceCase", "BM_Ref_FftwExecute/512", 12000, 6000),
    ("gain search, 4096, in transforms", "x", "BM_GainSearch/4096", "BM_Ref_FftwExecute/4096", 60, 35),
    ("gain search, 65536, in transforms", "x", "BM_GainSearch/65536", "BM_Ref_FftwExecute/65536", 50, 25),
    ("memory of a fresh single wave, 1e6", "B", "BM_SetDefSingleFresh/1000000", 1000000, 65536, 4096),
    *((f"memory of a compensation, type {t}", "B/N", f"BM_SetDefCompensatedFresh/type:{t}", 8192, floor, goal)
      for t, floor, goal in [(1, 160, 100), (2, 160, 100), (3, 160, 100), (4, 320, 200)]),
    ("classical half-sine, 1e6", "x", "BM_SetDefClassical/1000000", "BM_Ref_FillAndCos/1000000", 1.5, 0.8),
    ("measured, 1e6, against a copy of all", "x", "BM_SetDefMeasure/1000000", "BM_Ref_Memcpy/3000000", 1.3, 1.0),
    ("record write, 3e6, against a copy to new", "x", "BM_RecordWrite", "BM_Ref_CopyToNewMemory", 1.5, 1.15),
    ("record read, 3e6, against a copy", "x", "BM_RecordRead", "BM_Ref_Memcpy/3000000", 1.5, 1.2),
    ("largest magnitude, 1e4", "R", "BM_GetAbsMax/10000", "BM_Ref_ScalarAbsMax/10000", 1.0, 1.0),
    ("shock response spectrum, 65536 x 200", "ns", "BM_CalcSrs", 65536 * 200, 1.0, 0.4),
    ("definition from Python, 16 samples", "us", "Python_DefineSmall", "BM_DefineSmall", 5.0, 3.0),
]
NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def medians(path):
    with open(path, encoding="utf-8") as file:
        return {r["run_name"]: r for r in json.load(file)["benchmarks"] if r.get("aggregate_name") == "median"}


def nanoseconds(median):
    return median["cpu_time"] * NANOSECONDS[median["time_unit"]]


def figure(kind, median, library, reference):
    """What the row prints, for its kind."""
    if kind in ("B", "B/N"):
        over = median[library]["alloc_bytes"] - 24 * reference
        return over if kind == "B" else over / reference
    time = nanoseconds(median[library])
    if kind == "ns":
        return time / reference
    base = nanoseconds(median[reference])
    if kind == "us":
        return (time - base) / 1e3
    return time / base if kind == "x" else base / time


def main():
    best, baseline, python = (medians(path) for path in sys.argv[1:])
    best |= python
    print(f"{'metric':<42} {'':>3} {'ratio':>8} {'floor':>6} {'goal':>6}")
    missed = 0
    for what, kind, library, reference, floor, goal in ROWS:
        ratio = figure(kind, baseline if kind == "R0" else best, library, reference)
        less = kind not in ("R", "R0")
        worse = lambda bound: ratio > bound if less else ratio < bound
        missed += worse(floor)
        verdict = "MISSED" if worse(floor) else "floor met" if worse(goal) else "met"
        print(f"{what:<42} {kind[0] if kind == 'R0' else kind:>3} {ratio:8.2f} {floor:6} {goal:6} {verdict}")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
