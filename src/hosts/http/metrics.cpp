#include "hosts/http/metrics.h"

#include <algorithm>

#include "platform/value_text.h"

namespace tessarlorn::http {
namespace {

void AppendHelp(std::string& text, std::string_view name, std::string_view type, std::string_view help) {
  text.append("# HELP ")
      .append(name)
      .append(" ")
      .append(help)
      .append("\n# TYPE ")
      .append(name)
      .append(" ")
      .append(type);
  text += '\n';
}

void AppendSample(std::string& text, std::string_view name, const std::string& labels, const std::string& value) {
  text += name;
  if (!labels.empty()) text.append("{").append(labels).append("}");
  text.append(" ").append(value).append("\n");
}

void AppendGauge(std::string& text, std::string_view name, std::string_view help, std::size_t value) {
  AppendHelp(text, name, "gauge", help);
  AppendSample(text, name, "", std::to_string(value));
}

double Seconds(Metrics::Time time) { return std::chrono::duration<double>(time).count(); }

}  // namespace

void Metrics::Count(const std::string& operation, int status, Time time, Time database) {
  const double seconds = Seconds(time);
  const auto bucket =
      static_cast<std::size_t>(std::lower_bound(kBuckets.begin(), kBuckets.end(), seconds) - kBuckets.begin());
  const std::scoped_lock lock(mutex_);
  Series& series = series_[operation];
  ++series.by_status[status];
  ++series.buckets[bucket];
  ++series.count;
  series.seconds += seconds;
  series.database_seconds += Seconds(database);
}

std::string Metrics::Text(const Gauges& gauges) const {
  std::string text;
  const std::scoped_lock lock(mutex_);
  const auto label = [](const std::string& operation) { return "operation=\"" + operation + "\""; };
  AppendHelp(text, "tessarlorn_calls_total", "counter", "Requests by operation and status.");
  for (const auto& [operation, series] : series_) {
    for (const auto& [status, count] : series.by_status) {
      AppendSample(text, "tessarlorn_calls_total", label(operation) + ",status=\"" + std::to_string(status) + "\"",
                   std::to_string(count));
    }
  }
  AppendHelp(text, "tessarlorn_call_seconds", "histogram", "Time from request to answer.");
  for (const auto& [operation, series] : series_) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i <= kBuckets.size(); ++i) {
      sum += series.buckets[i];
      const std::string end = i < kBuckets.size() ? ExactText(kBuckets[i]) : "+Inf";
      AppendSample(text, "tessarlorn_call_seconds_bucket", label(operation) + ",le=\"" + end + "\"",
                   std::to_string(sum));
    }
    AppendSample(text, "tessarlorn_call_seconds_sum", label(operation), ExactText(series.seconds));
    AppendSample(text, "tessarlorn_call_seconds_count", label(operation), std::to_string(series.count));
  }
  AppendHelp(text, "tessarlorn_database_seconds_total", "counter", "Time that batches took in the database.");
  for (const auto& [operation, series] : series_) {
    AppendSample(text, "tessarlorn_database_seconds_total", label(operation), ExactText(series.database_seconds));
  }
  AppendGauge(text, "tessarlorn_connections", "Open connections of clients.", gauges.connections);
  AppendGauge(text, "tessarlorn_reads_waiting", "Calls that wait for a thread.", gauges.reads_waiting);
  AppendGauge(text, "tessarlorn_writes_waiting", "Writes that wait for the writer.", gauges.writes_waiting);
  AppendGauge(text, "tessarlorn_calls_running", "Calls that are under way.", gauges.calls_running);
  AppendGauge(text, "tessarlorn_event_streams", "Streams of events.", gauges.event_streams);
  if (gauges.replica >= 0) {
    AppendGauge(text, "tessarlorn_replica_up", "Whether the replica takes reads.",
                static_cast<std::size_t>(gauges.replica));
  }
  return text;
}

}  // namespace tessarlorn::http
