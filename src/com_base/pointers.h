// What COM counts, allocates and clears, in owners that do it by themselves.
#pragma once

#include <algorithm>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "com_base/windows_headers.h"
#include "platform/unicode/utf16.h"

namespace tessarlorn::com {

/// A counted reference to an interface.
template <typename Interface>
class Pointer {
 public:
  Pointer() = default;
  /// Counts one more reference.
  explicit Pointer(Interface* object) : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  Pointer(const Pointer& other) : Pointer(other.object_) {}
  Pointer(Pointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Pointer& operator=(Pointer other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Pointer() {
    if (object_ != nullptr) object_->Release();
  }

  /// Takes over a reference that is counted already.
  static Pointer Adopt(Interface* object) {
    Pointer pointer;
    pointer.object_ = object;
    return pointer;
  }
  [[nodiscard]] Interface* get() const noexcept { return object_; }
  Interface* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  /// Where a function puts a new reference; gives up the old one.
  Interface** Receive() {
    *this = Pointer();
    return &object_;
  }
  [[nodiscard]] Interface* Release() noexcept { return std::exchange(object_, nullptr); }

 private:
  Interface* object_ = nullptr;
};

/// The interface of an object, or nothing when it has none.
template <typename Interface>
Pointer<Interface> Query(IUnknown* object) {
  void* found = nullptr;
  if (object == nullptr || FAILED(object->QueryInterface(__uuidof(Interface), &found))) return {};
  return Pointer<Interface>::Adopt(static_cast<Interface*>(found));
}

/// UTF-8 of a BSTR, which may be null.
inline std::string ToText(BSTR text) {
  if (text == nullptr) return {};
  return FromUtf16({reinterpret_cast<const char16_t*>(text), SysStringLen(text)});
}

/// A text of Windows of UTF-8.
inline std::wstring ToWide(std::string_view text) {
  const std::u16string units = ToUtf16(text);
  return {units.begin(), units.end()};
}

/// A new BSTR of UTF-8; the caller frees it. nullptr when memory is short.
inline BSTR NewBstr(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; })) {
    BSTR const ascii = SysAllocStringLen(nullptr, static_cast<UINT>(text.size()));
    if (ascii != nullptr) std::copy(text.begin(), text.end(), ascii);
    return ascii;
  }
  const std::u16string units = ToUtf16(text);
  return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(units.data()), static_cast<UINT>(units.size()));
}

/// A BSTR that is freed with its owner.
class OwnedBstr {
 public:
  OwnedBstr() = default;
  /// Of UTF-8. Raises std::bad_alloc.
  explicit OwnedBstr(std::string_view text) : text_(NewBstr(text)) {
    if (text_ == nullptr) throw std::bad_alloc();
  }
  OwnedBstr(const OwnedBstr&) = delete;
  OwnedBstr& operator=(const OwnedBstr&) = delete;
  ~OwnedBstr() { SysFreeString(text_); }
  [[nodiscard]] BSTR get() const noexcept { return text_; }
  /// Where a function puts a new one; gives up the old one.
  BSTR* Receive() {
    SysFreeString(std::exchange(text_, nullptr));
    return &text_;
  }

 private:
  BSTR text_ = nullptr;
};

/// A VARIANT that is cleared with its owner.
class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&variant_); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { VariantClear(&variant_); }
  [[nodiscard]] VARIANT& get() noexcept { return variant_; }

 private:
  VARIANT variant_{};
};

}  // namespace tessarlorn::com
