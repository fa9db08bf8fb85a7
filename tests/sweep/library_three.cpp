#include "library.hpp"

namespace kestrune::sweep {
namespace {

void size_arrays(ThreeAnswer& answer, size_t n) {
  for (Composition* part : {&answer.a, &answer.b, &answer.y, &answer.kll, &answer.klv}) part->resize(n);
}

}  // namespace

ThreeAnswer Library::three(double T, double P, const Composition& z, const ThreeAnswer* estimate) {
  MixtureRecord record = record_;
  ThreeAnswer s = estimate ? *estimate : ThreeAnswer{};
  size_arrays(s, z.size());
  s.seconds = timed([&] {
    s.status = three_(T, P, z.data(), &record, routines_, estimate ? 1 : 0, &s.beta, &s.V, s.a.data(),
                      s.b.data(), s.y.data(), s.kll.data(), s.klv.data());
  });
  check_flags(record);
  return s;
}

ThreeCaloricAnswer Library::three_caloric(Quantity quantity, double value, double P, const Composition& z,
                                          double start, const ThreeAnswer* estimate) {
  MixtureRecord record = record_;
  ThreeCaloricAnswer answer{start, estimate ? *estimate : ThreeAnswer{}};
  ThreeAnswer& s = answer.phases;
  size_arrays(s, z.size());
  s.seconds = timed([&] {
    s.status = three_caloric_[quantity == Quantity::entropy](
        value, P, z.data(), &record, routines_, estimate ? 1 : 0, &answer.T, &s.beta, &s.V, s.a.data(),
        s.b.data(), s.y.data(), s.kll.data(), s.klv.data(), &answer.values[0], &answer.values[1],
        &answer.values[2]);
  });
  check_flags(record);
  return answer;
}

ThreePoint Library::three_point(const SaturationQuestion& q, const Composition& z, double start,
                                const ThreeAnswer* estimate) {
  MixtureRecord record = record_;
  ThreePoint point{start, estimate ? *estimate : ThreeAnswer{}};
  ThreeAnswer& s = point.phases;
  size_arrays(s, z.size());
  const auto routine = q.given == Given::temperature ? three_at_temperature_ : three_at_pressure_;
  s.seconds = timed([&] {
    s.status = routine(q.W, q.value, z.data(), &record, routines_, estimate ? 1 : 0, &point.found, &s.beta,
                       s.a.data(), s.b.data(), s.y.data(), s.kll.data(), s.klv.data());
  });
  s.V = q.W;
  check_flags(record);
  return point;
}

}  // namespace kestrune::sweep
