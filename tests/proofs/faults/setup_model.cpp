// SPDX-License-Identifier: Apache-2.0
#include "proofs/faults/setup_model.h"

#include <GLES2/gl2.h>

#include <algorithm>

#include "programs/program_cases.h"

namespace lumora::test {
namespace {

constexpr char kHelpers[] = "EGLImageTest";
constexpr char kBase[] = "GLProgram";
constexpr char kEngine[] = "Lumora";

Consequence GotRound(std::vector<LogLine> errors = {}) {
  return {std::move(errors), After::Works, false};
}
Consequence Missing(std::vector<LogLine> errors) {
  return {std::move(errors), After::Broken, false};
}

LogLine Incomplete(GLenum status) {
  return Error(kHelpers, "[SetColorAttachment] ERROR, FBO not complete, status %u\n", status);
}
// Without an image at all, and with one that has no pixels.
LogLine NothingAttached() {
  return Incomplete(GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT);
}
LogLine NoPixels() {
  return Incomplete(GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT);
}
LogLine NoImage() {
  return Error(kEngine, "[%s] can't new image", "MakeImageTarget");
}

// What images with and without shared memory have in common.
Consequence FailingTarget(Call call) {
  switch (call) {
    case Call::GenFramebuffer:
      return Missing({Error(kEngine, "[%s] can't make framebuffer", "MakeImageTarget")});
    case Call::CheckFramebuffer:
      // Only the answer is wrong.
      return GotRound({Incomplete(GL_FRAMEBUFFER_UNSUPPORTED)});
    default:
      return Missing({NoPixels()});
  }
}

Consequence FailingBufferedImage(Call call, int ordinal, bool staged) {
  switch (call) {
    case Call::NewObject:  // the image, then its buffer
      return Missing({NoImage()});
    case Call::GenTexture:  // of the memory: copies have one, sharing has two; then of the image
      if (ordinal == (staged ? 2 : 3)) return Missing({NothingAttached()});
      break;
    case Call::AlignedMalloc:
    case Call::ShowImage:
      return Missing({NoPixels()});
    case Call::GenFramebuffer:  // to read the memory's texture with, then the image's own
      if (ordinal == 2) return FailingTarget(call);
      break;
    case Call::CheckFramebuffer:
      if (staged || ordinal == 2) return FailingTarget(call);
      break;
    default:
      break;
  }
  // Memory that the driver cannot share is copied instead; copies have nothing to fall back to.
  return staged ? Missing({NoPixels()}) : GotRound();
}

const std::map<Call, int> kMemoryObject = {{Call::VulkanImage, 1},
                                           {Call::VulkanAllocation, 1},
                                           {Call::VulkanMapping, 1},
                                           {Call::VulkanExport, 1},  // to see that it is zeroed
                                           {Call::Close, 1}};

std::map<Call, int> operator+(std::map<Call, int> first, const std::map<Call, int>& second) {
  for (const auto& [call, count] : second) first[call] += count;
  return first;
}

// A program that is compiled: the error lines up to GLProgram's own.
std::vector<LogLine> NotCompiled(std::vector<LogLine> reason) {
  reason.push_back(
      Error(kBase, "[InitShaderProgram]m_hFaceDistProgram: Could not create program."));
  reason.push_back(Error(kNoTag, "[Load] can't load shader"));
  return reason;
}

struct ProgramModel {
  const ProgramCase& program;
  Cache cache;
  std::string path;

  bool uses_cache() const { return program.cache_file != nullptr && cache != Cache::Off; }
  bool compiles() const { return !uses_cache() || cache == Cache::Cold; }

  LogLine told(const char* function, const char* format) const {
    return Error(kBase, format, function, path.c_str());
  }
  LogLine cannot_open() const {
    return Error(kBase, "[LoadBinary] can't open binary shader file %s", path.c_str());
  }

  // Attributes come before uniforms in the table of each program.
  Consequence missing_location(int index) const {
    const Lookup& lookup = program.lookups[static_cast<size_t>(index)];
    if (lookup.label == nullptr) return {{}, After::Silent, false};
    return {{Error(kBase, "[LocIsValid] invalid %s == -1", lookup.label)}, After::Broken, true};
  }

  Consequence failing(Call call, int ordinal) const {
    switch (call) {
      case Call::FindAttribute:
        return missing_location(ordinal - 1);
      case Call::FindUniform:
        return missing_location(ordinal + 1);
      case Call::CompileQuietly:
      case Call::TakeBinary:
      case Call::MakeDirectory:
        return GotRound();
      default:
        return compiles() ? failing_compiled(call, ordinal) : failing_cached(call, ordinal);
    }
  }

