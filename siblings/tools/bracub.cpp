// BRACUB: the root of a cubic equation of state that belongs to a phase.
//
// With f(Z) = Z^3 + c1 Z^2 + c2 Z + c3 and B > 0 the physical roots lie above B. For the usual constants
// (1 + u + w > 0) f(B) < 0, so there are one or three of them. The extrema of f tell which, and enclose the
// root wanted; the start inside the enclosure comes from the trigonometric form of the cubic, replaced by
// short series, and third-order (Halley) steps finish it to the last bits. A step that leaves the enclosure is
// replaced by a bisection, so the iteration cannot fail. [W. H. Press et al. for the enclosed iteration;
// U. K. Deiters, Chem. Eng. Technol. 25 (2002) 220 for the extrema as guides.]

#include <cmath>
#include <cstdint>

#include "entry.hpp"
#include "kestrune/kvtoolslite.h"

namespace kestrune::tools {
namespace {

constexpr int kNoRoot = 51;
constexpr int kOtherPhase = 1;
constexpr int kMaxSteps = 200;  // bisections of the whole double range; never reached in practice

struct Cubic {
  double c1, c2, c3;
  double at(double z) const { return ((z + c1) * z + c2) * z + c3; }
};

struct Enclosure {
  double lo, hi;  // f(lo) <= 0 <= f(hi), one root between
};

// Halley's iteration from z inside the enclosure. With r = d f''/(2 f') the error left after a step d is about
// d (r^2 + d^2/|f'|), which is the stopping rule: no evaluation is spent on finding out that it converged.
double polish(const Cubic& c, Enclosure e, double z, double tolerance) {
  double last = e.hi - e.lo;
  for (int k = 0; k < kMaxSteps; ++k) {
    const double f = c.at(z);
    if (f == 0.0) return z;
    (f < 0.0 ? e.lo : e.hi) = z;
    const double f1 = (3.0 * z + 2.0 * c.c1) * z + c.c2;
    const double f2h = 3.0 * z + c.c1;
    const double denominator = f1 * f1 - f * f2h;
    const double step = f * f1 / denominator;
    const double next = z - step;
    const double size = std::fabs(step);
    if (next > e.lo && next < e.hi && size < last) {
      last = size;
      z = next;
      // (r^2 + d^2/|f'|) f'^2 without another division.
      const double left = size * size * (f2h * f2h + std::fabs(f1));
      if (size * left <= tolerance * z * f1 * f1) return z;
      continue;
    }
    // Beside an extremum of f a step is short as well.
    if (size <= 1e-15 * std::fabs(z) && std::fabs(f) <= 1e-14 * std::fabs(z * f1)) return z;
    z = 0.5 * (e.lo + e.hi);
    if (z <= e.lo || z >= e.hi) return z;  // the enclosure is two neighbouring doubles
    last = e.hi - e.lo;
  }
  return z;
}

// Cube root within 1e-5 of a normal number: a third of the exponent and of the leading bits, then Halley's step.
// Only ever a starting value.
double rough_cbrt(double x) {
  const auto high = static_cast<std::uint32_t>(__builtin_bit_cast(std::uint64_t, x) >> 32) / 3 + 715094163u;
  const double c = __builtin_bit_cast(double, static_cast<std::uint64_t>(high) << 32);
  const double cube = c * c * c;
  return c * (cube + 2.0 * x) / (2.0 * cube + x);
}

// Largest root of t^3 - 3 t + q = 0 for -2 <= q <= 2: 2 cos(2 a/3) with cos a = sqrt(2 - q)/2, as a series in that
// cosine. Within 6e-7, and by its first two terms exact beside the double root at q = 2.
double largest_of_three(double q) {
  const double s = 0.5 * std::sqrt(2.0 - q > 0.0 ? 2.0 - q : 0.0), s2 = s * s;
  const double middle = -0.222018756 + s * 0.104602781;
  const double high = -0.0558596474 + s * 0.0236366376 - s2 * 0.00506208845;
  return (1.0 + s * 1.1547005383792517) + s2 * (middle + s2 * high);
}

// Root of t^3 + sign 3 t = q for q > 0, the only real one (sign +1), or the one above 2 (sign -1, q > 2).
double only_root(double sign, double q) {
  const double c = rough_cbrt(0.5 * (q + std::sqrt(q * q + 4.0 * sign)));
  return c - sign / c;
}

enum class Root { largest, smallest, right, left };

struct Choice {
  Root root;
  Enclosure e;
  int status;
};

// Places of the maximum and the minimum of f (d = c1^2 - 3 c2 > 0), to full relative precision.
Enclosure extrema(const Cubic& c, double d) {
  const double s = std::sqrt(d);
  const double q = c.c1 > 0.0 ? -c.c1 - s : -c.c1 + s;
  return c.c1 > 0.0 ? Enclosure{q / 3.0, c.c2 / q} : Enclosure{c.c2 / q, q / 3.0};
}

// Which root, and where it is enclosed. With the inflection point at z0 and h^2 = (c1^2 - 3 c2)/9 the cubic has
// three real roots when f(z0)^2 <= 4 h^6; close to equality (a double root, or two roots that are tiny beside
// the third) the values of f at its extrema decide.
Choice choose(const Cubic& c, double d, double z0, double f0, double B, bool gas) {
  double top = 1.0 + B;  // f(1 + B) >= 0 for every A >= 0; a negative A is beyond it
  while (!(c.at(top) >= 0.0) && top < 1e300) top *= 2.0;
  const double h2 = d / 9.0;
  const double excess = f0 * f0 - 4.0 * h2 * h2 * h2;
  if (d > 0.0 && excess <= 1e-6 * f0 * f0) {
    Enclosure x{};
    bool three = true;
    if (excess >= -1e-6 * f0 * f0) {
      x = extrema(c, d);
      three = c.at(x.lo) >= 0.0 && c.at(x.hi) <= 0.0;
    } else {
      const double h = std::sqrt(h2);
      x = {z0 - h, z0 + h};
    }
    if (three) {
      if (!gas && x.lo > B) return {Root::smallest, {B, x.lo}, 0};
      return {Root::largest, {x.hi > B ? x.hi : B, top}, gas ? 0 : kOtherPhase};
    }
  }
  if (f0 > 0.0 && z0 > B) return {Root::left, {B, z0}, gas ? kOtherPhase : 0};
  return {Root::right, {z0 > B ? z0 : B, top}, gas ? 0 : kOtherPhase};
}

// Start from the shape of the cubic, in units of h from the inflection point.
double shape_start(Root root, double d, double z0, double f0) {
  const double h = std::sqrt(std::fabs(d)) / 3.0;
  const double h3 = h * h * h;
  if (!(h3 > 0.0)) return z0;
  const double q = f0 / h3;
  switch (root) {
    case Root::largest:
      return z0 + h * largest_of_three(q);
    case Root::smallest:
      return z0 - h * largest_of_three(-q);
    default:
      return z0 + (root == Root::right ? h : -h) * only_root(d > 0.0 ? -1.0 : 1.0, std::fabs(q));
  }
}

// Start of a root that is tiny beside the others, where the inflection point has no digits left for it:
// the smaller root of the quadratic that remains when Z^3 is dropped.
double small_start(const Cubic& c) {
  const double d = c.c2 * c.c2 - 4.0 * c.c1 * c.c3;
  return -2.0 * c.c3 / (c.c2 + std::sqrt(d > 0.0 ? d : 0.0));
}

}  // namespace

int solve_cubic(const Cubic& c, bool usual, double A, double B, bool gas, double tolerance, bool started,
                double& Z) {
  // f(B) = -(1 + u + w) B^2: with the usual constants there is always a root above B.
  if (!(B > 0.0 && std::isfinite(B) && std::isfinite(A)) || (!usual && !(c.at(B) < 0.0))) return kNoRoot;
  const double z0 = -c.c1 / 3.0;
  const double d = c.c1 * c.c1 - 3.0 * c.c2;
  const double f0 = c.at(z0);
  const Choice choice = choose(c, d, z0, f0, B, gas);
  const auto inside = [&](double z) { return z > choice.e.lo && z < choice.e.hi; };
  double start = Z;
  if (!started || !inside(start)) {
    start = 1.0 + (B - A) + A * (4.0 * B - A);  // a dilute gas: its virial series
    if (!(A < 0.3 && B < 0.1) || !inside(start)) start = shape_start(choice.root, d, z0, f0);
    if (!(start > 1e-3 * std::fabs(c.c1))) start = small_start(c);
    if (!inside(start)) start = 0.5 * (choice.e.lo + choice.e.hi);
  }
  const double root = polish(c, choice.e, start, tolerance > 1e-17 ? tolerance : 1e-17);
  if (!(root > B * (1.0 - 1e-9))) return kNoRoot;    // coefficients that do not belong to A and B
  Z = root > B ? root : std::nextafter(B, 2.0 * B);  // Z - B below the resolution of B
  return choice.status;
}

}  // namespace kestrune::tools

KV_ENTRY void KV_CALL BRACUB(const double* c0, const double* c1, const double* c2, const double* c3, double* Z,
                             int32_t* status, const int32_t* phase, const double* u, const double* w,
                             const double* A, const double* B, const double* settings) {
  kestrune::tools::Cubic c{*c1, *c2, *c3};
  if (*c0 != 1.0) {
    const double s = 1.0 / *c0;
    c = {*c1 * s, *c2 * s, *c3 * s};
  }
  // No cubic: c0 is 0, or a coefficient is not finite, as given or in units of c0.
  if (!(std::isfinite(*c0) && std::isfinite(c.c1) && std::isfinite(c.c2) && std::isfinite(c.c3))) {
    *status = kestrune::tools::kNoRoot;
    return;
  }
  const double tolerance = settings ? settings[0] : 0.0;
  const bool started = settings && settings[1] != 0.0;
  *status = kestrune::tools::solve_cubic(c, 1.0 + *u + *w > 0.0, *A, *B, *phase == 1, tolerance, started, *Z);
}
