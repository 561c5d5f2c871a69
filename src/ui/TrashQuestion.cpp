#include "ui/TrashQuestion.h"

#include "foundation/MainThread.h"
#include "sync/ProductState.h"

#include <QLocale>

namespace quorvane {

namespace {

/// Of what goes: that others stay is told, not asked.
bool isSame(const std::optional<DeletionQuestion>& known, const DeletionQuestion& question) {
    return known && known->count == question.count && known->bytes == question.bytes &&
           known->place == question.place && known->warning == question.warning;
}

} // namespace

bool TrashQuestion::confirmDeletion(const DeletionQuestion& question) {
    const auto answers = answers_.lock();
    if (isSame(std::exchange(answers->agreed, std::nullopt), question))
        return true;
    if (!isSame(answers->kept, question))
        onMainThread([self = self_, question] {
            if (self)
                self->ask(question);
        });
    return false;
}

void TrashQuestion::ask(const DeletionQuestion& question) {
    const bool isNew = !isSame(open_, question);
    open_ = question;
    Q_EMIT changed();
    if (isNew)
        Q_EMIT asked();
}

void TrashQuestion::agree() {
    close({.agreed = open_, .kept = {}});
}

void TrashQuestion::keep() {
    close({.agreed = {}, .kept = open_});
}

void TrashQuestion::forget() {
    close({});
}

void TrashQuestion::close(Answers answers) {
    *answers_.lock() = std::move(answers);
    open_.reset();
    Q_EMIT changed();
}

QString trashTitle(const DeletionQuestion& question) {
    return groupedCount(question.count) + QStringLiteral(" Öğe Çöp'e Taşınsın mı?");
}

QString trashText(const DeletionQuestion& question) {
    const QString size = QLocale(QLocale::Turkish, QLocale::Turkey)
                             .formattedDataSize(question.bytes, 1, QLocale::DataSizeSIFormat);
    QString text = QStringLiteral("Google Photos'ta doğrulanan %1 özgün (%2) sistemin Çöp'üne "
                                  "gider: %3. Çöp'ü siz boşaltana kadar geri alabilirsiniz.")
                       .arg(groupedCount(question.count), size, question.place);
    return question.warning.isEmpty() ? text : text + QStringLiteral("\n\n") + question.warning;
}

} // namespace quorvane
