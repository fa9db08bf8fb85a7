#include "batch/run.hpp"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace kestrune::host::batch {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kAhead = 3;                          // chunks in memory for each worker
constexpr std::size_t kMostBytes = std::size_t{96} << 20;  // of their input, however many workers there are
constexpr auto kListenEvery = 250us;                       // to a crew; a chunk takes a hundred times as long
constexpr auto kShowEvery = 200ms;

struct Task {
  Chunk chunk;
  Result result;
};

// Threads that turn tasks into results. Tasks are used again, so that their buffers are.
class Threads {
 public:
  Threads(const Job& job, std::size_t count) {
    for (std::size_t t = 0; t < count; ++t) {
      try {
        threads_.emplace_back([this, &job] { work(job); });
      } catch (const std::system_error&) {
        if (threads_.empty()) throw;
        break;  // no more threads to be had: the others do the work
      }
    }
  }

  ~Threads() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      closed_ = true;
      waiting_.clear();
    }
    wanted_.notify_all();
    for (std::thread& t : threads_) t.join();
  }

  std::size_t size() const { return threads_.size(); }

  void give(std::unique_ptr<Task> task) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      waiting_.push_back(std::move(task));
    }
    wanted_.notify_one();
  }

  // A finished task; none after that time.
  std::unique_ptr<Task> take(std::chrono::microseconds patience) {
    std::unique_lock<std::mutex> lock(mutex_);
    found_.wait_for(lock, patience, [&] { return !done_.empty() || failure_ != nullptr; });
    if (failure_ != nullptr) std::rethrow_exception(failure_);
    if (done_.empty()) return {};
    std::unique_ptr<Task> task = std::move(done_.front());
    done_.pop_front();
    return task;
  }

 private:
  void work(const Job& job) {
    try {
      Evaluator evaluator(job);
      for (;;) {
        std::unique_ptr<Task> task;
        {
          std::unique_lock<std::mutex> lock(mutex_);
          wanted_.wait(lock, [&] { return closed_ || !waiting_.empty(); });
          if (closed_) return;
          task = std::move(waiting_.front());
          waiting_.pop_front();
        }
        evaluator.run(task->chunk, task->result);
        {
          const std::lock_guard<std::mutex> lock(mutex_);
          done_.push_back(std::move(task));
        }
        found_.notify_one();
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex_);
      failure_ = std::current_exception();
      found_.notify_one();
    }
  }

  std::mutex mutex_;
  std::condition_variable wanted_, found_;
  std::deque<std::unique_ptr<Task>> waiting_, done_;
  std::exception_ptr failure_;
  bool closed_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace

void run_chunks(const Job& job, Source& source, std::size_t threads, Crew* crew,
                const std::function<void(const Result&)>& put, Progress& progress, Totals& totals) {
  Threads workers(job, threads);
  const std::size_t most = kAhead * (workers.size() + (crew != nullptr ? crew->size() : 0)) + 1;
  std::map<std::uint64_t, std::unique_ptr<Task>> early;  // results that wait for those before them
  std::vector<std::unique_ptr<Task>> spare;
  std::uint64_t written = source.chunks();
  std::size_t in_memory = 0, bytes_in_memory = 0, of_threads = 0;
  std::unique_ptr<Task> task;  // read, not handed out yet
  bool more = true;
  const bool listens = crew != nullptr && crew->size() > 0;

  const auto fresh = [&] {
    if (spare.empty()) return std::make_unique<Task>();
    std::unique_ptr<Task> one = std::move(spare.back());
    spare.pop_back();
    return one;
  };
  const auto hand_out = [&] {
    while (more && in_memory < most && bytes_in_memory < kMostBytes) {
      if (!task) {
        task = fresh();
        more = source.next(task->chunk);
        if (!more) return;
        task->result.input_hash = hash_of(task->chunk.text);
        task->result.input_size = task->chunk.text.size();
      }
      const std::size_t bytes = task->chunk.text.size();
      if (of_threads < 2 * workers.size()) {
        workers.give(std::exchange(task, nullptr));
        ++of_threads;
      } else if (crew != nullptr && crew->send(task->chunk, task->result.input_hash)) {
        spare.push_back(std::exchange(task, nullptr));
      } else {
        return;
      }
      ++in_memory;
      bytes_in_memory += bytes;
    }
  };
  const auto keep = [&](std::unique_ptr<Task> done) {
    const std::uint64_t number = done->result.number;
    early.emplace(number, std::move(done));
    for (auto next = early.find(written); next != early.end(); next = early.find(written)) {
      const Result& result = next->second->result;
      put(result);
      totals.rows += result.rows;
      totals.failed += result.failed;
      bytes_in_memory -= result.input_size;
      spare.push_back(std::move(next->second));
      early.erase(next);
      ++written;
      --in_memory;
    }
  };

  hand_out();
  while (in_memory > 0) {
    if (crew != nullptr) {
      for (std::unique_ptr<Task> one = fresh(); crew->receive(one->result); one = fresh()) keep(std::move(one));
    }
    if (std::unique_ptr<Task> done = workers.take(listens ? kListenEvery : kShowEvery)) {
      --of_threads;
      keep(std::move(done));
    }
    progress.show(source.share_read(), totals.rows);
    hand_out();
  }
}

}  // namespace kestrune::host::batch
