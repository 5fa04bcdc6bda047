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
