#!/usr/bin/env python3
"""Writes the golden records of every parameter set and of every waveform family, from the layouts of
docs/formats.md alone: what the library writes and reads is held to them, and they to nothing of it.

  make_records.py          writes records/set_*.hex and records/family_*.hex
  make_records.py --check  says which of them are not as it would write them, and fails then

Every field has another value, none of them 0 or a default.  Flags are true; where there are several, a
second record has every other one false, so that two of them cannot change places unseen.  An enumeration
may have a value that it does not name: it travels all the same.
"""
import struct
import sys
from pathlib import Path

RECORDS = Path(__file__).parent / "records"


# ---- Items: a line of tag, value (little-endian) and meaning each ---------------------------------


def line(tag, value, meaning):
    return [f"{ord(tag):02x} {value.hex()}".ljust(21) + f" # {meaning}"]


def flag(name, value):
    return line("b", struct.pack("<B", value), f"{name} = {int(value)}")


def uint32(name, value):
    return line("u", struct.pack("<I", value), f"{name} = {value}")


def uint64(name, value):
    return line("U", struct.pack("<Q", value), f"{name} = {value}")


def double(name, value):
    return line("d", struct.pack("<d", value), f"{name} = {value}")


def more(value, meaning):
    """Bytes that belong to the item of the line before."""
    return [f"   {value.hex()}".ljust(21) + f" # {meaning}"]


def string(name, value):
    return line("s", struct.pack("<Q", len(value)), f"{name}: {len(value)} bytes") + more(
        value, f"  {value}"
    )


def version(of):
    return uint32(f"{of} version", 1)


def doubles(values):
    return [item for name, value in values.items() for item in double(name, value)]


def samples(name, values):
    lines = version(name) + uint64(f"{name} number of samples", len(values))
    if values:
        lines += line("r", struct.pack("<Q", 8 * len(values)), f"{name} samples: {8 * len(values)} bytes")
    for value in values:
        lines += more(struct.pack("<d", value), f"  {value}")
    return lines


# ---- Parameter sets -------------------------------------------------------------------------------


def single():
    return (
        version("CWaveDefSingle")
        + doubles({"Period": 1.25, "PeakLevel": 2.25})
        + uint64("LengthType", 3)
        + doubles({"WaveTime": 4.25, "WavePeriod": 5.25, "EdgeTime": 6.25})
        + uint32("Nsamp", 7)
    )


def gradual():
    return (
        version("CWaveDefGradual")
        + doubles({"Period": 1.5, "LevelBeg": 2.5, "LevelEnd": 3.5})
        + uint64("LengthType", 2)
        + doubles({"WaveTime": 5.5, "WaveSlope": 6.5, "PreTime": 7.5, "EdgeTime": 8.5})
        + uint32("Nsamp", 9)
    )


def sine_beat_burst():
    return (
        version("CWaveDefSineBeatBurst")
        + uint64("WaveKind", 2)
        + doubles({"Ampl": 2.75, "Freq": 3.75})
        + uint32("Cycle", 4)
        + uint32("Frame", 5)
        + double("RestTime", 6.75)
        + flag("Edging", True)
        + uint32("EdgeRise", 8)
        + uint32("EdgeFall", 9)
        + uint64("EdgeWindow", 1)
    )


def symmetry(flags=(True, True, True)):
    return (
        version("CWaveDefSymmetry")
        + uint64("WaveKind", 6)
        + doubles({"Peak": 2.125, "Width": 3.125, "PeakPos": 4.125, "PreZero": 5.125})
        + doubles({"MidZero": 6.125, "PostZero": 7.125})
        + flag("DevideComp", flags[0])
        + flag("CompForward", flags[1])
        + flag("MidBackward", flags[2])
        + double("MidZeroBackward", 11.125)
    )


def damping_elm(first):
    return (
        version("CWaveDefDampingElm")
        + doubles({"Freq": first, "Ampl": first + 1, "Zeta": first + 2})
        + uint32("NumHalf", int(first) + 3)
        + double("Delay", first + 4)
    )


def damping():
    return (
        version("CWaveDefDamping")
        + uint64("Nsamp", 6000000001)
        + uint64("SyncWaveType", 2)
        + doubles({"Freq": 3.375, "Zeta": 4.375})
        + uint64("number of elements", 2)
        + damping_elm(10.375)
        + damping_elm(20.375)
    )


def edit(first, note):
    return (
        version("CDataEditLogElm")
        + uint64("Kind", first)
        + uint64("First", 7000000000 + first)
        + uint64("Last", 8000000000 + first)
        + samples("Params", [first + 0.625, first + 1.625])
        + string("Note", note)
    )


def measure():
    return (
        version("CWaveDefMeasure")
        + string("MeasPath", b"D:\\meas\\drop.csv")
        + version("CDataEditLog")
        + uint64("number of edits", 2)
        + edit(4, b"scaled")
        + edit(6, b"tapered")
    )


def tol_user_def():
    return (
        version("CWaveDefTolUserDef")
        + doubles({"TolLeftU": 1.0625, "TolLeftL": 2.0625, "TolFrontA": 3.0625})
        + doubles({"TolMainU": 4.0625, "TolMainL": 5.0625, "TolRightU": 6.0625})
        + doubles({"TolRightL": 7.0625, "TolRearA": 8.0625})
        + flag("TolPulsSet", True)
        + doubles({"TolPulsBegU": 10.0625, "TolPulsBegL": 11.0625})
        + doubles({"TolPulsEndU": 12.0625, "TolPulsEndL": 13.0625})
    )


