// A Dictionary as clients of automation see it.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "hosts/objects/automation_object.h"
#include "tessarlorn/collections.h"

namespace tessarlorn {

/// Shares the Dictionary with whoever holds it inside the component. `For Each` goes through the keys.
class DictionaryObject final : public AutomationObject {
 public:
  /// @pre not nullptr
  explicit DictionaryObject(std::shared_ptr<Dictionary> dictionary) : dictionary_(std::move(dictionary)) {}
  ~DictionaryObject() override;

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  [[nodiscard]] std::vector<Variant> Items() const override;
  [[nodiscard]] const std::shared_ptr<Dictionary>& dictionary() const noexcept { return dictionary_; }

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  std::shared_ptr<Dictionary> dictionary_;
};

}  // namespace tessarlorn
