// SPDX-License-Identifier: Apache-2.0
// What becomes of released objects. Without a quarantine their memory is freed at once. With one, the memory of the last
// few is kept back, and a tombstone stands in it: an object with no references, so that a pointer somebody still holds is
// recognised and the mistake is a sentence rather than a crash.
#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <string>

namespace softmetal {
class Object;
}

namespace softmetal::quarantine {

/// The number of released objects to keep back from now on; 0, the start value, frees them all. Thread-safe.
void setSize(std::size_t objects);

/// Who hears of each use of a released object; an empty function means the log. Thread-safe.
void setHandler(std::function<void(const std::string& sentence)> handler);

/// False, and reported, when the object has been released; true for null. For calls that take an object.
bool check(const void* object, const char* call);

/// For Object: takes the memory of an object that has been destroyed.
void bury(void* memory, std::align_val_t alignment, const char* className);
/// For Object: says that the call was made on remains.
void reportUse(const void* remains, const char* call);

} // namespace softmetal::quarantine
