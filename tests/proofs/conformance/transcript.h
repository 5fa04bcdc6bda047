// SPDX-License-Identifier: Apache-2.0
// What an operation does, in order and in words: the log lines that it prints and the EGL and GL
// calls that it makes on the engine's own objects.
//
//   Recording recording(Checks::Passes);
//   engine.DrawRGBtoYY(-1);
//   EXPECT_TRUE(Same(Pass(...), recording.lines(NamesOf(engine))));
//
// Left out is what the platform does to keep the CPU's and the GPU's memory equal, so that a
// transcript holds for every kind of shared memory: calls on objects that are not the engine's, and
// what puts the engine's bindings back afterwards; a glFinish that no glFlush precedes (the
// contract names them in pairs); queries. The parameters of a texture that are set one after the
// other have no order among themselves and are sorted.
#ifndef LUMORA_TESTS_CONFORMANCE_TRANSCRIPT_H_
#define LUMORA_TESTS_CONFORMANCE_TRANSCRIPT_H_

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "lumora/lumora.h"
#include "proofs/conformance/gl_recorder.h"
#include "support/log_capture.h"

namespace lumora::test {

/// Lines: "I/Lumora FaceProcess++" for the log (level, tag, text), "glFlush" for a call.
using Script = std::vector<std::string>;
Script operator+(Script a, const Script& b);
Script& operator+=(Script& a, const Script& b);

/// Names of objects in transcripts.
using ObjectNames = std::map<ObjectId, std::string>;
/// The objects that an engine, a converter or a program holds now. Engines: "input", "work0" to
/// "work2", "luma" and "chroma" are images with their framebuffers and EGL images, "Y plane" and
/// "CbCr plane" textures; programs are called like their slots.
ObjectNames NamesOf(const android::GPUBeautyFace& engine);
ObjectNames NamesOf(const android::GPUColorConverter& converter);
ObjectNames NamesOf(const GLProgram& program);
ObjectNames NamesOf(const SEGLImage& image, const std::string& name);
ObjectNames NameOfTexture(unsigned texture, const std::string& name);
/// The EGL context and display that are current now.
ObjectNames CurrentContext();
ObjectNames operator+(ObjectNames a, const ObjectNames& b);

/// After which calls glGetError finds an error, so that the check behind it prints its label.
enum class Checks {
  SetUp,   ///< those of making textures, framebuffers and programs
  Passes,  ///< those of drawing
};

/// Log and calls while it lives.
class Recording {
 public:
  explicit Recording(Checks checks);

  /// The transcript so far.
  Script lines(const ObjectNames& names) const;

 private:
  LogCapture log_;
  GlRecorder recorder_;
};

/// A log line in a transcript.
Script Told(const LogLine& line);
Script Told(const std::vector<LogLine>& lines);

/// Whether a transcript is exactly the expected one; the message is a diff. Counts what it
/// compared.
testing::AssertionResult Same(const Script& expected, const Script& actual);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CONFORMANCE_TRANSCRIPT_H_
