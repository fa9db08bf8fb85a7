// Rows of the input become rows of the output.
#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>

#include "batch/binary.hpp"
#include "batch/job.hpp"
#include "batch/lines.hpp"
#include "table.hpp"

namespace kestrune::host::batch {

namespace {

using Kind = Column::Kind;

// A number that fills a cell. Beside semicolons and tabs a decimal comma is one.
bool read_number(std::string_view cell, char separator, double& value) {
  char plain[64];
  if (separator != ',' && cell.size() < sizeof plain && cell.find(',') != std::string_view::npos) {
    for (std::size_t k = 0; k < cell.size(); ++k) plain[k] = cell[k] == ',' ? '.' : cell[k];
    cell = {plain, cell.size()};
  }
  if (cell.size() > 1 && cell.front() == '+' && cell[1] != '-') cell.remove_prefix(1);
  const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
  return error == std::errc() && end == cell.data() + cell.size();
}

void print_number(double value, std::string& out) {
  if (!std::isfinite(value)) return;
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value == 0.0 ? 0.0 : value).ptr;
  out.append(text, static_cast<std::size_t>(end - text));
}

// What a message shows of a cell: its beginning, with ? for what is no text.
std::string shown(std::string_view cell) {
  constexpr std::size_t most = 60;
  std::string text;
  for (std::size_t k = 0; k < cell.size() && text.size() < most;) {
    const auto first = static_cast<unsigned char>(cell[k]);
    const std::size_t more = first < 0x80 ? 0 : first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
    bool good = first >= 0x20 && first != 0x7f && (first < 0x80 || (first >= 0xc2 && first <= 0xf4)) &&
                k + more < cell.size();
    for (std::size_t j = 1; good && j <= more; ++j) good = (cell[k + j] & '\xc0') == '\x80';
    text += good ? cell.substr(k, 1 + more) : std::string_view("?");
    k += good ? 1 + more : 1;
  }
  return text;
}

}  // namespace

std::string output_head(const Job& job) {
  if (job.binary) return binary_head(job);
  std::string line;
  for (const Column& c : job.columns) line += (line.empty() ? "" : ",") + csv_field(c.heading);
  return line + '\n';
}

Evaluator::Evaluator(const Job& job)
    : job_(job), solver_(job.library, job.mixture, job.given(), job.phases, job.columns) {
  feed_.z = job.mixture.z;
  feed_.molar_mass = job.mixture.molar_mass;
  cells_.resize(job.states.titles.size());
  composition_cells_.resize(job.compositions.titles.size());
  stored_.resize(job.columns.size());
}

void Evaluator::run(const Chunk& chunk, Result& result) {
  result.number = chunk.number;
  result.rows = result.failed = 0;
  result.bytes.clear();
  for (std::string& column : stored_) column.clear();
  std::string_view text = chunk.text;
  for (const Chunk::Piece& piece : chunk.pieces) {
    if (piece.composition_size > 0)
      read_composition(job_.compositions, text.substr(0, piece.composition_size), piece.composition_line);
    text.remove_prefix(piece.composition_size);
    std::string_view rows = text.substr(0, piece.rows_size);
    text.remove_prefix(piece.rows_size);
    for (std::int64_t line = piece.first_line; !rows.empty(); ++line) {
      const std::size_t end = rows.find('\n');
      row(rows.substr(0, end), line, result);
      rows.remove_prefix(end + 1);
    }
  }
  if (job_.binary) join_columns(result);
}

bool Evaluator::refuse(StatusCode status, std::string text) {
  row_status_ = status;
  row_text_ = std::move(text);
  return false;
}

bool Evaluator::cut(const Heading& heading, std::string_view line, std::int64_t number,
                    std::vector<std::string_view>& cells) {
  if (line.size() >= kLongestLine) {
    std::fill(cells.begin(), cells.end(), std::string_view{});
    return refuse(kRowWidth, fmt::format("line {}: longer than {} bytes", number, kLongestLine));
  }
  const std::size_t count = cut_cells(line, heading.separator, cells.data(), cells.size());
  for (std::size_t k = count; k < cells.size(); ++k) cells[k] = {};
  if (count <= cells.size()) return true;
  return refuse(kRowWidth, fmt::format("line {}: {} cells under a heading of {}", number, count, cells.size()));
}

