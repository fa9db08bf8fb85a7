// Labels of the trace of three phases and their order. They are part of the interface.

#include "flash3/trace_phases.hpp"

namespace kestrune::flash3 {
namespace {

constexpr const char* kStars = "*****************************************";

void ratios(support::TraceWriter& trace, const char* vapour, const char* liquids, const Phases& p) {
  trace.real(vapour, p.amount[kV]);
  trace.real(liquids, p.amount[kA]);
}

}  // namespace

void trace_start(support::TraceWriter& trace, const Iteration& how, int n, const double* z, const Phases& p) {
  if (!trace) return;
  const flash::Settings& s = how.settings;
  trace.text("FLASH T,P LIQUIDE-LIQUIDE-VAPEUR");
  trace.text(kStars);
  trace.text(" I N I T I A L I S A T I O N ");
  trace.text(kStars);
  trace.integer("INDICE D'INITIALISATION :", how.index);
  trace.integer("ITEMAX :", s.ITEMAX);
  trace.integer("NEW    :", s.NEW);
  trace.real("CRIT   :", s.CRIT);
  trace.real("CLIM   :", s.CLIM);
  trace.real("EPS    :", s.EPS);
  ratios(trace, "TAUX DE VAPORISATION  :", "TAUX DE PARTAGE LIQUIDE-LIQUIDE :", p);
  const char* const heads[] = {"NO", "XA", "XB", "YV", "ZF"};
  trace.heads(heads, 5);
  for (int i = 0; i < n; ++i) {
    const double values[4] = {p.x[kA][i], p.x[kB][i], p.x[kV][i], z[i]};
    trace.row(i + 1, values, 4);
  }
}

void trace_pass(support::TraceWriter& trace, const Pass& pass, int n, const Phases& p, bool long_form) {
  if (!trace) return;
  trace.integer("ITERATION :", pass.number);
  trace.real("CRITERE :", pass.error);
  trace.real("FACTEUR DE RELAXATION :", pass.factor);
  trace.text(pass.newton ? "METHODE = QUASI-LINEARISATION" : "METHODE = GLOBALE");
  if (!long_form) return;
  ratios(trace, "TAUX DE VAPORISATION :", "TAUX DE PARTAGE LIQUIDE-LIQUIDE :", p);
  const char* const heads[] = {"NO", "XA", "XB", "YV"};
  trace.heads(heads, 4);
  for (int i = 0; i < n; ++i) {
    const double values[3] = {p.x[kA][i], p.x[kB][i], p.x[kV][i]};
    trace.row(i + 1, values, 3);
  }
}

}  // namespace kestrune::flash3
