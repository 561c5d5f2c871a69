#include "ui/ReviewModel.h"

#include <QLocale>

#include <array>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr std::size_t readAtOnce = 60;
constexpr std::size_t retriedAtOnce = 500;

struct Choice {
    DateFallbackMode mode;
    const char16_t* title;
};

constexpr std::array choiceTable{
    Choice{DateFallbackMode::fileSaveDate,
           u"Mac'e Kayıt Tarihini Kullan (Önerilen - Kronoloji Korunur)"},
    Choice{DateFallbackMode::today, u"Bugünün Tarihini Kullan"},
    Choice{DateFallbackMode::strictNone, u"Karantinada Bırak (Yükleme)"},
};

/// Of each group, what is seen when the sheet opens.
std::vector<std::int64_t> firstPlaces(const std::vector<HeldGroup>& groups) {
    std::vector<std::int64_t> places;
    for (const HeldGroup& group : groups)
        for (std::size_t i = 0; i < std::min<std::size_t>(2, group.places.size()); ++i)
            places.push_back(group.places[i]);
    return places;
}

} // namespace

ReviewModel::ReviewModel(MenuBarViewModel& model) : model_(model) {
    connect(&model_, &MenuBarViewModel::sheetsChanged, this, &ReviewModel::follow);
    connect(&model_, &MenuBarViewModel::routeChanged, this, [this] {
        if (isWanted_ && !model_.library())
            close();
    });
    connect(&model_, &MenuBarViewModel::countsChanged, this, [this] {
        if (isWanted_)
            load();
    });
    connect(&items_, &HeldListModel::wanted, this, &ReviewModel::readWanted, Qt::QueuedConnection);
}

template <typename Work>
void ReviewModel::post(const Session& session, Work work) {
    onMainThread([self = QPointer(this), session, work = std::move(work)] {
        if (self && self->isWanted_ && self->model_.session() == session)
            work();
    });
}

void ReviewModel::report(const Error& error) const {
    model_.services().log.log(u"[MenuBarViewModel] Karantina okunamadı: "_s +
                              error.localizedDescription());
}

// The sheet.

void ReviewModel::follow() {
    if (model_.showQuarantineSheet() == isWanted_)
        return;
    isWanted_ = model_.showQuarantineSheet();
    if (isWanted_)
        open();
    else
        hide();
}

void ReviewModel::open() {
    chosen_.clear();
    sendsUndatable_ = false;
    load();
    findEvidence();
}

void ReviewModel::hide() {
    isShown_ = false;
    items_.clear();
    Q_EMIT changed();
}

void ReviewModel::close() {
    model_.setShowQuarantineSheet(false);
}

/// What waits is read anew; what changes in the meantime brings the next reading.
void ReviewModel::load() {
    const Session session = model_.session();
    if (!session)
        return;
    tasks_.post([this, session](const std::stop_token&) {
        std::vector<HeldGroup> groups;
        std::map<std::int64_t, HeldItem> items;
        try {
            groups = HeldRecords(session->run.db).groups();
            items = readHeldItems(*session, firstPlaces(groups), model_.services().clock.now());
        } catch (const Error& error) {
            report(error);
        }
        post(session, [this, groups, items] {
            items_.putItems(items);
            items_.setGroups(groups);
            isShown_ = true;
            Q_EMIT changed();
        });
    });
}

void ReviewModel::findEvidence() {
    const Session session = model_.session();
    if (!session)
        return;
    evidenceTasks_.post([this, session](const std::stop_token& stop) {
        QHash<QString, UndatedItem> evidence;
        try {
            for (UndatedItem& item :
                 reviewUndated({session->run.db, session->run.library, session->metadata,
                                session->root, model_.services().clock},
                               stop))
                if (!item.isUndatable)
                    evidence.emplace(item.record.assetLocalIdentifier, std::move(item));
        } catch (const Error& error) {
            report(error);
        }
        post(session, [this, evidence] { items_.setEvidence(evidence); });
    });
}

void ReviewModel::readWanted() {
    const Session session = model_.session();
    const std::vector<std::int64_t> places = items_.takeWanted(readAtOnce);
    if (!session || places.empty())
        return;
    tasks_.post([this, session, places](const std::stop_token&) {
        std::map<std::int64_t, HeldItem> items;
        try {
            items = readHeldItems(*session, places, model_.services().clock.now());
        } catch (const Error& error) {
            report(error);
        }
        for (const std::int64_t place : places)
            items.try_emplace(place); // gone by now; the next reading takes its row away
        post(session, [this, items] { items_.putItems(items); });
    });
}