  // A folder is opened first, then the file in it and its seal.
  Consequence failing_cached(Call call, int ordinal) const {
    const Consequence refused = GotRound({Error(kBase, "[LoadBinary] can't load binary shader")});
    switch (call) {
      case Call::Open:
      case Call::Stat:
        return ordinal < 3 ? GotRound({cannot_open()}) : refused;
      case Call::Read:
        if (ordinal == 2) return refused;
        [[fallthrough]];
      case Call::NewArray:
        return GotRound({Error(kBase, "[LoadBinary] invalid shader length")});
      case Call::CreateProgram:
        return GotRound({Error(kBase, "[LoadBinary] can't create program\n")});
      case Call::AcceptBinary:
        return refused;
      default:
        return GotRound();  // Close: everything has been read
    }
  }

  Consequence failing_compiled(Call call, int ordinal) const {
    const Consequence not_saved =
        GotRound({Error(kBase, "[SaveBinary] can't open %s for writing", path.c_str())});
    switch (call) {
      case Call::CompileShader:
        return {NotCompiled({Error(kHelpers, "Could not compile shader %d:\nmade to fail\n",
                                   ordinal == 1 ? GL_VERTEX_SHADER : GL_FRAGMENT_SHADER)}),
                After::Broken, true};
      case Call::LinkProgram:
        return {NotCompiled({Error(kHelpers, "Could not link program:\nmade to fail\n")}),
                After::Broken, true};
      case Call::CreateShader:
      case Call::CreateProgram:
        return {NotCompiled({}), After::Broken, true};
      // The folder; the file, which is not there anyway; the folder to write to; the same to look
      // for what killed writers left.
      case Call::Open:
      case Call::Stat:  // ... the folder, twice
        return ordinal == (call == Call::Open ? 3 : 2) ? not_saved : GotRound();
      case Call::MakeTemporary:
      case Call::Rename:
        return not_saved;
      case Call::Close:  // the folder, the file, its seal, the folder
        if (ordinal == 1 || ordinal == 4) return GotRound();
        [[fallthrough]];
      case Call::Write:
        return GotRound({Error(kBase, "[SaveBinary] can't write %s", path.c_str())});
      default:
        return GotRound();  // NewArray: nothing is saved
    }
  }

