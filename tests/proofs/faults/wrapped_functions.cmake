# SPDX-License-Identifier: Apache-2.0
# The functions that the fault layer stands in for, as the linker knows them.
set(lumora_wrapped_functions
  eglGetDisplay eglInitialize eglChooseConfig eglCreateContext eglDestroyContext
  eglCreatePbufferSurface eglMakeCurrent
  eglGetProcAddress eglGetError
  glGetError glGenTextures glDeleteTextures glGenFramebuffers glDeleteFramebuffers glTexImage2D
  glCheckFramebufferStatus glCreateShader glCompileShader glGetShaderiv glGetShaderInfoLog
  glCreateProgram glLinkProgram glGetProgramiv glGetProgramInfoLog glGetAttribLocation
  glGetUniformLocation
  dlsym
  malloc calloc posix_memalign _ZnwmRKSt9nothrow_t _ZnamRKSt9nothrow_t
  open openat fstat read mkdir write close renameat fdopen fread)

# Every form of operator new.
set(lumora_allocating_functions _Znwm _Znam _ZnwmSt11align_val_t _ZnamSt11align_val_t)
foreach(form IN LISTS lumora_allocating_functions)
  list(APPEND lumora_allocating_functions ${form}RKSt9nothrow_t)
endforeach()
