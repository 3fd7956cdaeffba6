#include "onboarding/WelcomeBrief.h"

#include <string>
#include <string_view>

#include "base/Dates.h"
#include "core/briefing/FolderBriefingProvider.h"

namespace sunpane::onboarding {
namespace {

constexpr std::string_view welcomeText = R"(# 👋 Welcome to Dawnly

### 📅 Getting Started
- **This is a brief.** Every morning your AI writes one, and it lands right here under your notch.
- Hover the notch any time to open it. Move away and it tucks back up.
- Click a section title to collapse it. Fully cleared sections tidy themselves away.

### 🔴 Try the swipes
- Swipe me RIGHT to flag me as a priority — I light up and float to the top
- Swipe me LEFT to clear me — gone for good, and your AI will not repeat me
- Every swipe is saved to feedback.json, so tomorrow's brief reads your mind a little better

### ✅ Action Items
- [ ] Hover the notch and poke around
- [ ] Swipe a bullet right, then swipe one left
- [ ] Check one of these todos off
- [ ] Connect your AI (the setup window has everything)

### 👀 On your radar
- Your AI writes one markdown file a day into the Dawnly folder — that is the whole system
- No AI scheduled yet? The setup window has a ready-made prompt to copy
- You can also write or drop a YYYY-MM-DD.md file into the folder yourself
)";

}  // namespace

void writeWelcomeBriefIfNeeded(UserDefaults& defaults, FileSystem& files, const Clock& clock) {
    if (defaults.read<bool>(didWriteWelcomeBriefKey).valueOr(false)) return;
    defaults.set(didWriteWelcomeBriefKey, true);
    const std::string folder = FolderBriefingProvider::currentDirectory(defaults);
    files.createFolders(folder);
    const std::string path = folder + "/" + LocalCalendar(clock).dayString(clock.now()) + ".md";
    if (!files.exists(path)) files.replaceAtomically(path, welcomeText);
}

}  // namespace sunpane::onboarding
