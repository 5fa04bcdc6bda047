// SPDX-License-Identifier: Apache-2.0
// Faces, looks and frame views of any kind into the pipeline, on both devices.
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "fuzz/support/input.h"
#include "fuzz/support/require.h"
#include "lumora/pipeline/pipeline.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/plan/frame_difference.h"

namespace {

using lumora::Face;
using lumora::PointF;
using lumora::fuzz::Input;
using lumora::fuzz::Require;
using lumora::test::FrameMemory;
using lumora::test::NoiseSamples;
using lumora::test::Samples;

struct Size {
  int width, height;
};
constexpr Size kSizes[] = {{64, 48}, {33, 61}, {96, 32}};

/// Any number; places in the frame are likely.
float TakeNumber(Input& input) {
  constexpr float kExtremes[] = {0.0f,
                                 -1.0f,
                                 1e-30f,
                                 1e6f,
                                 -1e6f,
                                 std::numeric_limits<float>::max(),
                                 std::numeric_limits<float>::lowest(),
                                 std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN()};
  const auto kind = input.take<uint8_t>();
  if (kind < 0x40) return kExtremes[kind % std::size(kExtremes)];
  return kind < 0xD0 ? static_cast<float>(input.take<int16_t>()) / 64.0f : input.take<float>();
}

/// A canonical face in which some numbers stand for something else.
Face TakeFace(Input& input) {
  const PointF left = {TakeNumber(input), TakeNumber(input)};
  const PointF right = {TakeNumber(input), TakeNumber(input)};
  Face face = lumora::FaceFromEyes(left, right);
  static_assert(std::is_trivially_copyable_v<Face> && sizeof(Face) % sizeof(float) == 0);
  float numbers[sizeof(Face) / sizeof(float)];
  std::memcpy(numbers, &face, sizeof(face));
  for (int changes = input.between(0, 15); changes > 0; --changes) {
    const int at = input.between(0, static_cast<int>(std::size(numbers)) - 1);
    numbers[at] = TakeNumber(input);
  }
  std::memcpy(&face, numbers, sizeof(face));
  return face;
}

/// Spoils one number of a view, or none.
template <typename View>
void Spoil(View& view, Input& input) {
  const size_t plane = input.take<uint8_t>() % 3;
  switch (input.between(0, 15)) {
    case 0:
      view.width = input.any_int();
      break;
    case 1:
      view.height = input.any_int();
      break;
    case 2:
      view.planes[plane] = nullptr;
      break;
    case 3: {
      // A stride between too small and too large only lies about the memory.
      const auto stride = input.take<int64_t>();
      const bool wrong = stride < view.strides[plane] || stride > std::numeric_limits<int>::max();
      if (wrong) view.strides[plane] = static_cast<std::ptrdiff_t>(stride);
      break;
    }
    case 4:
      view.format = static_cast<lumora::PixelFormat>(input.any_int());
      break;
    default:
      break;
  }
}

/// Whether a view still describes its memory, which `whole` is the view of.
template <typename View>
bool IsSound(const View& view, const View& whole) {
  const bool planar = whole.format == lumora::PixelFormat::I420;
  const bool same_planes =
      planar ? view.format == whole.format
             : view.format == lumora::PixelFormat::NV21 || view.format == lumora::PixelFormat::NV12;
  if (!same_planes || view.width != whole.width || view.height != whole.height) return false;
  const int pairs = (whole.width + 1) / 2;
  for (size_t plane = 0; plane < (planar ? 3 : 2); ++plane) {
    const int row = plane == 0 ? whole.width : planar ? pairs : 2 * pairs;
    const bool fits =
        view.strides[plane] >= row && view.strides[plane] <= std::numeric_limits<int>::max();
    if (view.planes[plane] == nullptr || !fits) return false;
  }
  return true;
}

lumora::Pipeline& MadeOn(lumora::Device device) {
  lumora::Status status;
  auto made = lumora::Pipeline::Create({device}, &status);
  Require(made != nullptr, "there is a pipeline");
  return *made.release();  // outlives the driver's own end
}

lumora::Pipeline& ThePipeline() {
  static lumora::Pipeline& pipeline = MadeOn(lumora::Device::Gl);
  return pipeline;
}

lumora::Pipeline& TheOther() {
  static lumora::Pipeline& pipeline = MadeOn(lumora::Device::Cpu);
  return pipeline;
}

/// What is asked of a pipeline.
struct Request {
  enum class Kind { Keystone, Lens, Look };
  Kind kind = Kind::Look;
  int degree = 0;
  lumora::LensCoefficients lens;
  std::vector<Face> faces;
  lumora::Look look;
  lumora::Chain chain = lumora::Chain::Auto;
};

Request TakeRequest(Input& input) {
  Request request;
  for (int i = input.between(0, 4); i > 0; --i) request.faces.push_back(TakeFace(input));
  switch (input.between(0, 9)) {
    case 0:
      request.kind = Request::Kind::Keystone;
      request.degree = input.any_int();
      break;
    case 1:
      request.kind = Request::Kind::Lens;
      for (float* k : {&request.lens.k0, &request.lens.k1, &request.lens.k2, &request.lens.k3}) {
        *k = TakeNumber(input);
      }
      break;
    default: {
      const auto scale = [&input] {
        return input.between(0, 7) == 0 ? input.any_int() : input.between(0, 100);
      };
      request.look = {scale(), scale(), scale(), lumora::Effect::Auto};
      request.look.effect = static_cast<lumora::Effect>(input.between(-1, 5));
      request.chain = static_cast<lumora::Chain>(input.between(0, 2));
      break;
    }
  }
  return request;
}

lumora::Status Call(lumora::Pipeline& pipeline, const lumora::ConstFrameView& in,
                    const lumora::FrameView& out, const Request& request) {
  lumora::Report report;
  switch (request.kind) {
    case Request::Kind::Keystone:
      return pipeline.Rectify(in, out, request.degree, &report);
    case Request::Kind::Lens:
      return pipeline.RectifyRadial(in, out, request.lens, &report);
    default:
      return pipeline.Process({in, out, request.faces, request.look, request.chain}, &report);
  }
}

/// Both pipelines change nothing that no face may change. Samples are noise here, and faces lie in
/// any way over each other: only where one face is slimmed alone does each sample have a bound.
void CompareLooks(const lumora::ConstFrameView& in, const lumora::ConstFrameView& by_gl,
                  const lumora::ConstFrameView& by_cpu, const Request& request) {
  if (request.kind != Request::Kind::Look) return;
  const lumora::FrameDifference difference =
      lumora::CompareResults(in, by_gl, by_cpu, request.faces, request.look);
  Require(difference.stray() == 0, "what lies outside of every face stays as it was");
  const bool slims_alone = !lumora::Whitens(request.look) && request.faces.size() <= 1;
  Require(!slims_alone || difference.y.largest <= 2, "both devices slim a face alike");
}

/// A clean frame with a clean face.
Samples CleanResult(const Size& size) {
  FrameMemory in(lumora::PixelFormat::I420, size.width, size.height);
  FrameMemory out(lumora::PixelFormat::NV21, size.width, size.height);
  in.Fill(NoiseSamples(size.width, size.height));
  const auto middle = static_cast<float>(size.width) / 2,
             eyes = static_cast<float>(size.height) / 3;
  const Face face = lumora::FaceFromEyes({middle - 5, eyes}, {middle + 5, eyes});
  Require(ThePipeline().Process({in.const_view(), out.view(), {face}, {50, 50, 20}}).ok(),
          "a clean frame is processed");
  return out.Read();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Samples clean[] = {CleanResult(kSizes[0]), CleanResult(kSizes[1]),
                                  CleanResult(kSizes[2])};
  Input input(data, size);
  const size_t which = input.take<uint8_t>() % std::size(kSizes);
  const auto [width, height] = kSizes[which];
  // Braces, which are evaluated in their order.
  FrameMemory in{input.pick(lumora::test::kAllFormats), width, height, input.between(0, 9)};
  FrameMemory out{input.pick(lumora::test::kAllFormats), width, height, input.between(0, 9)};
  in.Fill(NoiseSamples(width, height));
  const auto in_before = in.Everything(), out_before = out.Everything();

  lumora::ConstFrameView in_view = in.const_view();
  lumora::FrameView out_view = out.view();
  // Only one view: a size that both agree on would be a lie that nobody can notice.
  if (input.flag()) {
    Spoil(in_view, input);
  } else {
    Spoil(out_view, input);
  }
  const Request request = TakeRequest(input);
  FrameMemory other = out;
  lumora::FrameView other_view = other.view();
  const lumora::FrameView whole = out.view();
  for (size_t plane = 0; plane < 3; ++plane) {
    const bool kept = out_view.planes[plane] == whole.planes[plane];
    if (!kept) other_view.planes[plane] = out_view.planes[plane];
  }
  other_view.format = out_view.format;
  other_view.width = out_view.width;
  other_view.height = out_view.height;
  other_view.strides = out_view.strides;
  const lumora::Status status = Call(ThePipeline(), in_view, out_view, request);
  const lumora::Status by_cpu = Call(TheOther(), in_view, other_view, request);
  Require(status.code == by_cpu.code && status.message == by_cpu.message,
          "both devices say the same");
  Require(other.GuardsIntact(), "nothing between and around the rows is written on the processor");
  Require(status.ok() || other.Everything() == out_before,
          "a failure on the processor leaves the output as it was");
  if (status.ok()) {
    CompareLooks(in_view, lumora::AsConst(out_view), lumora::AsConst(other_view), request);
  }
  Require(in.Everything() == in_before, "the input is only read");
  Require(out.GuardsIntact(), "nothing between and around the rows is written");
  Require(!status.ok() || (IsSound(in_view, in.const_view()) && IsSound(out_view, out.view())),
          "frames that make no sense are refused");
  if (!status.ok()) {
    Require(out.Everything() == out_before, "a failure leaves the output as it was");
    Require(!status.message.empty(), "a failure has a sentence");
  }
  if (input.between(0, 3) == 0) {
    Require(CleanResult(kSizes[which]) == clean[which], "a clean frame gives what it always gave");
  }
  return 0;
}
