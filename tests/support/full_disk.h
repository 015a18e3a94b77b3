// A disk without room.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace tessarlorn {

/// No file of this process grows beyond a size while it lives: writing behind it fails as a write to a full disk does.
/// What is started meanwhile keeps the limit.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

}  // namespace tessarlorn
