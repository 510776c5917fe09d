// An Objective-C runtime for tests on Linux: just enough to run a .mm file, compiled unchanged and
// with ARC for the runtime of macOS, that sends messages and uses blocks but defines no class. Its
// messages end in plain C++ functions. Weak references, __block variables, literals and exceptions
// are not supported. Not thread-safe.

#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace tessum::fake {

using Method = void (*)();
using Selector = const char*;

// Its own isa is its metaclass, which holds the class methods.
struct Class {
  Class* isa = nullptr;
  const char* name = "";
  std::map<std::string, Method, std::less<>> methods;
};

// What an `id` points to. The isa is the first member, as in any runtime.
struct Object {
  Class* isa = nullptr;
  long references = 1;
  void (*destroy)(Object*) = nullptr;  // none: the object lives as long as the program
};

// A text that is written in the source, as the compiler lays it out.
struct ConstantString {
  Class* isa;
  int flags;
  const char* text;
  long length;
};

// Objects and blocks that were made and are not yet destroyed.
[[nodiscard]] long liveObjects();
void countBirth();

// Makes an object that belongs to the caller.
template <typename T, typename... Members>
T* make(Class& isa, Members&&... members) {
  countBirth();
  return new T{{&isa, 1, [](Object* object) { delete static_cast<T*>(object); }},
               std::forward<Members>(members)...};
}

// Null is allowed. An object that is released too often stops the process.
void retain(Object* object);
void release(Object* object);
Object* autorelease(Object* object);

// Makes `function` answer the message `selector`.
template <typename Result, typename... Arguments>
void answer(Class& isa, std::string_view selector, Result (*function)(Arguments...)) {
  isa.methods.insert_or_assign(std::string(selector), reinterpret_cast<Method>(function));
}

// At its end releases what was autoreleased while it was the innermost pool.
class Pool {
 public:
  Pool();
  ~Pool();
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

 private:
  std::size_t start_;
};

// A block of the code under test that takes one object, kept alive.
class Block {
 public:
  explicit Block(void* block);
  ~Block();
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;

  void operator()(Object* argument) const;

 private:
  void* block_;
};

}  // namespace tessum::fake

// The class that compiled code knows by this name.
#define TESSUM_FAKE_CLASS(name)                                    \
  extern "C" tessum::fake::Class OBJC_CLASS_$_##name;              \
  static tessum::fake::Class name##Meta{nullptr, #name, {}};       \
  tessum::fake::Class OBJC_CLASS_$_##name{&name##Meta, #name, {}}; \
  [[maybe_unused]] static tessum::fake::Class& name = OBJC_CLASS_$_##name
