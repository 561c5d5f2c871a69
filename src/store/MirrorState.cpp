#include "store/MirrorState.h"

namespace quorvane {

std::vector<MirrorAlbum> MirrorState::albums() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT album, part, remote_id, title, state "
                                        "FROM mirror_albums ORDER BY album, part");
        std::vector<MirrorAlbum> albums;
        while (row.step())
            albums.push_back({row.text(0), static_cast<int>(row.integer(1)), row.text(2),
                              row.text(3), static_cast<MirrorAlbum::State>(row.integer(4))});
        return albums;
    });
}

void MirrorState::save(const MirrorAlbum& album) {
    db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "INSERT OR REPLACE INTO mirror_albums VALUES (?, ?, ?, ?, ?)");
        row.bind(1, album.album);
        row.bind(2, album.part);
        row.bind(3, album.remoteID);
        row.bind(4, album.title);
        row.bind(5, static_cast<int>(album.state));
        row.step();
    });
}

void MirrorState::forget(const QString& album) {
    db_.transaction([&](sqlite::Connection& database) {
        for (const char* sql : {"DELETE FROM mirror_albums WHERE album = ?",
                                "DELETE FROM mirror_items WHERE album = ?"}) {
            sqlite::Statement row(database, sql);
            row.bind(1, album);
            row.step();
        }
    });
}

std::set<QString> MirrorState::itemsOf(const QString& album) {
    return db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT media_item FROM mirror_items WHERE album = ?");
        row.bind(1, album);
        std::set<QString> items;
        while (row.step())
            items.insert(row.text(0));
        return items;
    });
}

int MirrorState::countIn(const QString& album, int part) {
    return db_.onConnection([&](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "SELECT COUNT(*) FROM mirror_items WHERE album = ? AND part = ?");
        row.bind(1, album);
        row.bind(2, part);
        return row.step() ? static_cast<int>(row.integer(0)) : 0;
    });
}

void MirrorState::added(const QString& album, int part, const QStringList& items) {
    db_.transaction([&](sqlite::Connection& database) {
        sqlite::Statement row(database, "INSERT OR IGNORE INTO mirror_items VALUES (?, ?, ?)");
        for (const QString& item : items) {
            row.reset();
            row.bind(1, album);
            row.bind(2, item);
            row.bind(3, part);
            row.step();
        }
    });
}

std::map<QString, QString> MirrorState::mediaItems() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database,
                              "SELECT asset_local_identifier, remote_media_id FROM sync_records "
                              "WHERE sync_status IN ('VERIFIED', 'DELETED_LOCALLY') "
                              "AND remote_media_id != ''");
        std::map<QString, QString> items;
        while (row.step())
            items.emplace(row.text(0), row.text(1));
        return items;
    });
}

} // namespace quorvane
