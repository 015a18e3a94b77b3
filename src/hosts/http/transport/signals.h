// Which thread signals come to.
#pragma once

#include <csignal>

namespace tessarlorn::http {

/// No signal comes to the calling thread from now on: they are for the one that waits for them.
inline void BlockSignals() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace tessarlorn::http