// The row's conditions as they are written; one that can be read stands beside one that cannot.
bool Evaluator::read_conditions(std::int64_t number, double* raw) {
  bool readable = true;
  for (std::size_t k = 0; k < 2; ++k) {
    const std::size_t column = job_.states.conditions[k].column;
    if (read_number(cells_[column], job_.states.separator, raw[k])) continue;
    raw[k] = kNone;
    if (readable)
      refuse(kRowUnreadable, cells_[column].empty()
                                 ? fmt::format("line {}: {} is missing", number, job_.states.titles[column])
                                 : fmt::format("line {}: \"{}\" of {} is not a number", number,
                                               shown(cells_[column]), job_.states.titles[column]));
    readable = false;
  }
  return readable;
}

// The feed from the amounts in the cells, which may be empty.
void Evaluator::read_feed(const Heading& heading, std::int64_t number) {
  const std::vector<std::string_view>& cells = job_.has_compositions ? composition_cells_ : cells_;
  const auto refuse_feed = [&](StatusCode status, const std::string& text) {
    feed_.status = status;
    feed_.text = fmt::format("{}line {}: {}", job_.has_compositions ? "composition of " : "", number, text);
  };
  std::fill(feed_.z.begin(), feed_.z.end(), 0.0);
  feed_.status = KV_OK;
  double sum = 0.0;
  for (std::size_t k = 0; k < heading.amounts.size(); ++k) {
    const AmountColumn& column = heading.amounts[k];
    double amount = 0.0;
    if (!cells[column.column].empty() && !read_number(cells[column.column], heading.separator, amount)) {
      return refuse_feed(kRowUnreadable, fmt::format("\"{}\" of {} is not an amount",
                                                     shown(cells[column.column]), column.name));
    }
    if (!(amount >= 0.0))
      return refuse_feed(KV_COMPOSITION,
                         fmt::format("the amount {} of {} is negative or no number", amount, column.name));
    const AmountParts& parts = job_.amounts[k];
    const double moles = (column.whole == 1.0 ? amount : amount / column.whole) / parts.divisor;
    for (const auto& [component, weight] : parts.parts) feed_.z[component] += moles * weight;
    sum += moles;
  }
  if (!(sum > 0.0) || !std::isfinite(sum))
    return refuse_feed(KV_COMPOSITION, fmt::format("the amounts sum to {}", sum));
  sum = 0.0;
  for (const double moles : feed_.z) sum += moles;
  feed_.molar_mass = 0.0;
  for (std::size_t i = 0; i < feed_.z.size(); ++i) {
    feed_.z[i] /= sum;
    feed_.molar_mass += feed_.z[i] * job_.mixture.components[i].molar_mass;
  }
  check_pairs();
}

void Evaluator::check_pairs() {
  const auto name = [&](int i) { return job_.mixture.components[static_cast<std::size_t>(i)].name; };
  const auto at = [&](int i) { return feed_.z[static_cast<std::size_t>(i)]; };
  for (const RefusedPair& pair : job_.refused) {
    const bool alone = pair.second < 0;
    if (alone ? at(pair.first) == 0.0 || at(pair.first) == 1.0
              : at(pair.first) < kTracePair || at(pair.second) < kTracePair)
      continue;
    feed_.status = kRowPair;
    feed_.text =
        alone ? fmt::format("{} has no PPR78 groups: --allow-missing-pairs takes its interactions as zero",
                            name(pair.first))
              : fmt::format("no published interaction of {} with {}: --allow-missing-pairs takes it as zero",
                            name(pair.first), name(pair.second));
    return;
  }
}

