#pragma once

#include <gtest/gtest.h>

#include "support/SimulatedStores.h"

namespace sunpane::testing {

struct StoresFixture : ::testing::Test, SimulatedStores {};

}  // namespace sunpane::testing
