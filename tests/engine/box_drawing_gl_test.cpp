// SPDX-License-Identifier: Apache-2.0
// Passes that draw only what they can change against the same passes drawn whole: nothing that a
// caller can look at afterwards may tell the two apart.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine_images.h"
#include "lumora/platform/gl_api.h"
#include "support/caller_memory.h"
#include "support/faces.h"
#include "support/gl_objects.h"
#include "support/pictures.h"
#include "support/property_override.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

struct Size {
  int width, height;
};

// Rows that fill the images' and rows that do not, in every remainder of 4 and 32; odd heights,
// where chroma has no last row; narrow and wide shapes.
constexpr Size kSizes[] = {{64, 48}, {96, 130}, {128, 40}, {112, 64},  {144, 82}, {100, 64},
                           {96, 81}, {62, 50},  {16, 16},  {200, 130}, {320, 240}};

/// Everything that can be looked at after a call, by name.
using Sight = std::vector<std::pair<std::string, Bytes>>;

template <typename Value>
void Note(Sight& sight, const std::string& name, const Value& value) {
  Bytes bytes(sizeof(value));
  std::memcpy(bytes.data(), &value, sizeof(value));
  sight.emplace_back(name, std::move(bytes));
}

void NoteState(Sight& sight, const GPUBeautyFace& engine) {
  constexpr std::pair<const char*, GLenum> kValues[] = {{"framebuffer", GL_FRAMEBUFFER_BINDING},
                                                        {"texture", GL_TEXTURE_BINDING_2D},
                                                        {"unit", GL_ACTIVE_TEXTURE},
                                                        {"scissor test", GL_SCISSOR_TEST},
                                                        {"viewport", GL_VIEWPORT},
                                                        {"scissor box", GL_SCISSOR_BOX}};
  for (const auto& [name, query] : kValues) {
    GLint values[4] = {};
    glGetIntegerv(query, values);
    Note(sight, name, values);
  }
  GLint unit = 0;
  glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
  glActiveTexture(GL_TEXTURE2);
  GLint other_texture = 0;
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &other_texture);
  glActiveTexture(static_cast<GLenum>(unit));
  Note(sight, "texture of another unit", other_texture);
  // Names of programs depend on whether their binaries were cached.
  GLint current = 0;
  glGetIntegerv(GL_CURRENT_PROGRAM, &current);
  for (const GLProgram* program : {engine.m_pProgRGBtoY, engine.m_pProgRGBtoUV,
                                   engine.m_pProgCheekSlimmer, engine.m_pProgFaceWhitening}) {
    Note(sight, "program", program->m_hProgram == static_cast<GLuint>(current));
  }
  Note(sight, "error", glGetError());
  Note(sight, "result index", engine.m_nResultIdx);
}

/// The image as raw GL sees it, its filters, and then, or before, as a lock does.
void NoteImage(Sight& sight, const std::string& name, SEGLImage& image, bool lock_first) {
  const Bytes locked = lock_first ? PixelsOf(image).bytes : Bytes();
  GLint framebuffer = 0;
  GLint texture = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
  glBindTexture(GL_TEXTURE_2D, image.m_hTexture);
  GLint filters[2] = {};
  glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filters[0]);
  glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &filters[1]);
  Note(sight, name + " filters", filters);
  const auto width = static_cast<int>(image.m_spBuffer->width());
  const auto height = static_cast<int>(image.m_spBuffer->height());
  sight.emplace_back(name + " texture", ReadTexture(image.m_hTexture, width, height).bytes);
  glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
  glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
  sight.emplace_back(name + " locked", lock_first ? locked : PixelsOf(image).bytes);
}

void NoteImages(Sight& sight, const GPUBeautyFace& engine, bool lock_first) {
  const std::pair<const char*, SEGLImage*> images[] = {
      {"input", engine.m_pRGBImage},      {"work 0", engine.m_pWorkImage[0]},
      {"work 1", engine.m_pWorkImage[1]}, {"work 2", engine.m_pWorkImage[2]},
      {"luma", engine.m_pYYYYImage},      {"chroma", engine.m_pUVUVImage}};
  for (const auto& [name, image] : images) NoteImage(sight, name, *image, lock_first);
}

/// What a caller with GL calls of its own may leave behind: most numbers stand for nothing.
void Disturb(unsigned number, const Size& size) {
  switch (number) {
    case 0:
      glEnable(GL_SCISSOR_TEST);
      glScissor(3, 5, size.width / 2, size.height / 2);
      break;
    case 1:
      glEnable(GL_BLEND);
      glBlendFunc(GL_ONE, GL_ONE);
      break;
    case 2:
    case 5:
    case 6:
    case 7: {  // each channel holds samples of its own in the packed images
      const auto written = [number](unsigned closed) {
        return static_cast<GLboolean>(number == closed ? GL_FALSE : GL_TRUE);
      };
      glColorMask(written(2), written(5), written(6), written(7));
      break;
    }
    case 3:
      glScissor(1, 2, 3, 4);  // switched off, but still there afterwards
      break;
    case 4:
      glActiveTexture(GL_TEXTURE2);  // whose binding is nobody else's business
      break;
    default:
      break;
  }
}

