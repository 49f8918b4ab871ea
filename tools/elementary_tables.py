#!/usr/bin/env python3
"""Prints common/src/numeric/elementary/tables.h: the constants and tables of the elementary functions.

Everything is computed in integers scaled by 2^BITS, from series, with far more bits than are printed; no
floating-point function of any library takes part.

    tools/elementary_tables.py > common/src/numeric/elementary/tables.h
"""

from fractions import Fraction

BITS = 1400
ONE = 1 << BITS


def arctan_of_inverse(n):
    """atan(1 / n), by its series."""
    term = ONE // n
    total, k, sign = 0, 1, 1
    while term:
        total += sign * (term // k)
        term //= n * n
        k += 2
        sign = -sign
    return total


def exponential(x):
    """e^x for 0 <= x < 1, by its series."""
    total = term = ONE
    k = 1
    while term:
        term = (term * x >> BITS) // k
        total += term
        k += 1
    return total


def sine_cosine(x):
    """sin x and cos x for 0 <= x < 2, by their series."""
    sine = cosine = 0
    term, k = ONE, 0
    while term:
        sign = 1 if k % 4 < 2 else -1
        if k % 2:
            sine += sign * term
        else:
            cosine += sign * term
        k += 1
        term = (term * x >> BITS) // k
    return sine, cosine


PI = 4 * (4 * arctan_of_inverse(5) - arctan_of_inverse(239))


def natural_logarithm_of_two():
    """2 atanh(1 / 3), by its series."""
    term = 2 * ONE // 3
    total, k = 0, 1
    while term:
        total += term // k
        term //= 9
        k += 2
    return total


LN2 = natural_logarithm_of_two()


def cut(x, bits):
    """The multiple of a power of two that is nearest to x and has this many bits."""
    size = abs(x)
    shift = max(size.bit_length() - bits, 0)
    size = (size + (1 << shift >> 1)) >> shift << shift
    return size if x >= 0 else -size


def literal(x):
    """x, which has at most 53 bits, as a hexadecimal double."""
    value = float(Fraction(x, ONE))
    assert Fraction(value) == Fraction(x, ONE)
    return value.hex() if value else '0.0'


def parts(x, *bits):
    """x as a sum of doubles of these many bits."""
    found = []
    for b in bits:
        found.append(cut(x, b))
        x -= found[-1]
    return [literal(p) for p in found]


def constant(name, value, comment):
    print(f'inline constexpr double {name} = {value};  // {comment}')


def table(name, rows, comment):
    print(f'\n// {comment}')
    print(f'inline constexpr double {name}[{len(rows)}][2] = {{')
    for high, low in rows:
        print(f'    {{{high}, {low}}},')
    print('};')


print('''// Constants and tables of the elementary functions.  Drawn by tools/elementary_tables.py.
#pragma once

#include <cstdint>

// clang-format off
namespace qarv::common::elementary {
''')
step = PI // 128
constant('kStepsPerRadian', literal(cut((128 << 2 * BITS) // PI, 53)), '128 / pi')
for i, value in enumerate(parts(step, 24, 24, 24, 53), 1):
    constant(f'kStep{i}', value, f'pi / 128, part {i}')
high, low = parts(step, 53, 53)
constant('kStepHigh', high, 'pi / 128 as two doubles')
constant('kStepLow', low, 'its remainder')
constant('kHalfPi', literal(cut(PI // 2, 53)), 'pi / 2')
log_step = LN2 // 256
constant('kLogStepsPerUnit', literal(cut((256 << 2 * BITS) // LN2, 53)), '256 / ln 2')
for i, value in enumerate(parts(log_step, 34, 34, 53), 1):
    constant(f'kLogStep{i}', value, f'ln 2 / 256, part {i}')
high, low = parts(LN2, 53, 53)
constant('kLn2', high, 'ln 2')

sines = []
quarter = [sine_cosine(step * k)[0] if k < 33 else sine_cosine(step * (64 - k))[1] for k in range(65)]
quarter[0], quarter[64] = 0, ONE
for k in range(256 + 64):
    k %= 256
    sign = 1 if k < 128 else -1
    k %= 128
    sines.append(parts(sign * quarter[k if k <= 64 else 128 - k], 27, 53))
table('kSine', sines, 'sin(k pi / 128) as two doubles, the first of 27 bits; the cosine stands 64 rows on')
table('kPower', [parts(exponential(log_step * k), 27, 53) for k in range(256)],
      '2^(k / 256) as two doubles, the first of 27 bits')

words = 40
digits = (2 * (ONE << 32 * words)) // PI
print('\n// The binary digits of 2 / pi behind the point, in words of 32.')
print(f'inline constexpr std::uint32_t kTwoOverPi[{words}] = {{')
for i in range(0, words, 8):
    row = [f'0x{digits >> 32 * (words - 1 - j) & 0xffffffff:08x}u' for j in range(i, i + 8)]
    print('    ' + ', '.join(row) + ',')
print('''};

}  // namespace qarv::common::elementary
// clang-format on''')
