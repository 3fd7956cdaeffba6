#pragma once

#include "base/Clock.h"
#include "platform/FileSystem.h"
#include "platform/UserDefaults.h"

namespace sunpane::onboarding {

inline constexpr std::string_view didWriteWelcomeBriefKey = "didWriteWelcomeBrief";
/// Whether the user went through the whole welcome tour.
inline constexpr std::string_view didCompleteOnboardingKey = "didCompleteOnboarding";

/// Writes today's briefing into the folder, once in a user's life: one that tells how to use the panel. A file that is
/// there already stays. Failures are silent, and there is no second attempt after one.
void writeWelcomeBriefIfNeeded(UserDefaults& defaults, FileSystem& files, const Clock& clock);

}  // namespace sunpane::onboarding
