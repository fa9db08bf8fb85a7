#include "library.hpp"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace kestrune::sweep {
namespace {

template <class Function>
void resolve(void* handle, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(handle, name));
  if (!function) throw std::runtime_error(std::string("the library does not export ") + name);
}

}  // namespace

Library::Library(const std::string& file) {
  const auto own = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libKVGasThermo.so";
  const std::string path = file.empty() ? own.string() : file;
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) throw std::runtime_error(dlerror());
  resolve(handle, "FlashLVatTP", flash_);
  resolve(handle, "ConvertPPR78GroupData", convert_);
  resolve(handle, "FlashLVatWP", at_pressure_);
  resolve(handle, "FlashLVatWT", at_temperature_);
  resolve(handle, "FlashLVatHP", caloric_[0]);
  resolve(handle, "FlashLVatSP", caloric_[1]);
  resolve(handle, "FlashLLVatTP", three_);
  resolve(handle, "FlashLLVatHP", three_caloric_[0]);
  resolve(handle, "FlashLLVatSP", three_caloric_[1]);
  resolve(handle, "FlashLLVatWP", three_at_pressure_);
  resolve(handle, "FlashLLVatWT", three_at_temperature_);
  resolve(handle, "LiquidMolarEnthalpy_PPR78", property_[0][0]);
  resolve(handle, "GasMolarEnthalpy_PPR78", property_[0][1]);
  resolve(handle, "LiquidMolarEntropy_PPR78", property_[1][0]);
  resolve(handle, "GasMolarEntropy_PPR78", property_[1][1]);
  find_own_routines(handle);
}

void Library::prepare(const Feed& feed, const Components& c) {
  const size_t n = c.n, groups = c.groups;
  table_.assign(n * KV_TABLE_COLUMNS, 0.0);
  for (size_t i = 0; i < n; ++i) {
    const auto set = [&](int column, double value) { table_[(column - 1) * n + i] = value; };
    set(KV_COL_MOLAR_MASS, c.mass[i]);
    set(KV_COL_TC, c.tc[i]);
    set(KV_COL_PC, c.pc[i]);
    set(KV_COL_OMEGA, c.omega[i]);
    set(KV_COL_FAMILY, c.family[i]);
    set(KV_COL_CAS, c.cas[i]);
  }
  const size_t sizes[5] = {groups * groups, groups * groups, n * groups, groups * groups, groups * n * n};
  double* storage[6] = {};
  for (int k = 0; k < 5; ++k) {
    buffers_[k].assign(sizes[k], 0.0);
    storage[k + 1] = buffers_[k].data();
  }
  convert_(c.n, c.groups, c.counts.data(), c.A.data(), c.B.data(), storage);
  record_ = MixtureRecord{};
  record_.count = c.n;
  record_.table = table_.data();
  record_.flags = feed.free_water ? FreeWaterFlag : 0;
  record_.solubility_a = feed.solubility_a;
  record_.solubility_b = feed.solubility_b;
  record_.CRIT = KV_DEFAULT_CRIT;
  record_.CLIM = KV_DEFAULT_CLIM;
  record_.EPS = KV_DEFAULT_EPS;
  record_.ITEMAX = KV_DEFAULT_ITEMAX;
  record_.NEW = KV_DEFAULT_NEW;
  record_.relaxation = KV_DEFAULT_RELAXATION;
  record_.pure_tolerance = KV_DEFAULT_PURE_TOLERANCE;
  record_.sum_tolerance = KV_DEFAULT_SUM_TOLERANCE;
}

void Library::check_flags(const MixtureRecord& record) const {
  if (record.flags != record_.flags) throw std::runtime_error("the flags byte of the record was not put back");
}

Answer Library::flash(const Feed& feed, double T, double P, const Answer* warm) {
  const std::lock_guard<std::mutex> lock(one_caller_);
  Answer answer;
  if (warm) answer = *warm;
  answer.x.resize(feed.z.size());
  answer.y.resize(feed.z.size());
  answer.K.resize(feed.z.size());
  const uint8_t flags = record_.flags;
  answer.status = flash_(T, P, feed.z.data(), &record_, routines_, warm ? 0 : 1, &answer.beta, answer.x.data(),
                         answer.y.data(), answer.K.data());
  if (record_.flags != flags) throw std::runtime_error("the flags byte of the record was not put back");
  return answer;
}

SaturationAnswer Library::saturation(const Feed& feed, const SaturationQuestion& q,
                                     const SaturationAnswer* warm) {
  MixtureRecord record = record_;
  SaturationAnswer answer;
  if (warm) answer = *warm;
  answer.x.resize(feed.z.size());
  answer.y.resize(feed.z.size());
  answer.K.resize(feed.z.size());
  const auto routine = q.given == Given::temperature ? at_temperature_ : at_pressure_;
  answer.seconds = timed([&] {
    answer.status = routine(q.W, q.value, feed.z.data(), &record, routines_, warm ? 0 : 1, &answer.found,
                            answer.x.data(), answer.y.data(), answer.K.data());
  });
  check_flags(record);
  return answer;
}

CaloricAnswer Library::caloric(const Feed& feed, Quantity quantity, double value, double P, double T_start,
                               const Answer* warm) {
  MixtureRecord record = record_;
  CaloricAnswer answer;
  if (warm) answer.phases = *warm;
  answer.T = T_start;
  Answer& phases = answer.phases;
  phases.x.resize(feed.z.size());
  phases.y.resize(feed.z.size());
  phases.K.resize(feed.z.size());
  answer.seconds = timed([&] {
    phases.status = caloric_[quantity == Quantity::entropy](
        value, P, feed.z.data(), &record, routines_, warm ? 0 : 1, &answer.T, &phases.beta, phases.x.data(),
        phases.y.data(), phases.K.data(), &answer.liquid, &answer.vapour);
  });
  check_flags(record);
  return answer;
}

bool Library::property(Quantity quantity, bool gas, double T, double P, const Composition& x, double& value) {
  MixtureRecord record = record_;
  const int status = property_[quantity == Quantity::entropy][gas](T, P, x.data(), &record, &value);
  return status == KV_OK || status == KV_PURE_RANGE;
}

}  // namespace kestrune::sweep
