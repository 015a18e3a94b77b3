// The component container whose object calls an operation, where there is one.
#pragma once

namespace tessarlorn::com {

/// Whether the calling object runs in a transaction of its container.
bool InContainerTransaction() noexcept;

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