void Undisturb() {
  glDisable(GL_SCISSOR_TEST);
  glDisable(GL_BLEND);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

/// Random callers' doings with one engine; the same seed does the same.
class Doings {
 public:
  Doings(Size size, bool colour_convert, unsigned seed)
      : size_(size), colour_convert_(colour_convert), random_(seed) {
    engine_.Init(size.width, size.height, size.width, size.height, nullptr, colour_convert);
    ClearImages(engine_);
  }

  /// One frame. Every third is looked at closely, so that the others follow each other undisturbed.
  Sight frame(int number) {
    const Bytes picture = NoisePlanes(size_.width, size_.height, pick(UINT_MAX));
    CallerFrame in(size_.width, size_.height, picture);
    CallerPlanes apart(size_.width, size_.height);
    uint8_t* const out = output(in, apart);
    const unsigned disturbance = pick(24);
    Disturb(disturbance, size_);
    const int returned = colour_convert_ ? whitened(in, out) : slimmed(in, out);

    Sight sight;
    Note(sight, "returned", returned);
    NoteState(sight, engine_);
    Undisturb();
    sight.emplace_back("frame", in.bytes());
    sight.emplace_back("planes apart", apart.bytes());
    Note(sight, "intact", in.intact() && apart.intact());
    if (number % 3 == 0) NoteImages(sight, engine_, pick(2) == 0);
    return sight;
  }

 private:
  /// The chroma plane of the frame, one apart from it, or one that lies across its planes.
  uint8_t* output(CallerFrame& in, CallerPlanes& apart) {
    switch (pick(8)) {
      case 0:
        return in.luma() + pick(static_cast<unsigned>(LumaSize(size_.width, size_.height)));
      case 1:
      case 2:
        return apart.chroma();
      default:
        return in.chroma();
    }
  }

  int slimmed(CallerFrame& in, uint8_t* out) {
    const int level = static_cast<int>(pick(12));
    switch (pick(8)) {
      case 0:
        return engine_.Rectification(in.luma(), out, static_cast<int>(pick(7)) - 3, 0);
      case 1:
      case 2:
      case 3: {
        std::vector<FACE_INFO_t> faces(pick(5));
        for (FACE_INFO_t& face : faces) face = slimming_face();
        return engine_.FaceProcessMultiface(in.luma(), out, level, faces.data(),
                                            static_cast<int>(faces.size()), 0);
      }
      default:
        return engine_.FaceProcess(in.luma(), out, level, slimming_face(), 0);
    }
  }

  int whitened(CallerFrame& in, uint8_t* out) {
    if (engine_.LoadPreviewFrameBuffer(in.luma()) == 0 || engine_.ConvertYUV() == 0) return 0;
    std::vector<FACE_INFO_t> faces(1 + pick(3));
    for (FACE_INFO_t& face : faces) face = whitening_face();
    constexpr BEAUTYSHOT_EFFECT_t kEffects[] = {BEAUTYSHOT_EFFECT_INTENSITY,
                                                BEAUTYSHOT_EFFECT_SATURATION,
                                                BEAUTYSHOT_EFFECT_BOTH, BEAUTYSHOT_EFFECT_MASK};
    if (engine_.DoFaceWhitening(faces.data(), static_cast<int>(faces.size()),
                                static_cast<int>(pick(120)), static_cast<int>(pick(60)),
                                kEffects[pick(4)]) == 0 ||
        engine_.ConvertHSItoYUV() == 0) {
      return 0;
    }
    if (pick(2) == 0) return engine_.CopyMemYUVfromSrcTexture(in.luma(), out);
    return engine_.FaceProcess(in.luma(), out, 5, slimming_face(), 0);
  }

  /// Faces of all sizes, over every border and beyond; now and then one of garbage.
  FACE_INFO_t slimming_face() {
    if (pick(12) == 0) return GarbageRecord(random_);
    const auto place = [this](int length) {
      return static_cast<int>(pick(static_cast<unsigned>(2 * length))) - length / 2;
    };
    const auto extent = [this] {
      return 1 + static_cast<int>(pick(static_cast<unsigned>(size_.width) / (1 + pick(12)) + 1));
    };
    constexpr int kExtremes[] = {INT_MIN, -1, 0, 1, 100000, INT_MAX};
    FACE_INFO_t face{};
    face.loc_x = place(size_.width);
    face.loc_y = place(size_.height);
    face.dist = extent();
    face.chin_dist = extent();
    face.dist_valid = pick(10) == 0 ? 0 : 1;
    face.roll = static_cast<int>(pick(360));
    face.shapetype = static_cast<int>(pick(3));
    face.dist_level_ratio = static_cast<float>(pick(300)) / 100.0f;
    int* const measures[] = {&face.loc_x, &face.loc_y, &face.dist, &face.chin_dist, &face.roll};
    if (pick(6) == 0) *measures[pick(5)] = kExtremes[pick(6)];
    if (pick(20) == 0) face.dist_level_ratio = pick(2) == 0 ? 1e9f : -1e38f;
    return face;
  }

  FACE_INFO_t whitening_face() {
    if (pick(10) == 0) return GarbageRecord(random_);
    const auto place = [this](int length) {
      return static_cast<int>(pick(static_cast<unsigned>(length) * 3 / 2)) - length / 4;
    };
    const auto half_width = 1 + static_cast<int>(pick(static_cast<unsigned>(size_.width) / 3));
    return PortraitFace(place(size_.width), place(size_.height), half_width,
                        static_cast<double>(pick(360)))
        .as<FACE_INFO_t>();
  }

  unsigned pick(unsigned count) { return static_cast<unsigned>(random_()) % count; }

  const Size size_;
  const bool colour_convert_;
  std::mt19937 random_;
  GPUBeautyFace engine_;
};

std::vector<Sight> Watch(const Size& size, bool colour_convert, unsigned seed, int frames,
                         bool full_quads) {
  const ScopedEnvironment setting("LUMORA_FULL_QUADS", full_quads ? "1" : "0");
  Doings doings(size, colour_convert, seed);
  std::vector<Sight> sights;
  for (int i = 0; i < frames; ++i) sights.push_back(doings.frame(i));
  return sights;
}

testing::AssertionResult SameSights(const std::vector<Sight>& expected,
                                    const std::vector<Sight>& actual) {
  for (size_t frame = 0; frame < expected.size(); ++frame) {
    for (size_t i = 0; i < expected[frame].size(); ++i) {
      const auto& [name, bytes] = expected[frame][i];
      const Bytes& others = actual[frame][i].second;
      size_t differences = 0;
      size_t first = 0;
      for (size_t at = bytes.size(); at-- > 0;) {
        if (bytes[at] == others[at]) continue;
        ++differences;
        first = at;
      }
      if (differences == 0) continue;
      return testing::AssertionFailure()
             << name << " of frame " << frame << ": " << differences << " bytes of " << bytes.size()
             << " differ, the first is " << first << ": " << int{bytes[first]} << " became "
             << int{others[first]};
    }
  }
  return testing::AssertionSuccess();
}

class BoxDrawing : public testing::TestWithParam<Size> {};
INSTANTIATE_TEST_SUITE_P(Sizes, BoxDrawing, testing::ValuesIn(kSizes), [](const auto& size) {
  return std::to_string(size.param.width) + "x" + std::to_string(size.param.height);
});

TEST_P(BoxDrawing, SlimmingLooksLikeFullQuads) {
  constexpr int kFrames = 150;
  for (unsigned seed = 0; seed < 2; ++seed) {
    EXPECT_TRUE(SameSights(Watch(GetParam(), false, seed, kFrames, true),
                           Watch(GetParam(), false, seed, kFrames, false)))
        << "seed " << seed;
  }
}

TEST_P(BoxDrawing, WhiteningAndThenSlimmingLooksLikeFullQuads) {
  constexpr int kFrames = 60;
  EXPECT_TRUE(SameSights(Watch(GetParam(), true, 7, kFrames, true),
                         Watch(GetParam(), true, 7, kFrames, false)));
}

TEST(BoxDrawingWithMarks, TheWarpsRimLooksLikeFullQuads) {
  constexpr Size kSize{128, 96};
  constexpr int kFrames = 60;
  const ScopedProperty marks(kShowMaskProperty, "1");
  EXPECT_TRUE(
      SameSights(Watch(kSize, false, 5, kFrames, true), Watch(kSize, false, 5, kFrames, false)));
}

// Where texture coordinates are coarsest against the pixels, and with the linear filter that only
// an engine's first frame has.
TEST(BoxDrawingOfLongImages, FirstFramesLookLikeFullQuads) {
  constexpr int kFrames = 2;
  for (const Size& size : {Size{4096, 16}, Size{16, 4096}, Size{3840, 32}, Size{1920, 48}}) {
    for (unsigned seed = 0; seed < 8; ++seed) {
      EXPECT_TRUE(SameSights(Watch(size, false, seed, kFrames, true),
                             Watch(size, false, seed, kFrames, false)))
          << size.width << " x " << size.height << ", seed " << seed;
    }
    EXPECT_TRUE(
        SameSights(Watch(size, true, 3, kFrames, true), Watch(size, true, 3, kFrames, false)))
        << size.width << " x " << size.height << ", whitening";
  }
}

}  // namespace
}  // namespace lumora::test
