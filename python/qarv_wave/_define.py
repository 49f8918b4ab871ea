"""The functions that make and check waveforms, as functions that other processes can be sent."""
# A function of the extension cannot be pickled, and so not be mapped over a pool.  The stub of this
# file has their arguments.
from . import _core


def define(set, /, **settings):
    return _core.define(set, **settings)


def check(set, /, **settings):
    return _core.check(set, **settings)


def from_json(text, *, samples=None):
    return _core.from_json(text, samples)


def from_record(record):
    return _core.from_record(record)


for _function in (define, check):
    _function.__doc__ = getattr(_core, _function.__name__).__doc__
    _function.__module__ = "qarv_wave"
for _function in (from_json, from_record):
    _function.__doc__ = getattr(_core, _function.__name__).__doc__
    _function.__module__ = "qarv_wave"
    _function.__qualname__ = f"Waveform.{_function.__name__}"
    setattr(_core.Waveform, _function.__name__, staticmethod(_function))
