#!/usr/bin/env python3
"""Prints how the hot paths stand against their references, from one run of the benchmarks.

    bench_table.py RESULTS.json

R = time of the reference / time of the library, from the medians of interleaved repetitions."""
import json
import sys

# what, the library's benchmark, its reference, the least R that is accepted
ROWS = [
    ("single wave, 1e4", "BM_SetDefSingle/10000", "BM_Ref_ScalarSine/10000", 0.85),
    ("single wave, 1e6", "BM_SetDefSingle/1000000", "BM_Ref_ScalarSine/1000000", 0.85),
    ("gradual wave, 1e4", "BM_SetDefGradual/10000", "BM_Ref_ScalarSine/10000", 0.85),
    ("gradual wave, 1e6", "BM_SetDefGradual/1000000", "BM_Ref_ScalarSine/1000000", 0.85),
    ("sine beat, 1e5", "BM_SetDefSineBeat/100000", "BM_Ref_ScalarBeat/100000", 0.85),
    ("burst, 1000 frames, 1e6", "BM_SetDefSineBurst1000Frames", "BM_Ref_Memcpy/1000000", None),
    ("damped sines, 40 x 16384", "BM_SetDefDamping/method:1/elements:40/n:16384",
     "BM_Ref_ScalarDamped/40/16384", 0.85),
    ("measured, 1e6, against 3 copies", "BM_SetDefMeasure/1000000", "BM_Ref_Memcpy/3000000", None),
    ("classical half-sine, 1e6", "BM_SetDefClassical/1000000", "BM_Ref_FillAndCos/1000000", None),
    ("largest magnitude, 1e4", "BM_GetAbsMax/10000", "BM_Ref_ScalarAbsMax/10000", 1.0),
    ("record write, 3e6, against a copy", "BM_RecordWrite", "BM_Ref_Memcpy/3000000", None),
    ("record read, 3e6, against a copy", "BM_RecordRead", "BM_Ref_Memcpy/3000000", None),
]


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    median = {r["run_name"]: r["cpu_time"] for r in runs if r.get("aggregate_name") == "median"}
    print(f"{'metric':<36} {'R':>6} {'least':>6}")
    missed = 0
    for what, library, reference, least in ROWS:
        ratio = median[reference] / median[library]
        ok = least is None or ratio >= least
        missed += not ok
        print(f"{what:<36} {ratio:6.2f} {'' if least is None else least:>6} {'' if ok else 'MISSED'}")
    fftw = "BM_Ref_FftwExecute/"
    for name in sorted((n for n in median if n.startswith(fftw)), key=lambda n: int(n.split("/")[1])):
        n = name.split("/")[1]
        planned = median.get(f"BM_FftPlanForward/{n}")
        if planned:
            print(f"{'planned transform, ' + n:<36} {median[name] / planned:6.2f}")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
