#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sunpane {

/// A decoded picture, row by row from the top: four bytes (red, green, blue, alpha; not premultiplied) a pixel.
struct Artwork {
    /// Larger pictures were scaled down to fit, in pixels.
    static constexpr int maximumSide = 256;

    /// In pixels, at least 1.
    int width = 0;
    int height = 0;
    /// Exactly width * height * 4 bytes.
    std::vector<std::uint8_t> rgba;
    friend bool operator==(const Artwork&, const Artwork&) = default;
};

/// Fetches and decodes pictures. Main thread only.
class ArtworkLoader {
public:
    using Handler = std::function<void(std::shared_ptr<const Artwork>)>;

    virtual ~ArtworkLoader() = default;

    /// Fetches the picture at an `https:` address, or in a local file named by a `file:` address, and calls back once
    /// on the main thread, never before this returns. Null on any failure: another scheme, no valid address, too many
    /// bytes or pixels, too slow, or not a picture. The address may come from anywhere.
    virtual void load(const std::string& url, Handler done) = 0;
};

}  // namespace sunpane
