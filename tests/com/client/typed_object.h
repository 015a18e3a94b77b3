// An object used as a compiler uses it that has read the type library: early bound.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "com_base/pointers.h"

namespace tessarlorn::com_test {

/// A text that the caller owns, which is freed; "" for null.
std::wstring Taken(BSTR text);

/// Joins the calling thread to a single-threaded apartment of its own while it lives.
class Apartment {
 public:
  explicit Apartment(DWORD kind = COINIT_APARTMENTTHREADED);
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment();
};

/// A VARIANT as a value.
class Value {
 public:
  Value() { VariantInit(&variant_); }
  Value(int number);
  Value(double number);
  Value(bool flag);
  Value(const wchar_t* text);
  Value(const std::wstring& text) : Value(text.c_str()) {}
  Value(IDispatch* object);
  Value(const Value& other);
  Value& operator=(const Value& other);
  ~Value() { VariantClear(&variant_); }

  /// What stands for an argument that is left out.
  static Value LeftOut();
  [[nodiscard]] VARIANT& get() noexcept { return variant_; }
  [[nodiscard]] VARTYPE type() const noexcept { return variant_.vt; }
  /// "" for what has no text.
  [[nodiscard]] std::wstring text() const;
  /// 0 for what is no number.
  [[nodiscard]] double number() const;
  [[nodiscard]] IDispatch* object() const noexcept { return variant_.vt == VT_DISPATCH ? variant_.pdispVal : nullptr; }

 private:
  VARIANT variant_{};
};

/// What a call answers; the error as the object told it, 0 when there is none.
struct Answer {
  Value value;
  HRESULT status = S_OK;
  HRESULT error = 0;
  std::wstring source;
  std::wstring description;
};

/// Calls by number, whatever the object; `named` are the numbers of the last arguments.
Answer Invoke(IDispatch* object, DISPID id, WORD flags, std::vector<Value> arguments, std::vector<DISPID> named = {});

/// An object together with the description of its interface.
class TypedObject {
 public:
  /// Creates one by its ProgID.
  explicit TypedObject(const wchar_t* prog_id, DWORD context = CLSCTX_INPROC_SERVER);
  /// @pre not nullptr
  explicit TypedObject(IDispatch* object);

  [[nodiscard]] IDispatch* get() const noexcept { return object_.get(); }
  [[nodiscard]] ITypeInfo* info() const noexcept { return info_.get(); }
  /// Of a member, by the type library; DISPID_UNKNOWN when it has none of the name.
  [[nodiscard]] DISPID Number(const wchar_t* member) const;
  /// Calls or reads a member. Every argument is converted to the type that the library declares, as a compiler does.
  Answer Call(const wchar_t* member, std::vector<Value> arguments = {}) const;
  Answer Put(const wchar_t* member, std::vector<Value> arguments) const;

 private:
  void ReadInfo();

  com::Pointer<IDispatch> object_;
  com::Pointer<ITypeInfo> info_;
};

}  // namespace tessarlorn::com_test
