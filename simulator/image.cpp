#include "simulator/image.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace units {

namespace {

constexpr std::ptrdiff_t kVersionOffset = 0x3BF05;
constexpr std::ptrdiff_t kTypeKeyOffset = 0x3BF10;
constexpr std::size_t kTypeKeySize = 16;

}  // namespace

Bytes makeImage(std::string_view typeKey, std::uint16_t version, std::uint32_t seed) {
    if (typeKey.size() > kTypeKeySize)
        throw std::invalid_argument("type key longer than 16 characters: " + std::string(typeKey));
    std::mt19937 random(seed);
    Bytes image(kImageSize);
    std::generate(image.begin(), image.end(), [&random] { return static_cast<std::uint8_t>(random() >> 24); });
    const auto info = image.begin() + kVersionOffset;
    info[0] = static_cast<std::uint8_t>(version & 0xFF);
    info[1] = static_cast<std::uint8_t>(version >> 8);
    const auto key = image.begin() + kTypeKeyOffset;
    std::fill_n(key, kTypeKeySize, std::uint8_t{0});
    std::copy(typeKey.begin(), typeKey.end(), key);
    return image;
}

std::uint16_t imageVersion(const Bytes& image) {
    const auto info = image.begin() + kVersionOffset;
    return static_cast<std::uint16_t>(info[0] | info[1] << 8);
}

Bytes loadImage(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    Bytes image{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (image.size() != kImageSize)
        throw std::runtime_error(path + " has " + std::to_string(image.size()) + " bytes, an image has " +
                                 std::to_string(kImageSize));
    return image;
}

void saveImage(const std::string& path, const Bytes& image) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    std::copy(image.begin(), image.end(), std::ostreambuf_iterator<char>(file));
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path);
}

}  // namespace units
