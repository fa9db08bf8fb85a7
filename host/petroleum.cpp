#include "petroleum.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "error.hpp"
#include "text.hpp"
#include "units.hpp"

namespace kestrune::host {

namespace {

constexpr double kRankine = 1.8;                // degrees R in a kelvin
constexpr double kFt3LbmolInCm3Mol = 62.42796;  // 28316.846592/453.59237
constexpr std::string_view kNames[] = {"lee-kesler", "twu", "riazi-daubert"};

double square(double x) {
  return x * x;
}

CriticalConstants lee_kesler(double Tb, double SG) {
  const double R = kRankine * Tb;
  const double Tc = 189.8 + 450.6 * SG + (0.4244 + 0.1174 * SG) * Tb + (0.1441 - 1.0069 * SG) * 1e5 / Tb;
  const double ln_psia = 8.3634 - 0.0566 / SG - (0.24244 + 2.2898 / SG + 0.11857 / (SG * SG)) * 1e-3 * R +
                         (1.4685 + 3.648 / SG + 0.47227 / (SG * SG)) * 1e-7 * R * R -
                         (0.42019 + 1.6977 / (SG * SG)) * 1e-10 * R * R * R;
  return {Tc, std::exp(ln_psia) * kPsiInPa, 0.0, 0.0};
}

CriticalConstants riazi_daubert(double Tb, double SG) {
  return {19.0623 * std::pow(Tb, 0.58848) * std::pow(SG, 0.3596),
          5.53027e7 * std::pow(Tb, -2.3125) * std::pow(SG, 2.3201) * 1e5, 0.0, 0.0};
}

// The normal alkane of this boiling point, perturbed by the difference of the specific gravities.
CriticalConstants twu(double Tb, double SG) {
  const double R = kRankine * Tb, root = std::sqrt(R);
  const double Tc0 = R / (0.533272 + 0.191017e-3 * R + 0.779681e-7 * R * R - 0.284376e-10 * R * R * R +
                          0.959468e28 / std::pow(R, 13.0));
  const double a = 1.0 - R / Tc0;
  const double Pc0 =
      square(3.83354 + 1.19629 * std::sqrt(a) + 34.8888 * a + 36.1952 * a * a + 104.193 * square(a * a));
  const double Vc0 =
      std::pow(1.0 - (0.419869 - 0.505839 * a - 1.56436 * a * a * a - 9481.7 * std::pow(a, 14.0)), -8.0);
  const double SG0 = 0.843593 - 0.128624 * a - 3.36159 * a * a * a - 13749.5 * std::pow(a, 12.0);
  const auto factor = [](double f) { return square((1.0 + 2.0 * f) / (1.0 - 2.0 * f)); };
  const double t = std::expm1(5.0 * (SG0 - SG));
  const double Tc = Tc0 * factor(t * (-0.362456 / root + (0.0398285 - 0.948125 / root) * t));
  const double v = std::expm1(4.0 * (SG0 * SG0 - SG * SG));
  const double Vc = Vc0 * factor(v * (0.466590 / root + (-0.182421 + 3.01721 / root) * v));
  const double p = std::expm1(0.5 * (SG0 - SG));
  const double fp =
      p * ((2.53262 - 46.1955 / root - 0.00127885 * R) + (-11.4277 + 252.140 / root + 0.00230535 * R) * p);
  const double Pc = Pc0 * (Tc / Tc0) * (Vc0 / Vc) * factor(fp);
  return {Tc / kRankine, Pc * kPsiInPa, Vc * kFt3LbmolInCm3Mol, 0.0};
}

}  // namespace

Correlation correlation_by_name(std::string_view name) {
  const std::string key = search_key(name);
  for (std::size_t k = 0; k < std::size(kNames); ++k)
    if (search_key(kNames[k]) == key) return static_cast<Correlation>(k);
  throw InputError(fmt::format("unknown correlation \"{}\": use lee-kesler, twu or riazi-daubert", name));
}

std::string_view correlation_name(Correlation correlation) {
  return kNames[static_cast<std::size_t>(correlation)];
}

double acentric_factor(double Tb, double Tc, double Pc, double Kw) {
  const double r = Tb / Tc;
  if (r > 0.8) return -7.904 + 0.1352 * Kw - 0.007465 * Kw * Kw + 8.359 * r + (1.408 - 0.01063 * Kw) / r;
  const double r6 = std::pow(r, 6.0), ln = std::log(r);
  return (-std::log(Pc / kAtmInPa) - 5.92714 + 6.09648 / r + 1.28862 * ln - 0.169347 * r6) /
         (15.2518 - 15.6875 / r - 13.4721 * ln + 0.43577 * r6);
}

CriticalConstants critical_constants(Correlation correlation, double Tb, double SG, double Kw) {
  CriticalConstants c = correlation == Correlation::lee_kesler ? lee_kesler(Tb, SG)
                        : correlation == Correlation::twu      ? twu(Tb, SG)
                                                               : riazi_daubert(Tb, SG);
  c.omega = acentric_factor(Tb, c.Tc, c.Pc, Kw);
  return c;
}

double boiling_point(double M, double SG) {
  const double R = 1928.3 - 1.695e5 * std::pow(M, -0.03522) * std::pow(SG, 3.266) *
                                std::exp(-4.922e-3 * M - 4.7685 * SG + 3.462e-3 * M * SG);
  return R / kRankine;
}

double molar_mass_of_cut(double Tb, double SG) {
  return 42.965 * std::exp(2.097e-4 * Tb - 7.78712 * SG + 2.08476e-3 * Tb * SG) * std::pow(Tb, 1.26007) *
         std::pow(SG, 4.98308);
}

double gravity_of(double Tb, double Tc) {
  const double SG = std::pow(Tc / (19.0623 * std::pow(Tb, 0.58848)), 1.0 / 0.3596);
  return SG > 0.55 && SG < 1.2 ? SG : 0.0;
}

double gravity_of_cut(double M, double Cf) {
  return 0.2855 + Cf * std::pow(M - 66.0, 0.13);
}

HeatCapacity petroleum_heat_capacity(double M, double Kw) {
  // J/(g K). The correction of the source for Watson factors between 10 and 12.8 is left out: with it the cyclic
  // hydrocarbons of the databank from C6 on are off by 26 % at most, without it by 17 %.
  const double A0 = -1.41779 + 0.11828 * Kw, A1 = -(6.99724 - 8.69326 * Kw + 0.27715 * Kw * Kw) * 1e-4;
  return {{M * A0, M * A1, M * -2.2582e-6, 0.0, 0.0}, 255.0, 922.0};
}

namespace {

double refractive_index(double Tb, double SG) {
  const double I = 0.3773 * std::pow(Tb, -0.02269) * std::pow(SG, 0.9182);
  return std::sqrt((1.0 + 2.0 * I) / (1.0 - I));
}

ClassShares normalised(double paraffins, double naphthenes) {
  ClassShares x{paraffins, naphthenes, 1.0 - paraffins - naphthenes};
  for (double* share : {&x.paraffins, &x.naphthenes, &x.aromatics}) *share = std::max(*share, 0.0);
  const double sum = x.paraffins + x.naphthenes + x.aromatics;
  return {x.paraffins / sum, x.naphthenes / sum, x.aromatics / sum};
}

// Up to M 200.
ClassShares light_shares(double M, double Tb, double SG) {
  const double m = M * (refractive_index(Tb, SG) - 1.475);
  return normalised(3.7387 - 4.0829 * SG + 0.014772 * m, -1.5027 + 2.10152 * SG - 0.02388 * m);
}

// Above M 200.
ClassShares heavy_shares(double Tb, double SG) {
  const double d20 = SG - 4.5e-3 * (2.34 - 1.9 * SG);
  const double Ri = refractive_index(Tb, SG) - 0.5 * d20;
  const double CH = 3.4707 * std::exp(0.01485 * Tb + 16.94 * SG - 0.012492 * Tb * SG) * std::pow(Tb, -2.725) *
                    std::pow(SG, -6.798);
  return normalised(1.9842 - 0.27722 * Ri - 0.15643 * CH, 0.5977 - 0.761745 * Ri + 0.068048 * CH);
}

}  // namespace

ClassShares class_shares(double M, double Tb, double SG) {
  constexpr double kLight = 180.0, kHeavy = 220.0;  // g/mol, about the 200 at which the source changes
  const double heavy = std::clamp((M - kLight) / (kHeavy - kLight), 0.0, 1.0);
  const ClassShares l = light_shares(M, Tb, SG), h = heavy_shares(Tb, SG);
  return {l.paraffins + heavy * (h.paraffins - l.paraffins),
          l.naphthenes + heavy * (h.naphthenes - l.naphthenes),
          l.aromatics + heavy * (h.aromatics - l.aromatics)};
}

int groups_of_classes(double M, const ClassShares& x, std::array<GroupCount, kMaxGroupsPerComponent>& groups) {
  // Groups by their numbers in the table of 40: CH3 1, CH2 2, CHaro 7, Caro 8, CH2cyclic 10, CHcyclic 11.
  constexpr double kCH2 = 14.02658, kH = 1.00794;  // g/mol
  constexpr int kTotal = 10000;
  double count[12] = {};
  const auto add = [&](int group, double number) { count[group] += number; };
  const double alkane = std::max((M - 2.0 * kH) / kCH2, 2.0);
  add(1, 2.0 * x.paraffins);
  add(2, (alkane - 2.0) * x.paraffins);
  const double naphthene = std::max(M / kCH2, 6.0);  // without a side chain below methylcyclohexane
  const double chain = std::clamp(naphthene - 6.0, 0.0, 1.0);
  add(10, (6.0 - chain) * x.naphthenes);
  add(11, chain * x.naphthenes);
  add(1, chain * x.naphthenes);
  add(2, std::max(naphthene - 7.0, 0.0) * x.naphthenes);
  const double aromatic = std::max((M + 6.0 * kH) / kCH2, 6.0);
  const double side = std::clamp(aromatic - 6.0, 0.0, 1.0);
  add(7, (6.0 - side) * x.aromatics);
  add(8, side * x.aromatics);
  add(1, side * x.aromatics);
  add(2, std::max(aromatic - 7.0, 0.0) * x.aromatics);
  double total = 0.0;
  for (const double c : count) total += c;
  int found = 0;
  for (int k = 1; k < 12; ++k) {
    const int whole = static_cast<int>(std::lround(kTotal * count[k] / total));
    if (whole > 0) groups[static_cast<std::size_t>(found++)] = {k, whole};
  }
  return found;
}

}  // namespace kestrune::host
