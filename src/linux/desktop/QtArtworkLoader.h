#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "base/RunLoop.h"
#include "base/WorkQueue.h"
#include "platform/ArtworkLoader.h"

namespace sunpane {

/// Covers from `https:` addresses and local files, whoever names them. Nothing is taken for granted about the server or
/// the file: bytes, pixels and time are bounded, and only plain raster formats are decoded, on a queue of their own.
///
/// Owned by the start-up code; made on the main thread after the application object. Destroying it drops what is under
/// way; those handlers are not called.
class QtArtworkLoader : public ArtworkLoader {
public:
    static constexpr std::size_t maximumBytes = std::size_t{8} << 20;
    /// Of the picture as it was made; decoding holds four bytes for each.
    static constexpr std::int64_t maximumPixels = 25'000'000;
    /// From the request to the last byte (s).
    static constexpr Seconds longestDownload = 10;
    static constexpr int maximumRedirects = 5;
    /// Further ones fail at once.
    static constexpr int maximumLoads = 16;

    /// The run loop outlives it.
    QtArtworkLoader(RunLoop& runLoop, WorkQueueFactory& queues);
    ~QtArtworkLoader() override;

    void load(const std::string& url, Handler done) override;

private:
    class Downloads;
    struct State;

    RunLoop& runLoop_;
    std::shared_ptr<State> state_;
    std::unique_ptr<Downloads> downloads_;
    std::unique_ptr<WorkQueue> queue_;
};

/// Decodes a picture, scaled down to fit `Artwork::maximumSide`. Null when it is none, too large, or in a format that
/// can do more than hold pixels. Any thread.
std::shared_ptr<const Artwork> decodeArtwork(const std::string& bytes);

}  // namespace sunpane
