// SPDX-License-Identifier: Apache-2.0
// Calls of the allocator and the file system that can fail.
// NOLINTBEGIN(bugprone-reserved-identifier,cppcoreguidelines-pro-type-vararg): the linker's names.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <new>

#include "proofs/faults/fault_switch.h"

namespace {

using lumora::test::Call;

bool FailsWithErrno(Call call, int error) {
  if (!lumora::test::Fails(call)) return false;
  errno = error;
  return true;
}

}  // namespace

extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
int __real_posix_memalign(void** memory, size_t alignment, size_t size);
void* __real__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);
void* __real__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);
int __real_open(const char* path, int flags, ...);
int __real_openat(int folder, const char* path, int flags, ...);
int __real_fstat(int file, struct stat* status);
ssize_t __real_read(int file, void* data, size_t size);
int __real_mkdir(const char* path, mode_t mode);
ssize_t __real_write(int file, const void* data, size_t size);
int __real_close(int file);
int __real_renameat(int from_folder, const char* from, int to_folder, const char* to);
std::FILE* __real_fdopen(int file, const char* mode);
size_t __real_fread(void* data, size_t size, size_t count, std::FILE* file);

void* __wrap_malloc(size_t size) {
  return FailsWithErrno(Call::Malloc, ENOMEM) ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size) {
  return FailsWithErrno(Call::Calloc, ENOMEM) ? nullptr : __real_calloc(count, size);
}

int __wrap_posix_memalign(void** memory, size_t alignment, size_t size) {
  if (lumora::test::Fails(Call::AlignedMalloc)) return ENOMEM;
  return __real_posix_memalign(memory, alignment, size);
}

void* __wrap__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
  if (lumora::test::Fails(Call::NewObject)) return nullptr;
  return __real__ZnwmRKSt9nothrow_t(size, tag);
}

void* __wrap__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
  if (lumora::test::Fails(Call::NewArray)) return nullptr;
  return __real__ZnamRKSt9nothrow_t(size, tag);
}

int __wrap_open(const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  return FailsWithErrno(Call::Open, EMFILE) ? -1 : __real_open(path, flags, mode);
}

int __wrap_openat(int folder, const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
    if (FailsWithErrno(Call::MakeTemporary, ENOSPC)) return -1;
  } else if (FailsWithErrno(Call::Open, EMFILE)) {
    return -1;
  }
  return __real_openat(folder, path, flags, mode);
}

int __wrap_fstat(int file, struct stat* status) {
  return FailsWithErrno(Call::Stat, EIO) ? -1 : __real_fstat(file, status);
}

ssize_t __wrap_read(int file, void* data, size_t size) {
  return FailsWithErrno(Call::Read, EIO) ? -1 : __real_read(file, data, size);
}

int __wrap_mkdir(const char* path, mode_t mode) {
  return FailsWithErrno(Call::MakeDirectory, EACCES) ? -1 : __real_mkdir(path, mode);
}

ssize_t __wrap_write(int file, const void* data, size_t size) {
  return FailsWithErrno(Call::Write, ENOSPC) ? -1 : __real_write(file, data, size);
}

int __wrap_close(int file) {
  const int closed = __real_close(file);
  return FailsWithErrno(Call::Close, EIO) ? -1 : closed;
}

int __wrap_renameat(int from_folder, const char* from, int to_folder, const char* to) {
  if (FailsWithErrno(Call::Rename, EACCES)) return -1;
  return __real_renameat(from_folder, from, to_folder, to);
}

std::FILE* __wrap_fdopen(int file, const char* mode) {
  return FailsWithErrno(Call::OpenStream, ENOMEM) ? nullptr : __real_fdopen(file, mode);
}

size_t __wrap_fread(void* data, size_t size, size_t count, std::FILE* file) {
  return FailsWithErrno(Call::ReadStream, EIO) ? 0 : __real_fread(data, size, count, file);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cppcoreguidelines-pro-type-vararg)
