// What the correlation of hydrates was not made for.
#include "hydrate_range.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "cas.hpp"

namespace kestrune::host {

namespace {

constexpr double kLowestGravity = 0.55, kHighestGravity = 1.0;
// Hammerschmidt's depression: mass percent of alcohols and glycols, of salts.
constexpr double kMostAlcohol = 25.0, kMostSalt = 20.0;
constexpr double kMuchNitrogen = 0.2;
constexpr double kLittle = 0.02;  // hydrogen, oxygen, helium, argon, water, alcohols: a natural gas has less
constexpr double kSweetH2S = 0.001, kSweetCO2 = 0.05, kAlmostMethane = 0.98;  // mole fractions
constexpr std::int32_t kForeign[] = {cas::kHydrogen, cas::kOxygen, cas::kHelium, cas::kArgon, cas::kWater,
                                     cas::kMethanol, cas::kMEG,    cas::kDEG,    cas::kTEG,   cas::kCO};

bool is_salt(std::int32_t inhibitor) {
  return inhibitor >= 2 && inhibitor <= 4;
}

}  // namespace

std::vector<std::string> hydrate_warnings(const Mixture& m, std::int32_t inhibitor, double percent) {
  const auto share = [&](std::int32_t cas_number) { return share_of(m, m.z, cas_number); };
  std::vector<std::string> lines;
  const double gravity = m.molar_mass / 28.966, h2s = share(cas::kH2S), co2 = share(cas::kCO2);
  if (!(gravity >= kLowestGravity && gravity <= kHighestGravity))
    lines.push_back(
        fmt::format("gravity {:.4g} outside {:g} to {:g}", gravity, kLowestGravity, kHighestGravity));
  if (h2s > kSweetH2S)
    lines.push_back(fmt::format(
        "{:.3g} % hydrogen sulfide, outside sweet gas: hydrates form at higher temperature", 100.0 * h2s));
  if (co2 > kSweetCO2) lines.push_back(fmt::format("{:.3g} % carbon dioxide, outside sweet gas", 100.0 * co2));
  for (std::size_t i = 0; i < m.z.size(); ++i) {
    const Component& c = m.components[i];
    const bool foreign =
        std::find(std::begin(kForeign), std::end(kForeign), c.cas_number) != std::end(kForeign);
    if (foreign && m.z[i] > kLittle)
      lines.push_back(fmt::format("{:.3g} % {}, outside natural gas", 100.0 * m.z[i], c.name));
  }
  if (share(cas::kNitrogen) > kMuchNitrogen)
    lines.push_back(fmt::format("{:.3g} % nitrogen, outside natural gas", 100.0 * share(cas::kNitrogen)));
  else if (share(cas::kMethane) + share(cas::kNitrogen) > kAlmostMethane && h2s + co2 <= kSweetCO2)
    lines.push_back("almost methane alone, for which 5 to 7 K less are measured");
  const double most = is_salt(inhibitor) ? kMostSalt : kMostAlcohol;
  if (percent > most) lines.push_back(fmt::format("{:.4g} % inhibitor outside 0 to {:g} %", percent, most));
  return lines;
}

}  // namespace kestrune::host