def tol_specify():
    return (
        version("CWaveDefTolSpecify")
        + string("StdName", b"house \x83\x65 7")
        + uint64("WaveKind", 3)
        + uint64("BaseStandard", 5)
        + doubles({"TolBeginHi": 3.1875, "TolBeginLo": 4.1875})
        + doubles({"PulseBeforeHi": 5.1875, "PulseBeforeLo": 6.1875})
        + doubles({"PulseSlopeHi": 7.1875, "PulseSlopeLo": 8.1875})
        + doubles({"MainPulseHi": 9.1875, "MainPulseLo": 10.1875})
        + doubles({"TolEndHi": 11.1875, "TolEndLo": 12.1875})
        + doubles({"PulseBeforeWidth": 13.1875, "PulseAfterWidth": 14.1875})
        + doubles({"PulseRiseWidth": 15.1875, "PulseFallWidth": 16.1875})
    )


def classical(flags=(True, True, True)):
    return (
        version("CWaveDefClassical")
        + uint64("WaveKind", 5)
        + doubles({"MainAmpl": 2.875, "MainWidth": 3.875, "MainRise": 4.875, "MainFall": 5.875})
        + doubles({"MainShift": 6.875, "RestPre": 7.875, "RestPost": 8.875, "Fmax": 9.875})
        + uint32("Nsamp", 10)
        + double("WaveShift", 11.875)
        + uint64("TolKind", 11)
        + tol_user_def()
        + tol_specify()
        + flag("AddCmp", flags[0])
        + flag("CmpNonSym", flags[1])
        + uint64("CmpType", 4)
        + doubles({"CmpPre": 17.875, "CmpPost": 18.875, "CmpPcal": 19.875})
        + doubles({"CmpU1": 20.875, "CmpU2": 21.875, "CmpRgm1": 22.875, "CmpRgm2": 23.875})
        + double("CmpCparam", 24.875)
        + flag("CmpErr", flags[2])
        + double("OptRatLevel", 26.875)
    )


# ---- Families -------------------------------------------------------------------------------------


def unit():
    lines = version("UnitAmpl")
    for factor, (code, calc) in enumerate([(14, 1), (25, 3), (8, 2), (11, 4)], 1):
        lines += uint64(f"factor {factor} code", code) + uint64(f"factor {factor} calc", calc)
    return lines + uint64("suffix", 5)


def family(wave_type, parameters, auto_fsamp=True):
    return (
        version("CWaveDef")
        + uint64("WaveType", wave_type)
        + flag("LongWave", True)
        + uint64("MaxNsamp", 5000000003)
        + flag("AutoFsamp", auto_fsamp)
        + double("Fsamp", 5.0)
        + unit()
        + doubles({"TolUpperRat": 7.0, "TolLowerRat": 8.0})
        + parameters
        + samples("Wave", [30.0, 31.0, 32.0])
        + samples("TolU", [40.0, 41.0, 42.0])
        + samples("TolL", [50.0, 51.0, 52.0])
    )


ALTERNATING = (True, False, True)
FILES = {
    "set_classical": ("CWaveDefClassical", classical()),
    "set_classical_flags": ("CWaveDefClassical, alternating flags", classical(ALTERNATING)),
    "set_damping": ("CWaveDefDamping, two elements", damping()),
    "set_damping_elm": ("CWaveDefDampingElm", damping_elm(10.375)),
    "set_gradual": ("CWaveDefGradual", gradual()),
    "set_measure": ("CWaveDefMeasure, two edits", measure()),
    "set_sine_beat_burst": ("CWaveDefSineBeatBurst", sine_beat_burst()),
    "set_single": ("CWaveDefSingle", single()),
    "set_symmetry": ("CWaveDefSymmetry", symmetry()),
    "set_symmetry_flags": ("CWaveDefSymmetry, alternating flags", symmetry(ALTERNATING)),
    "set_tol_specify": ("CWaveDefTolSpecify", tol_specify()),
    "set_tol_user_def": ("CWaveDefTolUserDef", tol_user_def()),
    "family_classical": ("CWaveDef, a classical pulse", family(1, classical())),
    "family_symmetry": ("CWaveDef, a symmetry wave", family(2, symmetry())),
    "family_sine_beat_burst": ("CWaveDef, a beat or burst", family(3, sine_beat_burst())),
    "family_measure": ("CWaveDef, a measured waveform", family(4, measure())),
    "family_gradual": ("CWaveDef, a gradual wave", family(5, gradual())),
    "family_single": ("CWaveDef, a single wave", family(6, single())),
    "family_single_flags": ("CWaveDef, alternating flags", family(6, single(), False)),
    "family_damping": ("CWaveDef, damped sines", family(7, damping())),
}


def main():
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        sys.exit("usage: make_records.py [--check]")
    other = []
    for name, (title, lines) in FILES.items():
        text = "\n".join([f"# The record of {title}; written by make_records.py.", *lines]) + "\n"
        path = RECORDS / f"{name}.hex"
        if not check:
            path.write_text(text)
        elif not path.is_file() or path.read_text() != text:
            other.append(path.name)
    if other:
        sys.exit("not as make_records.py writes them: " + ", ".join(other))


if __name__ == "__main__":
    main()
