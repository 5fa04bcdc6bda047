// SPDX-License-Identifier: Apache-2.0
// Face records and numbers of any kind into every call on preview frames.
#include <algorithm>
#include <memory>
#include <vector>

#include "fuzz/support/engine_frame.h"
#include "fuzz/support/records.h"

namespace {

using namespace lumora::fuzz;  // NOLINT(google-build-using-namespace)
using lumora::test::Bytes;
using lumora::test::CallerFrame;

struct Setup {
  int src_width, src_height, proc_width, proc_height;
  bool colour;
};
constexpr Setup kSetups[] = {{64, 48, 64, 48, false}, {64, 48, 64, 48, true},
                             {50, 37, 50, 37, false}, {50, 37, 50, 37, true},
                             {16, 40, 16, 40, true},  {48, 64, 64, 48, false}};

/// An engine, and what a clean frame comes to with it while it is new.
class Preview {
 public:
  explicit Preview(const Setup& setup) : setup_(setup) {
    Require(engine_->m_bEGLReady, "there is a context");
    engine_->Init(setup.src_width, setup.src_height, setup.proc_width, setup.proc_height, nullptr,
                  setup.colour);
    picture_ = lumora::test::NoisePlanes(width(), height(), 1);
    clean_result_ = CleanResult();
  }

  android::GPUBeautyFace& engine() { return *engine_; }
  bool is(const Setup& setup) const { return &setup_ == &setup; }
  bool colour() const { return setup_.colour; }
  // The frame has room for the source and for the result.
  int width() const { return std::max(setup_.src_width, setup_.proc_width); }
  int height() const { return std::max(setup_.src_height, setup_.proc_height); }
  const Bytes& picture() const { return picture_; }

  void RequireUnharmed() {
    // The expansion leaves remainders of other sizes as the frame before has left them.
    if (setup_.src_width % 32 != 0 || setup_.src_height % 2 != 0) return;
    Require(CleanResult() == clean_result_, "a clean frame gives what it always gave");
    CallerFrame frame(width(), height(), picture_);
    RequireDone(engine_->LoadPreviewFrameBuffer(frame.luma()));
    RequireDone(engine_->CopyMemYUVfromSrcTexture(frame.luma(), frame.chroma()));
    Require(frame.bytes() == picture_, "a frame without faces comes back unchanged");
  }

 private:
  Bytes CleanResult() {
    ResetFilters(*engine_);
    CallerFrame frame(width(), height(), picture_);
    FACE_INFO_t face = CleanRecord(width(), height());
    if (setup_.colour) {
      RequireDone(engine_->LoadPreviewFrameBuffer(frame.luma()));
      RequireDone(engine_->ConvertYUV());
      RequireDone(engine_->DoFaceWhitening(&face, 1, 40, 20, BEAUTYSHOT_EFFECT_BOTH));
      RequireDone(engine_->ConvertHSItoYUV());
    }
    RequireDone(engine_->FaceProcess(frame.luma(), frame.chroma(), 3, face, 0));
    return frame.bytes();
  }

  const Setup& setup_;
  std::unique_ptr<android::GPUBeautyFace> engine_ = std::make_unique<android::GPUBeautyFace>();
  Bytes picture_, clean_result_;
};

Preview& PreviewOf(const Setup& setup) {
  static auto& preview = *new std::unique_ptr<Preview>;  // outlives the driver's own end
  if (preview == nullptr || !preview->is(setup)) {
    preview.reset();  // one engine a thread
    preview = std::make_unique<Preview>(setup);
  }
  return *preview;
}

void Whiten(Preview& preview, CallerFrame& frame, std::vector<FACE_INFO_t>& faces, Input& input) {
  android::GPUBeautyFace& engine = preview.engine();
  RequireDone(engine.LoadPreviewFrameBuffer(frame.luma()));
  const int converted = engine.ConvertYUV();
  Require(converted == (preview.colour() ? 1 : 0), "only one mode converts");
  const int count = TakeCount(input, faces);
  const int intensity = input.any_int(), saturation = input.any_int();
  const int whitened =
      engine.DoFaceWhitening(faces.data(), count, intensity, saturation, TakeEffect(input));
  RequireResult(whitened);
  if (preview.colour()) RequireDone(whitened);
  RequireResult(engine.ConvertHSItoYUV());
}

void OneCall(Preview& preview, CallerFrame& frame, Input& input) {
  android::GPUBeautyFace& engine = preview.engine();
  std::vector<FACE_INFO_t> faces = TakeRecords(input, 12, preview.width(), preview.height());
  const FACE_INFO_t face = faces.empty() ? FACE_INFO_t{} : faces[0];
  const int a = input.any_int(), b = input.any_int();
  switch (input.between(0, 7)) {
    case 0:
      RequireDone(engine.FaceProcess(frame.luma(), frame.chroma(), a, face, b));
      break;
    case 1:
      RequireDone(engine.FaceProcessMultiface(frame.luma(), frame.chroma(), a, faces.data(),
                                              TakeCount(input, faces), b));
      break;
    case 2:
      Whiten(preview, frame, faces, input);
      break;
    case 3: {
      const BEAUTYSHOT_EFFECT_t effect = TakeEffect(input);
      const int number = input.any_int();
      RequireDone(engine.SetFaceWhiteningParameters(face, a, b, effect, number, input.flag(),
                                                    frame.luma()));
      break;
    }
    case 4:
      RequireDone(engine.SetCheekSlimmerParameters(face, a, input.flag()));
      break;
    case 5:
      RequireDone(engine.Rectification(frame.luma(), frame.chroma(), a, b));
      break;
    case 6:
      RequireDone(engine.RadialRectification(frame.luma(), frame.chroma(), a, b));
      break;
    default:
      RequireDone(engine.SetParameters(face.loc_x, face.loc_y, face.dist, face.roll, face.chin_dist,
                                       a, b, input.flag(), face.dist_level_ratio));
      RequireResult(engine.DrawFaceDist(b));
      RequireResult(engine.DrawFaceWhite(a));
      RequireDone(engine.CopyMemYUVfromSrcTexture(frame.luma(), frame.chroma()));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Preview& preview = PreviewOf(input.pick(kSetups));
  CallerFrame frame(preview.width(), preview.height(), preview.picture());
  for (int calls = input.between(1, 3); calls > 0; --calls) OneCall(preview, frame, input);
  Require(frame.intact(), "nothing beside the frame is written");
  preview.RequireUnharmed();
  return 0;
}
