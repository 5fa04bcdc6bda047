// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/images/resample.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumora::tools {
namespace {

constexpr int kWeightBits = 11;
constexpr int kWhole = 1 << kWeightBits;  // the weights of a mix together

/// Which two samples are mixed along one side.
struct Mix {
  int first, second;
  int weight, other;  // of the first and the second
};
using Mixes = std::vector<Mix>;

/// What stands for the samples that a mix would need beyond the ends: nothing, so that the last one
/// counts whole, or the last one again, which is cut off a little more where products are.
enum class Beyond { Nothing, TheLast };

/// How many old samples there are to a new one.
double Step(int old_side, int new_side) {
  return 1 / (static_cast<double>(new_side) / old_side);
}

/// A mix of sample `first` and, by `share`, of the next one.
Mix MixAt(int first, float share, int side, Beyond beyond) {
  if (beyond == Beyond::Nothing && (first < 0 || first >= side - 1)) share = 0;
  const auto rounded = [](float weight) {
    return static_cast<int>(std::lrint(weight * static_cast<float>(kWhole)));
  };
  return {std::clamp(first, 0, side - 1), std::clamp(first + 1, 0, side - 1), rounded(1 - share),
          rounded(share)};
}

/// By the middles of pixels.
Mixes ByMiddles(int old_side, int new_side, Beyond beyond) {
  const double step = Step(old_side, new_side);
  Mixes mixes;
  mixes.reserve(static_cast<size_t>(new_side));
  for (int i = 0; i < new_side; ++i) {
    const auto middle = static_cast<float>((i + 0.5) * step - 0.5);
    const float first = std::floor(middle);
    mixes.push_back(MixAt(static_cast<int>(first), middle - first, old_side, beyond));
  }
  return mixes;
}

/// By what pixels cover: of the second sample, the part behind its beginning.
Mixes ByCover(int old_side, int new_side, Beyond beyond) {
  const double scale = static_cast<double>(new_side) / old_side, step = Step(old_side, new_side);
  Mixes mixes;
  mixes.reserve(static_cast<size_t>(new_side));
  for (int i = 0; i < new_side; ++i) {
    const int first = static_cast<int>(std::floor(i * step));
    const auto behind = static_cast<float>((i + 1) - (first + 1) * scale);
    const float share = behind <= 0 ? 0 : behind - std::floor(behind);
    mixes.push_back(MixAt(first, share, old_side, beyond));
  }
  return mixes;
}

Image Mixed(const Image& plane, Size size, const Mixes& columns, const Mixes& rows) {
  Image result(size);
  const auto width = static_cast<size_t>(size.width);
  // Two rows, mixed along themselves, and which they are.
  std::vector<int> mixed[2] = {std::vector<int>(width), std::vector<int>(width)};
  int held[2] = {-1, -1};
  const auto row = [&](int y, int other) -> const int* {
    for (size_t i = 0; i < 2; ++i) {
      if (held[i] == y) return mixed[i].data();
    }
    const size_t i = held[0] == other ? 1 : 0;
    const uint8_t* const samples = plane.Row(y);
    for (size_t x = 0; x < width; ++x) {
      const Mix& mix = columns[x];
      mixed[i][x] = samples[mix.first] * mix.weight + samples[mix.second] * mix.other;
    }
    held[i] = y;
    return mixed[i].data();
  };
  // Of each product the upper bits are enough.
  constexpr int kLower = 4, kProduct = 16, kLast = 2 * kWeightBits - kLower - kProduct;
  for (int y = 0; y < size.height; ++y) {
    const Mix& mix = rows[static_cast<size_t>(y)];
    const int* const above = row(mix.first, mix.second);
    const int* const below = row(mix.second, mix.first);
    uint8_t* const to = result.Row(y);
    for (size_t x = 0; x < width; ++x) {
      const int sum = (mix.weight * (above[x] >> kLower) >> kProduct) +
                      (mix.other * (below[x] >> kLower) >> kProduct);
      to[x] = static_cast<uint8_t>((sum + (1 << (kLast - 1))) >> kLast);
    }
  }
  return result;
}

/// A whole number of samples across and down becomes one.
Image AveragedWhole(const Image& plane, Size size, int across, int down) {
  Image result(size);
  const float share = 1.0f / static_cast<float>(across * down);
  const bool fours = across == 2 && down == 2;
  for (int y = 0; y < size.height; ++y) {
    uint8_t* const to = result.Row(y);
    for (int x = 0; x < size.width; ++x) {
      int sum = 0;
      for (int row = 0; row < down; ++row) {
        const uint8_t* const from = plane.Row(y * down + row) + x * across;
        for (int column = 0; column < across; ++column) sum += from[column];
      }
      // Halves go up for fours, and to even numbers else.
      to[x] = static_cast<uint8_t>(fours ? (sum + 2) >> 2
                                         : std::lrint(static_cast<float>(sum) * share));
    }
  }
  return result;
}

/// A sample, and the part of a pixel that it covers.
struct Share {
  int at;
  float part;
};

std::vector<std::vector<Share>> Shares(int old_side, int new_side) {
  constexpr double kNothing = 1e-3;
  const double step = Step(old_side, new_side);
  std::vector<std::vector<Share>> shares(static_cast<size_t>(new_side));
  for (int i = 0; i < new_side; ++i) {
    std::vector<Share>& list = shares[static_cast<size_t>(i)];
    const double begin = i * step, end = begin + step, length = std::min(step, old_side - begin);
    const int last = std::min(static_cast<int>(std::floor(end)), old_side - 1);
    const int first = std::min(static_cast<int>(std::ceil(begin)), last);
    if (first - begin > kNothing) {
      list.push_back({first - 1, static_cast<float>((first - begin) / length)});
    }
    for (int at = first; at < last; ++at) list.push_back({at, static_cast<float>(1 / length)});
    if (end - last > kNothing) {
      const double part = std::min(std::min(end - last, 1.0), length) / length;
      list.push_back({last, static_cast<float>(part)});
    }
  }
  return shares;
}

Image AveragedParts(const Image& plane, Size size) {
  const auto columns = Shares(plane.width(), size.width);
  const auto rows = Shares(plane.height(), size.height);
  Image result(size);
  std::vector<float> sums(static_cast<size_t>(size.width));
  for (int y = 0; y < size.height; ++y) {
    std::fill(sums.begin(), sums.end(), 0.0f);
    for (const Share& row : rows[static_cast<size_t>(y)]) {
      const uint8_t* const from = plane.Row(row.at);
      for (size_t x = 0; x < sums.size(); ++x) {
        float sum = 0;
        for (const Share& column : columns[x]) {
          sum += static_cast<float>(from[column.at]) * column.part;
        }
        sums[x] += row.part * sum;
      }
    }
    uint8_t* const to = result.Row(y);
    for (size_t x = 0; x < sums.size(); ++x) {
      to[x] = static_cast<uint8_t>(std::clamp(std::lrint(sums[x]), 0L, 255L));
    }
  }
  return result;
}

}  // namespace

