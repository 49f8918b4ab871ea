// Complex numbers, with divisions that are the same everywhere.
#pragma once

namespace qarv::synthesis {

struct Complex {
  double re = 0.0, im = 0.0;

  Complex operator+(Complex b) const { return {re + b.re, im + b.im}; }
  Complex operator-(Complex b) const { return {re - b.re, im - b.im}; }
  Complex operator-() const { return {-re, -im}; }
  Complex operator*(Complex b) const { return {re * b.re - im * b.im, re * b.im + im * b.re}; }
  Complex operator*(double b) const { return {re * b, im * b}; }
  Complex operator/(Complex b) const {
    const double size = b.re * b.re + b.im * b.im;
    return {(re * b.re + im * b.im) / size, (im * b.re - re * b.im) / size};
  }
};

}  // namespace qarv::synthesis
