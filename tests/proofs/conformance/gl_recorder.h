// SPDX-License-Identifier: Apache-2.0
// The EGL and GL calls of the process, written down as they are made.
//
// Link `lumora_gl_recorder` (an object library): the executable then defines the functions that the
// library calls, in place of the driver's, and passes every call on. Calls are kept only while a
// GlRecorder lives; which objects exist is followed always, so that a name that the driver gives
// out a second time is not taken for the first.
#ifndef LUMORA_TESTS_CONFORMANCE_GL_RECORDER_H_
#define LUMORA_TESTS_CONFORMANCE_GL_RECORDER_H_

#include <GLES2/gl2.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace lumora::test {

enum class ObjectKind { None, Texture, Framebuffer, Program, Image, Display, Surface, Context };

/// An object of EGL or GL. GL objects and images have serials of their own, given when they are
/// made; EGL handles are what they are. 0 is no object.
struct ObjectId {
  ObjectKind kind = ObjectKind::None;
  uint64_t id = 0;

  bool operator<(const ObjectId& other) const {
    return kind != other.kind ? kind < other.kind : id < other.id;
  }
  bool operator==(const ObjectId& other) const { return kind == other.kind && id == other.id; }
};

/// The object that a name or handle names at this moment.
ObjectId ObjectNow(ObjectKind kind, uint64_t name);

/// An argument: an object, or a text.
struct CallArgument {
  std::string text;
  ObjectId object = {};
};

struct Call {
  std::string function;
  std::vector<CallArgument> arguments;
  ObjectId context;  ///< the one that was current
  size_t lines = 0;  ///< log lines that had been printed before
};

/// What is bound in the current context.
struct Bindings {
  unsigned unit = 0;
  std::map<unsigned, ObjectId> textures;  ///< by unit
  ObjectId framebuffer;
  ObjectId context;

  /// A deleted object is not bound any more.
  void unbind(const ObjectId& object);
};

/// Keeps the calls while it lives. One at a time.
class GlRecorder {
 public:
  /// `count_lines` tells how many log lines were printed so far. Where the last call was one of
  /// `failing`, glGetError answers GL_INVALID_ENUM once: a check for errors then prints its label.
  GlRecorder(std::function<size_t()> count_lines, std::set<std::string> failing);
  ~GlRecorder();
  GlRecorder(const GlRecorder&) = delete;
  GlRecorder& operator=(const GlRecorder&) = delete;

  std::vector<Call> calls;
  const Bindings before;
  const std::function<size_t()> count_lines;
  const std::set<std::string> failing;
};

/// The first calls that looked for a display in this process, by function and whether the default
/// display was meant.
const std::vector<std::string>& FirstDisplayCalls();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CONFORMANCE_GL_RECORDER_H_
