# Made by tools/python_stubs.py from the one list of fields; not edited by hand.
import enum
from collections.abc import Callable, Sequence
from typing import Any, ClassVar, SupportsIndex, Union, overload

import numpy as np
import numpy.typing as npt

from ._codes import Code
from ._errors import Finding

FloatArray = npt.NDArray[np.float64]


class BaseStandard(Code):
    """TolSpecify.base_standard: family of standards that shapes the band."""

    BASE_STD_NONE = 0
    BASE_STD_1 = 1
    BASE_STD_2 = 2
    BASE_STD_3 = 3
    BASE_STD_4 = 4
    BASE_STD_5 = 5

class CmpType(Code):
    """Classical.cmp_type: shape of the compensation."""

    CMP_NONE = 0
    CMP_RAMP = 1
    CMP_COSINE = 2
    CMP_FLAT_COSINE = 3
    CMP_OPTIMIZED = 4

class DataEditKind(Code):
    """DataEdit.kind: what was done."""

    EDIT_NONE = 0
    EDIT_CUT = 1
    EDIT_ZERO = 2
    EDIT_OFFSET = 3
    EDIT_SCALE = 4
    EDIT_DETREND = 5
    EDIT_TAPER = 6
    EDIT_LOW_PASS = 7
    EDIT_HIGH_PASS = 8
    EDIT_RESAMPLE = 9
    EDIT_INTEGRATE = 10
    EDIT_DIFFERENTIATE = 11

class EdgeWindow(Code):
    """SineBeatBurst.edge_window: shape of the tapers, with Edging."""

    WINDOW_NONE = 0
    WINDOW_HALF_HANNING = 1
    WINDOW_RAMP = 2

class LengthType(Code):
    """Gradual.length_type: what gives the length of the ramp."""

    LENGTH_TYPE_NONE = 0
    LENGTH_BY_TIME = 1
    LENGTH_BY_SLOPE = 2

class SineBeatBurstWaveKind(Code):
    """SineBeatBurst.wave_kind: beat or burst."""

    WAVE_KIND_NONE = 0
    SINE_BEAT = 1
    SINE_BURST = 2

class SyncWaveType(Code):
    """Damping.sync_wave_type: method of the synthesis."""

    SYNC_WAVE_NONE = 0
    SYNC_WAVE_DAMPED_SINE = 1
    SYNC_WAVE_DAMPED_SINE_MODIFIED = 2
    SYNC_WAVE_WAVELET = 3

class TolKind(Code):
    """Classical.tol_kind: kind of the tolerance bands."""

    TOL_NONE = 0
    TOL_FIXED_1 = 1
    TOL_FIXED_2 = 2
    TOL_FIXED_3 = 3
    TOL_FIXED_4 = 4
    TOL_FIXED_5 = 5
    TOL_FIXED_6 = 6
    TOL_FIXED_7 = 7
    TOL_FIXED_8 = 8
    TOL_FIXED_9 = 9
    TOL_USER_DEF = 10
    TOL_SPECIFY = 11

class WaveKind(Code):
    """TolSpecify.wave_kind: shape that the levels are written for; that of the pulse."""

    HALF_SINE = 1
    TERMINAL_PEAK_SAWTOOTH = 2
    TRAPEZOID = 3
    TRIANGLE = 4
    USER_TRAPEZOID = 5
    HAVERSINE = 6

