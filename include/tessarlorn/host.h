// What a program gives the service classes: drivers of databases, neighbouring components, a clock, and who listens.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "tessarlorn/connection.h"
#include "tessarlorn/date_time.h"
#include "tessarlorn/object.h"

namespace tessarlorn {

/// Comes from embedded_driver.h, odbc_driver.h and ado_driver.h.
class Driver;

/// Fills `buffer` with the address of the client machine, NUL-terminated, and answers 1; any other answer means that it
/// is not known.
using ReadTcpFunction = std::function<int(std::span<char> buffer, std::span<char> unused)>;

/// A program makes a host, fills it, and hands it to all that it calls. Two hosts in one process share no driver,
/// neighbour, clock, observer or idle connection. An embedded database in memory belongs to the process, as a file
/// does. A host outlives the sessions, service classes and connections that were made with it.
///
/// Drivers and components may be added at any time and by any thread. What else is set, is set before the first call.
class Host {
 public:
  Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  /// Closes the idle connections.
  ~Host();

  /// A later driver with the same key takes an earlier one's place.
  void AddDriver(std::shared_ptr<Driver> driver);
  /// Names the creator of a component; a later one takes an earlier one's place, an empty one takes the name away.
  /// Names do not depend on case.
  void AddObject(std::string_view prog_id, ObjectCreator creator);
  /// Local date and time; an empty function goes back to the machine's clock. Used by all threads.
  void SetClock(std::function<DateTime()> clock);
  /// Asked for the client's address; without one it is what the session string says.
  void SetReadTcp(ReadTcpFunction read_tcp);
  /// Answers the transaction of the component container in which the calling thread works, as the system's transaction
  /// coordinator knows it; nullptr for none. Asked whenever a session hands out a connection. Within a
  /// transaction each session opens and closes its own connection, which joins it.
  void SetTransaction(std::function<std::shared_ptr<void>()> transaction);
  /// Called with each batch, or procedure's name, just before it goes to the database, on the thread that runs it. An
  /// empty function ends it.
  void ObserveStatements(TextObserver observer);
  /// The same with each message that a batch sends beside its results (PRINT) and that nobody else takes.
  void ObserveMessages(TextObserver observer);

  /// The key that decides which driver opens the string: "Provider" wherever it stands, as providers have keys of their
  /// own; else the first that is a driver's; "" when there is none. What stands in quotes or braces behind a key is its
  /// value.
  [[nodiscard]] std::string DecidingKey(std::string_view database_string) const;
  /// Opens a connection with the driver of the string's deciding key. Raises 0x80040E4D naming the string's first key
  /// when there is none, and whatever the driver raises.
  [[nodiscard]] std::unique_ptr<Connection> OpenConnection(std::string_view database_string);
  /// Raises 429 "ActiveX component can't create object" with the name when nobody added it.
  [[nodiscard]] std::shared_ptr<Object> CreateInstance(std::string_view prog_id) const;
  [[nodiscard]] DateTime LocalNow() const;
  [[nodiscard]] const ReadTcpFunction& read_tcp() const noexcept;

  /// Closes the connections that no session holds.
  void CloseIdle() noexcept;

 private:
  friend class SessionFactory;
  struct Parts;
  std::shared_ptr<Parts> parts_;
};

}  // namespace tessarlorn
