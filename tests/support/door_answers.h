// Requests to a door without a network.
#pragma once

#include <future>
#include <memory>
#include <string>
#include <utility>

#include "hosts/http/door.h"

namespace tessarlorn::http {

/// What the door answered, its parts joined.
class TakenAnswer final : public AnswerWay {
 public:
  void Send(Response response) override { done_.set_value(std::move(response)); }
  void SendHead(Response head) override { taken_ = std::move(head); }
  void SendPart(std::string part, std::function<void(bool)> sent) override {
    taken_.body += part;
    sent(true);
  }
  void SendEnd() override { done_.set_value(std::move(taken_)); }
  void Break() override { done_.set_value({.status = 0}); }
  Response Wait() { return done_.get_future().get(); }

 private:
  Response taken_;
  std::promise<Response> done_;
};

/// @param body "" for a GET
inline Response Ask(Door& door, const std::string& token, const std::string& target, const std::string& body = {},
                    Headers headers = {}) {
  headers.emplace_back("Authorization", "Bearer " + token);
  headers.emplace_back("Content-Type", "application/json");
  const auto answer = std::make_shared<TakenAnswer>();
  Request request{.method = body.empty() ? "GET" : "POST",
                  .target = target,
                  .headers = std::move(headers),
                  .body = body,
                  .peer = "127.0.0.1"};
  door.Handle(std::make_unique<Exchange>(std::move(request), answer));
  return answer->Wait();
}

}  // namespace tessarlorn::http
