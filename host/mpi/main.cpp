// kestrune-mpi: the command line with a batch in several processes, mpirun -n N kestrune-mpi batch ... The first process
// reads, writes and calculates; the others calculate.
#include <fmt/format.h>
#include <mpi.h>

#include <unistd.h>
#include <csignal>
#include <cstring>
#include <iostream>
#include <list>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "batch/team.hpp"
#include "commands/session.hpp"
#include "error.hpp"

namespace {

using namespace kestrune::host;
using namespace kestrune::host::batch;
using namespace std::chrono_literals;

enum Tag { kTagChunk = 1, kTagResult = 2, kTagStop = 3 };
constexpr std::size_t kAhead = 2;    // chunks that a process has, so that it never waits for the next one
constexpr auto kListenEvery = 50us;  // MPI's own waiting would take a processor
constexpr int kLongestFailure = 2000;

template <class T>
void pack(std::string& bytes, const T* values, std::size_t count) {
  bytes.append(reinterpret_cast<const char*>(values), count * sizeof(T));
}

template <class T>
void unpack(std::string_view& bytes, T* values, std::size_t count) {
  std::memcpy(values, bytes.data(), count * sizeof(T));
  bytes.remove_prefix(count * sizeof(T));
}

// A message that is there from anybody; false when there is none. Its bytes.
bool listen(std::string& bytes, MPI_Status& status) {
  int there = 0;
  MPI_Iprobe(MPI_ANY_SOURCE, MPI_ANY_TAG, MPI_COMM_WORLD, &there, &status);
  if (there == 0) return false;
  int size = 0;
  MPI_Get_count(&status, MPI_BYTE, &size);
  bytes.resize(static_cast<std::size_t>(size));
  MPI_Recv(bytes.data(), size, MPI_BYTE, status.MPI_SOURCE, status.MPI_TAG, MPI_COMM_WORLD, &status);
  return true;
}

// A chunk and its results are bounded (check_chunk of commands/batch_input.cpp), far below what an int counts.
void send_bytes(const std::string& bytes, int to, Tag tag) {
  MPI_Send(bytes.data(), static_cast<int>(bytes.size()), MPI_BYTE, to, tag, MPI_COMM_WORLD);
}

class MpiCrew : public Crew {
 public:
  explicit MpiCrew(int others) : busy_(static_cast<std::size_t>(others), 0) {}

  // Results of a run that failed are waited for and dropped.
  ~MpiCrew() override {
    Result dropped;
    while (outstanding_ > 0)
      if (!MpiCrew::receive(dropped)) std::this_thread::sleep_for(kListenEvery);
    // NOLINTNEXTLINE(clang-analyzer-optin.mpi.MPI-Checker): begun in send
    for (Message& m : under_way_) MPI_Wait(&m.request, MPI_STATUS_IGNORE);
    for (std::size_t k = 0; k < busy_.size(); ++k) send_bytes("", static_cast<int>(k) + 1, kTagStop);
  }

  std::size_t size() const override { return busy_.size(); }

  bool send(const Chunk& chunk, std::uint64_t input_hash) override {
    std::size_t to = 0;
    for (std::size_t k = 1; k < busy_.size(); ++k)
      if (busy_[k] < busy_[to]) to = k;
    if (busy_.empty() || busy_[to] >= kAhead) return false;
    // Without waiting: the other one may be waiting itself until a result of it is taken.
    drop_sent();
    Message& message = under_way_.emplace_back();
    std::string& bytes = message.bytes;
    const std::uint64_t head[] = {chunk.number, input_hash, chunk.pieces.size()};
    pack(bytes, head, 3);
    pack(bytes, chunk.pieces.data(), chunk.pieces.size());
    bytes += chunk.text;
    MPI_Isend(bytes.data(), static_cast<int>(bytes.size()), MPI_BYTE, static_cast<int>(to) + 1, kTagChunk,
              MPI_COMM_WORLD, &message.request);
    ++busy_[to];  // NOLINT(clang-analyzer-optin.mpi.MPI-Checker): waited for in drop_sent
    ++outstanding_;
    return true;
  }

  bool receive(Result& result) override {
    MPI_Status status;
    if (outstanding_ == 0 || !listen(bytes_, status)) return false;
    std::string_view rest = bytes_;
    std::uint64_t head[5];
    unpack(rest, head, 5);
    result.number = head[0];
    result.input_hash = head[1];
    result.rows = head[2];
    result.failed = head[3];
    result.input_size = head[4];
    result.bytes = rest;
    --busy_[static_cast<std::size_t>(status.MPI_SOURCE) - 1];
    --outstanding_;
    return true;
  }

 private:
  struct Message {
    std::string bytes;
    MPI_Request request = MPI_REQUEST_NULL;
  };