class TolUserDef:
    """The user's levels.

A frozen value.  Keyword arguments and properties:

    tol_left_u: Upper level before the pulse [ratio to the peak]; default 0.0
    tol_left_l: Lower level before the pulse, entered positive [ratio to the peak]; default 0.0
    tol_front_a: Length of the transition before the pulse [widths]; default 0.0
    tol_main_u: Upper margin at the peak of the pulse [ratio to the peak]; default 0.0
    tol_main_l: Lower margin at the peak of the pulse, entered positive [ratio to the peak]; default 0.0
    tol_right_u: Upper level after the pulse [ratio to the peak]; default 0.0
    tol_right_l: Lower level after the pulse, entered positive [ratio to the peak]; default 0.0
    tol_rear_a: Length of the transition after the pulse [widths]; default 0.0
    tol_puls_set: Whether the levels at the ends of the pulse are given; default False
    tol_puls_beg_u: Upper level at the beginning of the pulse, with TolPulsSet [ratio to the peak]; default 0.0
    tol_puls_beg_l: Lower level at the beginning of the pulse, with TolPulsSet [ratio to the peak]; default 0.0
    tol_puls_end_u: Upper level at the end of the pulse, with TolPulsSet [ratio to the peak]; default 0.0
    tol_puls_end_l: Lower level at the end of the pulse, with TolPulsSet [ratio to the peak]; default 0.0"""

    def __init__(
        self,
        *,
        tol_left_u: float = 0.0,
        tol_left_l: float = 0.0,
        tol_front_a: float = 0.0,
        tol_main_u: float = 0.0,
        tol_main_l: float = 0.0,
        tol_right_u: float = 0.0,
        tol_right_l: float = 0.0,
        tol_rear_a: float = 0.0,
        tol_puls_set: bool = False,
        tol_puls_beg_u: float = 0.0,
        tol_puls_beg_l: float = 0.0,
        tol_puls_end_u: float = 0.0,
        tol_puls_end_l: float = 0.0,
    ) -> None: ...
    @property
    def tol_left_u(self) -> float:
        """Upper level before the pulse [ratio to the peak]; default 0.0"""
    @property
    def tol_left_l(self) -> float:
        """Lower level before the pulse, entered positive [ratio to the peak]; default 0.0"""
    @property
    def tol_front_a(self) -> float:
        """Length of the transition before the pulse [widths]; default 0.0"""
    @property
    def tol_main_u(self) -> float:
        """Upper margin at the peak of the pulse [ratio to the peak]; default 0.0"""
    @property
    def tol_main_l(self) -> float:
        """Lower margin at the peak of the pulse, entered positive [ratio to the peak]; default 0.0"""
    @property
    def tol_right_u(self) -> float:
        """Upper level after the pulse [ratio to the peak]; default 0.0"""
    @property
    def tol_right_l(self) -> float:
        """Lower level after the pulse, entered positive [ratio to the peak]; default 0.0"""
    @property
    def tol_rear_a(self) -> float:
        """Length of the transition after the pulse [widths]; default 0.0"""
    @property
    def tol_puls_set(self) -> bool:
        """Whether the levels at the ends of the pulse are given; default False"""
    @property
    def tol_puls_beg_u(self) -> float:
        """Upper level at the beginning of the pulse, with TolPulsSet [ratio to the peak]; default 0.0"""
    @property
    def tol_puls_beg_l(self) -> float:
        """Lower level at the beginning of the pulse, with TolPulsSet [ratio to the peak]; default 0.0"""
    @property
    def tol_puls_end_u(self) -> float:
        """Upper level at the end of the pulse, with TolPulsSet [ratio to the peak]; default 0.0"""
    @property
    def tol_puls_end_l(self) -> float:
        """Lower level at the end of the pulse, with TolPulsSet [ratio to the peak]; default 0.0"""
    def replace(
        self,
        *,
        tol_left_u: float = ...,
        tol_left_l: float = ...,
        tol_front_a: float = ...,
        tol_main_u: float = ...,
        tol_main_l: float = ...,
        tol_right_u: float = ...,
        tol_right_l: float = ...,
        tol_rear_a: float = ...,
        tol_puls_set: bool = ...,
        tol_puls_beg_u: float = ...,
        tol_puls_beg_l: float = ...,
        tol_puls_end_u: float = ...,
        tol_puls_end_l: float = ...,
    ) -> TolUserDef: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class TolSpecify:
    """The levels of a standard.

A frozen value.  Keyword arguments and properties:

    std_name: Name of the standard; default ''
    wave_kind: Shape that the levels are written for; that of the pulse; required
    base_standard: Family of standards that shapes the band; required
    tol_begin_hi: Upper level at the beginning of the frame [ratio to the peak]; default 0.0
    tol_begin_lo: Lower level at the beginning of the frame, entered positive [ratio to the peak]; default 0.0
    pulse_before_hi: Upper level just before the pulse [ratio to the peak]; default 0.0
    pulse_before_lo: Lower level just before the pulse, entered positive [ratio to the peak]; default 0.0
    pulse_slope_hi: Upper level along the slopes of the pulse [ratio to the peak]; default 0.0
    pulse_slope_lo: Lower level along the slopes of the pulse, entered positive [ratio to the peak]; default 0.0
    main_pulse_hi: Upper limit over the top of the pulse; 1 or more [multiples of the pulse]; default 0.0
    main_pulse_lo: Lower limit over the top of the pulse; up to 1 [multiples of the pulse]; default 0.0
    tol_end_hi: Upper level after the pulse [ratio to the peak]; default 0.0
    tol_end_lo: Lower level after the pulse, entered positive [ratio to the peak]; default 0.0
    pulse_before_width: Length of the region before the pulse [widths]; default 0.0
    pulse_after_width: Length of the region after the pulse [widths]; default 0.0
    pulse_rise_width: Rise of the pulse that the standard asks for [widths]; default 0.0
    pulse_fall_width: Fall of the pulse that the standard asks for [widths]; default 0.0"""

    def __init__(
        self,
        *,
        std_name: str = '',
        wave_kind: WaveKind | int,
        base_standard: BaseStandard | int,
        tol_begin_hi: float = 0.0,
        tol_begin_lo: float = 0.0,
        pulse_before_hi: float = 0.0,
        pulse_before_lo: float = 0.0,
        pulse_slope_hi: float = 0.0,
        pulse_slope_lo: float = 0.0,
        main_pulse_hi: float = 0.0,
        main_pulse_lo: float = 0.0,
        tol_end_hi: float = 0.0,
        tol_end_lo: float = 0.0,
        pulse_before_width: float = 0.0,
        pulse_after_width: float = 0.0,
        pulse_rise_width: float = 0.0,
        pulse_fall_width: float = 0.0,
    ) -> None: ...
    @property
    def std_name(self) -> str:
        """Name of the standard; default ''"""
    @property
    def wave_kind(self) -> WaveKind:
        """Shape that the levels are written for; that of the pulse; required"""
    @property
    def base_standard(self) -> BaseStandard:
        """Family of standards that shapes the band; required"""
    @property
    def tol_begin_hi(self) -> float:
        """Upper level at the beginning of the frame [ratio to the peak]; default 0.0"""
    @property
    def tol_begin_lo(self) -> float:
        """Lower level at the beginning of the frame, entered positive [ratio to the peak]; default 0.0"""
    @property
    def pulse_before_hi(self) -> float:
        """Upper level just before the pulse [ratio to the peak]; default 0.0"""
    @property
    def pulse_before_lo(self) -> float:
        """Lower level just before the pulse, entered positive [ratio to the peak]; default 0.0"""
    @property
    def pulse_slope_hi(self) -> float:
        """Upper level along the slopes of the pulse [ratio to the peak]; default 0.0"""
    @property
    def pulse_slope_lo(self) -> float:
        """Lower level along the slopes of the pulse, entered positive [ratio to the peak]; default 0.0"""
    @property
    def main_pulse_hi(self) -> float:
        """Upper limit over the top of the pulse; 1 or more [multiples of the pulse]; default 0.0"""
    @property
    def main_pulse_lo(self) -> float:
        """Lower limit over the top of the pulse; up to 1 [multiples of the pulse]; default 0.0"""
    @property
    def tol_end_hi(self) -> float:
        """Upper level after the pulse [ratio to the peak]; default 0.0"""
    @property
    def tol_end_lo(self) -> float:
        """Lower level after the pulse, entered positive [ratio to the peak]; default 0.0"""
    @property
    def pulse_before_width(self) -> float:
        """Length of the region before the pulse [widths]; default 0.0"""
    @property
    def pulse_after_width(self) -> float:
        """Length of the region after the pulse [widths]; default 0.0"""
    @property
    def pulse_rise_width(self) -> float:
        """Rise of the pulse that the standard asks for [widths]; default 0.0"""
    @property
    def pulse_fall_width(self) -> float:
        """Fall of the pulse that the standard asks for [widths]; default 0.0"""
    def replace(
        self,
        *,
        std_name: str = ...,
        wave_kind: WaveKind | int = ...,
        base_standard: BaseStandard | int = ...,
        tol_begin_hi: float = ...,
        tol_begin_lo: float = ...,
        pulse_before_hi: float = ...,
        pulse_before_lo: float = ...,
        pulse_slope_hi: float = ...,
        pulse_slope_lo: float = ...,
        main_pulse_hi: float = ...,
        main_pulse_lo: float = ...,
        tol_end_hi: float = ...,
        tol_end_lo: float = ...,
        pulse_before_width: float = ...,
        pulse_after_width: float = ...,
        pulse_rise_width: float = ...,
        pulse_fall_width: float = ...,
    ) -> TolSpecify: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class Classical:
    """Classical shock pulse.

A frozen value.  Keyword arguments and properties:

    wave_kind: Shape of the pulse; required
    main_ampl: Peak of the pulse [amplitude unit]; required
    main_width: Nominal width of the pulse [s]; required
    main_rise: Rise of a user trapezoid [widths]; default 0.0
    main_fall: Fall of a user trapezoid [widths]; default 0.0
    main_shift: Shift of the centre of the pulse from the middle of the frame [frames]; default 0.0
    rest_pre: Rest between the compensation and the pulse [s]; default 0.0
    rest_post: Rest between the pulse and the compensation [s]; default 0.0
    fmax: Highest frequency of the analysis; the samples are taken at 2.56 times it [Hz]; required
    nsamp: Length of the frame [samples]; required
    wave_shift: Result: by how much the compensation has shifted the pulse [frames]; default 0.0
    tol_kind: Kind of the tolerance bands; required
    tol_user_def: The user's levels, for TOL_USER_DEF and for a haversine
    tol_specify: The levels of a standard, for TOL_SPECIFY
    add_cmp: Whether compensation is added, so that the table ends at rest where it began; default False
    cmp_non_sym: Whether the compensation before and after the pulse may differ; default False
    cmp_type: Shape of the compensation; default CmpType.CMP_NONE
    cmp_pre: Scale of the bands before the pulse, within which the compensation keeps; usually 1; default 0.0
    cmp_post: Scale of the bands after the pulse, within which the compensation keeps; usually 1; default 0.0
    cmp_pcal: Kept for the controller; default 0.0
    cmp_u1: Result: level of the compensation before the pulse [ratio to the peak]; default 0.0
    cmp_u2: Result: level of the compensation after the pulse [ratio to the peak]; default 0.0
    cmp_rgm1: Result: share of the area that the compensation before the pulse takes [ratio to the area]; default 0.0
    cmp_rgm2: Result: share of the area that the compensation after the pulse takes [ratio to the area]; default 0.0
    cmp_cparam: Result: gain of the reshaping; default 0.0
    cmp_err: Kept for the controller; default False
    opt_rat_level: Of CMP_OPTIMIZED: share of the tolerance that is spent on the stroke; 0 keeps the pulse nominal; default 0.0"""

    def __init__(
        self,
        *,
        wave_kind: WaveKind | int,
        main_ampl: float,
        main_width: float,
        main_rise: float = 0.0,
        main_fall: float = 0.0,
        main_shift: float = 0.0,
        rest_pre: float = 0.0,
        rest_post: float = 0.0,
        fmax: float,
        nsamp: SupportsIndex,
        wave_shift: float = 0.0,
        tol_kind: TolKind | int,
        tol_user_def: TolUserDef | None = None,
        tol_specify: TolSpecify | None = None,
        add_cmp: bool = False,
        cmp_non_sym: bool = False,
        cmp_type: CmpType | int = CmpType.CMP_NONE,
        cmp_pre: float = 0.0,
        cmp_post: float = 0.0,
        cmp_pcal: float = 0.0,
        cmp_u1: float = 0.0,
        cmp_u2: float = 0.0,
        cmp_rgm1: float = 0.0,
        cmp_rgm2: float = 0.0,
        cmp_cparam: float = 0.0,
        cmp_err: bool = False,
        opt_rat_level: float = 0.0,
    ) -> None: ...
    @property
    def wave_kind(self) -> WaveKind:
        """Shape of the pulse; required"""
    @property
    def main_ampl(self) -> float:
        """Peak of the pulse [amplitude unit]; required"""
    @property
    def main_width(self) -> float:
        """Nominal width of the pulse [s]; required"""
    @property
    def main_rise(self) -> float:
        """Rise of a user trapezoid [widths]; default 0.0"""
    @property
    def main_fall(self) -> float:
        """Fall of a user trapezoid [widths]; default 0.0"""
    @property
    def main_shift(self) -> float:
        """Shift of the centre of the pulse from the middle of the frame [frames]; default 0.0"""
    @property
    def rest_pre(self) -> float:
        """Rest between the compensation and the pulse [s]; default 0.0"""
    @property
    def rest_post(self) -> float:
        """Rest between the pulse and the compensation [s]; default 0.0"""
    @property
    def fmax(self) -> float:
        """Highest frequency of the analysis; the samples are taken at 2.56 times it [Hz]; required"""
    @property
    def nsamp(self) -> int:
        """Length of the frame [samples]; required"""
    @property
    def wave_shift(self) -> float:
        """Result: by how much the compensation has shifted the pulse [frames]; default 0.0"""
    @property
    def tol_kind(self) -> TolKind:
        """Kind of the tolerance bands; required"""
    @property
    def tol_user_def(self) -> TolUserDef | None:
        """The user's levels, for TOL_USER_DEF and for a haversine"""
    @property
    def tol_specify(self) -> TolSpecify | None:
        """The levels of a standard, for TOL_SPECIFY"""
    @property
    def add_cmp(self) -> bool:
        """Whether compensation is added, so that the table ends at rest where it began; default False"""
    @property
    def cmp_non_sym(self) -> bool:
        """Whether the compensation before and after the pulse may differ; default False"""
    @property
    def cmp_type(self) -> CmpType:
        """Shape of the compensation; default CmpType.CMP_NONE"""
    @property
    def cmp_pre(self) -> float:
        """Scale of the bands before the pulse, within which the compensation keeps; usually 1; default 0.0"""
    @property
    def cmp_post(self) -> float:
        """Scale of the bands after the pulse, within which the compensation keeps; usually 1; default 0.0"""
    @property
    def cmp_pcal(self) -> float:
        """Kept for the controller; default 0.0"""
    @property
    def cmp_u1(self) -> float:
        """Result: level of the compensation before the pulse [ratio to the peak]; default 0.0"""
    @property
    def cmp_u2(self) -> float:
        """Result: level of the compensation after the pulse [ratio to the peak]; default 0.0"""
    @property
    def cmp_rgm1(self) -> float:
        """Result: share of the area that the compensation before the pulse takes [ratio to the area]; default 0.0"""
    @property
    def cmp_rgm2(self) -> float:
        """Result: share of the area that the compensation after the pulse takes [ratio to the area]; default 0.0"""
    @property
    def cmp_cparam(self) -> float:
        """Result: gain of the reshaping; default 0.0"""
    @property
    def cmp_err(self) -> bool:
        """Kept for the controller; default False"""
    @property
    def opt_rat_level(self) -> float:
        """Of CMP_OPTIMIZED: share of the tolerance that is spent on the stroke; 0 keeps the pulse nominal; default 0.0"""
    def replace(
        self,
        *,
        wave_kind: WaveKind | int = ...,
        main_ampl: float = ...,
        main_width: float = ...,
        main_rise: float = ...,
        main_fall: float = ...,
        main_shift: float = ...,
        rest_pre: float = ...,
        rest_post: float = ...,
        fmax: float = ...,
        nsamp: SupportsIndex = ...,
        wave_shift: float = ...,
        tol_kind: TolKind | int = ...,
        tol_user_def: TolUserDef | None = ...,
        tol_specify: TolSpecify | None = ...,
        add_cmp: bool = ...,
        cmp_non_sym: bool = ...,
        cmp_type: CmpType | int = ...,
        cmp_pre: float = ...,
        cmp_post: float = ...,
        cmp_pcal: float = ...,
        cmp_u1: float = ...,
        cmp_u2: float = ...,
        cmp_rgm1: float = ...,
        cmp_rgm2: float = ...,
        cmp_cparam: float = ...,
        cmp_err: bool = ...,
        opt_rat_level: float = ...,
    ) -> Classical: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class Symmetry:
    """Symmetry wave.

A frozen value.  Keyword arguments and properties:

    wave_kind: Shape of the pulses: HALF_SINE, TRIANGLE or HAVERSINE; required
    peak: Peak of the main pulse; not 0 [amplitude unit]; required
    width: Width of every pulse [s]; required
    peak_pos: Place of the peak of a triangle [widths]; default 0.0
    pre_zero: Silence before the first pulse [s]; default 0.0
    mid_zero: Silence between pulse and compensation, or before the divided pulse [s]; default 0.0
    post_zero: Silence after the last pulse [s]; default 0.0
    devide_comp: Whether the compensation is divided into halves before and after the pulse; default False
    comp_forward: Whether the compensation comes first, where it is not divided; default False
    mid_backward: Kept for the controller; default False
    mid_zero_backward: Silence between the pulse and the second half, where it is divided [s]; default 0.0"""

    def __init__(
        self,
        *,
        wave_kind: WaveKind | int,
        peak: float,
        width: float,
        peak_pos: float = 0.0,
        pre_zero: float = 0.0,
        mid_zero: float = 0.0,
        post_zero: float = 0.0,
        devide_comp: bool = False,
        comp_forward: bool = False,
        mid_backward: bool = False,
        mid_zero_backward: float = 0.0,
    ) -> None: ...
    @property
    def wave_kind(self) -> WaveKind:
        """Shape of the pulses: HALF_SINE, TRIANGLE or HAVERSINE; required"""
    @property
    def peak(self) -> float:
        """Peak of the main pulse; not 0 [amplitude unit]; required"""
    @property
    def width(self) -> float:
        """Width of every pulse [s]; required"""
    @property
    def peak_pos(self) -> float:
        """Place of the peak of a triangle [widths]; default 0.0"""
    @property
    def pre_zero(self) -> float:
        """Silence before the first pulse [s]; default 0.0"""
    @property
    def mid_zero(self) -> float:
        """Silence between pulse and compensation, or before the divided pulse [s]; default 0.0"""
    @property
    def post_zero(self) -> float:
        """Silence after the last pulse [s]; default 0.0"""
    @property
    def devide_comp(self) -> bool:
        """Whether the compensation is divided into halves before and after the pulse; default False"""
    @property
    def comp_forward(self) -> bool:
        """Whether the compensation comes first, where it is not divided; default False"""
    @property
    def mid_backward(self) -> bool:
        """Kept for the controller; default False"""
    @property
    def mid_zero_backward(self) -> float:
        """Silence between the pulse and the second half, where it is divided [s]; default 0.0"""
    def replace(
        self,
        *,
        wave_kind: WaveKind | int = ...,
        peak: float = ...,
        width: float = ...,
        peak_pos: float = ...,
        pre_zero: float = ...,
        mid_zero: float = ...,
        post_zero: float = ...,
        devide_comp: bool = ...,
        comp_forward: bool = ...,
        mid_backward: bool = ...,
        mid_zero_backward: float = ...,
    ) -> Symmetry: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class SineBeatBurst:
    """Sine beat or burst.

A frozen value.  Keyword arguments and properties:

    wave_kind: Beat or burst; required
    ampl: Amplitude of the sine; not 0 [amplitude unit]; required
    freq: Frequency of the sine [Hz]; required
    cycle: Length of a packet [cycles]; required
    frame: Number of packets [packets]; required
    rest_time: Rest between packets [s]; default 0.0
    edging: Whether the packets of a burst are tapered; default False
    edge_rise: Length of the taper at the beginning, with Edging [cycles]; default 0
    edge_fall: Length of the taper at the end, with Edging [cycles]; default 0
    edge_window: Shape of the tapers, with Edging; default EdgeWindow.WINDOW_NONE"""

    def __init__(
        self,
        *,
        wave_kind: SineBeatBurstWaveKind | int,
        ampl: float,
        freq: float,
        cycle: SupportsIndex,
        frame: SupportsIndex,
        rest_time: float = 0.0,
        edging: bool = False,
        edge_rise: SupportsIndex = 0,
        edge_fall: SupportsIndex = 0,
        edge_window: EdgeWindow | int = EdgeWindow.WINDOW_NONE,
    ) -> None: ...
    @property
    def wave_kind(self) -> SineBeatBurstWaveKind:
        """Beat or burst; required"""
    @property
    def ampl(self) -> float:
        """Amplitude of the sine; not 0 [amplitude unit]; required"""
    @property
    def freq(self) -> float:
        """Frequency of the sine [Hz]; required"""
    @property
    def cycle(self) -> int:
        """Length of a packet [cycles]; required"""
    @property
    def frame(self) -> int:
        """Number of packets [packets]; required"""
    @property
    def rest_time(self) -> float:
        """Rest between packets [s]; default 0.0"""
    @property
    def edging(self) -> bool:
        """Whether the packets of a burst are tapered; default False"""
    @property
    def edge_rise(self) -> int:
        """Length of the taper at the beginning, with Edging [cycles]; default 0"""
    @property
    def edge_fall(self) -> int:
        """Length of the taper at the end, with Edging [cycles]; default 0"""
    @property
    def edge_window(self) -> EdgeWindow:
        """Shape of the tapers, with Edging; default EdgeWindow.WINDOW_NONE"""
    def replace(
        self,
        *,
        wave_kind: SineBeatBurstWaveKind | int = ...,
        ampl: float = ...,
        freq: float = ...,
        cycle: SupportsIndex = ...,
        frame: SupportsIndex = ...,
        rest_time: float = ...,
        edging: bool = ...,
        edge_rise: SupportsIndex = ...,
        edge_fall: SupportsIndex = ...,
        edge_window: EdgeWindow | int = ...,
    ) -> SineBeatBurst: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class DataEdit:
    """An edit of measured samples.

A frozen value.  Keyword arguments and properties:

    kind: What was done; required
    first: First sample that was edited [samples]; default 0
    last: Last sample that was edited [samples]; default 0
    params: Parameters of the edit, as its kind has them; default []
    note: Note to the edit, free text; default ''"""

    def __init__(
        self,
        *,
        kind: DataEditKind | int,
        first: SupportsIndex = 0,
        last: SupportsIndex = 0,
        params: Sequence[float] = [],
        note: str = '',
    ) -> None: ...
    @property
    def kind(self) -> DataEditKind:
        """What was done; required"""
    @property
    def first(self) -> int:
        """First sample that was edited [samples]; default 0"""
    @property
    def last(self) -> int:
        """Last sample that was edited [samples]; default 0"""
    @property
    def params(self) -> tuple[float, ...]:
        """Parameters of the edit, as its kind has them; default []"""
    @property
    def note(self) -> str:
        """Note to the edit, free text; default ''"""
    def replace(
        self,
        *,
        kind: DataEditKind | int = ...,
        first: SupportsIndex = ...,
        last: SupportsIndex = ...,
        params: Sequence[float] = ...,
        note: str = ...,
    ) -> DataEdit: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class Measure:
    """Measured waveform.

A frozen value.  Keyword arguments and properties:

    meas_path: File that was measured; the samples are read from it, unless there are Samples; required
    data_edit_log: Edits that were made to the samples; default []
    samples: The samples, a read-only array [amplitude unit]; required"""

    def __init__(
        self,
        *,
        meas_path: str,
        data_edit_log: Sequence[DataEdit] = [],
        samples: npt.ArrayLike,
    ) -> None: ...
    @property
    def meas_path(self) -> str:
        """File that was measured; the samples are read from it, unless there are Samples; required"""
    @property
    def data_edit_log(self) -> tuple[DataEdit, ...]:
        """Edits that were made to the samples; default []"""
    @property
    def samples(self) -> FloatArray:
        """The samples, a read-only array [amplitude unit]; required"""
    def replace(
        self,
        *,
        meas_path: str = ...,
        data_edit_log: Sequence[DataEdit] = ...,
        samples: npt.ArrayLike = ...,
    ) -> Measure: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class Gradual:
    """Gradual sine wave.

A frozen value.  Keyword arguments and properties:

    period: Period of the sine [s]; required
    level_beg: Amplitude at the beginning of the ramp [amplitude unit]; required
    level_end: Amplitude at the end of the ramp [amplitude unit]; required
    length_type: What gives the length of the ramp; required
    wave_time: Length of the ramp, for LENGTH_BY_TIME [s]; default 0.0
    wave_slope: Change of the amplitude, for LENGTH_BY_SLOPE; not 0 [amplitude unit/s]; default 0.0
    pre_time: Length of the rise from 0 to LevelBeg [s]; default 0.0
    edge_time: Kept for the controller [s]; default 0.0
    nsamp: Length of the waveform [samples]; required"""

    def __init__(
        self,
        *,
        period: float,
        level_beg: float,
        level_end: float,
        length_type: LengthType | int,
        wave_time: float = 0.0,
        wave_slope: float = 0.0,
        pre_time: float = 0.0,
        edge_time: float = 0.0,
        nsamp: SupportsIndex,
    ) -> None: ...
    @property
    def period(self) -> float:
        """Period of the sine [s]; required"""
    @property
    def level_beg(self) -> float:
        """Amplitude at the beginning of the ramp [amplitude unit]; required"""
    @property
    def level_end(self) -> float:
        """Amplitude at the end of the ramp [amplitude unit]; required"""
    @property
    def length_type(self) -> LengthType:
        """What gives the length of the ramp; required"""
    @property
    def wave_time(self) -> float:
        """Length of the ramp, for LENGTH_BY_TIME [s]; default 0.0"""
    @property
    def wave_slope(self) -> float:
        """Change of the amplitude, for LENGTH_BY_SLOPE; not 0 [amplitude unit/s]; default 0.0"""
    @property
    def pre_time(self) -> float:
        """Length of the rise from 0 to LevelBeg [s]; default 0.0"""
    @property
    def edge_time(self) -> float:
        """Kept for the controller [s]; default 0.0"""
    @property
    def nsamp(self) -> int:
        """Length of the waveform [samples]; required"""
    def replace(
        self,
        *,
        period: float = ...,
        level_beg: float = ...,
        level_end: float = ...,
        length_type: LengthType | int = ...,
        wave_time: float = ...,
        wave_slope: float = ...,
        pre_time: float = ...,
        edge_time: float = ...,
        nsamp: SupportsIndex = ...,
    ) -> Gradual: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class Single:
    """Single sine wave.

A frozen value.  Keyword arguments and properties:

    period: Period of the sine [s]; required
    peak_level: Amplitude of the sine [amplitude unit]; required
    length_type: How the length was stated; kept for the controller; default 0
    wave_time: Duration as it was stated; kept for the controller [s]; default 0.0
    wave_period: Length in terms of its own; kept for the controller; default 0.0
    edge_time: Length of each linear edge [s]; default 0.0
    nsamp: Length of the waveform [samples]; required"""

    def __init__(
        self,
        *,
        period: float,
        peak_level: float,
        length_type: SupportsIndex = 0,
        wave_time: float = 0.0,
        wave_period: float = 0.0,
        edge_time: float = 0.0,
        nsamp: SupportsIndex,
    ) -> None: ...
    @property
    def period(self) -> float:
        """Period of the sine [s]; required"""
    @property
    def peak_level(self) -> float:
        """Amplitude of the sine [amplitude unit]; required"""
    @property
    def length_type(self) -> int:
        """How the length was stated; kept for the controller; default 0"""
    @property
    def wave_time(self) -> float:
        """Duration as it was stated; kept for the controller [s]; default 0.0"""
    @property
    def wave_period(self) -> float:
        """Length in terms of its own; kept for the controller; default 0.0"""
    @property
    def edge_time(self) -> float:
        """Length of each linear edge [s]; default 0.0"""
    @property
    def nsamp(self) -> int:
        """Length of the waveform [samples]; required"""
    def replace(
        self,
        *,
        period: float = ...,
        peak_level: float = ...,
        length_type: SupportsIndex = ...,
        wave_time: float = ...,
        wave_period: float = ...,
        edge_time: float = ...,
        nsamp: SupportsIndex = ...,
    ) -> Single: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class DampingElement:
    """A component of a damped-sine synthesis.

A frozen value.  Keyword arguments and properties:

    freq: Frequency of the component [Hz]; required
    ampl: Amplitude of the component [amplitude unit]; required
    zeta: Damping ratio of the component; without effect on a wavelet; default 0.0
    num_half: Length of a wavelet; odd, 3 or more [half cycles]; default 0
    delay: Beginning of the component [s]; default 0.0"""

    def __init__(
        self,
        *,
        freq: float,
        ampl: float,
        zeta: float = 0.0,
        num_half: SupportsIndex = 0,
        delay: float = 0.0,
    ) -> None: ...
    @property
    def freq(self) -> float:
        """Frequency of the component [Hz]; required"""
    @property
    def ampl(self) -> float:
        """Amplitude of the component [amplitude unit]; required"""
    @property
    def zeta(self) -> float:
        """Damping ratio of the component; without effect on a wavelet; default 0.0"""
    @property
    def num_half(self) -> int:
        """Length of a wavelet; odd, 3 or more [half cycles]; default 0"""
    @property
    def delay(self) -> float:
        """Beginning of the component [s]; default 0.0"""
    def replace(
        self,
        *,
        freq: float = ...,
        ampl: float = ...,
        zeta: float = ...,
        num_half: SupportsIndex = ...,
        delay: float = ...,
    ) -> DampingElement: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

