// Bodies packed with gzip, by zlib.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tessarlorn::http {

/// One packed text. Raises std::bad_alloc.
class Gzip {
 public:
  Gzip();
  Gzip(const Gzip&) = delete;
  Gzip& operator=(const Gzip&) = delete;
  ~Gzip();

  /// Takes the next piece and answers what of the packed text is ready, often nothing.
  std::string Add(std::string_view piece);
  /// The packed text of all pieces so far.
  std::string Flush();
  /// The rest.
  std::string Finish();

 private:
  struct State;
  std::string Run(std::string_view piece, int flush);
  std::unique_ptr<State> state_;
};

}  // namespace tessarlorn::http