  void drop_sent() {
    under_way_.remove_if([](Message& m) {
      int sent = 0;
      MPI_Test(&m.request, &sent, MPI_STATUS_IGNORE);
      return sent != 0;
    });
  }

  std::vector<std::size_t> busy_;  // chunks that each has
  std::size_t outstanding_ = 0;
  std::list<Message> under_way_;
  std::string bytes_;
};

class MpiTeam : public Team {
 public:
  MpiTeam() {
    MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
    MPI_Comm_size(MPI_COMM_WORLD, &size_);
  }

  bool leads() const override { return rank_ == 0; }
  std::size_t size() const override { return static_cast<std::size_t>(size_); }

  void agree(const std::string& failure, const std::string& identity) override {
    // What the first one is ready for, to all; what is wrong, to all.
    auto length = static_cast<int>(identity.size());
    MPI_Bcast(&length, 1, MPI_INT, 0, MPI_COMM_WORLD);
    std::string first = identity;
    first.resize(static_cast<std::size_t>(length));
    MPI_Bcast(first.data(), length, MPI_BYTE, 0, MPI_COMM_WORLD);
    std::string mine = failure;
    if (mine.empty() && first != identity && !first.empty())
      mine =
          "is ready for another job than the first process: the program, its library and the mixture must be "
          "the same "
          "on all nodes";
    mine.resize(kLongestFailure, '\0');
    std::string all(static_cast<std::size_t>(size_) * kLongestFailure, '\0');
    MPI_Allgather(mine.data(), kLongestFailure, MPI_BYTE, all.data(), kLongestFailure, MPI_BYTE,
                  MPI_COMM_WORLD);
    for (int r = 0; r < size_; ++r) {
      const std::string text = all.c_str() + static_cast<std::size_t>(r) * kLongestFailure;
      if (!text.empty()) throw InputError(r == 0 ? text : fmt::format("process {}: {}", r, text));
    }
    serving_ = !leads();
  }

  std::unique_ptr<Crew> lead() override { return std::make_unique<MpiCrew>(size_ - 1); }

  bool is_serving() const { return serving_; }

  void serve(const Job& job) override {
    serving_ = true;
    Evaluator evaluator(job);
    Chunk chunk;
    Result result;
    std::string bytes;
    for (MPI_Status status;;) {
      if (!listen(bytes, status)) {
        std::this_thread::sleep_for(kListenEvery);
        continue;
      }
      if (status.MPI_TAG == kTagStop) {
        serving_ = false;
        return;
      }
      std::string_view rest = bytes;
      std::uint64_t head[3];
      unpack(rest, head, 3);
      chunk.number = head[0];
      chunk.pieces.resize(head[2]);
      unpack(rest, chunk.pieces.data(), chunk.pieces.size());
      chunk.text = rest;
      evaluator.run(chunk, result);
      bytes.clear();
      const std::uint64_t answer[] = {result.number, head[1], result.rows, result.failed, chunk.text.size()};
      pack(bytes, answer, 5);
      bytes += result.bytes;
      send_bytes(bytes, 0, kTagResult);
    }
  }

 private:
  int rank_ = 0, size_ = 1;
  bool serving_ = false;  // the first process waits for this one's results
};

// mpirun ends the others with this signal when one of them dies.
extern "C" void say_resumable(int) {
  constexpr char text[] =
      "\nkestrune-mpi: ended from outside, because a process of the job died or the job was stopped. What "
      "stands in the "
      "output file is good: the same command with --resume goes on with it\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, text, sizeof text - 1);
  std::signal(SIGTERM, SIG_DFL);
  std::raise(SIGTERM);
}

}  // namespace

int main(int argc, char** argv) {
  int provided = 0;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &provided);
  MpiTeam team;
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (team.leads()) std::signal(SIGTERM, say_resumable);
  int code = exit_input;
  if (arguments.empty() || arguments.front() != "batch") {
    if (team.leads())
      std::cerr << "kestrune-mpi: use it as mpirun -n N kestrune-mpi batch ...; the rest is in kestrune\n";
  } else {
    // The others say nothing; what goes wrong in one of them after all were ready ends the job.
    std::ostringstream nothing, failure;
    code = team.leads() ? run(arguments, std::cout, std::cerr, nullptr, &team)
                        : run(arguments, nothing, failure, nullptr, &team);
    if (team.is_serving()) {
      std::cerr << failure.str() << std::flush;
      MPI_Abort(MPI_COMM_WORLD, exit_input);
    }
  }
  // All end with the code of the first one. mpirun sends the others a signal when one ends with another code than 0.
  std::signal(SIGTERM, SIG_IGN);
  MPI_Bcast(&code, 1, MPI_INT, 0, MPI_COMM_WORLD);
  MPI_Finalize();
  return code;
}
