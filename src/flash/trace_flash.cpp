#include "flash/trace_flash.hpp"

namespace kestrune::flash {
namespace {
constexpr const char* kStars = "*****************************************";

void table(support::TraceWriter& trace, const char* const (&heads)[4], int n, const double* a, const double* b,
           const double* c) {
  trace.heads(heads, 4);
  for (int i = 0; i < n; ++i) {
    const double values[3] = {a[i], b[i], c[i]};
    trace.row(i + 1, values, 3);
  }
}
}  // namespace

void trace_header(support::TraceWriter& trace, const IsothermalCall& call, const Settings& settings) {
  if (!trace) return;
  trace.text(call.mode == Mode::liquid_vapour ? "FLASH T,P LIQUIDE-VAPEUR" : "FLASH T,P LIQUIDE-LIQUIDE");
  trace.text(kStars);
  trace.text(" I N I T I A L I S A T I O N ");
  trace.text(kStars);
  trace.integer("INDICE INITIALISATION :", call.index);
  trace.integer("ITEMAX :", settings.ITEMAX);
  trace.integer("NEW    :", settings.NEW);
  trace.real("CRIT   :", settings.CRIT);
  trace.real("CLIM   :", settings.CLIM);
  trace.real("EPS    :", settings.EPS);
}

void trace_initial(support::TraceWriter& trace, const IsothermalCall& call, double beta, const double* x,
                   const double* y, const double* z) {
  if (!trace) return;
  const int n = call.mixture->count;
  if (call.mode == Mode::liquid_vapour) {
    trace.real("TAUX DE VAPORISATION  :", beta);
    table(trace, {"NO", "XL", "YV", "ZF"}, n, x, y, z);
  } else {
    trace.real("TAUX DE PARTAGE       :", beta);
    table(trace, {"NO", "XL1", "XL2", "ZF"}, n, x, y, z);
  }
}

void trace_internal_index(support::TraceWriter& trace, int index) {
  if (trace) trace.integer("INDICE INITIALISATION INTERNE AU FLASH :", index);
}

void trace_result(support::TraceWriter& trace, const IsothermalCall& call) {
  if (!trace) return;
  const int n = call.mixture->count;
  if (call.mode == Mode::liquid_vapour) {
    trace.real("TAUX DE VAPORISATION :", *call.beta);
    table(trace, {"NO", "XL", "YV", "AK"}, n, call.x, call.y, call.K);
  } else {
    trace.real("TAUX DE PARTAGE      :", *call.beta);
    table(trace, {"NO", "XL1", "XL2", "AKL"}, n, call.x, call.y, call.K);
  }
}

}  // namespace kestrune::flash
