// The component container whose object calls an operation, where there is one.
#pragma once

#include <memory>

namespace tessarlorn::com {

/// The ITransaction in which the container runs the calling object; nullptr for none. Raises when the container does
/// not hand it out.
std::shared_ptr<void> TransactionOfContainer();

/// Around one call of a member, from the reading of its arguments on: tells the container whether its transaction may
/// be committed. Outside of a container, and where the member is no operation, it does nothing.
class ContainerCall {
 public:
  explicit ContainerCall(bool is_operation) : is_operation_(is_operation) {}
  ContainerCall(const ContainerCall&) = delete;
  ContainerCall& operator=(const ContainerCall&) = delete;
  ~ContainerCall();
  /// To be called last. Where it is not, the member has raised an error.
  void Complete() noexcept { completed_ = true; }

 private:
  bool is_operation_;
  bool completed_ = false;
};

}  // namespace tessarlorn::com
