// Sine and cosine.
#include "numeric/elementary.h"
#include "numeric/elementary/sine_block.h"

namespace qarv::common::elementary {

double Sin(double x) { return OneValue<Angle<SineKind>>(x); }
double Cos(double x) { return OneValue<Angle<CosineKind>>(x); }

double Tan(double x) { return Sin(x) / Cos(x); }

void Sin(std::span<const double> x, std::span<double> y, InstructionSet set) {
  AllValues<Angle<SineKind>>(x, y, set);
}
void Cos(std::span<const double> x, std::span<double> y, InstructionSet set) {
  AllValues<Angle<CosineKind>>(x, y, set);
}

}  // namespace qarv::common::elementary
