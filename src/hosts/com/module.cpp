#include "hosts/com/module.h"

#include <atomic>

namespace tessarlorn::com {
namespace {

std::atomic<long> lock_count{0};
HINSTANCE own_module = nullptr;

}  // namespace

ModuleLock::ModuleLock() { Add(); }
ModuleLock::~ModuleLock() { Remove(); }
void ModuleLock::Add() { lock_count.fetch_add(1); }
void ModuleLock::Remove() { lock_count.fetch_sub(1); }
bool ModuleLock::any() { return lock_count.load() > 0; }

void SetModule(HINSTANCE module) { own_module = module; }

void KeepModule() {
  HMODULE kept = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(&own_module), &kept);
}

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(own_module, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) {
      path.resize(size);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace tessarlorn::com
