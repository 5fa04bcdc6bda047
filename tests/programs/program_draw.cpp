// SPDX-License-Identifier: Apache-2.0
#include "programs/program_draw.h"

#include <gmock/gmock.h>

namespace lumora::test {

Image DrawProgram(GLProgram& program, const std::vector<GLuint>& inputs, int width, int height,
                  const Geometry& geometry) {
  float positions[8];
  float coordinates[8];
  for (size_t corner = 0; corner < 4; ++corner) {
    positions[2 * corner] = static_cast<float>(geometry.positions[corner].x);
    positions[2 * corner + 1] = static_cast<float>(geometry.positions[corner].y);
    coordinates[2 * corner] = static_cast<float>(geometry.coordinates[corner].x);
    coordinates[2 * corner + 1] = static_cast<float>(geometry.coordinates[corner].y);
  }
  const RenderTarget target(width, height);
  target.bind();
  for (size_t unit = 0; unit < inputs.size(); ++unit) {
    program.SetTextures(static_cast<unsigned int>(unit), static_cast<int>(inputs[unit]));
  }
  EXPECT_TRUE(program.Use());
  EXPECT_TRUE(program.SetVertexCoord(2, positions));
  EXPECT_TRUE(program.SetTextureCoord(2, coordinates));
  EXPECT_TRUE(program.Draw());
  Image drawn = target.read();
  EXPECT_THAT(TakeGlErrors(), testing::IsEmpty());
  return drawn;
}

Image DrawModel(const reference::Shader& shader, int width, int height, const Geometry& geometry) {
  Image drawn(width, height);
  reference::DrawFullQuad(shader, width, height, &drawn, geometry);
  return drawn;
}

Geometry EverywhereAt(double s, double t) {
  Geometry geometry;
  geometry.coordinates.fill({s, t});
  return geometry;
}

}  // namespace lumora::test
