// SPDX-License-Identifier: Apache-2.0
// Base of all shader programs: locations, input textures, draws, and the program binary cache.
#ifndef LUMORA_GL_GL_PROGRAM_H_
#define LUMORA_GL_GL_PROGRAM_H_

#include <cstddef>

#include "lumora/export.h"

/// One GL program with the tables that a draw needs.
///
/// A pass goes: `Load` once after the context is current; then for every draw `SetTextures` as
/// needed, `Use`, `SetVertexCoord`, `SetTextureCoord`, `Draw`.
///
/// Context: the owning engine's, current on the calling thread, for everything but the constructor.
/// Failure: false (or 0) and a log line under the tag "GLProgram"; nothing throws.
/// Deriving: the class carries no type information, so a source file that derives from it is
/// compiled with -fno-rtti. Files that only use programs need nothing.
class LUMORA_API GLProgram {
 public:
  static constexpr int kAttributeSlots = 8;
  static constexpr int kUniformSlots = 16;
  static constexpr int kSamplerSlots = 8;
  static constexpr int kTextureSlots = 8;

  /// Names of entries in `m_nSamplerLoc`.
  enum SamplerSlot : int {
    SAMPLER_INPUT_TEX = 0,    ///< "s_texture0"
    SAMPLER_SECOND_TEX = 1,   ///< "s_texture1"
    SAMPLER_MAT_YUV2RGB = 7,  ///< the matrix uniform "u_mat_yuv2rgb", not a sampler
  };

  /// Makes no GL call: an object may be built before there is a context.
  GLProgram();
  /// Deletes the GL program.
  virtual ~GLProgram();
  /// Builds the program, from its cached binary or from source, and looks up its locations.
  virtual bool Load() = 0;
  /// Makes the program current. Subclasses then bind their textures and upload their uniforms.
  virtual bool Use();
  /// Points the position attribute at `coords`: `size` floats a vertex, tightly packed, in client
  /// memory that outlives the draw. Always true.
  virtual bool SetVertexCoord(int size, const void* coords);
  /// The same for the texture coordinates.
  virtual bool SetTextureCoord(int size, const void* coords);
  /// Draws the quad: two triangles over vertices 0, 1, 2 and 0, 2, 3. Always true.
  virtual bool Draw();
  /// Draws `count` indices (unsigned 16-bit, in client memory) as triangles. Always true.
  virtual bool Draw(int count, const void* indices);

  GLProgram(const GLProgram&) = delete;
  GLProgram& operator=(const GLProgram&) = delete;

  /// Compiles and links the two sources into `m_hProgram`, which is 0 afterwards on failure. A
  /// program that `m_hProgram` named before is not deleted.
  bool Load(const char* vertexSource, const char* fragmentSource);

  /// Points attribute `m_nAttribLoc[index]` at `coords`, as SetVertexCoord does. `index` is 0 .. 7.
  bool VertexAttribPointer(int index, int size, const void* coords);

  /// Sets the texture that `Use` binds to unit `index` (0 .. 7). False for a larger index.
  bool SetTextures(unsigned int index, int texture);

  /// Whether a location was found (0 or greater); an invalid one is reported at ERROR under `name`.
  bool LocIsValid(const char* name, int loc);

  /// Writes the linked program to the cache file `path`: the 4-byte binary format, then the
  /// driver's binary; and to `path`.seal what vouches for it. Each file appears whole (written
  /// beside its place and renamed) or not at all. False when there is no program, the driver has no
  /// binaries to give, or the files cannot be written. A file that was written by calling this
  /// serves LoadBinary, but not Load, which asks for its own shader texts.
  bool SaveBinary(char* path);

  /// Replaces `m_hProgram` by the program in the cache file `path`. False when the file is missing
  /// or not usable, which is all that this library's SaveBinary did not write for this driver, and
  /// all that others may write; the program is then to be compiled from source.
  bool LoadBinary(char* path);

  unsigned int m_hProgram;                  ///< program name; -1 before Load, 0 after a failed one
  int m_nAttribLoc[kAttributeSlots];        ///< generic attribute locations, -1 when unset
  int m_nUniformLoc[kUniformSlots];         ///< uniform locations, indexed by the subclass's names
  int m_nSamplerLoc[kSamplerSlots];         ///< sampler locations, indexed by SamplerSlot
  int m_nVerCoordLoc;                       ///< location of "a_vertexCoord"
  int m_nTexCoordLoc;                       ///< location of "a_textureCoord"
  unsigned int m_hTextures[kTextureSlots];  ///< textures that `Use` binds to units 0, 1, ...
  float m_fMatYUV2RGB[16];                  ///< YUV-to-RGB matrix, column by column (see below)

 protected:
  /// Selects unit `unit`, points sampler `unit` at it and binds `m_hTextures[unit]`.
  void BindInput(int unit);

  /// Uploads `m_fMatYUV2RGB` to the matrix uniform.
  void UploadColourMatrix();
};

// m_fMatYUV2RGB converts full-range BT.601 with Cr before Cb and the chroma offset of one half
// folded into the constant column: applied to (Y, Cr, Cb, 1), each in 0 .. 1,
//   R = Y + 1.402 (Cr - 0.5)
//   G = Y - 0.714 (Cr - 0.5) - 0.344 (Cb - 0.5)
//   B = Y + 1.772 (Cb - 0.5)

#endif  // LUMORA_GL_GL_PROGRAM_H_