  std::map<Call, int> calls(int directories) const {
    std::map<Call, int> all = {{Call::FindAttribute, 2},
                               {Call::FindUniform, static_cast<int>(program.lookups.size()) - 2}};
    if (uses_cache() && cache == Cache::Warm) {
      return all + std::map<Call, int>{{Call::Open, 3},        {Call::Stat, 3},
                                       {Call::NewArray, 1},    {Call::Read, 2},
                                       {Call::Close, 3},       {Call::CreateProgram, 1},
                                       {Call::AcceptBinary, 1}};
    }
    all = all + std::map<Call, int>{{Call::CreateShader, 2},
                                    {Call::CompileShader, 2},
                                    {Call::CompileQuietly, 2},
                                    {Call::CreateProgram, 1},
                                    {Call::LinkProgram, 1}};
    if (!uses_cache()) return all;
    return all + std::map<Call, int>{{Call::Open, 4},          {Call::Stat, 2},
                                     {Call::NewArray, 1},      {Call::TakeBinary, 1},
                                     {Call::MakeTemporary, 2}, {Call::MakeDirectory, directories},
                                     {Call::Close, 4},         {Call::Write, 3},
                                     {Call::Rename, 2}};
  }
};

// Every level of an absolute path.
int DirectoriesOf(const std::string& path) {
  return static_cast<int>(std::count(path.begin(), path.end(), '/'));
}

}  // namespace

const char* NameOf(Cache cache) {
  switch (cache) {
    case Cache::Off:
      return "NoCache";
    case Cache::Cold:
      return "ColdCache";
    case Cache::Warm:
      return "WarmCache";
  }
  return "";
}

Parts operator+(Parts first, const Parts& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Part BufferedImage(const char* name, bool staged) {
  const std::map<Call, int> common = {{Call::NewObject, 2},      {Call::GenTexture, 2},
                                      {Call::CreateImage, 1},    {Call::ShowImage, 1},
                                      {Call::GenFramebuffer, 1}, {Call::CheckFramebuffer, 1}};
  const std::map<Call, int> own =
      staged ? std::map<Call, int>{{Call::AlignedMalloc, 1},
                                   {Call::TexImage, 1},
                                   {Call::GenFramebuffer, 1}}
             : kMemoryObject +
                   std::map<Call, int>{{Call::VulkanExport, 1},   {Call::Stat, 1},
                                       {Call::ImportMemory, 1},   {Call::GenTexture, 1},
                                       {Call::GenFramebuffer, 1}, {Call::CheckFramebuffer, 1}};
  return {name, common + own,
          [staged](Call call, int ordinal) { return FailingBufferedImage(call, ordinal, staged); }};
}

Part PlainImage(const char* name) {
  return {name,
          {{Call::NewObject, 1},
           {Call::GenTexture, 1},
           {Call::TexImage, 1},
           {Call::GenFramebuffer, 1},
           {Call::CheckFramebuffer, 1}},
          [](Call call, int) {
            if (call == Call::NewObject) return Missing({NoImage()});
            if (call == Call::GenTexture) return Missing({NothingAttached()});
            return FailingTarget(call);
          }};
}

Part PlaneTexture(const char* name) {
  return {name, {{Call::GenTexture, 1}, {Call::TexImage, 1}}, [](Call, int) {
            return Missing({Error(kEngine, "[%s] can't make plane texture, glError (0x%x)",
                                  "InitTextureLarge", GL_OUT_OF_MEMORY)});
          }};
}

Part LargeStore(bool staged) {
  const LogLine told = Error(kEngine, "[%s] can't new image", "InitTextureLarge");
  return {"store",
          std::map<Call, int>{{Call::NewObject, 1}} +
              (staged ? std::map<Call, int>{{Call::AlignedMalloc, 1}} : kMemoryObject),
          [told, staged](Call call, int) {
            return call == Call::NewObject || staged ? Missing({told}) : GotRound();
          }};
}

Part LoneProgram(const char* name, Cache cache, const std::string& directory) {
  const ProgramCase& program = ProgramNamed(name);
  const std::string file = program.cache_file != nullptr ? program.cache_file : "";
  const ProgramModel model{program, cache, directory + "/" + file};
  Part part{name, model.calls(DirectoriesOf(directory)),
            [model](Call call, int ordinal) { return model.failing(call, ordinal); }};
  if (model.uses_cache() && cache == Cache::Cold) part.errors = {model.cannot_open()};
  return part;
}

Parts Programs(const std::vector<const char*>& names, const char* step, int group, Cache cache,
               const std::string& directory) {
  Parts parts;
  for (const char* name : names) {
    Part part = LoneProgram(name, cache, directory);
    part.group = group;
    ++part.calls[Call::NewObject];
    part.failing = [step, load = part.failing](Call call, int ordinal) -> Consequence {
      if (call == Call::NewObject) {
        return {{Error(kEngine, "[%s] can't new program", step)}, After::Broken, true};
      }
      Consequence consequence = load(call, ordinal);
      if (consequence.ends_group) {
        consequence.errors.push_back(Error(kEngine, "[%s] can't load program", step));
      }
      return consequence;
    };
    parts.push_back(std::move(part));
  }
  return parts;
}

CallCounts CountsOf(const Parts& parts) {
  CallCounts counts{};
  for (const Part& part : parts) {
    for (const auto& [call, count] : part.calls) counts[static_cast<size_t>(call)] += count;
  }
  return counts;
}

Consequence Predict(const Parts& parts, const Fault& fault) {
  Consequence whole;
  int before = 0;
  int ended_group = -1;
  for (const Part& part : parts) {
    if (part.group == ended_group) continue;
    const auto found = part.calls.find(fault.call);
    const int count = found != part.calls.end() ? found->second : 0;
    const bool here = fault.number > before && fault.number <= before + count;
    Consequence own;
    if (here) own = part.failing(fault.call, fault.number - before);
    before += count;
    // A part that is not even begun prints nothing of its own.
    if (!(here && fault.call == Call::NewObject && own.ends_group)) {
      whole.errors.insert(whole.errors.end(), part.errors.begin(), part.errors.end());
    }
    whole.errors.insert(whole.errors.end(), own.errors.begin(), own.errors.end());
    if (here) whole.after = own.after;
    if (own.ends_group) ended_group = part.group;
  }
  return whole;
}

}  // namespace lumora::test
