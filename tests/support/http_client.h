// A client of HTTP/1.1 that sends bytes as they are given, and reads the answers.
#pragma once

#include <string>
#include <string_view>

#include "support/client_socket.h"

namespace tessarlorn {

struct HttpAnswer {
  /// 0 when the connection ended before the answer was whole, or nothing came for twenty seconds.
  int status = 0;
  /// The status line and the headers.
  std::string head = {};
  std::string body = {};

  /// "" for a header that is not there. @param name as the server writes it
  [[nodiscard]] std::string Header(const std::string& name) const {
    const std::size_t at = head.find("\r\n" + name + ": ");
    if (at == std::string::npos) return "";
    const std::size_t begin = at + name.size() + 4;
    return head.substr(begin, head.find("\r\n", begin) - begin);
  }
};

class HttpClient : public ClientSocket {
 public:
  using ClientSocket::ClientSocket;

  /// Nothing more is sent.
  void HangUp() const { shutdown(socket_.get(), SHUT_WR); }
  /// Of thousands of connections the port is free at once when they end.
  void FreePortAtEnd() const {
    const linger none{1, 0};
    setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &none, sizeof none);
  }
  /// What arrives up to the end of `text`, "" when it does not come.
  std::string ReadUntil(std::string_view text) {
    std::size_t at = 0;
    while ((at = arrived_.find(text)) == std::string::npos) {
      if (!ReadMore()) return "";
    }
    return Take(at + text.size());
  }
  /// The next answer. @param bodiless whether it is one to HEAD
  HttpAnswer Read(bool bodiless = false) {
    HttpAnswer answer{.head = ReadUntil("\r\n\r\n")};
    if (answer.head.size() < 12) return {};
    const int status = std::stoi(answer.head.substr(9, 3));
    if (!bodiless && status >= 200 && status != 204 && !ReadBody(answer)) return {};
    answer.status = status;
    return answer;
  }
  /// A request with these lines of headers, each with its end.
  static std::string Request(const std::string& line, const std::string& headers, const std::string& body = "") {
    const std::string about_body =
        "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    return line + " HTTP/1.1\r\nHost: h\r\n" + headers + (body.empty() ? "" : about_body) + "\r\n" + body;
  }
  HttpAnswer Ask(const std::string& line, const std::string& headers, const std::string& body = "") {
    Send(Request(line, headers, body));
    return Read(line.starts_with("HEAD "));
  }

 private:
  bool TakeBody(std::size_t size, std::string& body) {
    while (arrived_.size() < size) {
      if (!ReadMore()) return false;
    }
    body += Take(size);
    return true;
  }
  bool ReadBody(HttpAnswer& answer) {
    const std::string length = answer.Header("Content-Length");
    if (!length.empty()) return TakeBody(std::stoul(length), answer.body);
    for (std::size_t size = 1; size > 0;) {
      const std::string line = ReadUntil("\r\n");
      size = line.empty() ? 0 : std::stoul(line, nullptr, 16);
      std::string end;
      if (line.empty() || !TakeBody(size, answer.body) || !TakeBody(2, end)) return false;
    }
    return true;
  }
};

}  // namespace tessarlorn
