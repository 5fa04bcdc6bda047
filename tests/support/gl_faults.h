// SPDX-License-Identifier: Apache-2.0
// A GL driver that misbehaves on request, and what the library asked of it.
//
// Link `lumora_gl_faults` (an object library): the executable then defines the GL and EGL functions
// concerned in place of the driver's. They pass every call on; only what a live GlFaults object
// says is answered differently. Together with `lumora_internal` only: the shared library binds its
// calls before the executable can stand between.
#ifndef LUMORA_TESTS_GL_GL_FAULTS_H_
#define LUMORA_TESTS_GL_GL_FAULTS_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace lumora::test {

/// The faults to make while it lives, and the calls seen meanwhile. One at a time.
struct GlFaults {
  GlFaults();
  ~GlFaults();
  GlFaults(const GlFaults&) = delete;
  GlFaults& operator=(const GlFaults&) = delete;

  // What goes wrong.
  std::deque<GLenum> errors;    ///< glGetError answers these first; GL_NO_ERROR counts as one
  bool no_shaders = false;      ///< glCreateShader answers 0
  bool no_programs = false;     ///< glCreateProgram answers 0
  bool shaders_fail = false;    ///< every compile status is false
  bool programs_fail = false;   ///< every link status is false
  bool logs_are_empty = false;  ///< every info log has length 0
  std::string hidden_location;  ///< the attribute or uniform of this name does not exist
  size_t good_programs = 0;     ///< so many programs, the first to be made, link and lack nothing
  bool no_binary_extension = false;            ///< GL_OES_get_program_binary is not offered
  bool no_binary_formats = false;              ///< ... is offered with no format
  bool no_binaries = false;                    ///< ... gives none: GL_INVALID_OPERATION
  std::string driver_version;                  ///< unless empty, what GL_VERSION answers
  bool no_egl_images = false;                  ///< eglCreateImageKHR fails with EGL_BAD_ALLOC
  std::vector<GLenum> errors_of_edge_mode;     ///< raised by choosing clamped edges along t
  std::vector<GLenum> errors_of_image_target;  ///< raised by showing an EGL image as a texture

  // What was seen.
  std::vector<GLuint> shaders_made;
  std::vector<GLuint> shaders_deleted;
  std::vector<GLuint> programs_made;
  std::vector<GLuint> programs_deleted;
  std::vector<GLuint> textures_deleted;
  std::vector<std::string> looked_up;  ///< attributes and uniforms, in order
  int compiles = 0;
  int binaries_taken = 0;  ///< glGetProgramBinaryOES
  int binaries_given = 0;  ///< glProgramBinaryOES
  int egl_images_made = 0;
  int egl_images_destroyed = 0;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_GL_GL_FAULTS_H_
