// A process that uses the program cache: loads every program, draws with each, and tells.
//
//   cache_user [rounds]
//
// Prints a line a program and round, "<name> <digest> cached|compiled", and at the end a line
// "files", the entries of the cache directory with their sizes. Exits with 1 when anything failed.
//
// The environment may make it end with SIGKILL in the midst of writing a cache file: at the n-th
// step, counted over all files, for CACHE_USER_DIES_AT=n. A file takes five steps: it has been made
// under its temporary name, its first part is half written, its second part is half written, all of
// it is written, it has taken its place.
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "cache_safety/program_pictures.h"
#include "lumora/platform/settings.h"
#include "support/gl_test.h"
#include "support/next_function.h"

namespace {

int g_file = -1;  // the cache file that is being written
int g_step = 0;

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

int mkostemp(char* name, int flags) {
  g_file = LUMORA_NEXT(mkostemp)(name, flags);
  Step();
  return g_file;
}

ssize_t write(int file, const void* bytes, size_t size) {
  const auto next = LUMORA_NEXT(write);
  if (file != g_file || g_file < 0 || size < 2) return next(file, bytes, size);
  const ssize_t written = next(file, bytes, size / 2);
  Step();
  if (written != static_cast<ssize_t>(size / 2)) return written;
  const ssize_t rest = next(file, static_cast<const char*>(bytes) + written, size - size / 2);
  return rest < 0 ? written : written + rest;
}

int close(int file) {
  const auto next = LUMORA_NEXT(close);
  const bool whole = file == g_file && g_file >= 0;
  if (whole) g_file = -1;
  const int result = next(file);
  if (whole) Step();
  return result;
}

int rename(const char* from, const char* to) {
  const int result = LUMORA_NEXT(rename)(from, to);
  Step();
  return result;
}

}  // extern "C"

int main(int argc, char** argv) {
  testing::InitGoogleTest();
  const lumora::test::GlContext context;
  if (!context.ok()) return 1;
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
