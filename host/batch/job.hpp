// A batch: what is to be calculated of every row, pieces of the input, and the rows of the output that they become.
#ifndef KESTRUNE_HOST_BATCH_JOB_HPP
#define KESTRUNE_HOST_BATCH_JOB_HPP

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "batch/columns.hpp"
#include "batch/heading.hpp"
#include "batch/state.hpp"

namespace kestrune::host::batch {

// An amount of the input in moles of components: a fraction has several, with weights that sum to one. A mass is divided by
// the molar mass, g/mol.
struct AmountParts {
  std::vector<std::pair<std::size_t, double>> parts;
  double divisor = 1.0;
};

// Two components (or one and any other, second -1) that need an interaction which nobody published.
struct RefusedPair {
  int first, second;
};

struct KeptColumn {
  bool of_composition;
  std::size_t column;
  std::string heading;  // in the results
};

struct Job {
  Exports library;
  Mixture mixture;
  int phases = 3;
  UnitSystem units{};
  Heading states;        // of the rows; its amounts where every row has its own composition
  Heading compositions;  // of the table of compositions, where there is one
  bool has_compositions = false;
  std::vector<AmountParts> amounts;  // in the order of the amounts of the heading that has them
  std::vector<RefusedPair> refused;
  std::vector<KeptColumn> kept;
  std::vector<Column> columns;
  bool binary = false;

  Given given() const { return *states.given; }
  const Heading& amount_heading() const { return has_compositions ? compositions : states; }
};

// Some rows of the input as they stand: pieces of one composition and rows of states, in this order in the text.
struct Chunk {
  struct Piece {
    std::int64_t composition_line = 0, first_line = 0;  // numbers in the input, from 1
    std::uint64_t composition_size = 0, rows_size = 0;  // bytes; no composition where the rows have their own
  };
  std::uint64_t number = 0;
  std::vector<Piece> pieces;
  std::string text;

  void clear() {
    pieces.clear();
    text.clear();
  }
};

// What they became. failed: rows without an answer.
struct Result {
  std::uint64_t number = 0, rows = 0, failed = 0, input_hash = 0, input_size = 0;
  std::string bytes;
};

// What stands before the first row: the heading of CSV, or that of the binary form.
std::string output_head(const Job& job);

// One thread's rows.
class Evaluator {
 public:
  explicit Evaluator(const Job& job);
  void run(const Chunk& chunk, Result& result);

 private:
  struct Feed {
    std::vector<double> z;
    double molar_mass = 0.0;
    StatusCode status = KV_OK;
    std::string text;
  };

  void row(std::string_view line, std::int64_t number, Result& result);
  void read_composition(const Heading& heading, std::string_view line, std::int64_t number);
  void read_feed(const Heading& heading, std::int64_t number);
  bool read_conditions(std::int64_t number, double* raw);
  bool cut(const Heading& heading, std::string_view line, std::int64_t number,
           std::vector<std::string_view>& cells);
  bool refuse(StatusCode status, std::string text);
  std::string kept_cell(const KeptColumn& kept) const;
  void check_pairs();
  void print_row(const double* raw, const double* base, std::string& out);
  void store_row();
  void join_columns(Result& result);

  const Job& job_;
  StateSolver solver_;
  Feed feed_;
  StatusCode row_status_ = KV_OK;
  std::string row_text_;
  std::string_view line_, composition_line_;  // the cells are cut from
  std::vector<std::string_view> cells_, composition_cells_;
  std::vector<std::string> stored_;  // binary: the bytes of every column
};

}  // namespace kestrune::host::batch

#endif
