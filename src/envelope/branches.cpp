// What the parts of the outline are called. A branch lies between two of: an end of a line, a corner, a
// critical point, a pressure that is the lowest along the line.

#include <algorithm>

#include "envelope/outline.hpp"

namespace kestrune::envelope {
namespace {

using flash::Kind;

// What a branch says of itself: whether one of the phases is thinner than a critical one somewhere on it, and
// which.
struct Branch {
  int begin, end;  // nodes; a critical point belongs to neither side
  bool thin_feed = false, thin_other = false;
  bool liquids() const { return !thin_feed && !thin_other; }
};

Branch branch_from(const Tracer& t, int begin) {
  Branch b{begin, begin};
  for (int k = begin; k < t.count; ++k) {
    const Node& node = t.node[k];
    if (node.critical || (k > begin && node.held < 0)) break;
    b.thin_feed |= node.root_y == Kind::gas;
    b.thin_other |= node.root_x == Kind::gas;
    b.end = k + 1;
    if (node.lowest) break;
  }
  return b;
}

void name(Tracer& t, const Branch& b, bool liquids) {
  for (int k = b.begin; k < b.end; ++k) {
    Node& node = t.node[k];
    // Both of them thin, or neither beside a critical point: as the walk took it.
    node.kind = liquids                       ? kLiquids
                : b.thin_feed != b.thin_other ? (b.thin_feed ? kDew : kBubble)
                : node.kind == kLiquids       ? kBubble
                                              : node.kind;
    node.liquids = liquids;
  }
}

// A node at every lowest pressure inside a line.
void add_lowest(Tracer& t) {
  const int iP = t.line.P_index();
  for (int k = 1; k < t.count && t.count < kMostNodes; ++k) {
    const Node &a = t.node[k - 1], &b = t.node[k];
    if (b.held < 0 || a.critical || b.critical || b.held == iP) continue;
    const flash::Cubic P = flash::between(point_of(a), point_of(b), iP, b.held);
    if (!(P.slope(0.0) < 0.0 && P.slope(1.0) > 0.0) || !solve_extreme(t, k, iP)) continue;
    insert_node(t, k, t.probe, b.held, a.kind);
    t.node[k].lowest = true;
    t.node[k].stable = t.node[k - 1].stable && t.node[k + 1].stable;
    ++k;
  }
}

}  // namespace

void name_branches(Tracer& t) {
  add_lowest(t);
  t.liquids = false;
  bool joined = false,
       before = false;  // to the branch before by a critical point; whether that is of two liquids
  for (int k = 0; k < t.count;) {
    if (t.node[k].critical) {
      t.node[k].liquids = before;
      joined = true;
      ++k;
      continue;
    }
    const Branch b = branch_from(t, k);
    const int next = b.end;
    bool liquids = b.liquids() && (!joined || before);
    // Beside a critical point it is of the same sort as that on the other side.
    if (liquids && next + 1 < t.count && t.node[next].critical && !joined)
      liquids = branch_from(t, next + 1).liquids();
    name(t, b, liquids);
    t.liquids |= liquids;
    before = liquids;
    joined = false;
    k = next;
  }
}

}  // namespace kestrune::envelope
