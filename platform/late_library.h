// Functions of a library that is loaded late, because a first frame does without it.
#pragma once
#include <dlfcn.h>

namespace platform {

// Stores the function `name` of `library`; false when the library has none of that name.
template <class F>
bool FindFunction(void* library, const char* name, F* out) {
  *out = reinterpret_cast<F>(dlsym(library, name));
  return *out != nullptr;
}

}  // namespace platform
