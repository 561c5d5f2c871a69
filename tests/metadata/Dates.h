#pragma once

#include "metadata/LocalCalendar.h"

#include <cstdlib>
#include <ctime>

namespace quorvane::test {

inline Date utc(int year, int month, int day) {
    return std::chrono::sys_days(std::chrono::year(year) / month / day);
}

inline std::string utc(const std::optional<Date>& date) {
    return date ? utcText(*date, u"yyyy-MM-dd HH:mm:ss").toStdString() : "none";
}

/// The process lives in another time zone for a while.
class TimeZone {
  public:
    explicit TimeZone(const char* name) {
        if (const char* old = std::getenv("TZ"))
            old_ = old;
        set(name);
    }
    ~TimeZone() { set(old_ ? old_->c_str() : nullptr); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

  private:
    static void set(const char* name) {
        name ? ::setenv("TZ", name, 1) : ::unsetenv("TZ");
        ::tzset();
    }
    std::optional<std::string> old_;
};

} // namespace quorvane::test
