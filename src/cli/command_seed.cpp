#include <iostream>

#include "cli/commands.h"
#include "cli/seed/seed.h"
#include "cli/terminal.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kFooter =
    R"(The same number of orders and the same random seed make the same rows. The schema must be there ('tessarlorn init').

Example:
  tessarlorn seed --orders 2000 --random-seed 7 --dsn Embedded=orders.db)";

/// Shows how far the work is: a bar on a terminal, else a line for each tenth.
class Progress {
 public:
  void Show(int done, int total) {
    if (total <= 0) return;
    const int tenth = static_cast<int>(std::int64_t{done} * 10 / total);
    if (IsErrorTerminal()) {
      constexpr int kBarWidth = 40;
      const auto filled = static_cast<std::size_t>(std::int64_t{done} * kBarWidth / total);
      std::cerr << "\r[" << std::string(filled, '#') << std::string(kBarWidth - filled, '.') << "] " << done << " of "
                << total << " orders" << (done >= total ? "\n" : "") << std::flush;
    } else if (tenth > shown_tenth_) {
      std::cerr << done << " of " << total << " orders\n" << std::flush;
    }
    shown_tenth_ = tenth;
  }

 private:
  int shown_tenth_ = 0;
};

}  // namespace

void AddSeedCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("seed", "Fill the tables with made-up orders to try things out");
  const auto options = std::make_shared<SeedOptions>();
  options->random_seed = 1;
  command->add_option("--orders", options->orders, "How many orders")->required()->check(CLI::Range(1, 10'000'000));
  command->add_option("--random-seed", options->random_seed, "Chooses the rows that are made up")
      ->capture_default_str();
  AddConnectionOptions(*command, context);
  command->footer(kFooter);
  command->callback([&context, options] {
    context.action = [&context, options] {
      const std::unique_ptr<Connection> connection = context.OpenDatabase();
      Progress progress;
      Seed(*connection, *options, [&progress](int done, int total) { progress.Show(done, total); });
      std::cout << options->orders << " orders made\n";
      return ExitStatus::kDone;
    };
  });
}

}  // namespace tessarlorn::cli
