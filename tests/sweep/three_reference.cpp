#include "three_reference.hpp"

#include <algorithm>
#include <cmath>

#include "split.hpp"

namespace kestrune::sweep {
namespace {

// Shares of the phases with ln phi given: minimum of sum(share) - sum z ln(sum share / phi), shares >= 0.
void share_out(const Composition& z, const std::vector<Phase<double>>& phases, std::vector<double>& share) {
  const int n = static_cast<int>(z.size()), m = static_cast<int>(phases.size());
  const auto sums = [&](const std::vector<double>& s, Composition& E) {
    double Q = 0;
    for (int k = 0; k < m; ++k) Q += s[k];
    for (int i = 0; i < n; ++i) {
      E[i] = 0;
      for (int k = 0; k < m; ++k) E[i] += s[k] * std::exp(-phases[k].ln_phi[i]);
      Q -= z[i] * std::log(E[i]);
    }
    return Q;
  };
  Composition E(n);
  for (int round = 0; round < 200; ++round) {
    const double Q = sums(share, E);
    std::vector<double> g(m), step, H(static_cast<size_t>(m) * m, 0.0);
    for (int k = 0; k < m; ++k) {
      g[k] = 1;
      for (int i = 0; i < n; ++i) g[k] -= z[i] / E[i] * std::exp(-phases[k].ln_phi[i]);
    }
    const auto held = [&](int k) { return share[k] <= 0 && g[k] > 0; };
    double size = 0;
    for (int k = 0; k < m; ++k) {
      for (int l = 0; l < m; ++l) {
        if (held(k) || held(l)) continue;
        for (int i = 0; i < n; ++i)
          H[k + l * m] += z[i] / (E[i] * E[i]) * std::exp(-phases[k].ln_phi[i] - phases[l].ln_phi[i]);
      }
      H[k + k * m] += held(k) ? 1 : 1e-10;
      if (held(k)) g[k] = 0;
      size = std::max(size, std::abs(g[k]));
    }
    if (size < 1e-14 || !solve_shifted(m, H, 0, g, step)) return;
    double part = 1;
    std::vector<double> next(m);
    for (int half = 0; half < 40; ++half, part /= 2) {
      for (int k = 0; k < m; ++k) next[k] = std::max(0.0, share[k] + part * step[k]);
      if (sums(next, E) <= Q + 1e-16) break;
    }
    if (next == share) return;
    share = next;
  }
}

// Substitution of some phases; a phase whose share vanishes is dropped. False when it does not settle.
bool settle(const Parameters<double>& par, double P, const Composition& z, std::vector<Composition>& w,
            std::vector<double>& share) {
  const int n = par.n;
  for (int round = 0; round < 60000; ++round) {
    std::vector<Phase<double>> phases(w.size());
    for (size_t k = 0; k < w.size(); ++k) evaluate(par, P, w[k].data(), Root::stable, false, phases[k]);
    share_out(z, phases, share);
    double change = 0;
    for (size_t k = w.size(); k-- > 0;) {
      double total = 0;
      Composition next(n);
      for (int i = 0; i < n; ++i) {
        double E = 0;
        for (size_t l = 0; l < w.size(); ++l)
          E += share[l] * std::exp(phases[k].ln_phi[i] - phases[l].ln_phi[i]);
        total += next[i] = z[i] / E;
      }
      for (int i = 0; i < n; ++i) {
        change = std::max(change, std::abs(std::log(next[i] / total / w[k][i])));
        w[k][i] = next[i] / total;
      }
    }
    for (size_t k = w.size(); k-- > 0 && round > 20;) {
      if (share[k] > 0) continue;
      w.erase(w.begin() + static_cast<long>(k));
      share.erase(share.begin() + static_cast<long>(k));
      change = 1;
      break;
    }
    if (change < 1e-12) return true;
  }
  return false;
}

}  // namespace

ThreeAnswer named_phases(const std::vector<Composition>& w, const std::vector<double>& share,
                         const Question& q) {
  const auto par = parameters_at<double>(*q.components, q.T);
  const int n = q.components->n, m = static_cast<int>(w.size());
  std::vector<double> loose(m), mass(m);
  for (int k = 0; k < m; ++k) {
    Phase<double> phase;
    evaluate(par, q.P, w[k].data(), Root::stable, false, phase);
    loose[k] = phase.Z * 82.057 * q.T / (q.P * phase.b);
    for (int i = 0; i < n; ++i) mass[k] += w[k][i] * q.components->mass[i] / phase.Z;
  }
  ThreeAnswer answer{0, 0, 0, Composition(n), Composition(n), Composition(n), Composition(n), Composition(n)};
  std::vector<int> liquids;
  const int lightest = static_cast<int>(std::max_element(loose.begin(), loose.end()) - loose.begin());
  const bool gas = m == 3 || loose[lightest] > vapour_volume_ratio;
  for (int k = 0; k < m; ++k) {
    if (gas && k == lightest) {
      answer.V = share[k];
      answer.y = w[k];
    } else {
      liquids.push_back(k);
    }
  }
  std::sort(liquids.begin(), liquids.end(), [&](int k, int l) { return mass[k] < mass[l]; });
  if (!liquids.empty()) answer.b = w[liquids.back()];
  if (liquids.size() == 2) {
    answer.a = w[liquids.front()];
    answer.beta = share[liquids.front()];
  }
  if (m == 1) answer.V = gas;
  for (int i = 0; i < n && m == 3; ++i) {
    answer.kll[i] = std::clamp(answer.a[i] / answer.b[i], 1e-15, 1e15);
    answer.klv[i] = std::clamp(answer.y[i] / answer.a[i], 1e-15, 1e15);
  }
  return answer;
}

int stable_phases(const Question& q, const Reduced& r, std::vector<Composition>& w,
                  std::vector<double>& share) {
  const Split split = flash(r.components, r.par, q.P, r.z);
  w = {r.z};
  share = {1};
  if (!split.two_phase) return 1;
  w = {split.x, split.y};
  share = {1 - split.beta, split.beta};
  for (int round = 0; round < 6; ++round) {  // the lowest trial joins them
    std::vector<PresentPhase> phases(w.size());
    for (size_t k = 0; k < w.size(); ++k) {
      phases[k].share = share[k];
      phases[k].w = w[k];
      phases[k].state = exact_phase(r, q.P, w[k], Root::stable);
    }
    const Plane plane = common_plane(r, phases);
    const auto starts = starting_points(r.components, r.par, q.P, r.z, plane);
    const auto found = search(r.par, q.P, plane, starts, -1e-10, true);
    if (found.unstable.empty()) return static_cast<int>(w.size());
    w.push_back(found.unstable.front().w);
    share.push_back(1e-3);
    if (!settle(r.par, q.P, r.z, w, share)) return 0;
  }
  return 0;
}

ThreeAnswer slow_flash(const Question& q) {
  std::vector<Composition> w;
  std::vector<double> share;
  const int count = stable_phases(q, Reduced(q), w, share);
  if (count < 1 || count > 3) return {1, 0, 0, {}, {}, {}, {}, {}, 0};
  return named_phases(w, share, q);
}

}  // namespace kestrune::sweep
