// SPDX-License-Identifier: Apache-2.0
// A process that uses the program cache: loads every program, draws with each, and tells.
//
//   cache_user [rounds]
//
// Prints a line "renderer", the driver's name; a line a program and round, "<name> <digest>
// cached|compiled"; and at the end a line "files", the entries of the cache directory with their
// sizes. Exits with 1 when anything failed.
//
// The environment may make it end with SIGKILL in the midst of writing a cache file: at the n-th
// step, counted over all files, for CACHE_USER_DIES_AT=n. A program takes nine steps: its file has
// been made under its hidden name, its seal too, the file's first part is half written, its second
// part, the seal is half written, all of the file is written, all of the seal, the file has taken
// its place, the seal.
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "lumora/platform/settings.h"
#include "proofs/cache_safety/program_pictures.h"
#include "support/gl_test.h"
#include "support/next_function.h"

namespace {

bool g_written[1024];  // descriptors of cache files that are being written
int g_step = 0;

bool IsWritten(int file) {
  return file >= 0 && file < static_cast<int>(std::size(g_written)) && g_written[file];
}

void Step() {
  static const char* const text = std::getenv("CACHE_USER_DIES_AT");
  if (text != nullptr && ++g_step == std::atoi(text)) raise(SIGKILL);
}

std::string FilesOf(const std::string& directory) {
  namespace fs = std::filesystem;
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(directory, error)) {
    names.push_back(entry.path().filename().string() + ":" +
                    std::to_string(entry.file_size(error)));
  }
  std::sort(names.begin(), names.end());
  std::string text;
  for (const std::string& name : names) text += " " + name;
  return text;
}

}  // namespace

extern "C" {

int openat(int folder, const char* name, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const int file = LUMORA_NEXT(openat)(folder, name, flags, mode);
  const bool hidden = (flags & O_CREAT) != 0 && std::strncmp(name, ".prog_", 6) == 0;
  if (hidden && file >= 0 && file < static_cast<int>(std::size(g_written))) {
    g_written[file] = true;
    Step();
  }
  return file;
}

ssize_t write(int file, const void* bytes, size_t size) {
  const auto next = LUMORA_NEXT(write);
  if (!IsWritten(file) || size < 2) return next(file, bytes, size);
  const ssize_t written = next(file, bytes, size / 2);
  Step();
  if (written != static_cast<ssize_t>(size / 2)) return written;
  const ssize_t rest = next(file, static_cast<const char*>(bytes) + written, size - size / 2);
  return rest < 0 ? written : written + rest;
}

int close(int file) {
  const auto next = LUMORA_NEXT(close);
  const bool whole = IsWritten(file);
  if (whole) g_written[file] = false;
  const int result = next(file);
  if (whole) Step();
  return result;
}

int renameat(int from_folder, const char* from, int to_folder, const char* to) {
  const int result = LUMORA_NEXT(renameat)(from_folder, from, to_folder, to);
  Step();
  return result;
}

}  // extern "C"

int main(int argc, char** argv) {
  testing::InitGoogleTest();
  const lumora::test::GlContext context;
  if (!context.ok()) return 1;
  std::printf("renderer %s\n", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 1;
  for (int round = 0; round < rounds; ++round) {
    for (const auto& picture : lumora::test::DrawCachedPrograms()) {
      std::printf("%s %016" PRIx64 " %s\n", picture.name.c_str(), picture.digest,
                  picture.from_cache ? "cached" : "compiled");
    }
  }
  std::printf("files%s\n", FilesOf(lumora::platform::CacheDirectory()).c_str());
  return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
