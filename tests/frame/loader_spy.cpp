#include "loader_spy.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <cstring>
#include <utility>

LoaderSpy& loader_spy() {
  static LoaderSpy spy;
  return spy;
}

std::string program_folder() {
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  const std::string text(path, length > 0 ? static_cast<std::size_t>(length) : 0);
  return text.substr(0, text.rfind('/') + 1);
}

extern "C" {
void* __real_dlopen(const char* path, int flags);
void* __real_dlsym(void* module, const char* name);
int __real_dlclose(void* module);

void* __wrap_dlopen(const char* path, int flags) {
  LoaderSpy& spy = loader_spy();
  std::function<void()> first;
  {
    const std::lock_guard<std::mutex> hold(spy.lock);
    first = std::exchange(spy.before_open, nullptr);
  }
  if (first) first();
  const std::lock_guard<std::mutex> hold(spy.lock);
  spy.opened.emplace_back(path != nullptr ? path : "");
  void* module = __real_dlopen(path, flags);
  if (module != nullptr) ++spy.references;
  return module;
}

void* __wrap_dlsym(void* module, const char* name) {
  LoaderSpy& spy = loader_spy();
  const std::lock_guard<std::mutex> hold(spy.lock);
  spy.looked_up.emplace_back(name);
  if (std::strcmp(name, "TavrinMessageBox") == 0) return spy.host_box;
  return __real_dlsym(module, name);
}

int __wrap_dlclose(void* module) {
  --loader_spy().references;
  return __real_dlclose(module);
}
}
