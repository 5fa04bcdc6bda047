// SPDX-License-Identifier: Apache-2.0
// A platform of which any one call fails: the calls that the library makes to EGL, GL, Vulkan, the
// allocator and the file system are counted by kind, and one of them is made to fail.
//
// The linker leads the calls of everything that is linked statically into the executable here
// (--wrap, see wrapped_functions.cmake); what drivers call among themselves goes its own way, so
// counts tell of the library alone. Together with `lumora_internal` only.
#ifndef LUMORA_TESTS_FAULTS_FAULT_LAYER_H_
#define LUMORA_TESTS_FAULTS_FAULT_LAYER_H_

#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <ostream>
#include <vector>

namespace lumora::test {

/// What can fail, and how.
enum class Call {
  // EGL.
  FindDisplay,        ///< there is no such display
  InitializeDisplay,  ///< eglInitialize
  ChooseConfig,       ///< eglChooseConfig
  OfferConfig,        ///< eglChooseConfig succeeds and offers nothing
  CreateContext,
  CreatePbuffer,
  MakeCurrent,
  CreateImage,  ///< eglCreateImageKHR
  // GL. Names that cannot be made are 0, with GL_OUT_OF_MEMORY.
  GenTexture,
  GenFramebuffer,
  TexImage,          ///< no storage, with GL_OUT_OF_MEMORY
  ShowImage,         ///< glEGLImageTargetTexture2DOES does nothing, with GL_INVALID_OPERATION
  CheckFramebuffer,  ///< incomplete
  CreateShader,
  CompileShader,   ///< with an info log
  CompileQuietly,  ///< a status of failure without an info log, of a shader that works
  CreateProgram,
  LinkProgram,
  FindAttribute,
  FindUniform,
  TakeBinary,    ///< glGetProgramBinaryOES writes nothing, with GL_INVALID_OPERATION
  AcceptBinary,  ///< glProgramBinaryOES: the driver refuses the binary
  // Memory that a driver shares.
  ImportMemory,      ///< glTexStorageMem2DEXT does nothing, with GL_OUT_OF_MEMORY
  VulkanImage,       ///< vkCreateImage
  VulkanAllocation,  ///< vkAllocateMemory
  VulkanMapping,     ///< vkMapMemory
  VulkanExport,      ///< vkGetMemoryFdKHR
  // The allocator.
  NewObject,  ///< operator new(std::nothrow)
  NewArray,   ///< operator new[](std::nothrow)
  Malloc,
  Calloc,
  AlignedMalloc,  ///< posix_memalign
  // Files.
  Open,
  Stat,
  Read,
  MakeDirectory,
  MakeTemporary,  ///< openat of a file that is not there yet
  Write,
  Close,  ///< closes and says that it could not
  Rename,
  OpenStream,  ///< fdopen
  ReadStream,  ///< fread
};
constexpr size_t kCalls = static_cast<size_t>(Call::ReadStream) + 1;

const char* NameOf(Call call);
std::ostream& operator<<(std::ostream& out, Call call);

/// Every kind of call, in order.
std::array<Call, kCalls> AllCalls();

/// The number-th call of a kind, from 1 on.
struct Fault {
  Call call;
  int number;
};
std::ostream& operator<<(std::ostream& out, const Fault& fault);

using CallCounts = std::array<int, kCalls>;

/// While it lives, calls (of any thread) are counted and the given ones fail. One at a time. GL
/// errors that were raised and not asked for stay in GL's queue afterwards.
class FaultScope {
 public:
  FaultScope() : FaultScope(std::initializer_list<Fault>{}) {}
  explicit FaultScope(const Fault& fault) : FaultScope({fault}) {}
  FaultScope(std::initializer_list<Fault> faults);
  ~FaultScope();
  FaultScope(const FaultScope&) = delete;
  FaultScope& operator=(const FaultScope&) = delete;

  CallCounts counts() const;
  int count(Call call) const { return counts()[static_cast<size_t>(call)]; }
  /// How many calls were made to fail.
  int failed() const;
};

/// Every single fault that fits the counts of a run.
std::vector<Fault> FaultsOf(const CallCounts& counts);

/// Names that were made in the current context and are not deleted yet.
struct LiveNames {
  int textures;
  int framebuffers;
};
LiveNames LiveGlNames();
inline bool operator==(const LiveNames& a, const LiveNames& b) {
  return a.textures == b.textures && a.framebuffers == b.framebuffers;
}
std::ostream& operator<<(std::ostream& out, const LiveNames& names);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_FAULTS_FAULT_LAYER_H_
