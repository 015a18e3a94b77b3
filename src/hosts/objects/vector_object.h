// A Vector as clients of automation see it.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "hosts/objects/automation_object.h"
#include "tessarlorn/collections.h"

namespace tessarlorn {

/// Shares the Vector with whoever holds it inside the component. Items are counted from 1; `For Each` goes through
/// them.
class VectorObject final : public AutomationObject {
 public:
  /// @pre not nullptr
  explicit VectorObject(std::shared_ptr<Vector> vector) : vector_(std::move(vector)) {}
  ~VectorObject() override;

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  [[nodiscard]] std::vector<Variant> Items() const override { return {vector_->begin(), vector_->end()}; }
  [[nodiscard]] const std::shared_ptr<Vector>& vector() const noexcept { return vector_; }

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  std::shared_ptr<Vector> vector_;
};

}  // namespace tessarlorn