void Evaluator::read_composition(const Heading& heading, std::string_view line, std::int64_t number) {
  composition_line_ = line = line.substr(0, line.find('\n'));
  if (cut(heading, line, number, composition_cells_)) return read_feed(heading, number);
  feed_.status = row_status_;
  feed_.text = "composition of " + row_text_;
}

void Evaluator::row(std::string_view line, std::int64_t number, Result& result) {
  if (is_empty_line(line)) return;
  line_ = line;
  row_status_ = KV_OK;
  double raw[2] = {kNone, kNone}, base[2] = {kNone, kNone};
  const bool readable = cut(job_.states, line, number, cells_) && read_conditions(number, raw);
  if (readable && !job_.has_compositions && !job_.states.amounts.empty()) read_feed(job_.states, number);
  const double M = readable && feed_.status == KV_OK ? feed_.molar_mass : kNone;
  for (std::size_t k = 0; k < 2; ++k) base[k] = job_.states.conditions[k].unit->to_base(raw[k], M);
  if (readable && feed_.status != KV_OK) refuse(feed_.status, feed_.text);
  if (row_status_ == KV_OK)
    solver_.solve(base[0], base[1], feed_.z.data(), feed_.molar_mass);
  else
    solver_.leave(base[0], base[1], row_status_);
  ++result.rows;
  if (!has_value(solver_.status())) ++result.failed;
  if (job_.binary) return store_row();
  print_row(raw, base, result.bytes);
}

std::string Evaluator::kept_cell(const KeptColumn& kept) const {
  return kept.of_composition ? cell_text(composition_line_, composition_cells_[kept.column])
                             : cell_text(line_, cells_[kept.column]);
}

void Evaluator::print_row(const double* raw, const double* base, std::string& out) {
  const auto order = quantities_of(job_.given());
  for (const Column& c : job_.columns) {
    if (&c != job_.columns.data()) out += ',';
    switch (c.kind) {
      case Kind::kept:
        out += csv_field(kept_cell(job_.kept[c.index]));
        break;
      case Kind::phases:
        out += solver_.phases();
        break;
      case Kind::status:
        fmt::format_to(std::back_inserter(out), "{}", solver_.status());
        break;
      case Kind::text:
        if (row_status_ != KV_OK)
          out += csv_field(row_text_);
        else if (solver_.status() != KV_OK)
          out += csv_field(solver_.status() == kRowNoProperty ? kNoPropertyText
                                                              : kv_status_text(solver_.status()));
        break;
      default: {
        // What was given stands as it was written, in another unit in the digits that mean the same.
        const bool condition = c.kind == Kind::T || c.kind == Kind::P || c.kind == Kind::given;
        const std::size_t k = order[0] == c.quantity ? 0 : order[1] == c.quantity ? 1 : 2;
        if (!condition || k == 2)
          print_number(solver_.value(c), out);
        else if (job_.states.conditions[k].unit == c.unit)
          print_number(raw[k], out);
        else if (std::isfinite(base[k]) && (!c.unit->per_mass || feed_.status == KV_OK))
          out += exact(base[k], *c.unit, feed_.molar_mass);
      }
    }
  }
  out += '\n';
}

void Evaluator::store_row() {
  for (std::size_t k = 0; k < job_.columns.size(); ++k) {
    const Column& c = job_.columns[k];
    std::string& bytes = stored_[k];
    if (c.kind == Kind::phases) {
      char letters[8] = {};
      const std::string_view phases = solver_.phases();
      std::memcpy(letters, phases.data(), phases.size());
      bytes.append(letters, sizeof letters);
    } else if (c.kind == Kind::status) {
      const std::int64_t status = solver_.status();
      bytes.append(reinterpret_cast<const char*>(&status), sizeof status);
    } else {
      const double value = solver_.value(c);
      bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
  }
}

void Evaluator::join_columns(Result& result) {
  if (result.rows == 0) return;
  result.bytes.append(reinterpret_cast<const char*>(&result.rows), sizeof result.rows);
  for (const std::string& column : stored_) result.bytes += column;
}

}  // namespace kestrune::host::batch
