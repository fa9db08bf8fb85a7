// The inner loops that the flashes spend their time in, compiled once for every width of vectors that is worth it:
// two doubles (SSE2, which every machine has) and four (AVX2). What is run is chosen when the library is loaded.
// The order of every sum is fixed, four partial sums, and nothing is contracted: all give the same digits.
//
// Arrays are padded to ld = padded(n) (support/arena.hpp), a multiple of four; the padding of what goes into a sum
// holds zeros.
#ifndef KESTRUNE_SUPPORT_LANES_HPP
#define KESTRUNE_SUPPORT_LANES_HPP

namespace kestrune::support {

// Two sums of one pass.
struct Sums {
  double first, second;
};

/*
 * A symmetric matrix of products, in the padded vectors b, s and the matrix a[ld * n]:
 *   unit + g_b (b_i + b_j) + g_bb b_i b_j + g_bs (b_i s_j + s_i b_j) + g_a a_ij + e (l_i + l_j) - inv_k l_i l_j
 * with l_i = h_b b_i + h_s s_i.
 */
struct PairTerms {
  double unit, g_b, g_bb, g_bs, g_a, e, inv_k, h_b, h_s;
};

struct Lanes {
  const char* name;

  // s[ld] = sum over j of x[j] times column j of m[ld * n]. Returns the sums of x s and of x b.
  Sums (*combine)(int n, int ld, const double* m, const double* x, const double* b, double* s);

  // out[i] = c0 + cb b[i] + cs s[i], [ld].
  void (*linear)(int ld, double c0, double cb, const double* b, double cs, const double* s, double* out);

  // The first rows elements of every column of the matrix above, column j at j * ld_out. lower: what stands above
  // the diagonal is not wanted; up to three elements of it are written.
  void (*pairs)(const PairTerms& p, int n, int ld, const double* a, const double* b, const double* s,
                double* out, int ld_out, int rows, bool lower);

  // w[ld] = exp(log_w) over its sum, which is returned; log_w[n] is cut to highest first, its padding set to zero.
  double (*shares)(int n, int ld, double highest, double* log_w, double* w);

  // out[i] = factor[i] exp(argument[i] * scale), [count], count any number.
  void (*powers)(int count, const double* factor, const double* argument, double scale, double* out);

  // h(i, j) = root_i root_j m(i, j) in the lower triangle; up to three elements above the diagonal are written.
  void (*scale)(int n, int ld, const double* root, const double* m, double* h);

  // Sum of the squares of all elements of a symmetric matrix of which the lower triangle is there (and up to three
  // elements above the diagonal, which count twice): not less than the square of its largest eigenvalue.
  double (*squares)(int n, int ld, const double* lower);

  // L D L^T of a[ld * n], as ldl_factor (support/ldl.hpp); what stands above the diagonal is spoilt.
  bool (*ldl_factor)(int n, int ld, double* a, double floor);

  // out(i, j) = b_i b_j (d_i + d_j - (f A f^T)_ij)/2 with d_i = e_i + (f A f^T)_ii/2 and f[ld * m], A[m * m]; work
  // half[ld * m] and d[ld].
  void (*group_sums)(int n, int ld, int m, const double* f, const double* A, const double* e, const double* b,
                     double* half, double* d, double* out);
};

extern const Lanes kTwoLanes;
#ifdef KESTRUNE_WIDE
extern const Lanes kFourLanes;
#endif

// The widest that this processor runs.
extern const Lanes* const lanes;

}  // namespace kestrune::support

#endif
