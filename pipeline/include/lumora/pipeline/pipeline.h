// libLumoraPipeline: frames in, beautified frames out.
//
// The pipeline owns an engine on a worker thread of its own and may be called from any thread.
// Every failure comes back as a Status with a sentence that can be shown to a user. Nothing is
// thrown, and memory that is short ("out of memory") leaves everything fit for the next call.
//
// An EGL display that the first pipeline or converter initialises stays so until the process ends:
// the host program may use the same display before, beside and after them.
#ifndef LUMORA_PIPELINE_PIPELINE_H_
#define LUMORA_PIPELINE_PIPELINE_H_

#include <memory>
#include <string>
#include <vector>

#include "lumora/geometry/lens.h"
#include "lumora/pipeline/export.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/report.h"
#include "lumora/pipeline/status.h"

namespace lumora {

/// Which of the engine's two ways a frame takes.
enum class Chain {
  Auto,     ///< preview up to a width of 1280 pixels, capture above
  Preview,  ///< the whole frame at once; sides are limited by the driver's textures
  Capture,  ///< only the blocks around faces, for stills of any size
};

/// How a call is to be carried out. The result is the same look either way.
struct ProcessOptions {
  Chain chain = Chain::Auto;
};

/// The largest coefficient of a lens.
constexpr float kLargestCoefficient = 1000;

/// The radial lens polynomial k0 + k1 s + k2 s^2 + k3 s^3, s the squared distance from the frame's
/// centre, 1 in the corners; the defaults are those of lenses without a parameter file. Every one
/// lies within kLargestCoefficient, to both sides of 0.
struct LensCoefficients {
  float k0 = kDefaultLensCoefficients[0];
  float k1 = kDefaultLensCoefficients[1];
  float k2 = kDefaultLensCoefficients[2];
  float k3 = kDefaultLensCoefficients[3];
};

/// A camera of the device.
enum class Camera { First, Second };

/// What the machine offers, for diagnostics.
struct DeviceInfo {
  std::string display;                    ///< how the display was found
  std::string vendor, renderer, version;  ///< of the GL driver
  std::string buffer_kind;
  int max_texture_size = 0;  ///< pixels
  std::string cache_directory;
  bool program_binaries = false;  ///< whether the driver can cache programs
};

/// Thread-safety: every member may be called from any thread; calls are served one after another.
/// Destruction, on any thread, comes after the last call has returned. Pipelines are independent of
/// each other.
class LUMORA_PIPELINE_API Pipeline {
 public:
  /// Starts the worker and its engine. On failure returns null. `status` may be null.
  static std::unique_ptr<Pipeline> Create(Status* status);
  ~Pipeline();

  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  /// Processes one frame: `out` receives `in` with `look` applied to `faces`, whitening first. Both
  /// frames have the same size, from 32 x 32 pixels up, odd ones too; their formats and strides may
  /// differ, and they may be the same memory. Bytes between the rows of `out` are not written.
  ///
  /// A luma sample changes only where the centre of its pixel lies in a circle that SlimmingCircle
  /// tells (slim) or in a first ellipse of WhiteningEllipses (whiten, saturate), a chroma sample
  /// only where that of one of the pixels that it stands for does, which are four and fewer at odd
  /// borders. Every other sample keeps its value, whatever the face, look, chain and format.
  ///
  /// With nothing to do (no face, everything off) the frame is copied unchanged, on the calling
  /// thread. A face that cannot be processed is left out: its centre lies outside the frame, or its
  /// cheeks or chin coincide with it. A face that leaves the frame is slimmed less and less. Any
  /// number of faces is processed, one after another where they overlap. A face with a number that
  /// is not finite, or beyond the bounds of Face, is an InvalidArgument.
  ///
  /// The result depends on nothing but the arguments. On failure `out` is left as it was. `report`
  /// may be null.
  Status Process(const ConstFrameView& in, const FrameView& out, const std::vector<Face>& faces,
                 const Look& look, Report* report = nullptr, const ProcessOptions& options = {});

  /// Keystone correction: `out` receives `in` mapped onto a quadrilateral of it. `degree`, -100 to
  /// 100, is in hundredths of the frame's size: a positive one shortens the left side of what is
  /// sampled by so much at both ends, a negative one the right; 0 is a copy. Frames as in Process,
  /// as large as the driver's textures.
  Status Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                 Report* report = nullptr);

  /// Radial correction of a lens with known coefficients. The picture is enlarged by about two
  /// hundredths, so that its bent edges fall outside. Frames as in Rectify.
  Status RectifyRadial(const ConstFrameView& in, const FrameView& out, const LensCoefficients& lens,
                       Report* report = nullptr);

  /// The same with the coefficients that the files of the device's cameras name, the default ones
  /// where there are none or one is beyond its range.
  Status RectifyRadial(const ConstFrameView& in, const FrameView& out, Camera camera,
                       Report* report = nullptr);

  /// What the engine runs on; nothing of it where memory is short.
  DeviceInfo Device();

 private:
  class LUMORA_PIPELINE_LOCAL Worker;
  LUMORA_PIPELINE_LOCAL explicit Pipeline(std::unique_ptr<Worker> worker);
  std::unique_ptr<Worker> worker_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PIPELINE_H_