class Damping:
    """Damped-sine synthesis.

A frozen value.  Keyword arguments and properties:

    nsamp: Length of the waveform [samples]; required
    sync_wave_type: Method of the synthesis; required
    freq: Frequency of the compensating component, for SYNC_WAVE_DAMPED_SINE [Hz]; default 0.0
    zeta: Damping ratio of the compensating component, for SYNC_WAVE_DAMPED_SINE; default 0.0
    elements: The components; required"""

    def __init__(
        self,
        *,
        nsamp: SupportsIndex,
        sync_wave_type: SyncWaveType | int,
        freq: float = 0.0,
        zeta: float = 0.0,
        elements: Sequence[DampingElement],
    ) -> None: ...
    @property
    def nsamp(self) -> int:
        """Length of the waveform [samples]; required"""
    @property
    def sync_wave_type(self) -> SyncWaveType:
        """Method of the synthesis; required"""
    @property
    def freq(self) -> float:
        """Frequency of the compensating component, for SYNC_WAVE_DAMPED_SINE [Hz]; default 0.0"""
    @property
    def zeta(self) -> float:
        """Damping ratio of the compensating component, for SYNC_WAVE_DAMPED_SINE; default 0.0"""
    @property
    def elements(self) -> tuple[DampingElement, ...]:
        """The components; required"""
    def replace(
        self,
        *,
        nsamp: SupportsIndex = ...,
        sync_wave_type: SyncWaveType | int = ...,
        freq: float = ...,
        zeta: float = ...,
        elements: Sequence[DampingElement] = ...,
    ) -> Damping: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

