// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/quad.h"

#include "lumora/platform/gl_api.h"

namespace lumora::quad {

void PointAttribute(int location, int size, const void* coords) {
  const auto index = static_cast<GLuint>(location);
  glVertexAttribPointer(index, size, GL_FLOAT, GL_FALSE, 0, coords);
  glEnableVertexAttribArray(index);
}

float* TextureCoordinates() {
  static thread_local float coordinates[8] = {0, 1, 0, 0, 1, 0, 1, 1};
  return coordinates;
}

void ResetTextureCoordinates() {
  SetTextureRectangle(0, 0, 1, 1);
}

void SetTextureRectangle(float s0, float t0, float s1, float t1) {
  const float corners[8] = {s0, t1, s0, t0, s1, t0, s1, t1};
  float* coordinates = TextureCoordinates();
  for (int i = 0; i < 8; ++i) coordinates[i] = corners[i];
}

}  // namespace lumora::quad
