// A root by halving.
#ifndef KESTRUNE_HOST_ROOT_HPP
#define KESTRUNE_HOST_ROOT_HPP

namespace kestrune::host {

// Where f, which rises, is 0 between low and high, to the last digit or two.
template <class Function>
double root_of(double low, double high, Function&& f) {
  for (int k = 0; k < 200; ++k) {
    const double middle = 0.5 * (low + high);
    (f(middle) < 0.0 ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

}  // namespace kestrune::host

#endif
