// SPDX-License-Identifier: Apache-2.0
// Face records and numbers of any kind into every call on captures.
#include <memory>
#include <vector>

#include "fuzz/support/engine_frame.h"
#include "fuzz/support/records.h"
#include "lumora/programs/cheek_slimmer_programs.h"

namespace {

using namespace lumora::fuzz;  // NOLINT(google-build-using-namespace)
using lumora::test::Bytes;
using lumora::test::CallerFrame;

struct Setup {
  int width, height;
  bool blocks;  ///< the HSI chain, block by block where the frame is wide
};
// Whole frames, several blocks, and a store without a texture; sides that fit nothing.
constexpr Setup kSetups[] = {{64, 48, true},  {33, 41, true},   {1283, 40, true}, {4128, 24, true},
                             {64, 48, false}, {101, 77, false}, {1283, 40, false}};

/// An engine, and what a clean capture comes to with it while it is new.
class Capture {
 public:
  explicit Capture(const Setup& setup)
      : setup_(setup), picture_(lumora::test::NoisePlanes(setup.width, setup.height, 2)) {
    Require(engine_.m_bEGLReady, "there is a context");
    CallerFrame frame(setup.width, setup.height, picture_);
    engine_.InitCapture(frame.luma(), frame.chroma(), setup.width, setup.height, nullptr,
                        setup.blocks);
    if (setup.blocks) {
      auto program = std::make_unique<GLProgCheekSlimmerLarge_HSI>();
      Require(program->Load(), "the program can be built");
      engine_.m_pProgCheekSlimmer = program.release();
    }
    clean_result_ = CleanResult();
  }
  ~Capture() { engine_.DeInitCapture(); }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  bool is(const Setup& setup) const { return &setup_ == &setup; }
  const Setup& setup() const { return setup_; }
  const Bytes& picture() const { return picture_; }

  void Process(CallerFrame& frame, std::vector<FACE_INFO_t>& faces, int count, Input& input) {
    const int intensity = input.any_int(), saturation = input.any_int();
    if (setup_.blocks) {
      const BEAUTYSHOT_EFFECT_t effect = TakeEffect(input);
      const Bytes before = frame.bytes();
      RequireDone(engine_.DoFaceWhiteningLarge(frame.luma(), frame.chroma(), faces.data(), count,
                                               intensity, saturation, effect));
      Require(frame.bytes() == before, "whitening only reads the frame");
      RequireDone(
          engine_.CopyMemYUVfromSrcTextureLarge(frame.luma(), frame.chroma(), intensity, count));
    }
    RequireDone(engine_.FaceProcessLarge(frame.luma(), frame.chroma(), setup_.width, setup_.height,
                                         saturation, faces.data(), count, input.any_int()));
  }

  void RequireUnharmed() {
    // The expansion leaves remainders of other sizes as the block before has left them, and
    // slimming reaches into the padding of the store.
    if (engine_.m_nSrcWidth % 32 != 0 || engine_.m_nFullWidth % 32 != 0 || setup_.height % 2 != 0) {
      return;
    }
    Require(CleanResult() == clean_result_, "a clean capture gives what it always gave");
  }

 private:
  Bytes CleanResult() {
    ResetFilters(engine_);
    constexpr uint8_t kSmallNumbers[] = {0x61, 40, 0, 0x61, 20, 0, 4, 0x61, 3, 0};
    Input numbers(kSmallNumbers, sizeof(kSmallNumbers));
    std::vector<FACE_INFO_t> faces = {CleanRecord(setup_.width, setup_.height)};
    CallerFrame frame(setup_.width, setup_.height, picture_);
    Process(frame, faces, 1, numbers);
    Require(frame.intact(), "nothing beside the frame is written");
    return frame.bytes();
  }

  const Setup& setup_;
  android::GPUBeautyFace engine_;
  Bytes picture_, clean_result_;
};

Capture& CaptureOf(const Setup& setup) {
  static auto& capture = *new std::unique_ptr<Capture>;  // outlives the driver's own end
  if (capture == nullptr || !capture->is(setup)) {
    capture.reset();  // one engine a thread
    capture = std::make_unique<Capture>(setup);
  }
  return *capture;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Capture& capture = CaptureOf(input.pick(kSetups));
  const auto [width, height, blocks] = capture.setup();
  // Many blocks of many faces only take time.
  std::vector<FACE_INFO_t> faces = TakeRecords(input, width > 1280 ? 3 : 12, width, height);
  CallerFrame frame(width, height, capture.picture());
  capture.Process(frame, faces, TakeCount(input, faces), input);
  Require(frame.intact(), "nothing beside the frame is written");
  capture.RequireUnharmed();
  return 0;
}
