#!/usr/bin/env python3
"""Looks for what would give other bits on another machine: a function of <cmath> that is not exactly
rounded, and long double.

    check_numerics.py FOLDER...
"""
import pathlib
import re
import sys

INEXACT = '''acos acosh asin asinh atan atan2 atanh cbrt cos cosh erf erfc exp exp2 expm1 fma hypot lgamma
log log10 log1p log2 pow sin sincos sinh tan tanh tgamma lerp beta expint riemann_zeta legendre hermite laguerre
cyl_bessel_i cyl_bessel_j cyl_bessel_k cyl_neumann ellint_1 ellint_2 ellint_3 sph_bessel sph_neumann'''.split()
CALL = re.compile(r'(?<![\w.>])(?:std::|::)?(' + '|'.join(INEXACT) + r')[fl]?\s*\(')
WIDE = re.compile(r'\blong\s+double\b|\b__float128\b|std::(numbers|complex|polar)\b')


def code_of(text):
    """The text without comments and string literals, line by line."""
    blank = lambda m: re.sub(r'[^\n]', ' ', m.group())
    return re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', blank, text, flags=re.S)


def findings(path):
    for number, line in enumerate(code_of(path.read_text()).splitlines(), 1):
        for pattern in (CALL, WIDE):
            for match in pattern.finditer(line):
                yield f'{path}:{number}: {match.group().strip()}'


files = [f for folder in sys.argv[1:] for f in sorted(pathlib.Path(folder).rglob('*')) if f.suffix in ('.h', '.cpp')]
assert len(files) > 20, 'the folders hold no sources'
assert re.search(CALL, 'x = std::sin (y)') and not re.search(CALL, 'x = Sin(y) + a.log(y)')
found = [line for f in files for line in findings(f)]
print('\n'.join(found))
sys.exit(1 if found else 0)
