// Labels of the trace and their order. They are part of the interface.

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

void initial_state(FlashTrace& trace, int n, double beta, const double* x, const double* y, const double* z) {
  trace.started = true;
  const bool vapour = trace.mode == Mode::liquid_vapour;
  trace.writer.real(vapour ? "TAUX DE VAPORISATION  :" : "TAUX DE PARTAGE       :", beta);
  if (vapour)
    table(trace.writer, {"NO", "XL", "YV", "ZF"}, n, x, y, z);
  else
    table(trace.writer, {"NO", "XL1", "XL2", "ZF"}, n, x, y, z);
}

void initialisation(support::TraceWriter& trace, const char* title, int index, const Settings& settings) {
  trace.text(title);
  trace.text(kStars);
  trace.text(" I N I T I A L I S A T I O N ");
  trace.text(kStars);
  trace.integer("INDICE INITIALISATION :", index);
  trace.integer("ITEMAX :", settings.ITEMAX);
  trace.integer("NEW    :", settings.NEW);
  trace.real("CRIT   :", settings.CRIT);
  trace.real("CLIM   :", settings.CLIM);
  trace.real("EPS    :", settings.EPS);
}

}  // namespace

void trace_header(FlashTrace& trace, const IsothermalCall& call, const Settings& settings) {
  if (!trace) return;
  const bool vapour = trace.mode == Mode::liquid_vapour;
  initialisation(trace.writer, vapour ? "FLASH T,P LIQUIDE-VAPEUR" : "FLASH T,P LIQUIDE-LIQUIDE", call.index,
                 settings);
}

void trace_quality_header(support::TraceWriter& trace, bool of_T, double W, int index,
                          const Settings& settings) {
  if (!trace) return;
  const char* const titles[2][3] = {
      {"FLASH W,T - PRESSION DE BULLE", "FLASH W,T", "FLASH W,T - PRESSION DE ROSEE"},
      {"FLASH W,P - TEMPERATURE DE BULLE", "FLASH W,P", "FLASH W,P - TEMPERATURE DE ROSEE"}};
  initialisation(trace, titles[of_T ? 1 : 0][W == 0.0 ? 0 : W == 1.0 ? 2 : 1], index, settings);
}

void trace_quality_start(support::TraceWriter& trace, bool of_T, double start, int n, const double* x,
                         const double* y) {
  if (!trace) return;
  trace.real(of_T ? "TEMPERATURE :" : "PRESSION :", start);
  const char* const heads[] = {"NO", "XL", "YV"};
  trace.heads(heads, 3);
  for (int i = 0; i < n; ++i) {
    const double values[2] = {x[i], y[i]};
    trace.row(i + 1, values, 2);
  }
}

void trace_energy_header(support::TraceWriter& trace, const EnergyCall& call, double start) {
  if (!trace) return;
  const bool H = call.property == Property::enthalpy;
  initialisation(trace, H ? "FLASH H,P" : "FLASH S,P", call.index, copy_settings(call.context));
  trace.real("T (K)  =", start);
}

void trace_energy_pass(support::TraceWriter& trace, const EnergyCall& call, double T, double beta,
                       double liquid, double vapour) {
  if (!trace) return;
  const bool H = call.property == Property::enthalpy;
  trace.real("T   :", T);
  trace.real("P   :", call.P);
  trace.real("TVAP:", beta);
  trace.real(H ? "HL  :" : "SL  :", liquid);
  trace.real(H ? "HV  :" : "SV  :", vapour);
}

void trace_energy_result(support::TraceWriter& trace, const EnergyCall& call) {
  if (!trace) return;
  trace.real("T (K)  =", *call.T);
  trace.real(" TMIN (K)    = ", lowest_temperature(*call.context.record));
  trace.real("P (ATM)=", call.P);
  trace.real(call.property == Property::enthalpy ? " HF (CAL/MOL)=" : " SF (CAL/MOL/K)=", call.wanted);
  trace.real(" TVAP=", *call.beta);
}

void trace_initial(FlashTrace& trace, int n, const Iterate& it) {
  if (trace) initial_state(trace, n, it.beta, it.x, it.y, it.z);
}

void trace_pass(FlashTrace& trace, bool linearised, double factor, const Iterate& it) {
  if (!trace) return;
  trace.writer.text(linearised ? "METHODE = QUASI-LINEARISATION" : "METHODE = GLOBALE");
  trace.writer.real("FACTEUR DE RELAXATION :", factor);
  trace.writer.integer("ITERATION :", it.count);
  trace.writer.real("CRITERE :", it.error);
}

void trace_result(FlashTrace& trace, const IsothermalCall& call, const Iterate& it) {
  if (!trace) return;
  const int n = call.context.record->count;
  if (!trace.started) initial_state(trace, n, *call.beta, it.z, it.z, it.z);
  if (it.source != 0) trace.writer.integer("INDICE INITIALISATION INTERNE AU FLASH :", it.source);
  if (trace.mode == Mode::liquid_vapour) {
    trace.writer.real("TAUX DE VAPORISATION :", *call.beta);
    table(trace.writer, {"NO", "XL", "YV", "AK"}, n, call.x, call.y, call.K);
  } else {
    trace.writer.real("TAUX DE PARTAGE      :", *call.beta);
    table(trace.writer, {"NO", "XL1", "XL2", "AKL"}, n, call.x, call.y, call.K);
  }
}

}  // namespace kestrune::flash
