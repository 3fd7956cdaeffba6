#include "app/PanelBriefing.h"

#include <string>

namespace sunpane {

void limitToPanel(Briefing& briefing) {
    std::string& text = briefing.markdown;
    if (text.size() <= maximumPanelBytes) return;
    std::size_t end = text.rfind('\n', maximumPanelBytes);
    if (end == std::string::npos) {
        // Between two code points, then.
        end = maximumPanelBytes;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
            --end;
    }
    text.resize(end);
    text.shrink_to_fit();
}

}  // namespace sunpane
