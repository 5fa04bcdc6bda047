// SPDX-License-Identifier: Apache-2.0
// What the engine's operations are to do, as transcripts: passes, programs, images and their order.
#ifndef LUMORA_TESTS_CONFORMANCE_CONTRACT_H_
#define LUMORA_TESTS_CONFORMANCE_CONTRACT_H_

#include <string>
#include <vector>

#include "programs/program_cases.h"
#include "proofs/conformance/transcript.h"

namespace lumora::test {

/// The line of a check that found an error.
Script Check(const std::string& label);
/// A log line under the engine's tag; takes printf's conversions.
Script EngineInfo(const char* format, ...) __attribute__((format(printf, 1, 2)));
Script EngineDebug(const char* format, ...) __attribute__((format(printf, 1, 2)));
Script EngineError(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Waiting for the GPU.
Script Finish();

// ---- Drawing ------------------------------------------------------------------------------------

/// The uniforms of a program as an operation has set them; entries that the program lacks are
/// ignored. Values are as texts.
struct Uniforms {
  std::string shift;                        ///< u_shift of the packers
  std::string controller, aspect, limiter;  ///< warp
  std::string block_scale, block_shift;     ///< warp of captures
  std::string effect;                       ///< whitening
  std::string tile;                         ///< whitening of blocks
  std::string quad[4];
  std::string degree;  ///< only in the variant with marks
  std::string lens;
};
/// Those that a program holds now; it is called like its class without the prefix.
Uniforms UniformsOf(const GLProgram& program, const std::string& name);

/// Making a program current with its inputs. `name` is how the program is called in transcripts,
/// `kind` is its class without its prefix.
Script Use(const std::string& name, const std::string& kind, const std::vector<std::string>& inputs,
           const Uniforms& uniforms);

/// A full-screen quad.
struct Quad {
  const char* positions = "upright";
  std::string coordinates = "(0 0 1 1)";
};
Script Draw(const Quad& quad);

/// Where a pass draws to; no size leaves the viewport as it is.
struct Target {
  std::string framebuffer;
  int width = 0;
  int height = 0;
};
/// A pass: target, viewport, filters of the texture that is bound (none: ""), program, quad.
struct Pass {
  std::string program;
  std::string kind;
  std::vector<std::string> inputs;
  Target target;
  std::string filter = "";
  Quad quad = {};
};
Script Drawn(const Pass& pass, const Uniforms& uniforms);

/// The two packing passes from `source`, for passes of that size.
Script Packed(const android::GPUBeautyFace& engine, const std::string& source);
Script PackedLuma(const android::GPUBeautyFace& engine, const std::string& source);
Script PackedChroma(const android::GPUBeautyFace& engine, const std::string& source);

// ---- Set-up and release -------------------------------------------------------------------------

/// Wrap and filter of the texture that is bound, for both directions.
Script Sampled(const std::string& wrap, const std::string& filter);
/// Making an image with buffer, EGL image and texture.
Script ImageMade(const std::string& name);
/// The same as a target of drawing: sampled so, with a framebuffer, checked under the label.
Script TargetMade(const std::string& name, const std::string& wrap, const std::string& filter,
                  const std::string& label);
/// A plain texture with storage, read nearest.
Script PlainTextureMade(const std::string& name, const std::string& format, int width, int height,
                        const std::string& wrap);
/// What follows the making of any target's image.
Script TargetAttached(const std::string& name, const std::string& wrap, const std::string& filter,
                      const std::string& label);
/// The packed targets of every set-up.
Script PackedTargetsMade();

/// Compiling and linking a program, each step checked.
Script ProgramCompiled(const std::string& name);
/// Loading a program: from its cache file, or compiled (and saved, where it has a file). The
/// program is loaded already.
Script LoadedFromCache(const GLProgram& program, const std::string& name, const ProgramCase& one);
Script LoadedFromSource(const GLProgram& program, const std::string& name, const ProgramCase& one,
                        const std::string& cache_directory);

/// Deleting a program; to be asked for before.
Script ProgramDeleted(const GLProgram& program, const std::string& name);
/// Destroying images: all textures and EGL images.
Script ImageDestroyed(const std::string& name);

/// The steps of making a context, and of giving it back.
Script ContextMade(const std::string& tag, const std::string& class_name);
Script ContextDestroyed(const std::string& tag, const std::string& class_name);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CONFORMANCE_CONTRACT_H_
