#include "ui/Redaction.h"

#include <gtest/gtest.h>

namespace quorvane::test {

using namespace Qt::StringLiterals;

TEST(RedactionTest, HidesWhatNobodyElseIsToKnow) {
    struct Row {
        QString text, hidden, kept;
    };
    const std::vector<Row> table{
        {u"[Batch] VERIFIED: Ayşe: deniz (1).HEIC -> AJq0"_s,
         u"[Batch] VERIFIED: ‹dosya› -> AJq0"_s,
         u"[Batch] VERIFIED: Ayşe: deniz (1).HEIC -> AJq0"_s},
        {u"[2026-11-22T07:00:00Z] [Bg] [Batch] FAILED: a b.mov -> HTTP 500"_s,
         u"[2026-11-22T07:00:00Z] [Bg] [Batch] FAILED: ‹dosya› -> HTTP 500"_s,
         u"[2026-11-22T07:00:00Z] [Bg] [Batch] FAILED: a b.mov -> HTTP 500"_s},
        {u"📁 Albüm bulundu: 'Ayşe''nin' (adet: 3)"_s, u"📁 Albüm bulundu: ‹ad›‹ad› (adet: 3)"_s,
         u"📁 Albüm bulundu: 'Ayşe''nin' (adet: 3)"_s},
        {u"Yeni albüm oluşturuldu: Ayşe'nin düğünü"_s, u"Yeni albüm oluşturuldu: ‹ad›"_s,
         u"Yeni albüm oluşturuldu: Ayşe'nin düğünü"_s},
        {u"📁 Log Dosyası: /home/ayse/Library/q.log"_s, u"📁 Log Dosyası: ‹yol›"_s,
         u"📁 Log Dosyası: ~/Library/q.log"_s},
        {u"[OAuth] ayse.yilmaz@ornek.com ya29.a0AfB_byC-12345"_s, u"[OAuth] ‹e-posta› ‹gizli›"_s,
         u"[OAuth] ‹e-posta› ‹gizli›"_s},
        {u"🔗 com.x:/oauth2redirect?code=4%2F0AbC&state=xyz"_s,
         u"🔗 com.x:/oauth2redirect?code=‹gizli›&state=‹gizli›"_s,
         u"🔗 com.x:/oauth2redirect?code=‹gizli›&state=‹gizli›"_s},
    };
    const auto shown = [](const QString& text, Names names) {
        return redacted(text, "/home/ayse", names, {u"Ayşe"_s, u"Ayşe'nin düğünü"_s});
    };
    for (const Row& row : table) {
        EXPECT_EQ(shown(row.text, Names::hidden).toStdString(), row.hidden.toStdString());
        EXPECT_EQ(shown(row.text, Names::kept).toStdString(), row.kept.toStdString());
    }
}

} // namespace quorvane::test
