// The envelope as a whole: defaults, the lines it is made of, the gate, and what is written out. The lines
// themselves are traced in walk.cpp.

#include "envelope/envelope.hpp"

#include <algorithm>
#include <cmath>
#include <new>

#include "envelope/outline.hpp"
#include "flash/feed.hpp"
#include "flash/isothermal/two_phase.hpp"
#include "flash/pure/pure_saturation.hpp"
#include "flash/quality/quality_flash.hpp"
#include "flash/settings.hpp"

namespace kestrune::envelope {
namespace {

constexpr double kFirstP = 1.0, kHighestP = 2000.0, kLowestT = 50.0;
constexpr double kFinest = 1e-10;  // accuracy of every point, in ln fugacities

// The call with its defaults in place of zeros; KV_SPECIFICATION for what makes no sense.
StatusCode with_defaults(EnvelopeCall& c, bool& asked_P, bool& asked_T) {
  for (const double v : {c.first_P, c.highest_P, c.lowest_T, c.fraction, c.accuracy})
    if (!(v >= 0.0 && v < 1e300)) return KV_SPECIFICATION;
  if (c.points < 0 || c.capacity < 0 || c.fraction > 1.0) return KV_SPECIFICATION;
  if (c.accuracy > 0.0 && c.accuracy < kFinest) return KV_SPECIFICATION;
  asked_P = c.highest_P > 0.0;
  asked_T = c.lowest_T > 0.0;
  if (c.first_P == 0.0) c.first_P = kFirstP;
  if (!asked_P) c.highest_P = std::max(kHighestP, 2.0 * c.first_P);
  if (!asked_T) c.lowest_T = kLowestT;
  if (c.fraction == 0.0) c.fraction = 1.0;
  return c.first_P < c.highest_P ? KV_OK : KV_SPECIFICATION;
}

// The first point of a line at the first pressure, with its phases named as the tracer wants them, in t.here. walks:
// looked for along the line at last.
bool start_line(Tracer& t, const EnvelopeCall& call, double W, bool walks, bool& stable, StatusCode& status) {
  flash::QualityLine& line = t.line;
  double T = 0.0;
  flash::QualityCall start;
  start.find = flash::Find::temperature;
  start.W = W;
  start.given = call.first_P;
  start.z = line.z;
  start.context = line.context.silent();
  start.routines = line.routines;
  start.unknown = &T;
  start.x = t.here.x;
  start.y = t.here.y;
  start.K = t.trial_K;
  start.walks = walks;
  status = flash::quality_flash(start);
  stable = status == KV_OK;
  if (status != KV_OK && status != KV_UNSTABLE_POINT) return false;
  status = KV_OK;
  const double sign = W == line.W ? 1.0 : -1.0;
  for (int i = 0; i < line.n; ++i) t.here.X[i] = sign * std::log(t.trial_K[i]);
  t.here.X[line.T_index()] = std::log(T);
  t.here.X[line.P_index()] = std::log(call.first_P);
  line.root_x = line.root_y = flash::Kind::stable;
  if (T <= std::exp(t.limits.lowest_T)) return false;
  return flash::solve_point(line, t.here, line.P_index(), std::log(call.first_P), flash::kWalkNewtonLimit, true,
                            t.status) == flash::Solved::yes;
}

// The bubble point at the first pressure from Wilson's coefficients, in t.here. False: none, or the feed is not
// stable there.
bool quick_bubble(Tracer& t) {
  constexpr int kHalvings = 30, kSubstitutions = 4;
  flash::QualityLine& line = t.line;
  const double ln_P = t.limits.first_P;
  double low = std::exp(t.limits.lowest_T), high = 1000.0;
  for (int k = 0; k < kHalvings; ++k) {
    const double T = 0.5 * (low + high);
    flash::wilson(T, std::exp(ln_P), *line.context.record, false, t.trial_K, nullptr);
    double sum = 0.0;
    for (int i = 0; i < line.n; ++i) sum += line.z[i] * t.trial_K[i];
    (sum < 1.0 ? low : high) = T;
  }
  for (int i = 0; i < line.n; ++i) t.here.X[i] = -std::log(t.trial_K[i]);
  t.here.X[line.T_index()] = std::log(low);
  t.here.X[line.P_index()] = ln_P;
  line.root_x = flash::Kind::gas;
  line.root_y = flash::Kind::liquid;
  for (int k = 0; k < kSubstitutions; ++k)
    if (!flash::substitute(line, t.here, line.T_index(), t.status)) return false;
  return flash::solve_point(line, t.here, line.P_index(), ln_P, flash::kWalkNewtonLimit, false, t.status) ==
             flash::Solved::yes &&
         t.here.X[line.T_index()] > t.limits.lowest_T && stable_at(t, t.here);
}

// All lines of the outline. KV_OK also when they end at a limit that was asked for.
StatusCode trace(Tracer& t, const EnvelopeCall& call, bool asked_P, bool asked_T) {
  StatusCode status = KV_OK;
  bool stable = true, pressure = false, cold = false, broken = false;
  const auto note = [&](End end) {
    pressure |= end == End::pressure;
    cold |= end == End::cold;
    broken |= end == End::broken || end == End::full;
    return end == End::closed || end == End::joined;
  };
  bool done = false;
  StatusCode first_status = KV_OK;
  if (start_line(t, call, t.line.W, true, stable, status)) done = note(walk(t, kDew, 1.0, stable, 0));
  first_status = status;
  if (first_status != KV_OK && first_status != KV_NO_SATURATION) return first_status;
  if (!done && t.boundary()) {
    // What the first walk left out. The long search only where it has not come to the bubble side at all, along the line
    // of the dew point only where that went no further than was asked for.
    const int seen = t.count;
    const bool bubble = seen > 0 && t.node[seen - 1].kind != kDew;
    const bool followed = seen > 0 && !broken && !(pressure && asked_P) && !(cold && asked_T);
    if (quick_bubble(t))
      note(walk(t, kBubble, 1.0, true, seen));
    else if (!bubble && start_line(t, call, 0.0, !followed, stable, status) && (stable || seen == 0))
      note(walk(t, kBubble, 1.0, stable, seen));
  }
  if (t.count == 0) return KV_NO_SATURATION;
  if (t.boundary()) {
    cut_loops(t);
    name_branches(t);
  }
  if (broken) return KV_ENVELOPE_BROKEN;
  for (int k = 0; k < t.count; ++k)
    if (!t.node[k].stable) return KV_ENVELOPE_UNSTABLE;
  if (t.liquids) return KV_ENVELOPE_LIQUIDS;
  if (pressure && !asked_P) return KV_ENVELOPE_OPEN;
  if (cold && !asked_T) return KV_ENVELOPE_COLD;
  return KV_OK;
}

/*
 * The gate through which every outline leaves. Its points are converged and were tested on the way; what the
 * steps could miss is looked at here: numbers, limits, and critical points close to a corner or to points that
 * are not stable, which the test on the way leaves out.
 */
StatusCode accept(Tracer& t, StatusCode status) {
  constexpr double kRounding = 1e-9;
  constexpr int kClose = 3;
  const int iT = t.line.T_index(), iP = t.line.P_index();
  for (int k = 0; k < t.count; ++k) {
    Node& node = t.node[k];
    const double T = node.X[iT], P = node.X[iP];
    // Written so that what is not a number fails.
    if (!(T >= t.limits.lowest_T - kRounding && P >= t.limits.first_P - kRounding &&
          P <= t.limits.highest_P + kRounding && T < 1e3)) {
      t.count = k;
      return KV_ENVELOPE_BROKEN;
    }
    if (!node.critical || !node.stable) continue;
    bool sure = true;
    for (int i = std::max(k - kClose, 0); i < std::min(k + kClose + 1, t.count); ++i)
      sure = sure && t.node[i].stable && !t.node[i].corner;
    if (sure) continue;
    std::copy_n(node.X, t.line.n + 2, t.probe.X);
    t.line.root_x = t.line.root_y = flash::Kind::stable;
    node.stable = stable_at(t, t.probe);
    if (node.stable) continue;
    node.critical = false;
    node.kind = t.node[std::max(k - 1, 0)].kind;
    if (status != KV_ENVELOPE_BROKEN) status = KV_ENVELOPE_UNSTABLE;
  }
  return status;
}

// Points as traced. False when there is not room for all of them.
bool write_nodes(const Tracer& t, const EnvelopeCall& call) {
  int written = 0;
  for (int k = 0; k < t.count; ++k) {
    if (t.node[k].held < 0 && k > 0 && t.node[k - 1].corner) continue;
    if (written == call.capacity) return false;
    write_node(t, k, call.T + written, call.P + written, call.kind + written);
    *call.number = ++written;
  }
  return true;
}

StatusCode write_outline(Tracer& t, const EnvelopeCall& call, StatusCode status) {
  for (int k = 0; k < t.count; ++k) *call.criticals += t.node[k].critical && t.node[k].stable ? 1 : 0;
  find_extreme(t, t.line.T_index(), *call.therm_T, *call.therm_P);
  find_extreme(t, t.line.P_index(), *call.bar_T, *call.bar_P);
  bool room = true;
  if (call.points > 0) {
    room = call.points <= call.capacity;
    *call.number = even_points(t, std::min(call.points, call.capacity), call.T, call.P, call.kind);
    if (t.fit != support::SplineFit::good) {
      room = write_nodes(t, call);
    }
  } else {
    room = write_nodes(t, call);
  }
  return status != KV_ENVELOPE_BROKEN && !room ? StatusCode{KV_ENVELOPE_FULL} : status;
}

// All nodes in one piece: too much for the stack of a host.
void take_nodes(support::Arena& arena, Tracer& t) {
  static_assert(sizeof(Node) % sizeof(double) == 0);
  const std::size_t size = t.line.n + 2, of_node = sizeof(Node) / sizeof(double);
  double* room = arena.take(kMostNodes * (of_node + 2 * size + 1));
  t.node = reinterpret_cast<Node*>(room);
  room += kMostNodes * of_node;
  for (int k = 0; k < kMostNodes; ++k) {
    Node* node = new (t.node + k) Node{};
    node->X = room;
    node->slope = room + size;
    room += 2 * size;
  }
  t.lengths = room;
}

// The component whose constants all others of the feed share (two entries of the same substance), or -1: such a
// feed is a single component to the model.
int shared_component(flash::QualityLine& line) {
  constexpr double kSame = 1e-12, kAt[2] = {200.0, 400.0};  // K
  const double* table = line.context.record->table;
  const double* Tc = table + static_cast<std::size_t>(KV_COL_TC - 1) * line.n;
  const double* Pc = table + static_cast<std::size_t>(KV_COL_PC - 1) * line.n;
  int j = -1;
  for (int i = 0; i < line.n; ++i) {
    if (!(line.z[i] > 0.0)) continue;
    if (j < 0) j = i;
    if (Tc[i] != Tc[j] || Pc[i] != Pc[j]) return -1;
  }
  for (const double T : kAt) {
    if (flash::line_model(line, T, 1.0) != KV_OK || !line.m.built_in()) return -1;
    const double a = line.m.t.aij[static_cast<std::size_t>(j) * line.ld + j];
    for (int i = 0; i < line.n; ++i)
      for (int k = 0; k < line.n; ++k)
        if (line.z[i] > 0.0 && line.z[k] > 0.0 &&
            std::fabs(line.m.t.aij[static_cast<std::size_t>(k) * line.ld + i] / a - 1.0) > kSame)
          return -1;
  }
  return j;
}

// Arenas of their own for the line and for the critical points, which rewind them, and for the nodes.
StatusCode set_up(const EnvelopeCall& call, bool asked_P, bool asked_T, support::Arena& arena,
                  support::Arena& second, support::Arena& nodes, support::SplineFit& fit) {
  flash::QualityLine line;
  line.W = call.fraction;
  line.context = call.context;
  line.routines = call.routines;
  line.stable_roots = true;
  flash::open_line(arena, line);
  double* z = arena.zeros(line.ld);
  if (!flash::normalise_feed(line.n, call.z, z)) return KV_COMPOSITION;
  line.z = z;
  const int j = flash::single_component(line.n, z, flash::pure_tolerance(*call.context.record));
  if (j >= 0) return vapour_pressure_curve(call, j);
  Tracer t(line);
  for (flash::LinePoint* p : {&t.here, &t.last, &t.next, &t.probe, &t.branch, &t.corner, &t.spare})
    flash::take_point(arena, line, *p);
  t.trial = arena.zeros(line.ld);
  t.trial_K = arena.zeros(line.ld);
  take_nodes(nodes, t);
  flash::seal_line(line);
  const int shared = shared_component(line);
  if (shared >= 0) return vapour_pressure_curve(call, shared);
  t.limits = {std::log(call.first_P), std::log(call.highest_P), std::log(call.lowest_T)};
  Spinodal spinodal;
  if (flash::host_routine<void*>(call.routines, KV_ROUTINE_FUGACITY) == nullptr) {
    open_spinodal(second, call.context, z, spinodal);
    t.spinodal = &spinodal;
  }
  const StatusCode status = accept(t, trace(t, call, asked_P, asked_T));
  if (t.count == 0) return status;
  const StatusCode written = write_outline(t, call, status);
  fit = t.fit;
  return written;
}

}  // namespace

void write_node(const Tracer& t, int k, double* T, double* P, double* kind) {
  const Node& node = t.node[k];
  *T = std::exp(node.X[t.line.T_index()]);
  *P = std::exp(node.X[t.line.P_index()]);
  *kind = node.kind + (node.stable ? 0.0 : kNotStable);
}

StatusCode phase_envelope(const EnvelopeCall& given, support::SplineFit& fit) {
  fit = support::SplineFit::good;
  EnvelopeCall call = given;
  bool asked_P, asked_T;
  const StatusCode bad = with_defaults(call, asked_P, asked_T);
  if (bad != KV_OK) return bad;
  const int n = call.context.record->count;
  return support::with_arena<8, 120>(n, [&](support::Arena& arena) {
    return support::with_arena<8, 60>(n, [&](support::Arena& second) {
      support::Arena nodes(nullptr, 0);
      return set_up(call, asked_P, asked_T, arena, second, nodes, fit);
    });
  });
}

}  // namespace kestrune::envelope
