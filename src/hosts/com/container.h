// The component container whose object calls an operation, where there is one.
#pragma once

#include <memory>

namespace tessarlorn::com {

/// The ITransaction in which the container runs the calling object; nullptr for none. Raises when the container does
/// not hand it out.
std::shared_ptr<void> TransactionOfContainer();

/// Around one call of an operation: tells the container whether its transaction may be committed. Outside of a
/// container it does nothing.
class ContainerCall {
 public:
  ContainerCall() = default;
  ContainerCall(const ContainerCall&) = delete;
  ContainerCall& operator=(const ContainerCall&) = delete;
  ~ContainerCall();
  /// The operation has returned; one that does not has raised.
  void Complete() noexcept { completed_ = true; }

 private:
  bool completed_ = false;
};

}  // namespace tessarlorn::com
