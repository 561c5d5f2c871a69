#include "store/LibraryFiles.h"

namespace quorvane {

std::vector<LibraryFile> LibraryFiles::all() {
    return db_.onConnection([](sqlite::Connection& database) {
        sqlite::Statement row(database, "SELECT path, identifier, size, modified, changed, inode "
                                        "FROM library_files");
        std::vector<LibraryFile> files;
        while (row.step())
            files.push_back({row.bytes(0).toStdString(),
                             AssetIdentifier::of(row.view(1)),
                             {row.integer(2), row.integer(3), row.integer(4),
                              static_cast<std::uint64_t>(row.integer(5))}});
        return files;
    });
}

void LibraryFiles::update(const std::vector<LibraryFile>& changed,
                          const std::vector<std::string>& gone) {
    db_.transaction([&](sqlite::Connection& database) {
        sqlite::Statement forget(database, "DELETE FROM library_files WHERE path = ?");
        for (const std::string& path : gone) {
            forget.reset();
            forget.bind(1, QByteArray::fromStdString(path));
            forget.step();
        }
        sqlite::Statement row(database,
                              "INSERT OR REPLACE INTO library_files VALUES (?, ?, ?, ?, ?, ?)");
        for (const LibraryFile& file : changed) {
            row.reset();
            row.bind(1, QByteArray::fromStdString(file.path));
            row.bind(2, file.identifier.text());
            row.bind(3, file.version.size);
            row.bind(4, file.version.modified);
            row.bind(5, file.version.changed);
            row.bind(6, static_cast<std::int64_t>(file.version.inode));
            row.step();
        }
    });
}

} // namespace quorvane
