// Elementary functions with the same bits on every machine.
//
// The contract: a result is at most 0.501 units in the last place away from the exact one (Atan2
// and Tan: 2), and depends on the argument alone: not on the processor, its instruction set, the
// compiler, the C library or the number of values computed at once.  The functions are made of IEEE
// additions, multiplications and divisions in double, of comparisons and of operations on bits; no
// fused multiply-add takes part.  Every NaN that they return is the same one.
//
// Zeros, infinities and huge arguments: Sin(+-0) is +-0, Sin and Cos of an infinity are NaN, every
// finite argument is reduced exactly; Exp is 0 below -745.2 and infinite above 709.8, and rounded
// once where it is subnormal; Log is -infinity at 0 and NaN below; Atan keeps the sign of 0.
//
// The block functions take spans of one size, x and y being the same or apart.  They give what the
// functions of one value give, two to four times as fast.
#pragma once

#include <span>

#include "numeric/instruction_set.h"

namespace qarv::common::elementary {

double Sin(double x);
double Cos(double x);
double Exp(double x);
double Log(double x);
double Atan(double x);

/// Sin(x) / Cos(x).
double Tan(double x);

/// The angle of the point (x, y), -pi to pi, as the C library defines it for zeros and infinities.
double Atan2(double y, double x);

void Sin(std::span<const double> x, std::span<double> y, InstructionSet set = BestInstructionSet());
void Cos(std::span<const double> x, std::span<double> y, InstructionSet set = BestInstructionSet());
void Exp(std::span<const double> x, std::span<double> y, InstructionSet set = BestInstructionSet());

}  // namespace qarv::common::elementary
