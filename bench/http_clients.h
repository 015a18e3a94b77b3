// Clients of HTTP that cost little: one thread sends each connection's next request when its answer is there.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/listening/listening.h"

namespace tessarlorn::bench {

/// A request with its length. @param body "" for a GET
std::string HttpRequest(const std::string& path, const std::string& token, const std::string& body,
                        const std::string& headers = {});

class HttpClients {
 public:
  /// Connects so many to the port of this machine. Raises Error with the system's words.
  HttpClients(int port, std::size_t count);

  /// Answers the next request of a client, "" when it has none left.
  using Next = std::function<std::string(std::size_t client)>;
  /// Lets every client work through its requests. Raises Error when an answer is none of 200.
  void Run(const Next& next);
  /// One request of one client; answers the bytes of its answer.
  std::size_t Ask(const std::string& request);

 private:
  struct Client {
    Descriptor socket;
    std::string answer;
    std::size_t size = 0;
  };
  void Send(Client& client, const std::string& request);
  /// Reads what is there; true when the answer is whole.
  bool Receive(Client& client);

  std::vector<Client> clients_;
};

}  // namespace tessarlorn::bench
