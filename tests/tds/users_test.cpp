#include "hosts/tds/users.h"

#include <fstream>
#include <gmock/gmock.h>

#include "support/error_of.h"
#include "support/shell.h"
#include "support/temporary_folder.h"

namespace tessarlorn::tds {
namespace {

using testing::HasSubstr;
using testing::Not;

class UsersTest : public testing::Test {
 protected:
  std::string Text() const { return ReadFile(file_); }
  void Write(const std::string& text) const { std::ofstream(file_) << text; }
  std::string Refusal() const {
    return ErrorOf([this] { Users::Read(file_); }).description();
  }

  const TemporaryFolder folder_;
  const std::string file_ = folder_.file("users");
};

TEST_F(UsersTest, KeepsHashesAndReplacesThem) {
  AddUser(file_, "ann", "first", 10);
  AddUser(file_, "李", "密码", 10);
  AddUser(file_, "Ann", "second");
  EXPECT_THAT(Text(), Not(HasSubstr("second")));
  EXPECT_THAT(Text(), HasSubstr("Ann:pbkdf2-sha256$100000$"));
  const std::string salt = Text().substr(Text().find("$100000$") + 8, 32);
  AddUser(file_, "bill", "second");
  EXPECT_EQ(Text().find(salt), Text().rfind(salt)) << "every password has a salt of its own";
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(file_).permissions(), perms::owner_read | perms::owner_write);
  const Users users = Users::Read(file_);
  EXPECT_TRUE(users.Check("ANN", "second"));
  EXPECT_FALSE(users.Check("ann", "first"));
  EXPECT_FALSE(users.Check("ann", ""));
  EXPECT_TRUE(users.Check("李", "密码"));
  EXPECT_FALSE(users.Check("bob", "second"));
  EXPECT_FALSE(users.Check("", ""));
}

TEST_F(UsersTest, RefusesFilesThatCannotBeTrusted) {
  EXPECT_THAT(Refusal(), HasSubstr("cannot be read"));
  Write("# nobody\n\n");
  EXPECT_THAT(Refusal(), HasSubstr("has no user"));
  for (const char* line : {"ann", "ann:secret", ":pbkdf2-sha256$10$00$00", "ann:pbkdf2-sha256$0$00$00",
                           "ann:pbkdf2-sha256$10$0g$00", "ann:pbkdf2-sha256$10$00$00"}) {
    Write("# users\n" + std::string(line) + "\n");
    EXPECT_THAT(Refusal(), HasSubstr("in line 2")) << line;
  }
  std::filesystem::remove(file_);
  AddUser(file_, "ann", "x", 10);
  Write(Text() + Text());
  EXPECT_THAT(Refusal(), HasSubstr("twice: line 2"));
  std::filesystem::permissions(file_, std::filesystem::perms::all);
  EXPECT_THAT(Refusal(), HasSubstr("may be written by others"));
  EXPECT_THROW(AddUser(file_, "bob", "x", 10), Error);
  std::filesystem::permissions(file_, std::filesystem::perms::owner_all);
  // Only root can give a file away.
  if (geteuid() == 0) {
    ASSERT_EQ(chown(file_.c_str(), 1, static_cast<gid_t>(-1)), 0);
    EXPECT_THAT(Refusal(), HasSubstr("belongs to another user"));
  }
}

TEST_F(UsersTest, WritesThroughNoLink) {
  const std::string other = file_ + ".other";
  std::ofstream(other) << "mine";
  std::filesystem::create_symlink(other, file_ + ".new");
  AddUser(file_, "ann", "x", 10);
  EXPECT_EQ(std::filesystem::file_size(other), 4U);
  EXPECT_TRUE(Users::Read(file_).Check("ann", "x"));
  EXPECT_FALSE(std::filesystem::is_symlink(file_));
}

TEST_F(UsersTest, RefusesNamesAndPasswordsThatCannotBe) {
  for (const char* name : {"", "a:b", "a\nb", "#a"}) EXPECT_THROW(AddUser(file_, name, "x", 10), Error) << name;
  EXPECT_THROW(AddUser(file_, "a", "", 10), Error);
  EXPECT_FALSE(std::filesystem::exists(file_));
}

}  // namespace
}  // namespace tessarlorn::tds
