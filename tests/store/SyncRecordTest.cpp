#include "store/SyncRecord.h"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

QString categoryOf(const char* error) {
    const auto summaries = summarizeFailures({{QString::fromUtf8(error), 1}});
    return summaries.at(0).categoryName;
}

TEST(SyncRecord, failuresFallIntoTheFirstMatchingCategory) {
    const struct {
        const char* error;
        const char* category;
    } cases[] = {
        {"Cancelled", "Durdurulan Aktarımlar"},
        {"CANCEL: limit HTTP", "Durdurulan Aktarımlar"},
        {"album limit", "Albüm Sınırı Aşıldı"},
        {"Limit", "Diğer Hatalar"}, // upper case is another word here
        {"20.000", "Albüm Sınırı Aşıldı"},
        {"the maximum number of photos in an album", "Albüm Sınırı Aşıldı"},
        {"You are OFFLINE", "Geçici Ağ / Sunucu Hatası"},
        {"Connection reset", "Geçici Ağ / Sunucu Hatası"},
        {"[Upload] HTTP 500", "Geçici Ağ / Sunucu Hatası"},
        {"http 500", "Diğer Hatalar"},
        {"", "Diğer Hatalar"},
    };
    for (const auto& [error, category] : cases)
        EXPECT_EQ(categoryOf(error), QString::fromUtf8(category)) << error;
}

TEST(SyncRecord, aKnownFaultDecidesBeforeTheText) {
    const auto category = [](FaultCode code) {
        return summarizeFailures({{QStringLiteral("HTTP limit"), 1, code}}).at(0).categoryName;
    };
    EXPECT_EQ(category(FaultCode::storageFull), QStringLiteral("Google Hesabı"));
    EXPECT_EQ(category(FaultCode::albumFull), QStringLiteral("Albüm Sınırı Aşıldı"));
    EXPECT_EQ(category(FaultCode::unreachable), QStringLiteral("Geçici Ağ / Sunucu Hatası"));
}

} // namespace
} // namespace quorvane
