#include "foundation/LogEntry.h"

#include <array>

namespace quorvane {

namespace {

struct LevelRule {
    const char16_t* words;
    bool lowerCased;
    LogLevel level;
};

constexpr std::array levelRules{
    LevelRule{u"hata", true, LogLevel::error},
    LevelRule{u"❌", false, LogLevel::error},
    LevelRule{u"engellendi", true, LogLevel::error},
    LevelRule{u"başarısız", true, LogLevel::error},
    LevelRule{u"başarılı", true, LogLevel::success},
    LevelRule{u"başarıyla", true, LogLevel::success},
    LevelRule{u"tamamlandı", true, LogLevel::success},
    LevelRule{u"[Sync]", false, LogLevel::network},
    LevelRule{u"[Network]", false, LogLevel::network},
    LevelRule{u"[Upload]", false, LogLevel::network},
    LevelRule{u"uyarı", true, LogLevel::warning},
    LevelRule{u"⚠️", false, LogLevel::warning},
};

} // namespace

LogLevel levelOf(const QString& message) {
    // Without regard to the locale: "İ" becomes an i with a dot above, which is another letter.
    const QString lower =
        message.toLower().replace(QStringLiteral("i\u0307"), QStringLiteral("\u0130"));
    for (const LevelRule& rule : levelRules)
        if ((rule.lowerCased ? lower : message).contains(QStringView(rule.words)))
            return rule.level;
    return LogLevel::info;
}

} // namespace quorvane
