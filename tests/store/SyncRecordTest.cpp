#include "store/SyncRecord.h"

#include <gtest/gtest.h>

#include <set>

namespace quorvane {
namespace {

QString categoryOf(const char* error) {
    const auto summaries = summarizeFailures({{QString::fromUtf8(error), 1}});
    return summaries.at(0).categoryName;
}

TEST(SyncRecord, storedTextsOfStatusesAreDistinctAndReadBack) {
    std::set<QString> names;
    for (const SyncStatus status : allSyncStatuses) {
        names.insert(rawValue(status));
        EXPECT_EQ(syncStatusFrom(rawValue(status)), status);
    }
    EXPECT_EQ(names.size(), 8U);
    EXPECT_EQ(syncStatusFrom(QStringLiteral("discovered")), std::nullopt);
    EXPECT_EQ(mediaTypeFrom(QStringLiteral("live_photo")), MediaType::livePhoto);
    EXPECT_EQ(mediaTypeFrom(QStringLiteral("audio")), std::nullopt);
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

TEST(SyncRecord, categoriesAreMergedAndSortedStably) {
    const auto summaries = summarizeFailures({{QStringLiteral("x"), 2},
                                              {QStringLiteral("HTTP 500"), 1},
                                              {QStringLiteral("cancel"), 2},
                                              {QStringLiteral("HTTP 502"), 2},
                                              {QStringLiteral("offline"), 3}});
    ASSERT_EQ(summaries.size(), 3U);
    EXPECT_EQ(summaries[0].systemImage, QStringLiteral("wifi.exclamationmark"));
    EXPECT_EQ(summaries[0].count, 6);
    EXPECT_EQ(summaries[1].systemImage, QStringLiteral("questionmark.circle.fill"));
    EXPECT_EQ(summaries[2].systemImage, QStringLiteral("pause.circle.fill"));
    EXPECT_TRUE(summarizeFailures({}).empty());
}

} // namespace
} // namespace quorvane
