// A state of the high-precision reference files, prepared for the phase evaluation.
#ifndef KESTRUNE_TESTS_EOS_CASE_HPP
#define KESTRUNE_TESTS_EOS_CASE_HPP

#include <map>

#include "common/mixture.hpp"
#include "eos/evaluation.hpp"
#include "eos/group_data.hpp"
#include "frame/exports/context.hpp"

namespace kestrune::tests {

inline eos::GroupData converted(Mixture& m) {
  eos::GroupData data{m.n, m.groups, m.storage[1], m.storage[2], m.storage[3], m.storage[4], m.storage[5]};
  eos::convert_group_data(m.n, m.groups, m.counts.data(), m.A.data(), m.B.data(), data);
  return data;
}

inline eos::Context context_with(Mixture& m, const eos::GroupData& data) {
  return {&m.record, &data, &exports::kTools, 0};
}

inline std::map<std::string, Mixture> reference_mixtures() {
  std::map<std::string, Mixture> all;
  for (const Row& row : rows("eos_mixtures.csv")) {
    Mixture& m = all[row.at("mixture")];
    m.resize(static_cast<int>(number(row, "nc")), static_cast<int>(number(row, "ng")));
    const auto Tc = numbers(row, "Tc_K"), Pc = numbers(row, "Pc_atm"), w = numbers(row, "omega"),
               M = numbers(row, "M");
    for (int i = 0; i < m.n; ++i) {
      const auto k = static_cast<std::size_t>(i);
      m.at(i, KV_COL_TC) = Tc[k];
      m.at(i, KV_COL_PC) = Pc[k];
      m.at(i, KV_COL_OMEGA) = w[k];
      m.at(i, KV_COL_MOLAR_MASS) = M[k];
    }
    const auto counts = numbers(row, "counts");
    for (std::size_t k = 0; k < counts.size(); ++k) m.counts[k] = static_cast<std::int32_t>(counts[k]);
    m.A = numbers(row, "A_MPa");
    m.B = numbers(row, "B_MPa");
  }
  return all;
}

// One evaluation with all its arrays; ok is false when the library gave up.
struct Evaluated {
  bool ok = false;
  eos::PhaseValues v;
  std::vector<double> ln_phi, dT, dP, h, dn;
};

inline Evaluated evaluate_state(Mixture& m, double T, double P, int phase, const std::vector<double>& x,
                                int level) {
  const eos::GroupData data = converted(m);
  std::vector<double> block(static_cast<std::size_t>(20 * m.n * m.n + 4000));
  support::Arena arena(block.data(), block.size() / 2 * sizeof(double));
  eos::Temperature t;
  Evaluated e;
  if (eos::prepare(T, context_with(m, data), eos::order_of_level(level), arena, t) != KV_OK) return e;
  const auto n = static_cast<std::size_t>(m.n);
  std::vector<double> padded(static_cast<std::size_t>(t.ld), 0.0), work(static_cast<std::size_t>(3 * t.ld));
  std::copy(x.begin(), x.end(), padded.begin());
  e.ln_phi.resize(n);
  e.dT.resize(n);
  e.dP.resize(n);
  e.h.resize(n);
  e.dn.resize(n * n);
  e.v.ln_phi = e.ln_phi.data();
  e.v.dln_phi_dT = e.dT.data();
  e.v.dln_phi_dP = e.dP.data();
  e.v.h_partial = e.h.data();
  e.ok = eos::evaluate(t, exports::kTools.cubic_root(), P, padded.data(), phase, level, &m.table[n],
                       work.data(), e.v);
  const eos::Mixture mixed = eos::mix(t, padded.data(), work.data());
  eos::Root root;
  eos::reduce(t, mixed, P, e.v.Z, root);
  eos::dln_phi_dn(t, mixed, root, eos::mechanics(t, mixed, root), work.data(), e.dn.data(), m.n, m.n, false);
  return e;
}

}  // namespace kestrune::tests

#endif