ParameterSet = Union[Classical, Symmetry, SineBeatBurst, Measure, Gradual, Single, Damping]

class Waveform:
    """A defined waveform between its tolerance bands.

It never changes: a new definition is a new object.  Its arrays are read-only views that
keep it alive.  It is made by define, from_json and from_record."""

    @property
    def long_wave(self) -> bool:
        """Long-wave mode; kept for the controller; default False"""
    @property
    def max_nsamp(self) -> int:
        """Largest length that is allowed; kept for the controller [samples]; default 0"""
    @property
    def auto_fsamp(self) -> bool:
        """Automatic sampling; kept for the controller; default False"""
    @property
    def fsamp(self) -> float:
        """Sampling frequency; a classical pulse has its own, 2.56 Fmax [Hz]; default 0.0"""
    @property
    def unit_ampl(self) -> str | dict[str, Any]:
        """Unit of the amplitude; default ''"""
    @property
    def tol_upper_rat(self) -> float:
        """Distance of the upper band from the waveform [ratio to the peak]; default 0.0"""
    @property
    def tol_lower_rat(self) -> float:
        """Distance of the lower band from the waveform; negative [ratio to the peak]; default 0.0"""
    @property
    def time(self) -> FloatArray: ...
    @property
    def wave(self) -> FloatArray: ...
    @property
    def upper(self) -> FloatArray: ...
    @property
    def lower(self) -> FloatArray: ...
    @property
    def set(self) -> ParameterSet: ...
    @property
    def family(self) -> str: ...
    @property
    def title(self) -> str: ...
    @property
    def unit_text(self) -> str: ...
    @property
    def sample_rate(self) -> float: ...
    @staticmethod
    def from_json(
        text: str, *, samples: Callable[[str], tuple[npt.ArrayLike, float | None]] | None = None
    ) -> Waveform: ...
    def to_json(self) -> str: ...
    @staticmethod
    def from_record(record: bytes) -> Waveform: ...
    def to_record(self) -> bytes: ...
    def plot(self, axes: Any = None) -> Any: ...
    def __len__(self) -> int: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]

