#include "host/base/LongWork.h"

#include <utility>

namespace grouptracker {

namespace {

thread_local LongWork* workOfThread = nullptr;

}  // namespace

LongWork::LongWork(std::function<void()> look) : m_look(std::move(look)) {
  workOfThread = this;
}

LongWork::~LongWork() {
  workOfThread = nullptr;
}

void LongWork::step() {
  constexpr std::chrono::milliseconds pause(50);
  LongWork* const work = workOfThread;
  if (work == nullptr || Clock::now() < work->m_latest + pause) {
    return;
  }
  work->m_latest = Clock::now();
  work->m_look();
}

}  // namespace grouptracker
