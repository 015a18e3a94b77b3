#include "hosts/http/transport/exchange.h"

#include <utility>

#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

/// Below that the head weighs more than compression saves.
constexpr std::size_t kLeastCompressed = 1024;
/// Parts are gathered to so much before they are sent.
constexpr std::size_t kPartSize = 32768;
constexpr std::size_t kMostUnsent = 262144;

/// Whether the client says that it takes gzip.
bool TakesGzip(const Request& request) {
  for (const std::string_view part : Split(request.Header("Accept-Encoding"), ',')) {
    const std::size_t semicolon = part.find(';');
    const std::string_view coding = Trim(part.substr(0, semicolon));
    if (!EqualsIgnoreCase(coding, "gzip") && coding != "*") continue;
    const std::string_view quality = semicolon == std::string_view::npos ? "" : Trim(part.substr(semicolon + 1));
    return quality != "q=0" && quality != "q=0.0";
  }
  return false;
}

}  // namespace

Exchange::Exchange(Request request, std::shared_ptr<AnswerWay> way)
    : request_(std::move(request)), way_(std::move(way)) {}

Exchange::~Exchange() {
  if (!ended_) way_->Break();
}

void Exchange::Answer(Response response) {
  begun_ = ended_ = true;
  status_ = response.status;
  size_ = response.body.size();
  if (response.body.size() >= kLeastCompressed && TakesGzip(request_)) {
    if (response.packed.empty()) {
      Gzip gzip;
      std::string packed = gzip.Add(response.body);
      packed += gzip.Finish();
      response.body = std::move(packed);
    } else {
      response.body = response.packed;
    }
    response.headers.emplace_back("Content-Encoding", "gzip");
    response.headers.emplace_back("Vary", "Accept-Encoding");
  }
  way_->Send(std::move(response));
}

void Exchange::Begin(Response head, bool compress) {
  begun_ = true;
  status_ = head.status;
  if (compress && TakesGzip(request_)) {
    gzip_.emplace();
    head.headers.emplace_back("Content-Encoding", "gzip");
    head.headers.emplace_back("Vary", "Accept-Encoding");
  }
  way_->SendHead(std::move(head));
}

void Exchange::Hand(std::string part) {
  if (part.empty()) return;
  const std::size_t size = part.size();
  {
    std::unique_lock lock(flow_->mutex);
    const bool room =
        flow_->moved.wait_until(lock, deadline_, [this] { return flow_->gone || flow_->unsent < kMostUnsent; });
    if (!room || flow_->gone) throw ClientGone();
    flow_->unsent += size;
  }
  way_->SendPart(std::move(part), [flow = flow_, size](bool sent) {
    const std::scoped_lock lock(flow->mutex);
    flow->unsent -= size;
    if (!sent) flow->gone = true;
    flow->moved.notify_all();
  });
}

void Exchange::Write(std::string_view part) {
  size_ += part.size();
  if (gzip_) {
    buffer_ += gzip_->Add(part);
  } else {
    buffer_ += part;
  }
  if (buffer_.size() >= kPartSize) Hand(std::exchange(buffer_, {}));
}

void Exchange::Flush() {
  if (gzip_) buffer_ += gzip_->Flush();
  Hand(std::exchange(buffer_, {}));
}

bool Exchange::Offer(std::string_view part) {
  {
    const std::scoped_lock lock(flow_->mutex);
    if (flow_->gone || flow_->unsent >= kMostUnsent) return false;
  }
  Write(part);
  Flush();
  return true;
}

void Exchange::End() {
  if (gzip_) buffer_ += gzip_->Finish();
  Hand(std::exchange(buffer_, {}));
  ended_ = true;
  way_->SendEnd();
}

void Exchange::Break() {
  ended_ = true;
  way_->Break();
}

}  // namespace tessarlorn::http
