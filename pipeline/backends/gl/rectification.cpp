// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/rectification.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "lumora/programs/rectification_programs.h"
#include "pipeline/support/number_bounds.h"

namespace lumora {
namespace {

struct Coordinate {
  double x;
  double y;
};

/// The point at (u, v) of a quadrilateral, also outside of it.
Coordinate PointOf(const Coordinate (&quad)[4], double u, double v) {
  const auto mix = [](double a, double b, double t) { return a + (b - a) * t; };
  return {mix(mix(quad[0].x, quad[2].x, v), mix(quad[1].x, quad[3].x, v), u),
          mix(mix(quad[0].y, quad[2].y, v), mix(quad[1].y, quad[3].y, v), u)};
}

void SetCoefficients(const LensCoefficients& lens, GLProgRadialDistortion& program) {
  const float given[] = {lens.k0, lens.k1, lens.k2, lens.k3};
  std::copy(std::begin(given), std::end(given), program.m_fvKval);
}

}  // namespace

bool DrawKeystone(EngineSetup& setup, int degree, const FrameShare& share) {
  android::GPUBeautyFace& engine = setup.engine();
  if (engine.SetRectParameters(degree) == 0) return false;
  auto& program = static_cast<GLProgRectificaton&>(*engine.m_pProgRectification);
  // The engine's quadrilateral is meant for the frame; what is drawn is the frame with its padding,
  // so the quadrilateral grows by as much, and shrinks into the part that the frame fills.
  Coordinate quad[4];
  for (size_t i = 0; i < std::size(quad); ++i) {
    quad[i] = {static_cast<double>(program.m_fvQuad[i][0]),
               static_cast<double>(program.m_fvQuad[i][1])};
  }
  for (size_t i = 0; i < std::size(quad); ++i) {
    const double u = i % 2 == 0 ? 0 : 1 / share.x;
    const double v = i < 2 ? 0 : 1 / share.y;
    const Coordinate corner = PointOf(quad, u, v);
    program.m_fvQuad[i][0] = static_cast<float>(corner.x * share.x);
    program.m_fvQuad[i][1] = static_cast<float>(corner.y * share.y);
  }
  return engine.DrawRectification() != 0;
}

bool DrawRadial(EngineSetup& setup, const Lens& lens, const FrameShare& share) {
  android::GPUBeautyFace& engine = setup.engine();
  if (engine.m_pProgRadialDistortion == nullptr) return false;
  auto& program = static_cast<GLProgRadialDistortion&>(*engine.m_pProgRadialDistortion);
  if (const auto* const given = std::get_if<LensCoefficients>(&lens)) {
    SetCoefficients(*given, program);
  } else {
    engine.SetRadialRectParameters(
        *std::get_if<Camera>(&lens) == Camera::Second ? 1 : 0);  // reads files
    const float* const k = program.m_fvKval;
    if (!IsUsable({k[0], k[1], k[2], k[3]})) SetCoefficients(LensCoefficients{}, program);
  }
  const std::array<double, 4> coefficients = CoefficientsIn(share, program.m_fvKval);
  std::transform(coefficients.begin(), coefficients.end(), program.m_fvKval,
                 [](double coefficient) { return static_cast<float>(coefficient); });
  return engine.DrawRadialRectification() != 0;
}

}  // namespace lumora