Image Nearest(const Image& plane, Size size) {
  if (size == plane.size()) return plane;
  const double across = Step(plane.width(), size.width), down = Step(plane.height(), size.height);
  std::vector<int> columns;
  columns.reserve(static_cast<size_t>(size.width));
  for (int x = 0; x < size.width; ++x) {
    columns.push_back(std::min(static_cast<int>(std::floor(x * across)), plane.width() - 1));
  }
  Image result(size);
  for (int y = 0; y < size.height; ++y) {
    const uint8_t* const from =
        plane.Row(std::min(static_cast<int>(std::floor(y * down)), plane.height() - 1));
    uint8_t* const to = result.Row(y);
    for (size_t x = 0; x < columns.size(); ++x) to[x] = from[columns[x]];
  }
  return result;
}

Image Interpolated(const Image& plane, Size size) {
  if (size == plane.size()) return plane;
  return Mixed(plane, size, ByMiddles(plane.width(), size.width, Beyond::Nothing),
               ByMiddles(plane.height(), size.height, Beyond::TheLast));
}

Image Averaged(const Image& plane, Size size) {
  if (size == plane.size()) return plane;
  if (size.width > plane.width() || size.height > plane.height()) {
    return Mixed(plane, size, ByCover(plane.width(), size.width, Beyond::Nothing),
                 ByCover(plane.height(), size.height, Beyond::TheLast));
  }
  const int across = plane.width() / size.width, down = plane.height() / size.height;
  const bool whole = across * size.width == plane.width() && down * size.height == plane.height();
  return whole ? AveragedWhole(plane, size, across, down) : AveragedParts(plane, size);
}

}  // namespace lumora::tools
