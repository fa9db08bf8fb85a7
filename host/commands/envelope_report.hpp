// What the envelope command found, and the ways in which it is shown.
#ifndef KESTRUNE_HOST_COMMANDS_ENVELOPE_REPORT_HPP
#define KESTRUNE_HOST_COMMANDS_ENVELOPE_REPORT_HPP

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "chart.hpp"
#include "envelope.hpp"
#include "units.hpp"

namespace kestrune::host {

struct EnvelopeReport {
  const Mixture& mixture;
  const UnitSystem& units;
  std::vector<Curve> curves;  // bubble and dew first, then the quality lines
  MixtureCritical critical;
};

// The stable critical points of the outline other than the one that CriticalPoint returns, hottest first.
std::vector<CurvePlace> further_critical(const EnvelopeReport& report);

// What a reader of the curves must know, one sentence each.
std::vector<std::string> notes_of(const EnvelopeReport& report);

void print_envelope_text(const EnvelopeReport& report, std::ostream& out);
void print_envelope_csv(const EnvelopeReport& report, std::ostream& out);
void print_envelope_json(const EnvelopeReport& report, std::ostream& out);

// A line from a file, in the user's units.
struct Overlay {
  std::string label;
  std::vector<double> T, P;
};

// "FILE:label" or "FILE": a CSV file with T and P in its first two columns, in the user's units; columns with names such
// as temperature_C and pressure_Pa are in these. InputError for what cannot be read.
Overlay read_overlay(const std::string& text, const UnitSystem& units);

// What the user says about the picture; empty: chosen.
struct PictureOptions {
  std::string title, T_title, P_title, T_limits, P_limits;
};

// The picture. top: highest pressure that is shown, Pa; 0: chosen.
Chart envelope_chart(const EnvelopeReport& report, const std::vector<Overlay>& overlays,
                     const std::optional<CurvePlace>& operating_point, double top,
                     const PictureOptions& options);

}  // namespace kestrune::host

#endif
