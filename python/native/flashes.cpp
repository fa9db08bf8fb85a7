// Flashes of many states.
#include "cold_flash.hpp"
#include "session.hpp"

using namespace kestrune;
using arrays::guarded;
using arrays::index;

namespace {

static_assert(static_cast<int>(host::Given::TP) == KA_TP && static_cast<int>(host::Given::HP) == KA_HP &&
              static_cast<int>(host::Given::SP) == KA_SP && static_cast<int>(host::Given::WP) == KA_WP &&
              static_cast<int>(host::Given::WT) == KA_WT);

// One thread's flashes, from and to the arrays of the job.
class Flasher {
 public:
  Flasher(const host::Exports& library, const host::Mixture& mixture, const KaFlash& job)
      : mixture_(mixture),
        job_(job),
        nc_(mixture.z.size()),
        flash_(library, mixture, static_cast<host::Given>(job.given), job.phases),
        spare_(nc_) {}

  void operator()(std::int64_t i) {
    const std::size_t at = index(i);
    const auto row = [&](int p) { return job_.x[p] + at * nc_; };
    double* const x[3] = {row(0), row(1), job_.phases == 3 ? row(2) : spare_.data()};
    job_.status[at] = flash_(job_.first[at], job_.second[at], arrays::row(job_.z, nc_, i, mixture_), x);
    job_.T[at] = flash_.T();
    job_.P[at] = flash_.P();
    for (std::size_t p = 0; p < index(job_.phases); ++p) job_.fraction[p][at] = flash_.fraction(p);
  }

 private:
  const host::Mixture& mixture_;
  const KaFlash& job_;
  std::size_t nc_;
  host::ColdFlash flash_;
  std::vector<double> spare_;
};

void check(const KaFlash& job) {
  if (job.given < KA_TP || job.given > KA_WT) throw host::InputError("a flash is given TP, HP, SP, WP or WT");
  if (job.phases != 2 && job.phases != 3) throw host::InputError("a flash looks for 2 or 3 phases");
  if (job.count < 0) throw host::InputError("the number of states is negative");
}

}  // namespace

extern "C" int32_t ka_flash(KaMixture* mixture, const KaFlash* job, char* text, int32_t size) {
  return guarded(text, size, [&] {
    check(*job);
    const host::Exports& library = arrays::library();
    const arrays::Turn turn(mixture->mixture);
    arrays::for_each_state(job->count, job->threads, [&] { return Flasher(library, mixture->mixture, *job); });
    return 0;
  });
}
