// What the commands about users, tokens and roles share.
#pragma once

#include <memory>
#include <utility>

#include "hosts/cli/commands.h"
#include "hosts/cli/console/usage_error.h"
#include "tessarlorn/error.h"

namespace tessarlorn::cli {

/// Has the command call `run` with a connection; what it refuses is a wrong call.
template <typename Run>
void SetDoorAction(CLI::App& command, CommandContext& context, Run run) {
  AddConnectionOptions(command, context);
  command.callback([&context, run = std::move(run)] {
    context.action = [&context, run] {
      const std::unique_ptr<Connection> connection = context.OpenDatabase();
      try {
        run(*connection);
      } catch (const Error& error) {
        if (error.number() != error_number::kInvalidArgument) throw;
        throw UsageError(error.what());
      }
      return ExitStatus::kDone;
    };
  });
}

}  // namespace tessarlorn::cli
