"""Random definitions of every family: as keyword arguments, and as the JSON that the command reads."""
import dataclasses
import json

from hypothesis import strategies as st

import qarv_wave as qw


@dataclasses.dataclass
class Definition:
    """What is asked of a waveform, in values that are neither Python's classes nor JSON yet."""

    family: type
    fields: dict
    settings: dict

    def set(self):
        return self.family(**{key: _of_python(value) for key, value in self.fields.items()})

    def text(self):
        """The JSON, whose keys are written here for themselves: tol_main_u is TolMainU."""
        settings = {_key(key): value for key, value in self.settings.items()}
        return json.dumps({**settings, self.family.__name__: _of_json(self.fields)})


@dataclasses.dataclass
class Nested:
    type: type
    fields: dict


def _key(name):
    return "".join(part.capitalize() for part in name.split("_"))


def _of_python(value):
    if isinstance(value, Nested):
        return value.type(**{key: _of_python(v) for key, v in value.fields.items()})
    return [_of_python(v) for v in value] if isinstance(value, list) else value


def _of_json(value):
    if isinstance(value, Nested):
        return _of_json(value.fields)
    if isinstance(value, dict):
        return {_key(key): _of_json(v) for key, v in value.items()}
    return [_of_json(v) for v in value] if isinstance(value, list) else value


def numbers(low, high):
    return st.floats(low, high, allow_nan=False, width=64)


def codes(*members):
    return st.sampled_from(members)


SETTINGS = st.fixed_dictionaries(
    {"fsamp": st.sampled_from([500.0, 1000.0, 2048.0, 3333.3])},
    optional={
        "tol_upper_rat": numbers(0.0, 0.5),
        "tol_lower_rat": numbers(-0.5, 0.0),
        "unit_ampl": st.sampled_from(["m/s^2", "g", ""]),
        "long_wave": st.booleans(),
        "max_nsamp": st.integers(0, 2**64 - 1),
    },
)
LEVEL = numbers(-100.0, 100.0)
PERIOD = numbers(0.004, 0.1)
NSAMP = st.integers(1, 300)

SINGLE = st.fixed_dictionaries(
    {"period": PERIOD, "peak_level": LEVEL, "nsamp": NSAMP},
    optional={"edge_time": numbers(0.0, 0.1), "length_type": st.integers(-5, 5)},
)
GRADUAL = st.fixed_dictionaries(
    {
        "period": PERIOD,
        "level_beg": LEVEL,
        "level_end": LEVEL,
        "length_type": codes(qw.LengthType.LENGTH_BY_TIME, qw.LengthType.LENGTH_BY_SLOPE),
        "wave_time": numbers(0.0, 0.5),
        "wave_slope": numbers(0.1, 100.0),
        "nsamp": NSAMP,
    },
    optional={"pre_time": numbers(0.0, 0.1)},
)
BEAT = st.fixed_dictionaries(
    {
        "wave_kind": codes(*list(qw.SineBeatBurstWaveKind)[1:]),
        "ampl": LEVEL,
        "freq": numbers(20.0, 200.0),
        "cycle": st.integers(1, 10),
        "frame": st.integers(1, 3),
        "rest_time": numbers(0.0, 0.02),
    },
    optional={"edging": st.just(True)},
)
EDGED_BEAT = BEAT.flatmap(
    lambda fields: st.fixed_dictionaries(
        {"edge_rise": st.integers(0, 3), "edge_fall": st.integers(0, 3),
         "edge_window": codes(*qw.EdgeWindow)}
    ).map(lambda edges: {**fields, **edges} if "edging" in fields else fields)
)
SYMMETRY = st.fixed_dictionaries(
    {
        "wave_kind": codes(qw.WaveKind.HALF_SINE, qw.WaveKind.TRIANGLE, qw.WaveKind.HAVERSINE),
        "peak": LEVEL,
        "width": numbers(0.01, 0.05),
        "pre_zero": numbers(0.0, 0.05),
        "mid_zero": numbers(0.0, 0.05),
        "post_zero": numbers(0.0, 0.05),
    },
    optional={
        "peak_pos": numbers(0.0, 1.0),
        "devide_comp": st.booleans(),
        "comp_forward": st.booleans(),
        "mid_zero_backward": numbers(0.0, 0.05),
    },
)
ELEMENT = st.fixed_dictionaries(
    {"freq": numbers(5.0, 200.0), "ampl": LEVEL},
    optional={"zeta": numbers(0.001, 0.3), "num_half": st.integers(3, 21), "delay": numbers(0.0, 0.1)},
).map(lambda fields: Nested(qw.DampingElement, fields))
DAMPING = st.fixed_dictionaries(
    {
        "nsamp": NSAMP,
        "sync_wave_type": codes(*list(qw.SyncWaveType)[1:]),
        "freq": numbers(1.0, 5.0),
        "zeta": numbers(0.1, 1.0),
        "elements": st.lists(ELEMENT, min_size=1, max_size=5),
    }
)
USER_LEVELS = st.fixed_dictionaries(
    {key: numbers(0.05, 0.4) for key in ("tol_left_u", "tol_left_l", "tol_front_a", "tol_main_u", "tol_main_l",
                                         "tol_right_u", "tol_right_l", "tol_rear_a")},
).map(lambda fields: Nested(qw.TolUserDef, fields))
CLASSICAL = st.fixed_dictionaries(
    {
        "wave_kind": codes(*qw.WaveKind),
        "main_ampl": numbers(1.0, 100.0),
        "main_width": numbers(0.01, 0.03),
        "fmax": st.sampled_from([500.0, 1000.0]),
        "nsamp": st.integers(400, 600),
        "tol_kind": codes(qw.TolKind.TOL_FIXED_3, qw.TolKind.TOL_FIXED_4, qw.TolKind.TOL_USER_DEF),
        "tol_user_def": USER_LEVELS,
    },
    optional={
        "main_shift": numbers(-0.1, 0.1),
        "main_rise": numbers(0.1, 0.4),
        "main_fall": numbers(0.1, 0.4),
    },
)
MEASURE = st.fixed_dictionaries(
    {
        "meas_path": st.text(max_size=10),
        "samples": st.lists(st.floats(allow_nan=False, allow_infinity=False), min_size=1, max_size=50),
    },
    optional={
        "data_edit_log": st.lists(
            st.fixed_dictionaries(
                {"kind": codes(*qw.DataEditKind)},
                optional={"first": st.integers(0, 2**64 - 1), "params": st.lists(LEVEL, max_size=3),
                          "note": st.text(max_size=5)},
            ).map(lambda fields: Nested(qw.DataEdit, fields)),
            max_size=3,
        )
    },
)
FAMILIES = {
    qw.Single: SINGLE,
    qw.Gradual: GRADUAL,
    qw.SineBeatBurst: EDGED_BEAT,
    qw.Symmetry: SYMMETRY,
    qw.Damping: DAMPING,
    qw.Classical: CLASSICAL,
    qw.Measure: MEASURE,
}


def definitions(family):
    return st.builds(Definition, st.just(family), FAMILIES[family], SETTINGS)