// What the sheet says.

QVariantList ReviewModel::choices() const {
    QVariantList rows;
    if (undatedCount() > 0)
        for (const Choice& choice : choiceTable)
            rows.append(QVariantMap{{u"value"_s, rawValue(choice.mode)},
                                    {u"title"_s, QString::fromUtf16(choice.title)}});
    return rows;
}

QString ReviewModel::chosen() const {
    return chosen_.isEmpty() ? rawValue(model_.settings().dateFallbackMode()) : chosen_;
}

QString ReviewModel::undatableTitle() const {
    const int count = model_.undatableCount();
    return count == 0
               ? QString()
               : u"Tarih yazılamayan biçimleri olduğu gibi yükle (%1)"_s.arg(groupedCount(count));
}

int ReviewModel::retryCount() const {
    const bool leavesUndated = chosen() == rawValue(DateFallbackMode::strictNone);
    return model_.failedCount() + (leavesUndated ? 0 : undatedCount()) +
           (sendsUndatable_ ? model_.undatableCount() : 0);
}

QString ReviewModel::retryTitle() const {
    return u"Yeniden Sıraya Ekle (%1)"_s.arg(groupedCount(retryCount()));
}

// What the person does.

void ReviewModel::choose(const QString& value) {
    chosen_ = value;
    Q_EMIT changed();
}

void ReviewModel::chooseUndatable(bool sends) {
    sendsUndatable_ = sends;
    Q_EMIT changed();
}

void ReviewModel::act(int place) {
    using Row = HeldListModel::Row;
    using Link = HeldListModel::Link;
    const Row row = items_.row(place);
    if (row.kind == Row::Kind::item) {
        const HeldItem* item = items_.itemAt(place);
        if (item == nullptr)
            return;
        const SyncRecord& record = item->held.record;
        if (record.syncStatus == SyncStatus::failed)
            retry({row.place});
        else if (const UndatedItem* undated = items_.evidenceOf(record.assetLocalIdentifier))
            accept({*undated});
        else
            return;
        items_.take({row.place});
    } else if (row.kind == Row::Kind::link && row.link == Link::retryGroup) {
        retry(items_.placesOf(place));
        items_.take(items_.placesOf(place));
    } else if (row.kind == Row::Kind::link && row.link == Link::acceptKind) {
        accept(items_.undatedBy(row.evidence));
    } else {
        items_.unfold(place);
    }
}

void ReviewModel::reveal(int row) {
    if (const HeldItem* item = items_.itemAt(row); item != nullptr && !item->file.empty())
        model_.services().desktop.reveal(item->file);
}

void ReviewModel::retryAll() {
    model_.retryQuarantinedItems(chosen(), sendsUndatable_);
    close();
}

void ReviewModel::retry(std::vector<std::int64_t> places) {
    change([places = std::move(places)](const LibrarySession& session) {
        for (std::size_t first = 0; first < places.size(); first += retriedAtOnce) {
            const auto begin = places.begin() + static_cast<std::ptrdiff_t>(first);
            const auto count = std::min(retriedAtOnce, places.size() - first);
            session.run.db.transaction([&](sqlite::Connection&) {
                for (const auto& [place, held] :
                     HeldRecords(session.run.db)
                         .at({begin, begin + static_cast<std::ptrdiff_t>(count)}))
                    session.life.retried(held.record);
            });
        }
    });
}

void ReviewModel::accept(const std::vector<UndatedItem>& accepted) {
    change([accepted](const LibrarySession& session) {
        for (const UndatedItem& item : accepted)
            session.life.dateChosen(item.record, item.evidence.front().date());
    });
}

/// The counts, and with them the rows, follow.
void ReviewModel::change(const std::function<void(const LibrarySession&)>& write) {
    const Session session = model_.session();
    if (!session)
        return;
    tasks_.post([this, session, write](const std::stop_token&) {
        try {
            write(*session);
        } catch (const DBError& error) {
            report(error);
        }
        onMainThread([self = QPointer(this)] {
            if (self)
                self->model_.refreshState();
        });
    });
}

} // namespace quorvane
