#include "linux/system/SystemClock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/Dates.h"
#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

/// Sets an environment variable for a while; an absent value unsets it.
class Setting {
public:
    Setting(const char* name, const std::optional<std::string>& value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~Setting() { set(before_); }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value) {
            setenv(name_, value->c_str(), 1);
        } else {
            unsetenv(name_);
        }
        tzset();
    }

    const char* name_;
    std::optional<std::string> before_;
};

class ZoneSetting : Setting {
public:
    explicit ZoneSetting(const std::string& zone) : Setting("TZ", zone) {}
};

CivilTime timeOfTheSystem(std::time_t instant) {
    std::tm local{};
    localtime_r(&instant, &local);
    return {{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday}, local.tm_hour, local.tm_min, local.tm_sec};
}

// The first half-hour from 2026 to 2029 in which the calendar shows another time than the system does.
std::string firstDifference(const LocalCalendar& calendar) {
    constexpr std::time_t start = 1767225600;
    constexpr std::time_t halfHour = 1800;
    for (std::time_t instant = start; instant < start + 3 * 365 * 86400; instant += halfHour) {
        const auto ours = Instant::fromUnix(static_cast<double>(instant));
        if (calendar.civilTime(ours) != timeOfTheSystem(instant)) return iso8601Utc(ours);
    }
    return "";
}

TEST(SystemClock, ShowsTheTimeThatTheSystemShows) {
    const testing::TemporaryFolder folder;
    const std::string link = folder / "tokyo";
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", link);
    const std::string copy = folder / "copy";
    std::filesystem::copy_file("/usr/share/zoneinfo/Europe/Lisbon", copy);
    const std::string irish = folder / "irish";
    std::filesystem::copy_file("/usr/share/zoneinfo/Europe/Dublin", irish);
    const std::string zones[] = {"Asia/Tokyo",
                                 ":America/New_York",
                                 "/usr/share/zoneinfo/Asia/Tokyo",
                                 ":" + link,
                                 copy,
                                 irish,
                                 ":/etc/localtime",
                                 "",
                                 ":",
                                 "No/Such",
                                 "/no/such/file",
                                 "JST-9",
                                 "<+03>-3",
                                 "<-0330>3:30",
                                 "EST5",
                                 "EST5EDT",
                                 "GMT+3",
                                 "UTC-2",
                                 "CET-1CEST,M3.5.0,M10.5.0/3",
                                 "MST7MDT,M3.2.0,M11.1.0",
                                 "NZST-12NZDT,M9.5.0,M4.1.0/3",
                                 "IST-1GMT0,M10.5.0,M3.5.0/1",
                                 "IST-2IDT,M3.4.4/26,M10.5.0",
                                 "EET-2EEST,M3.4.4/50,M10.4.4/50",
                                 "<-02>2<-01>,M3.5.0/-1,M10.5.0/0",
                                 "AAA-5BBB,M10.5.0/24,M3.5.6/23",
                                 "AAA3BBB,J59/0,J305/24",
                                 "AAA-3BBB-5,10/1,58"};
    for (const std::string& zone : zones) {
        const ZoneSetting setting(zone);
        const SystemClock clock;
        EXPECT_EQ(firstDifference(LocalCalendar(clock.timeZone(), "en_US")), "") << zone << " -> " << clock.timeZone();
    }
}

// Old C libraries take such changes from a file of old years, so there is nothing to compare with.
TEST(SystemClock, KeepsSummerTimeThatNamesNoRules) {
    const ZoneSetting setting("CET-1CEST");
    const LocalCalendar calendar(SystemClock().timeZone(), "en_US");
    EXPECT_EQ(calendar.iso8601(*calendar.startOfDay(CivilDay{2026, 1, 15})), "2026-01-15T00:00:00+01:00");
    EXPECT_EQ(calendar.iso8601(*calendar.startOfDay(CivilDay{2026, 7, 15})), "2026-07-15T00:00:00+02:00");
}

TEST(SystemClock, HasNoSummerTimeWhoseChangesWouldBeMisread) {
    for (const char* zone : {"AAA-3BBB-4,M3.1.0/-24,M10.5.0", "AAA-3BBB-4,M3.5.0,M9.1.0/-48",
                             "AAA-3BBB-2,M3.1.6/-1,M10.5.0", "AAA-3BBB-2,J60/-48,J300"}) {
        const ZoneSetting setting(zone);
        const LocalCalendar calendar(SystemClock().timeZone(), "en_US");
        for (int month = 1; month <= 12; ++month) {
            const auto day = calendar.iso8601(*calendar.startOfDay(CivilDay{2026, month, 8}));
            EXPECT_TRUE(day.ends_with("+03:00")) << zone << ": " << day;
        }
    }
}

TEST(SystemClock, PrefersNamesToRulesAndFollowsALinkThatMoves) {
    const testing::TemporaryFolder folder;
    const std::string link = folder / "zone";
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", link);
    const ZoneSetting setting(link);
    const SystemClock clock;
    EXPECT_EQ(clock.timeZone(), "Asia/Tokyo");
    std::filesystem::create_symlink("/usr/share/zoneinfo/right/Africa/Lagos", folder / "next");
    std::filesystem::rename(folder / "next", link);
    EXPECT_EQ(clock.timeZone(), "Africa/Lagos");
}

TEST(SystemClock, TakesTheLocaleOfDatesAndTimes) {
    struct Case {
        std::optional<std::string> all, time, lang;
        const char* locale;
    };
    const std::optional<std::string> unset;
    for (const auto& [all, time, lang, locale] : {
             Case{unset, "nl_NL.UTF-8", "en_US.UTF-8", "nl_NL"},
             Case{"", "", "de_DE@euro", "de_DE"},
             Case{"fr_FR.UTF-8", "nl_NL.UTF-8", "en_US.UTF-8", "fr_FR"},
             Case{"C.UTF-8", "nl_NL.UTF-8", unset, "en_US_POSIX"},
             Case{unset, "POSIX", "nl_NL.UTF-8", "en_US_POSIX"},
             Case{unset, unset, "sr_RS.UTF-8@latin", "sr_RS"},
             Case{unset, "../../etc", unset, "en_US_POSIX"},
             Case{unset, std::string(100000, 'x'), unset, "en_US_POSIX"},
         }) {
        const Setting setAll("LC_ALL", all);
        const Setting setTime("LC_TIME", time);
        const Setting setLang("LANG", lang);
        EXPECT_EQ(SystemClock().locale().substr(0, std::string_view(locale).size()), locale);
    }
    const Setting setAll("LC_ALL", unset);
    const Setting setTime("LC_TIME", "nl_NL.UTF-8");
    const LocalCalendar calendar("UTC", SystemClock().locale());
    EXPECT_EQ(calendar.format(Instant::fromUnix(1795392000), "EEEE d MMM"), "maandag 23 nov");
}

}  // namespace
}  // namespace sunpane
