#pragma once

#include <gtest/gtest.h>

#include "support/SimulatedViewModel.h"

namespace sunpane::testing {

struct ViewModelFixture : ::testing::Test, SimulatedViewModel {};

}  // namespace sunpane::testing
