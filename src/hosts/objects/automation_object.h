// Objects as clients of automation see them: a description of every member, and one call by which all are reached.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "hosts/objects/value_taker.h"
#include "tessarlorn/object.h"
#include "tessarlorn/operations.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

/// How a member is used; the description of a member has a bit for each way that it knows.
enum MemberUse : std::uint8_t { kCall = 1, kGet = 2, kPut = 4 };

/// Automation's own numbers of members.
inline constexpr std::int32_t kDefaultMember = 0;
inline constexpr std::int32_t kEnumerationMember = -4;
/// The number of any other member: from its name, so that it stays when members are added. Positive.
constexpr std::int32_t MemberId(std::string_view name) {
  std::uint32_t hash = 2166136261U;
  for (const char c : name) {
    const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    hash = (hash ^ static_cast<std::uint8_t>(lower)) * 16777619U;
  }
  return static_cast<std::int32_t>((hash & 0x00ffffffU) | 0x01000000U);
}

struct Member {
  std::string_view name;
  std::int32_t id = 0;
  /// Bits of MemberUse.
  std::uint8_t uses = kCall;
  /// Of a call or get. kVariant for any value; see `returns_nothing`.
  ValueType result = ValueType::kVariant;
  bool returns_nothing = false;
  /// Of a call or get; a put has the new value behind them.
  std::span<const Argument> arguments = {};
  /// One paragraph for the type library.
  std::string_view help;
  /// What it does, for a member of a service class.
  const Operation* operation = nullptr;
  /// For compilers: the class of the object that it answers, or for a number the enumeration. Its optional arguments
  /// are for late binding then: `rows.Fields("FID")` is `rows.Fields.Item("FID")` to a compiler.
  std::string_view result_class = {};
};

class AutomationObject;

/// A class of objects: what the type library says of it.
struct ClassDescription {
  std::string_view name;
  /// "Library.Class", "" for a class whose objects only other objects hand out.
  std::string_view prog_id;
  /// Of the class and of its interface, as "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX".
  std::string_view class_id;
  std::string_view interface_id;
  std::string_view help;
  /// A few words for lists of components; "" for a class whose objects only other objects hand out.
  std::string_view title = {};
  /// Makes a new object; nullptr for a class whose objects only other objects hand out.
  std::shared_ptr<AutomationObject> (*create)(Host& host) = nullptr;
  std::vector<Member> members;

  /// By name without regard to case, or nullptr.
  [[nodiscard]] const Member* Find(std::string_view member) const;
  [[nodiscard]] const Member* Find(std::int32_t id) const;
  /// "Class.Member"
  [[nodiscard]] std::string FullName(const Member& member) const;
};

/// What a host's clients hold of an object. The object keeps it, so that it is made once.
class ObjectFace {
 public:
  ObjectFace() = default;
  ObjectFace(const ObjectFace&) = delete;
  ObjectFace& operator=(const ObjectFace&) = delete;
  virtual ~ObjectFace() = default;
};

/// An object of such a class. One thread at a time.
class AutomationObject : public Object {
 public:
  [[nodiscard]] AutomationObject* automation() noexcept final { return this; }
  [[nodiscard]] virtual const ClassDescription& description() const = 0;
  /// Calls, reads or writes a member. The arguments are those of the member in order, without trailing optional ones
  /// that are left out; an empty one in between counts as left out. In/out arguments are written back.
  ///
  /// Raises 449 or 450 for too few or too many arguments, 438 for a use that the member does not know, and what the
  /// member raises.
  Variant Use(const Member& member, MemberUse use, std::span<Variant> arguments);
  /// A call by name. Raises 438 naming the member when there is none.
  Variant Call(std::string_view method, std::span<const Variant> arguments) final;
  /// Short ways, for clients that read a million values. Both raise what reading by Use() raises.
  /// Hands over what reading a member without arguments answers; false where only Use() can tell.
  [[nodiscard]] virtual bool Read(const Member& /*member*/, ValueTaker& /*taker*/) const { return false; }
  /// The object that reading a member with a position answers, good as long as this one; nullptr where only Use() can
  /// tell.
  [[nodiscard]] virtual const std::shared_ptr<AutomationObject>* Element(const Member& /*member*/,
                                                                         std::int32_t /*position*/) const {
    return nullptr;
  }
  /// What `For Each` goes through. Raises 438 for an object that is no collection.
  virtual std::vector<Variant> Items() const;

  /// nullptr until there is one; goes with the object.
  [[nodiscard]] ObjectFace* face() const noexcept { return face_.get(); }
  void set_face(std::unique_ptr<ObjectFace> face) noexcept { face_ = std::move(face); }

 protected:
  /// `arguments` has as many values as the member has arguments, and one more for a put.
  virtual Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) = 0;

 private:
  std::unique_ptr<ObjectFace> face_;
};

/// Name and identity of the type library.
inline constexpr std::string_view kLibraryName = "TessarLornPickingAndDelivery";
inline constexpr std::string_view kLibraryId = "1FE32CD4-2232-4B66-8CEF-F811FBCB2D64";

/// The classes that the component hands out or lets create, in the order of the type library.
std::span<const ClassDescription* const> AutomationClasses();
/// The value's object as clients see it: a Dictionary or Vector in the one object that it has as long as anybody holds
/// that, a Recordset in a new object, an AutomationObject as it is. Nothing for a value that is none of these.
std::shared_ptr<AutomationObject> ObjectOf(const Variant& value);
/// The other way round: an object of Dictionary or Vector as the value that it stands for. A Recordset's stays an
/// object, so that whoever keeps it keeps its position.
Variant ValueOf(const std::shared_ptr<AutomationObject>& object);

}  // namespace tessarlorn
