#include <iostream>

#include "hosts/cli/commands.h"
#include "hosts/cli/console/progress.h"
#include "samples/seed.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kSeedFooter =
    R"(The same number of orders and the same random seed make the same rows. The schema must be there ('tessarlorn init').

Example:
  tessarlorn seed --orders 2000 --random-seed 7 --dsn Embedded=orders.db)";

}  // namespace

void AddSeedCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("seed", "Fill the tables with made-up orders to try things out");
  const auto options = std::make_shared<SeedOptions>();
  options->random_seed = 1;
  command->add_option("--orders", options->orders, "How many orders")
      ->required()
      ->check(CLI::Range(1, 10'000'000))
      ->type_name("N");
  command->add_option("--random-seed", options->random_seed, "Chooses the rows that are made up")
      ->capture_default_str()
      ->type_name("N");
  AddConnectionOptions(*command, context);
  command->footer(kSeedFooter);
  command->callback([&context, options] {
    context.action = [&context, options] {
      const std::unique_ptr<Connection> connection = context.OpenDatabase();
      Progress progress("orders");
      Seed(*connection, *options, [&progress](int done, int total) { progress.Show(done, total); });
      std::cout << options->orders << " orders made\n";
      return ExitStatus::kDone;
    };
  });
}

}  // namespace tessarlorn::cli