@overload
def define(
        set: Classical,
        /,
        *,
        long_wave: bool = False,
        max_nsamp: SupportsIndex = 0,
        auto_fsamp: bool = False,
        fsamp: float = ...,
        unit_ampl: str | dict[str, Any] = '',
        tol_upper_rat: float = 0.0,
        tol_lower_rat: float = 0.0,
    ) -> Waveform: ...
@overload
def define(
        set: ParameterSet,
        /,
        *,
        long_wave: bool = False,
        max_nsamp: SupportsIndex = 0,
        auto_fsamp: bool = False,
        fsamp: float,
        unit_ampl: str | dict[str, Any] = '',
        tol_upper_rat: float = 0.0,
        tol_lower_rat: float = 0.0,
    ) -> Waveform: ...
@overload
def check(
        set: Classical,
        /,
        *,
        long_wave: bool = False,
        max_nsamp: SupportsIndex = 0,
        auto_fsamp: bool = False,
        fsamp: float = ...,
        unit_ampl: str | dict[str, Any] = '',
        tol_upper_rat: float = 0.0,
        tol_lower_rat: float = 0.0,
    ) -> tuple[Finding, ...]: ...
@overload
def check(
        set: ParameterSet,
        /,
        *,
        long_wave: bool = False,
        max_nsamp: SupportsIndex = 0,
        auto_fsamp: bool = False,
        fsamp: float,
        unit_ampl: str | dict[str, Any] = '',
        tol_upper_rat: float = 0.0,
        tol_lower_rat: float = 0.0,
    ) -> tuple[Finding, ...]: ...

