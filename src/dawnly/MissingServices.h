#pragma once

#include "platform/ArtworkLoader.h"

namespace sunpane {

/// Stands in where nothing fetches pictures.
class NoArtwork : public ArtworkLoader {
public:
    void load(const std::string& /*url*/, Handler /*done*/) override {}
};

}  // namespace sunpane
