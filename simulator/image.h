/// Making, reading and writing firmware images.
#pragma once

#include "simulator/bytes.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace units {

inline constexpr std::size_t kBlockSize = 128;
inline constexpr unsigned kImageBlocks = 1920;
inline constexpr std::size_t kImageSize = kBlockSize * kImageBlocks;

/// A firmware image of kImageSize bytes, determined by the arguments: pseudo-random bytes in which every value occurs,
/// with the version and the type key in the information block.
/// @throws std::invalid_argument  the key is longer than 16 characters
Bytes makeImage(std::string_view typeKey, std::uint16_t version, std::uint32_t seed);

/// The version word of an image of kImageSize bytes.
std::uint16_t imageVersion(const Bytes& image);

/// Reads a file that must hold an image.
/// @throws std::runtime_error  it cannot be read or has another size
Bytes loadImage(const std::string& path);

/// Writes bytes to a file.
/// @throws std::runtime_error  it cannot be written
void saveImage(const std::string& path, const Bytes& image);

}  // namespace units
