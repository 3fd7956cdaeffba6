#include "linux/calendar/eds/EdsModule.h"

#include "linux/system/OwnModule.h"

namespace sunpane {

CalendarServiceMaker edsCalendars() {
    return [](const std::function<void()>& changed) -> std::unique_ptr<CalendarService> {
        const auto make = reinterpret_cast<EdsModuleEntry>(loadOwnModule("dawnly-eds", edsModuleEntry));
        return std::unique_ptr<CalendarService>(make != nullptr ? make(&changed) : nullptr);
    };
}

}  // namespace sunpane
