#pragma once

#include <exception>
#include <utility>

namespace grouptracker {

/// Steps of which each is to be tried whatever the others fail with, as when several outputs are
/// finished. The first failure is the one to be told.
class FirstFailure {
 public:
  template <typename Step>
  void attempt(const Step& step) {
    try {
      step();
    } catch (...) {
      m_failure = m_failure ? m_failure : std::current_exception();
    }
  }

  /// Throws what the first step that failed threw, once; nothing when none did.
  void rethrow() {
    if (m_failure) {
      std::rethrow_exception(std::exchange(m_failure, nullptr));
    }
  }

 private:
  std::exception_ptr m_failure;
};

}  // namespace grouptracker
