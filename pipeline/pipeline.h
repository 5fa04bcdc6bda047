// libLumoraPipeline: frames in, beautified frames out.
//
// The pipeline owns an engine on a worker thread of its own and may be called from any thread.
// Every failure comes back as a Status with a sentence that can be shown to a user.
#ifndef LUMORA_PIPELINE_PIPELINE_H_
#define LUMORA_PIPELINE_PIPELINE_H_

#include <memory>
#include <string>
#include <vector>

#include "pipeline/export.h"
#include "pipeline/face.h"
#include "pipeline/frame.h"

namespace lumora {

/// What went wrong.
enum class StatusCode {
  Ok,
  InvalidArgument,  ///< the call's arguments cannot be used; nothing was done
  NoDisplay,        ///< no EGL display or context could be had on this machine
  TooLarge,         ///< the frame is larger than the driver's textures
  EngineFailed,     ///< the engine refused to process (its log says why)
};

/// Success, or a code and a sentence.
struct Status {
  StatusCode code = StatusCode::Ok;
  std::string message;

  bool ok() const { return code == StatusCode::Ok; }
};

/// How faces are to look. Scales run from 0 to 100; 0 is exactly off and costs nothing.
struct Look {
  int slim = 0;  ///< narrowing of cheeks and chin: 50 is visible but natural, 100 is strong
};

/// What one call did. After a failed call the chain is empty.
struct Report {
  std::string chain;        ///< "none" (nothing to do) or "preview"
  std::string buffer_kind;  ///< how CPU and GPU share memory: "staged", "memobj"; empty for "none"
  int faces = 0;            ///< faces processed: those that can be, see Process
  double upload_ms = 0;     ///< copying the caller's frame in; 0 for "none"
  double engine_ms = 0;     ///< the engine's own work; 0 for "none"
  double download_ms = 0;   ///< copying the result out; for "none" the whole copy
};

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

  /// Processes one frame: `out` receives `in` with `look` applied to `faces`. Both frames have the
  /// same size, from 32 x 32 pixels up, odd ones too; their formats and strides may differ, and
  /// they may be the same memory. Pixels beyond the circles that SlimmingCircle tells keep their
  /// values, and bytes between the rows of `out` are not written.
  ///
  /// With nothing to do (no face, everything off) the frame is copied unchanged, on the calling
  /// thread. A face that cannot be processed is left out: its centre lies outside the frame, or its
  /// cheeks or chin coincide with it. A face that leaves the frame is slimmed less and less.
  ///
  /// The result depends on nothing but the arguments. On failure `out` is left as it was. `report`
  /// may be null.
  Status Process(const ConstFrameView& in, const FrameView& out, const std::vector<Face>& faces,
                 const Look& look, Report* report = nullptr);

  /// What the engine runs on.
  DeviceInfo Device();

 private:
  class Worker;
  explicit Pipeline(std::unique_ptr<Worker> worker);
  std::unique_ptr<Worker> worker_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PIPELINE_H_
