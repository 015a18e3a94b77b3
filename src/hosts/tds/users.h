// Users and their passwords, in a file of lines `name:hash`.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tessarlorn::tds {

/// The users of a server. Names are compared without regard to ASCII case. May be asked by several threads at once.
class Users {
 public:
  /// Reads the file. Raises Error 5 that names what is wrong: a file that cannot be read, that others may write
  /// or that belongs to another user of the machine but root, a malformed line (with its number), no user at all.
  static Users Read(const std::string& file);

  /// Whether the password is that of the user. Takes as long for a user that there is not.
  [[nodiscard]] bool Check(std::string_view name, std::string_view password) const;

 private:
  std::map<std::string, std::string> hashes_;  // by name in lower case
};

/// How often a password is hashed: slow enough that guessing is dear.
inline constexpr int kHashIterations = 100'000;

/// Adds a user to the file, or replaces the user's line; afterwards only its owner may read it. Raises Error 5 for a
/// name that is empty or has a colon or a control character, for an empty password, for a file that Read() would not
/// trust, and when it cannot be written. The line is `name:pbkdf2-sha256$iterations$salt$hash`, the last two in
/// hexadecimal digits.
void AddUser(const std::string& file, std::string_view name, std::string_view password,
             int iterations = kHashIterations);

}  // namespace tessarlorn::tds
