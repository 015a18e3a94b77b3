// The tasks of the operations, and a call of each one to try out.
#pragma once

#include <span>
#include <string_view>

namespace tessarlorn::cli {

/// A call that works on a database of `init` and `seed --orders 50 --random-seed 5`.
struct OperationExample {
  std::string_view operation;
  /// The words behind the operation's name, as a shell takes them.
  std::string_view words;
  /// A command that makes what the call needs; "" when it needs nothing more.
  std::string_view before = "";
  /// Whether the command can call it.
  bool by_command = true;
};

/// Operations that serve one task, in the order of the day.
struct OperationTask {
  std::string_view heading;
  std::string_view text;
  std::span<const OperationExample> examples;
};

/// Every operation stands in one task, once.
std::span<const OperationTask> OperationTasks();

}  // namespace tessarlorn::cli
