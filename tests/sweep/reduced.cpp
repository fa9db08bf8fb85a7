#include "reduced.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace kestrune::sweep {
namespace {

// Whether a fugacity difference is owed to the bound on K: K stands at the bound, the true one beyond it.
bool at_bound(double K, double true_ln_k) {
  const double bound = 34.538776394910684;
  return (K <= 1.000001e-15 && true_ln_k < -bound + 1e-6) || (K >= 0.999999e15 && true_ln_k > bound - 1e-6);
}

}  // namespace

std::string text(const char* format, double a, double b) {
  char buffer[200];
  std::snprintf(buffer, sizeof buffer, format, a, b);
  return buffer;
}

Reduced::Reduced(const Question& question) {
  for (int i = 0; i < question.components->n; ++i) {
    if (question.z[i] > 0) keep.push_back(i);
  }
  components = subset(*question.components, keep);
  double total = 0;
  for (double v : question.z) total += v;
  for (int i : keep) z.push_back(question.z[i] / total);
  exact = parameters_at<long double>(components, question.T);
  par.T = question.T;
  par.n = components.n;
  par.a.assign(exact.a.begin(), exact.a.end());
  par.b.assign(exact.b.begin(), exact.b.end());
}

Reduced::Reduced(const Question& question, const Answer& answer) : Reduced(question) {
  x = part(answer.x);
  y = part(answer.y);
}

Composition Reduced::part(const Composition& full) const {
  Composition entries;
  for (int i : keep) entries.push_back(full[i]);
  return entries;
}

double largest_difference(const Composition& x, const Composition& y) {
  double size = 0;
  for (size_t i = 0; i < x.size(); ++i) size = std::max(size, std::abs(x[i] - y[i]));
  return size;
}

Phase<long double> exact_phase(const Reduced& r, double P, const Composition& w, Root root) {
  const std::vector<long double> fractions(w.begin(), w.end());
  Phase<long double> phase;
  evaluate(r.exact, static_cast<long double>(P), fractions.data(), root, false, phase);
  return phase;
}

bool phases_agree(const Question& question, const Answer& answer, const Reduced& r, Verdict& verdict,
                  bool named_roots) {
  const double apart = largest_difference(r.x, r.y);
  const bool same = apart < 1e-7, named = same || named_roots;
  const Phase<long double> liquid = exact_phase(r, question.P, r.x, named ? Root::smallest : Root::stable);
  const Phase<long double> vapour = exact_phase(r, question.P, r.y, named ? Root::largest : Root::stable);
  if (same && std::abs(static_cast<double>(liquid.Z - vapour.Z)) < 1e-7) {
    verdict.reason = text("two identical phases (max |x - y| %.3g)", apart);
    return false;
  }
  for (int i = 0; i < r.components.n; ++i) {
    const double true_ln_k = static_cast<double>(liquid.ln_phi[i] - vapour.ln_phi[i]);
    const double difference = std::abs(std::log(r.y[i]) - std::log(r.x[i]) - true_ln_k);
    if (difference > fugacity_tolerance && at_bound(r.y[i] / r.x[i], true_ln_k)) {
      ++verdict.clamped;
      continue;
    }
    verdict.fugacity = std::max(verdict.fugacity, std::isfinite(difference) ? difference : 1e300);
  }
  if (verdict.fugacity > fugacity_tolerance) {
    verdict.reason = text("fugacities differ by %.3g in ln f", verdict.fugacity);
    return false;
  }
  if (vapour.Z / vapour.b < liquid.Z / liquid.b * (1 - 1e-9L)) {
    verdict.reason = text("beta %.6g counts the denser phase by v/b", answer.beta);
    return false;
  }
  return true;
}

}  // namespace kestrune::sweep
