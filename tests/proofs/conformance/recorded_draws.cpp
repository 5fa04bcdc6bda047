// SPDX-License-Identifier: Apache-2.0
// Drawing, waiting and errors.
#include "proofs/conformance/recorded_calls.h"

namespace {

using namespace lumora::test::recorded;  // NOLINT: the words of these functions
using lumora::test::CoordinatesText;
using lumora::test::ObjectKind;
using lumora::test::PositionsText;

}  // namespace

// Visible, so that a shared library finds them in the executable first.
#pragma GCC visibility push(default)
extern "C" {

void GL_APIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
  Record("glViewport", {Number(x), Number(y), Number(width), Number(height)});
  LUMORA_NEXT(glViewport)(x, y, width, height);
}
void GL_APIENTRY glVertexAttribPointer(GLuint index, GLint size, GLenum type, GLboolean normalised,
                                       GLsizei stride, const void* data) {
  Record("glVertexAttribPointer",
         {Attribute(index), Number(size), Name(type), Number(normalised), Number(stride)});
  Now().pointers[index] = static_cast<const float*>(data);
  LUMORA_NEXT(glVertexAttribPointer)(index, size, type, normalised, stride, data);
}
void GL_APIENTRY glEnableVertexAttribArray(GLuint index) {
  Record("glEnableVertexAttribArray", {Attribute(index)});
  LUMORA_NEXT(glEnableVertexAttribArray)(index);
}
void GL_APIENTRY glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
  // The arrays lie in client memory: what they hold now is what is drawn.
  std::string order;
  for (GLsizei i = 0; i < count; ++i) {
    order += (i == 0 ? "" : ",") + std::to_string(static_cast<const GLushort*>(indices)[i]);
  }
  Arguments arguments = {Name(mode), {order}, Name(type)};
  for (const auto& [location, data] : Now().pointers) {
    if (Attribute(location).text == "a_vertexCoord") arguments.push_back({PositionsText(data)});
  }
  for (const auto& [location, data] : Now().pointers) {
    if (Attribute(location).text == "a_textureCoord") {
      arguments.push_back({"(" + CoordinatesText(data) + ")"});
    }
  }
  Record("glDrawElements", std::move(arguments));
  LUMORA_NEXT(glDrawElements)(mode, count, type, indices);
}
void GL_APIENTRY glFlush(void) {
  Record("glFlush", {});
  LUMORA_NEXT(glFlush)();
}
void GL_APIENTRY glFinish(void) {
  Record("glFinish", {});
  LUMORA_NEXT(glFinish)();
}

GLenum GL_APIENTRY glGetError(void) {
  const bool fails = CheckFails();
  const GLenum error = LUMORA_NEXT(glGetError)();
  return fails ? GL_INVALID_ENUM : error;
}

}  // extern "C"
#pragma GCC visibility pop