_Value = Union[float, int, str, list[str]]
_Entries = list[tuple[str, str, _Value, str]]
_Motion = tuple[
    FloatArray, FloatArray, str, str, float, float, float, float, float
]

def motion_of_waveform(waveform: Waveform, /) -> _Motion: ...
def motion_of_samples(acceleration: npt.ArrayLike, fsamp: float, unit: str, /) -> _Motion: ...
def spectrum(
    acceleration: npt.ArrayLike,
    fsamp: float,
    unit: str,
    response: str,
    q: float,
    damping: float | None,
    from_: float | None,
    to: float | None,
    per_octave: float,
    points: int | None,
    /,
) -> tuple[
    FloatArray, FloatArray, FloatArray, FloatArray, FloatArray, str, str, float, bool
]: ...
def report(waveform: Waveform, machine: str | None, /) -> tuple[_Entries, str]: ...
_Deviation = tuple[float, float, float, int, int]

def synthesize(
    requirement: str,
    machine: str | None,
    shape: str,
    method: str,
    minimize: str,
    within: float,
    seed: int,
    quick: bool,
    progress: Callable[[float], object] | None,
    /,
) -> tuple[Waveform, _Deviation, _Deviation, str, _Entries, str, list[str]] | None: ...
def judge(
    waveform: Waveform,
    record: npt.ArrayLike,
    fsamp: float,
    unit: str,
    begin: float,
    dv_tol: float,
    force: bool,
    /,
) -> tuple[bool, str, FloatArray, int, int, _Entries, list[str], str, float]: ...
def read_signals(bytes: bytes, /) -> list[
    tuple[FloatArray, float | None, str, str, float]
]: ...
def sampled_at(
    samples: npt.ArrayLike, start: float, step: float, count: int, /
) -> FloatArray: ...

_fields: dict[str, list[tuple[str, str, str, bool, str, str]]]
