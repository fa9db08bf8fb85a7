// The eleven flashes as data: one way to call each, and all that it can write.
#ifndef KESTRUNE_TESTS_FLASHES_HPP
#define KESTRUNE_TESTS_FLASHES_HPP

#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>

#include "common/flash_call.hpp"

namespace kestrune::tests::flashes {

inline constexpr double kMark = -7.25;
inline constexpr std::size_t kRoom = 8;

// Every output that a flash of up to five components can have, and its status.
struct Answer {
  StatusCode status = kMark;
  double T = kMark, P = kMark, beta = kMark, V = kMark;
  double value[3] = {kMark, kMark, kMark};
  std::vector<double> array[5] = {std::vector<double>(kRoom, kMark), std::vector<double>(kRoom, kMark),
                                  std::vector<double>(kRoom, kMark), std::vector<double>(kRoom, kMark),
                                  std::vector<double>(kRoom, kMark)};
  bool operator==(const Answer& o) const {
    bool same = status == o.status;
    const auto bits = [&](const double* a, const double* b, std::size_t n) {
      same = same && std::memcmp(a, b, n * sizeof(double)) == 0;
    };
    for (const auto member : {&Answer::T, &Answer::P, &Answer::beta, &Answer::V})
      bits(&(this->*member), &(o.*member), 1);
    bits(value, o.value, 3);
    for (int k = 0; k < 5; ++k) bits(array[k].data(), o.array[k].data(), kRoom);
    return same;
  }
};

struct Ask {
  const double* z;
  MixtureRecord* record;
  const ModelRoutines* routines = nullptr;
  int options = 1;
  double T = 300.0, P = 20.0;
  double given = 0.5;    // enthalpy, entropy or fraction
  bool nowhere = false;  // what is looked for starts from 0 instead of T or P
  double start(double value) const { return nowhere ? 0.0 : value; }
};

struct Flash {
  const char* name;
  bool wrapped;  // does more than call its core
  bool three;
  std::function<void(const Ask&, Answer&)> call;
};

#define KV_TWO r.array[0].data(), r.array[1].data(), r.array[2].data()
#define KV_THREE r.array[0].data(), r.array[1].data(), r.array[2].data(), r.array[3].data(), r.array[4].data()
inline const std::vector<Flash> kFlashes{
    {"FlashLVatTP", true, false,
     [](const Ask& a, Answer& r) {
       r.status = FlashLVatTP(a.T, a.P, a.z, a.record, a.routines, a.options, &r.beta, KV_TWO);
     }},
    {"FlashLVatHP", true, false,
     [](const Ask& a, Answer& r) {
       r.status = FlashLVatHP(a.given, a.P, a.z, a.record, a.routines, a.options, &(r.T = a.start(a.T)),
                              &r.beta, KV_TWO, r.value, r.value + 1);
     }},
    {"FlashLVatSP", true, false,
     [](const Ask& a, Answer& r) {
       r.status = FlashLVatSP(a.given, a.P, a.z, a.record, a.routines, a.options, &(r.T = a.start(a.T)),
                              &r.beta, KV_TWO, r.value, r.value + 1);
     }},
    {"FlashLVatWP", false, false,
     [](const Ask& a, Answer& r) {
       r.status =
           FlashLVatWP(a.given, a.P, a.z, a.record, a.routines, a.options, &(r.T = a.start(a.T)), KV_TWO);
     }},
    {"FlashLVatWT", false, false,
     [](const Ask& a, Answer& r) {
       r.status =
           FlashLVatWT(a.given, a.T, a.z, a.record, a.routines, a.options, &(r.P = a.start(a.P)), KV_TWO);
     }},
    {"FlashLLVatTP", true, true,
     [](const Ask& a, Answer& r) {
       r.status = FlashLLVatTP(a.T, a.P, a.z, a.record, a.routines, a.options, &r.beta, &r.V, KV_THREE);
     }},
    {"FlashLLVatHP", true, true,
     [](const Ask& a, Answer& r) {
       r.status = FlashLLVatHP(a.given, a.P, a.z, a.record, a.routines, a.options, &(r.T = a.start(a.T)),
                               &r.beta, &r.V, KV_THREE, r.value, r.value + 1, r.value + 2);
     }},
    {"FlashLLVatSP", true, true,
     [](const Ask& a, Answer& r) {
       r.status = FlashLLVatSP(a.given, a.P, a.z, a.record, a.routines, a.options, &(r.T = a.start(a.T)),
                               &r.beta, &r.V, KV_THREE, r.value, r.value + 1, r.value + 2);
     }},
    {"FlashLLVatWP", false, true,
     [](const Ask& a, Answer& r) {
       r.status = FlashLLVatWP(a.given, a.P, a.z, a.record, a.routines, a.options, &(r.T = a.start(a.T)),
                               &r.beta, KV_THREE);
     }},
    {"FlashLLVatWT", false, true,
     [](const Ask& a, Answer& r) {
       r.status = FlashLLVatWT(a.given, a.T, a.z, a.record, a.routines, a.options, &(r.P = a.start(a.P)),
                               &r.beta, KV_THREE);
     }},
    {"FlashLLatTP", true, false, [](const Ask& a, Answer& r) {
       r.status = FlashLLatTP(a.T, a.P, a.z, a.record, a.routines, a.options, &r.beta, KV_TWO);
     }}};
#undef KV_TWO
#undef KV_THREE

inline Answer ask(const Flash& f, const Ask& a) {
  Answer r;
  f.call(a, r);
  return r;
}

inline const Flash& flash_named(const std::string& name) {
  for (const Flash& f : kFlashes)
    if (f.name == name) return f;
  throw std::runtime_error(name);
}

}  // namespace kestrune::tests::flashes

#endif
