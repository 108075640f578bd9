#include "host/evaluation/search/WorkerPool.h"

#include "host/base/ProcessPool.h"

#include <cstring>
#include <string>

namespace grouptracker {

namespace {

std::string bytesOf(double number) {
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

std::optional<double> numberIn(const std::optional<std::string>& bytes) {
  double number = 0.0;
  if (!bytes || bytes->size() != sizeof number) {
    return std::nullopt;
  }
  std::memcpy(&number, bytes->data(), sizeof number);
  return number;
}

}  // namespace

void WorkerPool::run(const std::vector<Task>& tasks, const Finished& finished) const {
  std::size_t next = 0;
  const auto nextTask = [&] {
    return next == tasks.size()
               ? ProcessPool::Task()
               : ProcessPool::Task([&task = tasks[next++]] { return bytesOf(task()); });
  };
  ProcessPool(m_workers, m_patience).run(nextTask, [&](const ProcessPool::End& end) {
    finished(end.task, numberIn(end.result));
  });
}

}  // namespace grouptracker
