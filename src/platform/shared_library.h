// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// A library loaded at run time. Unloaded with the object: nothing that came out of it may be used after that.
class SharedLibrary {
 public:
  SharedLibrary() = default;
  ~SharedLibrary() { close(); }
  SharedLibrary(SharedLibrary&& other) noexcept;
  SharedLibrary& operator=(SharedLibrary&& other) noexcept;

  // `path` is a full path. What the library itself needs is looked for in its own folder and in the
  // system's, never in the current one. False with errorText() when it can't be loaded.
  bool open(const std::string& path);
  // A library of the system by its bare name: on Linux wherever the distribution keeps it, on Windows in the
  // program's own folder and nowhere else.
  bool openOfSystem(const std::string& name);
  void close();

  bool isOpen() const { return handle_ != nullptr; }
  const std::string& errorText() const { return errorText_; }

  // Null when there is no such symbol. `Function` is the type of the function, not of a pointer to it.
  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(symbol(name));
  }
  // The same into a variable; false when there is no such symbol.
  template <class Function>
  bool resolve(const char* name, Function*& target) const {
    target = function<Function>(name);
    return target != nullptr;
  }

 private:
  using AnyFunction = void (*)();

  AnyFunction symbol(const char* name) const;

  void* handle_ = nullptr;
  std::string errorText_;
};

}  // namespace plumetta
